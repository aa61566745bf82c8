// How the core reacts to the agent's reports, on the host's main thread.
#pragma once

#include "ErrorCodes.h"
#include "HostCall.h"
#include "PluginNotifications.h"

/// Takes notifications after the core: the panels.
class NotificationReceiver {
public:
    virtual ~NotificationReceiver() = default;
    virtual ErrorCode Receive(const PluginNotification& notification) = 0;
};

/// Main thread.
class NotificationProcessor {
public:
    /// Lives to process end.
    static NotificationProcessor& GetSharedInstance();

    /// Not owned; null for none.
    void SetReceiver(NotificationReceiver* receiver) { mReceiver = receiver; }

    /// Reacts to the notifications in the shared queue, in order; those that come meanwhile wait for the next
    /// call. A call from behind a dialog that a reaction shows does nothing. 0, or the last code with which
    /// the receiver failed.
    ErrorCode ProcessNotifications();

private:
    ErrorCode Process(const PluginNotification& notification);

    NotificationReceiver* mReceiver = nullptr;
    Turn mProcessing;
};
