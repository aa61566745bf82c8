#include "client/NotificationListener.h"

#include <algorithm>
#include <atomic>
#include <nlohmann/json.hpp>

#include "client/CFJson.h"
#include "client/Exports.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "platform/DynamicLibrary.h"
#include "platform/Processes.h"

namespace pellwick {

/// One thread's share, which it keeps until its end.
class NotificationListener::Listening {
public:
    std::promise<ErrorCode> subscribed;  ///< what became of the first subscription

    bool IsStopped() const { return mIsStopped; }
    AgentConnection& Connection() { return *mConnection; }

    /// Subscribes over a new connection.
    ErrorCode Subscribe() {
        {
            const std::lock_guard guard(mStateLock);
            if (mIsStopped)
                return GIPCClient::kServiceUnavailable;
            mConnection = std::make_unique<AgentConnection>(kAnswerLimit);
        }
        Json ignored;
        return mConnection->Call(method::kSubscribe, Json::object(), ignored);
    }
    /// Waits until it is time to look for an agent again, or it is all over.
    void Rest(std::chrono::milliseconds length) {
        std::unique_lock guard(mStateLock);
        mChanged.wait_for(guard, length, [this] { return mIsStopped || mIsHurried; });
        mIsHurried = false;
    }
    // Any thread.
    void Hurry() {
        const std::lock_guard guard(mStateLock);
        mIsHurried = true;
        mChanged.notify_all();
    }
    void Stop() {
        const std::lock_guard guard(mStateLock);
        mIsStopped = true;
        if (mConnection)
            mConnection->Cancel();
        mChanged.notify_all();
    }

private:
    std::mutex mStateLock;  ///< guards what follows; the connection's own thread reads it without
    std::condition_variable mChanged;
    std::unique_ptr<AgentConnection> mConnection;
    std::atomic<bool> mIsStopped{false};
    bool mIsHurried = false;
};

namespace {

/// The data of a notification in the form that the callback expects for the length of its call.
class CallbackData {
public:
    CallbackData(int32_t type, const Json& data) {
        if (type == kPluginCallback_PreviewPNGsRendered)
            mObject = PreviewsOf(data);
        else if (data.is_boolean())
            mTruth = data.get<bool>();
        else if (data.is_number_integer())
            mNumber = data.get<uint32_t>();
        else
            mObject = CFFromJson(data);
        mPointer = data.is_boolean()          ? static_cast<const void*>(&mTruth)
                   : data.is_number_integer() ? static_cast<const void*>(&mNumber)
                                              : mObject.get();
    }
    CallbackData(const CallbackData&) = delete;
    CallbackData& operator=(const CallbackData&) = delete;

    const void* Pointer() const { return mPointer; }

private:
    static CFRef<CFTypeRef> PreviewsOf(const Json& data) {
        const auto previews = cf::MutableDictionary();
        AddPreviews(previews.get(), data);
        return previews;
    }

    bool mTruth = false;
    uint32_t mNumber = 0;
    CFRef<CFTypeRef> mObject;
    const void* mPointer = nullptr;
};

thread_local bool isListenerThread = false;

const char kAddressInThisModule = 0;

}  // namespace

bool NotificationListener::IsOwnThread() {
    return isListenerThread;
}

ErrorCode NotificationListener::Add(PluginNotificationCallback callback) {
    if (IsOwnThread())
        return CoreErrorCodes::kNotSupported;
    const std::lock_guard control(mControlLock);
    {
        const std::lock_guard guard(mCallbacksLock);
        if (std::find(mCallbacks.begin(), mCallbacks.end(), callback) == mCallbacks.end())
            mCallbacks.push_back(callback);
    }
    if (mListening)
        return CoreErrorCodes::kSuccess;
    const ErrorCode code = Guarded([this] { return Start().get(); });
    if (code != CoreErrorCodes::kSuccess) {
        Stop();
        const std::lock_guard guard(mCallbacksLock);
        mCallbacks.erase(std::remove(mCallbacks.begin(), mCallbacks.end(), callback), mCallbacks.end());
    }
    return code;
}

void NotificationListener::Remove(PluginNotificationCallback callback) {
    std::unique_lock guard(mCallbacksLock);
    mCallbacks.erase(std::remove(mCallbacks.begin(), mCallbacks.end(), callback), mCallbacks.end());
    const bool isLast = mCallbacks.empty();
    if (IsOwnThread())
        return;
    mCallbackReturned.wait(guard, [&] { return mRunningCallback != callback; });
    guard.unlock();
    if (isLast) {
        const std::lock_guard control(mControlLock);
        Stop();
    }
}

void NotificationListener::RemoveAll() {
    {
        const std::lock_guard guard(mCallbacksLock);
        mCallbacks.clear();
    }
    if (IsOwnThread())
        return;
    const std::lock_guard control(mControlLock);
    Stop();
}

void NotificationListener::Hurry() {
    // Its holder is starting or stopping the listener anyway, and may wait for a lock that the caller holds.
    const std::unique_lock control(mControlLock, std::try_to_lock);
    if (control && mListening)
        mListening->Hurry();
}

std::future<ErrorCode> NotificationListener::Start() {
    Stop();
    auto listening = std::make_shared<Listening>();
    std::future<ErrorCode> subscribed = listening->subscribed.get_future();
    platform::KeepModuleLoaded(&kAddressInThisModule);
    const platform::ScopedSignalBlock block;
    mThread = std::thread([this, listening] {
        isListenerThread = true;
        (void)Guarded([&] {
            Run(*listening);
            return CoreErrorCodes::kSuccess;
        });
    });
    mListening = std::move(listening);  // only once its thread exists
    return subscribed;
}

void NotificationListener::Stop() {
    if (!mThread.joinable())
        return;
    mListening->Stop();
    mThread.join();
    mListening.reset();
}

void NotificationListener::Run(Listening& listening) {
    ErrorCode code = listening.Subscribe();
    listening.subscribed.set_value(code);
    if (code != CoreErrorCodes::kSuccess)
        return;  // the thread has nothing else to do
    while (!listening.IsStopped()) {
        FindNextAgent(listening, DeliverAll(listening) == GAgentIF::kShutdown);
        Deliver(listening, kPluginCallback_PanelDataChanged, nullptr);
    }
}

ErrorCode NotificationListener::DeliverAll(Listening& listening) {
    int32_t type = 0;
    Json data;
    ErrorCode code = CoreErrorCodes::kSuccess;
    while ((code = listening.Connection().WaitForNotification(type, data)) == CoreErrorCodes::kSuccess)
        Deliver(listening, type, data);
    return code;
}

void NotificationListener::FindNextAgent(Listening& listening, bool hasSaidGoodbye) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + kRestartTime;
    std::chrono::milliseconds rest = kFirstListenerRest;
    while (!listening.IsStopped() && listening.Subscribe() != CoreErrorCodes::kSuccess) {
        if (hasSaidGoodbye && Clock::now() >= end) {
            Deliver(listening, kPluginCallback_AgentShutdown, nullptr);
            hasSaidGoodbye = false;
        }
        listening.Rest(rest);
        rest = std::min(rest * 2, hasSaidGoodbye ? kLongestRestDuringRestart : kLongestListenerRest);
    }
}

void NotificationListener::Deliver(const Listening& listening, int32_t type, const Json& data) {
    const CallbackData callbackData(type, data);
    std::unique_lock guard(mCallbacksLock);
    const auto callbacks = mCallbacks;
    for (const PluginNotificationCallback callback : callbacks) {
        // One before it may have taken it away.
        if (listening.IsStopped() ||
            std::find(mCallbacks.begin(), mCallbacks.end(), callback) == mCallbacks.end())
            continue;
        mRunningCallback = callback;
        guard.unlock();
        (void)Guarded([&] {
            callback(type, callbackData.Pointer());
            return CoreErrorCodes::kSuccess;
        });
        guard.lock();
        mRunningCallback = nullptr;
        mCallbackReturned.notify_all();
    }
}

}  // namespace pellwick
