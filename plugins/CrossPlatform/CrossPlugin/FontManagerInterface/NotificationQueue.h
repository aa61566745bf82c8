// The way of the agent's reports from the interface library's thread to the main thread: the callback only
// records, the main thread takes what was recorded when the host is idle.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>

#include "ErrorCodes.h"
#include "PluginNotifications.h"

/// Any thread.
class NotificationQueue {
public:
    /// The queue that the callback fills; lives to process end.
    static NotificationQueue& GetSharedInstance();

    /// Reports are taken from now on, or not any more; what is waiting is dropped with the latter.
    void Open();
    void Close();
    bool IsOpen() const;

    void Post(PluginNotification notification);
    /// Everything that waits, in the order in which it came.
    std::deque<PluginNotification> TakeAll();
    /// Drops what waits under that name.
    void Drop(std::string_view name);

private:
    mutable std::mutex mPendingLock;  ///< guards what follows
    std::deque<PluginNotification> mPending;
    bool mIsOpen = false;
};

/// What the interface library calls, on a thread of its own. `callbackType`: a PluginNotificationType;
/// `pCallbackData`: what that type comes with, valid for the length of the call, may be null. Posts one
/// notification to the shared queue while it is open.
void CoreAgentNotificationCallback(int32_t callbackType, const void* pCallbackData);
