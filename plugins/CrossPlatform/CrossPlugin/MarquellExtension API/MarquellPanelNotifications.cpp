// What the panel is told: pushes only note it, the pop sends it.

#include <utility>

#include "MarquellGlobals.h"
#include "MarquellPanel.h"
#include "PanelLog.h"
#include "PanelMessage.h"
#include "ScopeExit.h"
#include "TraceLog.h"

using namespace panel_messages;

ErrorCode MarquellPanel::Queue(const MessageID& notification) {
    mPendingNotifications.insert(notification.number);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::QueueFontEvent(uint32_t fontID, const MessageID& notification) {
    if (!MarquellGlobals::IsConnectedToCore())
        return CoreErrorCodes::kSuccess;
    mFontIDs.at(notification.number).insert(fontID);
    return Queue(notification);
}

#define DEFINE_FONT_PUSH(what, id, report)                               \
    ErrorCode MarquellPanel::Push##what##Notification(uint32_t fontID) { \
        return QueueFontEvent(fontID, k##what##Notification);            \
    }
#define DEFINE_PROGRESS_PUSH(what, id, report)                           \
    ErrorCode MarquellPanel::Push##what##Notification(CFDictionaryRef) { \
        return Queue(k##what##Notification);                             \
    }
#define DEFINE_PUSH(what, id, report)                     \
    ErrorCode MarquellPanel::Push##what##Notification() { \
        return Queue(k##what##Notification);              \
    }
PANEL_FONT_NOTIFICATIONS(DEFINE_FONT_PUSH)
PANEL_PROGRESS_NOTIFICATIONS(DEFINE_PROGRESS_PUSH)
PANEL_PLAIN_NOTIFICATIONS(DEFINE_PUSH)
#undef DEFINE_FONT_PUSH
#undef DEFINE_PROGRESS_PUSH
#undef DEFINE_PUSH

ErrorCode MarquellPanel::PushGoogleWebFontsEnabledNotificaton(bool enabled) {
    if (!MarquellGlobals::IsConnectedToCore())
        return CoreErrorCodes::kSuccess;
    return Queue(enabled ? kGoogleWebFontsEnabledNotification : kGoogleWebFontsDisabledNotification);
}

ErrorCode MarquellPanel::PushOnlineStateChangedNotification(bool isOnline) {
    LogMessage(0, "PushOnlineStateChangedNotification() -- %s",
               isOnline ? "kGoOnlineNotification" : "kGoOfflineNotification");
    return Queue(isOnline ? kGoOnlineNotification : kGoOfflineNotification);
}

ErrorCode MarquellPanel::PushLoggedInStateChangedNotification(int32_t) {
    return Queue(kLoggedInStateChangedNotification);
}

ErrorCode MarquellPanel::PushServicesEnabledNotification(bool enabled) {
    return Queue(enabled ? kServicesEnabledNotification : kServicesDisabledNotification);
}

ErrorCode MarquellPanel::SendNotification(int notificationID) {
    PanelMessage message(MessageID{notificationID, "*notification"});
    const auto fonts = mFontIDs.find(notificationID);
    if (fonts == mFontIDs.end())
        return Send(message);
    // What is pushed from within the sending waits for the next one.
    std::set<uint32_t>& unsent = mUnsentFontIDs[notificationID];
    unsent.merge(std::exchange(fonts->second, {}));
    PanelMessage::Node jsonArray = message.Root().AddArray(kFontIDsKey);
    for (const uint32_t fontID : unsent)
        jsonArray.Add(fontID);
    const ErrorCode code = Send(message);
    if (code == CoreErrorCodes::kSuccess)
        unsent.clear();
    return code;
}

ErrorCode MarquellPanel::PopNotifications() {
    if (!MarquellGlobals::IsConnectedToCore()) {
        LogMessage(0, "PopNotifications() -- ERROR ConnectedToCore == false");
        return CoreErrorCodes::kSuccess;
    }
    // The host may deliver a message at once, and its panel answer it at once: what comes of that, another
    // call of this included, must not nest.
    const TurnHolder turn(mPopping);
    if (!turn || mIsClosed)
        return CoreErrorCodes::kSuccess;
    static_cast<void>(RenderNextFonts());  // reported there
    std::set<int>& unsent = mUnsentNotifications;
    unsent.merge(std::exchange(mPendingNotifications, {}));
    bool haveFontsGone = false;
    const ScopeExit refresh([&] {
        if (haveFontsGone)  // also when a later message failed: those of the fonts were sent
            MarquellGlobals::RefreshActiveFontList(nullptr, nullptr);
    });
    while (!unsent.empty()) {
        const int notificationID = *unsent.begin();
        if (const ErrorCode code = SendNotification(notificationID))
            return code;
        unsent.erase(unsent.begin());
        haveFontsGone = haveFontsGone || notificationID == kFontDeactivatedNotification.number ||
                        notificationID == kFontMissingNotification.number ||
                        notificationID == kFontNonCompliantNotification.number;
    }
    return CoreErrorCodes::kSuccess;
}
