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
/// on the listener's, which the host's signals do not reach.
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
    /// Connects anew, without waiting for it, when there are callbacks: the agent has changed.
    void Reconnect();

private:
    struct Listening;

    /// What becomes of the subscription. Throws, and changes nothing, when no thread can be had.
    std::future<ErrorCode> Start();
    void Stop();
    void Listen(const std::shared_ptr<Listening>& listening);
    void DeliverAll(const std::shared_ptr<Listening>& listening);
    void Deliver(const std::shared_ptr<Listening>& listening, int32_t type, const Json& data);
    /// Whether the caller is a callback.
    static bool IsOwnThread();

    std::mutex mControlLock;  ///< one Add, Remove or Reconnect at a time
    std::thread mThread;
    std::shared_ptr<Listening> mListening;

    std::mutex mCallbacksLock;
    std::vector<PluginNotificationCallback> mCallbacks;
    PluginNotificationCallback mRunningCallback = nullptr;
    std::condition_variable mCallbackReturned;
};

}  // namespace pellwick
