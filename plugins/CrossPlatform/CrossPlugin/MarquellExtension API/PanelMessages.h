// The vocabulary of panel messages: what stands under "messageID", and the other keys. docs/panel-messages.md
// tells what each message holds.
#pragma once

namespace panel_messages {

// Requests; a reply carries the number of its request unless noted.
inline constexpr int kDesignActivateFamilyForFont = 8;
inline constexpr int kEnableGoogleFonts = 9;
inline constexpr int kAreGoogleFontsEnabled = 10;
inline constexpr int kGetDimensions = 11;
inline constexpr int kSetDimensions = 12;
inline constexpr int kReleaseFontListFile = 13;
inline constexpr int kIsWindows = 16;
inline constexpr int kSetDropDownSelection = 17;
inline constexpr int kGetDropDownSelection = 18;
inline constexpr int kGetFontPNG = 32;
inline constexpr int kRenameSmartList = 33;
inline constexpr int kDeleteSmartList = 34;
inline constexpr int kQuerySmartListFonts = 35;
inline constexpr int kGetSmartList = 36;
inline constexpr int kGetPanelSmartListTree = 37;
inline constexpr int kGetAllSmartLists = 38;
inline constexpr int kCreateSmartList = 39;
inline constexpr int kRequestSmartListFonts = 40;  ///< answered by kFontList or kCouldNotCreateTmpFile
inline constexpr int kSetSmartListQuery = 42;
inline constexpr int kRenameSmartListByName = 44;
inline constexpr int kSetFontVersion = 47;
// What panels may still send and nobody acts upon.
inline constexpr int kIgnored48 = 48;
inline constexpr int kIgnored49 = 49;
inline constexpr int kIgnored51 = 51;
inline constexpr int kIgnored59 = 59;
inline constexpr int kCanAccessGoogleFonts = 58;
inline constexpr int kStartPanelInfo = 66;  ///< answered by kConnectionComplete
inline constexpr int kSendHostAppKeyPress = 67;

// What the plug-in sends of its own accord, and replies with numbers of their own.
inline constexpr int kCouldNotCreateTmpFile = 19;
inline constexpr int kConnectionComplete = 20;
inline constexpr int kEnabled = 30;
inline constexpr int kFontList = 41;
inline constexpr int kFontActivationError = 46;

// Notifications.
inline constexpr int kGoogleWebFontsEnabledNotification = 22;
inline constexpr int kGoogleWebFontsDisabledNotification = 23;
inline constexpr int kFontActivatedNotification = 24;
inline constexpr int kFontDeactivatedNotification = 25;
inline constexpr int kGoogleReplicationProgressNotification = 28;
inline constexpr int kGoogleReplicationStoppedNotification = 29;
inline constexpr int kSmartListsChangedNotification = 43;
inline constexpr int kFontMissingNotification = 45;
inline constexpr int kLoggedInStateChangedNotification = 50;
inline constexpr int kBulkReplicationProgressNotification = 52;
inline constexpr int kBulkReplicationStoppedNotification = 53;
inline constexpr int kIncrementalReplicationProgressNotification = 54;
inline constexpr int kIncrementalReplicationStoppedNotification = 55;
inline constexpr int kDataChangedNotification = 56;
inline constexpr int kFontNonCompliantNotification = 60;
inline constexpr int kGoOfflineNotification = 61;
inline constexpr int kGoOnlineNotification = 62;
inline constexpr int kOfflineDownloadFinishedNotification = 63;
inline constexpr int kServicesEnabledNotification = 64;
inline constexpr int kServicesDisabledNotification = 65;
inline constexpr int kFontServerReplicationProgressNotification = 68;
inline constexpr int kFontServerReplicationStoppedNotification = 69;

inline constexpr char kMessageIDKey[] = "messageID";
inline constexpr char kReturnCodeKey[] = "returnCode";
inline constexpr char kFontIDKey[] = "fontID";
inline constexpr char kFontIDsKey[] = "fontIDs";
inline constexpr char kHighPriorityFontIDsKey[] = "highPriorityFontIDs";
inline constexpr char kFontsKey[] = "fonts";
inline constexpr char kPostscriptNameKey[] = "postscriptName";
inline constexpr char kDisplayNameKey[] = "displayName";
inline constexpr char kVersionKey[] = "version";
inline constexpr char kPngFilenameKey[] = "pngFilename";
inline constexpr char k2xPngFilenameKey[] = "2xPNGFilename";
inline constexpr char kIsEnabledKey[] = "isEnabled";
inline constexpr char kIsReplicatingKey[] = "isReplicating";
inline constexpr char kReplicationModeKey[] = "replicationMode";
inline constexpr char kCanAccessGoogleFontsKey[] = "canAccessGoogleFonts";
inline constexpr char kHeightKey[] = "height";
inline constexpr char kWidthKey[] = "width";
inline constexpr char kWindowHeightKey[] = "windowHeight";
inline constexpr char kWindowWidthKey[] = "windowWidth";
inline constexpr char kSelectionKey[] = "selection";
inline constexpr char kSavesSmartListKey[] = "savesSmartList";
inline constexpr char kFilenameKey[] = "filename";
inline constexpr char kIsWindowsKey[] = "isWindows";
inline constexpr char kIsStandaloneKey[] = "isStandalone";
inline constexpr char kSmartListKey[] = "smartList";
inline constexpr char kSmartListsKey[] = "smartLists";
inline constexpr char kSmartListIDKey[] = "smartListID";
inline constexpr char kSmartListNameKey[] = "smartListName";
inline constexpr char kWorkgroupIDsKey[] = "workgroupIDs";
inline constexpr char kSetIDsKey[] = "setIDs";
inline constexpr char kSmartSetIDsKey[] = "smartSetIDs";
inline constexpr char kListDefinitionKey[] = "listDefinition";
inline constexpr char kIsConflictErrorKey[] = "isConflictError";
inline constexpr char kConflictIDKey[] = "conflictID";
inline constexpr char kTextKey[] = "text";
inline constexpr char kStepIndexKey[] = "stepIndex";
inline constexpr char kNumStepsKey[] = "numSteps";
inline constexpr char kIsCtrlPressedKey[] = "isCtrlPressed";
inline constexpr char kIsShiftPressedKey[] = "isShiftPressed";
inline constexpr char kIsAltPressedKey[] = "isAltPressed";
inline constexpr char kKeyCodeKey[] = "keyCode";

}  // namespace panel_messages
