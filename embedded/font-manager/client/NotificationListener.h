// Brings the agent's notifications to the callbacks that were registered for them.
#pragma once

#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "ErrorCodes.h"
#include "TarnwickPluginInterface.h"
#include "ipc/AgentConnection.h"

namespace pellwick {

/// Has a thread and a connection of its own while there are callbacks. Any thread may call; the callbacks run
/// on the listener's, which the host's signals do not reach. When the agent goes, the listener looks for the
/// next one until there is one; callbacks are told kPluginCallback_AgentShutdown only of an agent that said
/// goodbye and is not back at once, and kPluginCallback_PanelDataChanged with the next one, since what
/// happened between the two was not heard.
class NotificationListener {
public:
    NotificationListener() = default;
    ~NotificationListener() { RemoveAll(); }
    NotificationListener(const NotificationListener&) = delete;
    NotificationListener& operator=(const NotificationListener&) = delete;

    /// From now on the callback is called. A second time changes nothing. Fails, and forgets the callback,
    /// when the agent cannot be reached or no thread can be had.
    [[nodiscard]] ErrorCode Add(PluginNotificationCallback callback);
    /// When this returns the callback does not run any more and will not again; called by the callback
    /// itself, it is the last time.
    void Remove(PluginNotificationCallback callback);
    void RemoveAll();
    /// Looks for the next agent at once, if it is looking for one.
    void Hurry();

private:
    class Listening;

    /// What becomes of the subscription. Throws, and changes nothing, when no thread can be had.
    std::future<ErrorCode> Start();
    void Stop();
    void Run(Listening& listening);
    /// Delivers what comes in until the agent ends: the code with which it did.
    ErrorCode DeliverAll(Listening& listening);
    /// Subscribes with the next agent as soon as there is one. A goodbye is reported when that takes long.
    void FindNextAgent(Listening& listening, bool hasSaidGoodbye);
    void Deliver(const Listening& listening, int32_t type, const Json& data);
    /// Whether the caller is a callback.
    static bool IsOwnThread();

    std::mutex mControlLock;  ///< one Add or Remove at a time
    std::thread mThread;
    std::shared_ptr<Listening> mListening;

    std::mutex mCallbacksLock;
    std::vector<PluginNotificationCallback> mCallbacks;
    PluginNotificationCallback mRunningCallback = nullptr;
    std::condition_variable mCallbackReturned;
};

}  // namespace pellwick
