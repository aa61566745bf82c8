#include "interface/NotificationListener.h"

#include <algorithm>
#include <atomic>
#include <nlohmann/json.hpp>

#include "common/Limits.h"
#include "common/Protocol.h"
#include "interface/CFJson.h"
#include "interface/Exports.h"
#include "platform/DynamicLibrary.h"
#include "platform/Processes.h"

namespace pellwick {

/// One thread's share, which it keeps until its end.
struct NotificationListener::Listening {
    AgentConnection connection{kAnswerLimit};
    std::promise<ErrorCode> subscribed;
    std::atomic<bool> isStopped{false};
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
    if (mListening && !mListening->isStopped)
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

void NotificationListener::Reconnect() {
    if (IsOwnThread())
        return;
    const std::lock_guard control(mControlLock);
    {
        const std::lock_guard guard(mCallbacksLock);
        if (mCallbacks.empty())
            return;
    }
    // Without a thread the facade is as good as ever; the next Add tries again.
    (void)Guarded([this] {
        Start();
        return CoreErrorCodes::kSuccess;
    });
}

std::future<ErrorCode> NotificationListener::Start() {
    Stop();
    auto listening = std::make_shared<Listening>();
    std::future<ErrorCode> subscribed = listening->subscribed.get_future();
    platform::KeepModuleLoaded(&kAddressInThisModule);
    const platform::ScopedSignalBlock block;
    mThread = std::thread([this, listening] { Listen(listening); });
    mListening = std::move(listening);  // not before there is a thread that it is about
    return subscribed;
}

void NotificationListener::Stop() {
    if (!mThread.joinable())
        return;
    mListening->isStopped = true;
    mListening->connection.Cancel();
    mThread.join();
    mListening.reset();
}

void NotificationListener::Listen(const std::shared_ptr<Listening>& listening) {
    isListenerThread = true;
    const ErrorCode code = Guarded([&] {
        Json ignored;
        return listening->connection.Call(method::kSubscribe, Json::object(), ignored);
    });
    listening->subscribed.set_value(code);
    if (code == CoreErrorCodes::kSuccess) {
        (void)Guarded([&] {
            DeliverAll(listening);
            return CoreErrorCodes::kSuccess;
        });
    }
    listening->isStopped = true;
}

void NotificationListener::DeliverAll(const std::shared_ptr<Listening>& listening) {
    int32_t type = 0;
    Json data;
    while (listening->connection.WaitForNotification(type, data))
        Deliver(listening, type, data);
    // With a goodbye or without: for those who listen it comes to the same.
    if (!listening->isStopped)
        Deliver(listening, kPluginCallback_AgentShutdown, nullptr);
}

void NotificationListener::Deliver(const std::shared_ptr<Listening>& listening, int32_t type,
                                   const Json& data) {
    const CallbackData callbackData(type, data);
    std::unique_lock guard(mCallbacksLock);
    const auto callbacks = mCallbacks;
    for (const PluginNotificationCallback callback : callbacks) {
        // One before it may have taken it away.
        if (listening->isStopped ||
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
