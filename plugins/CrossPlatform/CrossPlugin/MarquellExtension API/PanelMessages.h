// The vocabulary of panel messages: the one list of what stands under "messageID", and of the other keys.
// Handlers, pushes and their forwarding are made from it. docs/panel-messages.md tells what each message
// holds.
#pragma once

#include <string>

/* clang-format off */
/// Requests: X(constant, number, handler). A reply carries the number of its request unless noted.
#define PANEL_REQUESTS(X)                                                                                   \
    X(kDesignActivateFamilyForFont, 8, DesignActivateFamilyForFont)                                         \
    X(kEnableGoogleFonts, 9, GoogleEnableWebFonts)                                                          \
    X(kAreGoogleFontsEnabled, 10, IsGoogleWebFontsEnabled)                                                  \
    X(kGetDimensions, 11, GetDimensions)                                                                    \
    X(kSetDimensions, 12, SetDimensions)                                                                    \
    X(kReleaseFontListFile, 13, ReleaseFontListFile)                                                        \
    X(kIsWindows, 16, IsWindows)                                                                            \
    X(kSetDropDownSelection, 17, SetDropDownSelection)                                                      \
    X(kGetDropDownSelection, 18, GetDropDownSelection)                                                      \
    X(kGetFontPNG, 32, GetFontPNGs)                                                                         \
    X(kRenameSmartList, 33, RenameSmartList)                                                                \
    X(kDeleteSmartList, 34, DeleteSmartList)                                                                \
    X(kQuerySmartListFonts, 35, QuerySmartListFonts)                                                        \
    X(kGetSmartList, 36, GetSmartList)                                                                      \
    X(kGetPanelSmartListTree, 37, GetPanelSmartListTree)                                                    \
    X(kGetAllSmartLists, 38, GetAllSmartLists)                                                              \
    X(kCreateSmartList, 39, CreateSmartList)                                                                \
    X(kRequestSmartListFonts, 40, RequestSmartListFonts) /* answered by kFontList */                        \
    X(kSetSmartListQuery, 42, SetSmartListQuery)                                                            \
    X(kRenameSmartListByName, 44, RenameSmartListByName)                                                    \
    X(kSetFontVersion, 47, SetFontVersion)                                                                  \
    X(kCanAccessGoogleFonts, 58, CanAccessGoogleFonts)                                                      \
    X(kStartPanelInfo, 66, StartPanelInfo) /* answered by kConnectionComplete and kEnabled */               \
    X(kSendHostAppKeyPress, 67, SendHostAppKeyPress)

/// What the plug-in sends of its own accord, and replies with numbers of their own: X(constant, number).
#define PANEL_MESSAGES(X)                                                                                   \
    X(kCouldNotCreateTmpFile, 19)                                                                           \
    X(kConnectionComplete, 20)                                                                              \
    X(kEnabled, 30)                                                                                         \
    X(kFontList, 41)                                                                                        \
    X(kFontActivationError, 46)

// Notifications: X(what, number, the agent's report). There is a push for each, PushWHATNotification.
#define PANEL_PLAIN_NOTIFICATIONS(X)                                                                        \
    X(GoogleReplicationStopped, 29, GoogleReplicationStopped)                                               \
    X(SmartListsChanged, 43, SmartListsChanged)                                                             \
    X(BulkReplicationStopped, 53, BulkReplicationStopped)                                                   \
    X(IncrementalReplicationStopped, 55, IncrementalReplicationStopped)                                     \
    X(DataChanged, 56, PanelDataChanged)                                                                    \
    X(OfflineDownloadFinished, 63, OfflineDownloadFinished)                                                 \
    X(FontServerReplicationStopped, 69, FontServerReplicationStopped)
/// Pushed with the details of a progress, of which the message says nothing.
#define PANEL_PROGRESS_NOTIFICATIONS(X)                                                                     \
    X(GoogleReplicationProgress, 28, GoogleReplicationProgress)                                             \
    X(BulkReplicationProgress, 52, BulkReplicationProgress)                                                 \
    X(IncrementalReplicationProgress, 54, IncrementalReplicationProgress)                                   \
    X(FontServerReplicationProgress, 68, FontServerReplicationProgress)
/// Pushed with the ID of a font; the message holds the IDs of all that were pushed.
#define PANEL_FONT_NOTIFICATIONS(X)                                                                         \
    X(FontActivated, 24, FontActivated)                                                                     \
    X(FontDeactivated, 25, FontDeactivated)                                                                 \
    X(FontMissing, 45, FontMissing)                                                                         \
    X(FontNonCompliant, 60, DesignActivationNonCompliant)
/// States, whose pushes have forms of their own: X(constant, number).
#define PANEL_STATE_NOTIFICATIONS(X)                                                                        \
    X(kGoogleWebFontsEnabledNotification, 22)                                                               \
    X(kGoogleWebFontsDisabledNotification, 23)                                                              \
    X(kLoggedInStateChangedNotification, 50)                                                                \
    X(kGoOfflineNotification, 61)                                                                           \
    X(kGoOnlineNotification, 62)                                                                            \
    X(kServicesEnabledNotification, 64)                                                                     \
    X(kServicesDisabledNotification, 65)

/// Keys: X(constant, text).
#define PANEL_KEYS(X)                                                                                       \
    X(kMessageIDKey, "messageID")                                                                           \
    X(kReturnCodeKey, "returnCode")                                                                         \
    X(kFontIDKey, "fontID")                                                                                 \
    X(kFontIDsKey, "fontIDs")                                                                               \
    X(kHighPriorityFontIDsKey, "highPriorityFontIDs")                                                       \
    X(kFontsKey, "fonts")                                                                                   \
    X(kPostscriptNameKey, "postscriptName")                                                                 \
    X(kDisplayNameKey, "displayName")                                                                       \
    X(kVersionKey, "version")                                                                               \
    X(kPngFilenameKey, "pngFilename")                                                                       \
    X(k2xPngFilenameKey, "2xPNGFilename")                                                                   \
    X(kIsEnabledKey, "isEnabled")                                                                           \
    X(kIsReplicatingKey, "isReplicating")                                                                   \
    X(kReplicationModeKey, "replicationMode")                                                               \
    X(kCanAccessGoogleFontsKey, "canAccessGoogleFonts")                                                     \
    X(kHeightKey, "height")                                                                                 \
    X(kWidthKey, "width")                                                                                   \
    X(kWindowHeightKey, "windowHeight")                                                                     \
    X(kWindowWidthKey, "windowWidth")                                                                       \
    X(kSelectionKey, "selection")                                                                           \
    X(kSavesSmartListKey, "savesSmartList")                                                                 \
    X(kFilenameKey, "filename")                                                                             \
    X(kIsWindowsKey, "isWindows")                                                                           \
    X(kIsStandaloneKey, "isStandalone")                                                                     \
    X(kSmartListKey, "smartList")                                                                           \
    X(kSmartListsKey, "smartLists")                                                                         \
    X(kSmartListIDKey, "smartListID")                                                                       \
    X(kSmartListNameKey, "smartListName")                                                                   \
    X(kWorkgroupIDsKey, "workgroupIDs")                                                                     \
    X(kSetIDsKey, "setIDs")                                                                                 \
    X(kSmartSetIDsKey, "smartSetIDs")                                                                       \
    X(kListDefinitionKey, "listDefinition")                                                                 \
    X(kIsConflictErrorKey, "isConflictError")                                                               \
    X(kConflictIDKey, "conflictID")                                                                         \
    X(kTextKey, "text")                                                                                     \
    X(kStepIndexKey, "stepIndex")                                                                           \
    X(kNumStepsKey, "numSteps")                                                                             \
    X(kIsCtrlPressedKey, "isCtrlPressed")                                                                   \
    X(kIsShiftPressedKey, "isShiftPressed")                                                                 \
    X(kIsAltPressedKey, "isAltPressed")                                                                     \
    X(kKeyCodeKey, "keyCode")
/* clang-format on */

namespace panel_messages {

struct MessageID {
    int number;
    const char* name;  ///< as failure reports have it
};
struct Key {
    const char* text;
    const char* name;

    operator std::string() const { return text; }
};

#define PANEL_MESSAGE_ID(constant, id, ...) inline constexpr MessageID constant{id, #constant};
#define PANEL_NOTIFICATION_ID(what, id, report) \
    inline constexpr MessageID k##what##Notification{id, "*notification"};
#define PANEL_KEY(constant, text) inline constexpr Key constant{text, #constant};
PANEL_REQUESTS(PANEL_MESSAGE_ID)
PANEL_MESSAGES(PANEL_MESSAGE_ID)
PANEL_PLAIN_NOTIFICATIONS(PANEL_NOTIFICATION_ID)
PANEL_PROGRESS_NOTIFICATIONS(PANEL_NOTIFICATION_ID)
PANEL_FONT_NOTIFICATIONS(PANEL_NOTIFICATION_ID)
PANEL_STATE_NOTIFICATIONS(PANEL_MESSAGE_ID)
PANEL_KEYS(PANEL_KEY)
#undef PANEL_MESSAGE_ID
#undef PANEL_NOTIFICATION_ID
#undef PANEL_KEY

/// Requests that panels may still send, and upon which nobody acts.
inline constexpr int kIgnoredRequests[] = {48, 49, 51, 59};

}  // namespace panel_messages
