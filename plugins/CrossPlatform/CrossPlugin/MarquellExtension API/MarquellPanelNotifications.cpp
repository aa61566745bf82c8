// What the panel is told: pushes only note it, the pop sends it.

#include <utility>

#include "FailureReport.h"
#include "MarquellGlobals.h"
#include "MarquellPanel.h"
#include "PanelMessages.h"
#include "ScopeExit.h"
#include "TraceLog.h"

using namespace panel_messages;

namespace {
constexpr char kLogCategory[] = "Miscellaneous";
}

ErrorCode MarquellPanel::Queue(int notificationID) {
    mPendingNotifications.insert(notificationID);
    return CoreErrorCodes::kSuccess;
}

std::set<uint32_t>* MarquellPanel::FontIDsOf(int notificationID) {
    switch (notificationID) {
        case kFontActivatedNotification:
            return &mActivatedFonts;
        case kFontDeactivatedNotification:
            return &mDeactivatedFonts;
        case kFontMissingNotification:
            return &mMissingFonts;
        case kFontNonCompliantNotification:
            return &mNonCompliantFonts;
        default:
            return nullptr;
    }
}

ErrorCode MarquellPanel::QueueFontEvent(uint32_t fontID, int notificationID) {
    if (!MarquellGlobals::IsConnectedToCore())
        return CoreErrorCodes::kSuccess;
    FontIDsOf(notificationID)->insert(fontID);
    return Queue(notificationID);
}

ErrorCode MarquellPanel::PushFontActivatedNotification(uint32_t fontID) {
    return QueueFontEvent(fontID, kFontActivatedNotification);
}

ErrorCode MarquellPanel::PushFontDeactivatedNotification(uint32_t fontID) {
    return QueueFontEvent(fontID, kFontDeactivatedNotification);
}

ErrorCode MarquellPanel::PushFontMissingNotification(uint32_t fontID) {
    return QueueFontEvent(fontID, kFontMissingNotification);
}

ErrorCode MarquellPanel::PushFontNonCompliantNotification(uint32_t fontID) {
    return QueueFontEvent(fontID, kFontNonCompliantNotification);
}

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

ErrorCode MarquellPanel::PushBulkReplicationProgressNotification(CFDictionaryRef) {
    return Queue(kBulkReplicationProgressNotification);
}

ErrorCode MarquellPanel::PushBulkReplicationStoppedNotification() {
    return Queue(kBulkReplicationStoppedNotification);
}

ErrorCode MarquellPanel::PushIncrementalReplicationProgressNotification(CFDictionaryRef) {
    return Queue(kIncrementalReplicationProgressNotification);
}

ErrorCode MarquellPanel::PushIncrementalReplicationStoppedNotification() {
    return Queue(kIncrementalReplicationStoppedNotification);
}

ErrorCode MarquellPanel::PushGoogleReplicationProgressNotification(CFDictionaryRef) {
    return Queue(kGoogleReplicationProgressNotification);
}

ErrorCode MarquellPanel::PushGoogleReplicationStoppedNotification() {
    return Queue(kGoogleReplicationStoppedNotification);
}

ErrorCode MarquellPanel::PushFontServerReplicationProgressNotification(CFDictionaryRef) {
    return Queue(kFontServerReplicationProgressNotification);
}

ErrorCode MarquellPanel::PushFontServerReplicationStoppedNotification() {
    return Queue(kFontServerReplicationStoppedNotification);
}

ErrorCode MarquellPanel::PushDataChangedNotification() {
    return Queue(kDataChangedNotification);
}

ErrorCode MarquellPanel::PushSmartListsChangedNotification() {
    return Queue(kSmartListsChangedNotification);
}

ErrorCode MarquellPanel::PushOfflineDownloadFinishedNotification() {
    return Queue(kOfflineDownloadFinishedNotification);
}

ErrorCode MarquellPanel::PushServicesEnabledNotification(bool enabled) {
    return Queue(enabled ? kServicesEnabledNotification : kServicesDisabledNotification);
}

ErrorCode MarquellPanel::SendNotification(int notificationID) {
    const int* notification = &notificationID;
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(*notification, kMessageIDKey, root, jsonValue));
    std::set<uint32_t>* fontIDs = FontIDsOf(notificationID);
    if (fontIDs == nullptr)
        return SendReply(root);
    JSONValue jsonArray;
    RETURN_IF_FAILED(GJSONUtils::AddArrayForKey(kFontIDsKey, root, jsonArray));
    for (const uint32_t fontID : *fontIDs)
        RETURN_IF_FAILED(GJSONUtils::AddValueToArray(jsonArray, fontID, jsonValue));
    std::set<uint32_t> unsent = std::exchange(*fontIDs, {});
    const ScopeExit keepUnsent([&] { fontIDs->merge(unsent); });
    const ErrorCode code = SendReply(root);
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
    if (mIsPopping || mIsClosed)
        return CoreErrorCodes::kSuccess;
    mIsPopping = true;
    std::set<int> unsent = std::exchange(mPendingNotifications, {});
    bool haveFontsGone = false;
    const ScopeExit settle([&] {
        mPendingNotifications.merge(unsent);
        mIsPopping = false;
        if (haveFontsGone)  // also when a later message failed: those of the fonts were sent
            MarquellGlobals::RefreshActiveFontList(nullptr, nullptr);
    });
    while (!unsent.empty()) {
        const int notificationID = *unsent.begin();
        RETURN_IF_FAILED(SendNotification(notificationID));
        unsent.erase(unsent.begin());
        haveFontsGone = haveFontsGone || notificationID == kFontDeactivatedNotification ||
                        notificationID == kFontMissingNotification ||
                        notificationID == kFontNonCompliantNotification;
    }
    return CoreErrorCodes::kSuccess;
}
