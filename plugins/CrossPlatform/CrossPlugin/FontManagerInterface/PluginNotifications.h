// What the font manager's agent reports, as the core passes it on: a name and a payload. The tables here are
// the one list of reports: constants, queue and processing are made from them.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <optional>
#include <string_view>

#include "TarnwickPluginInterface.h"

// Keys of payloads. Progress payloads and those of tasks are the font manager's own dictionaries.
inline constexpr char kPluginNotification_FontActivation_Font_ID[] =
    "kPluginNotification_FontActivation_Font_ID";                                       ///< number
inline constexpr char kPluginNotification_FontPNGs[] = "kPluginNotification_FontPNGs";  ///< dictionary
// In the font manager's own dictionaries about tasks and replication: numbers.
inline constexpr char kPluginNotification_TaskProgress_FontID[] = "kPluginNotification_TaskProgress_FontID";
inline constexpr char kPluginNotification_TaskProgress_ProgressCount[] =
    "kPluginNotification_TaskProgress_ProgressCount";
inline constexpr char kPluginNotification_TaskProgress_ProgressMax[] =
    "kPluginNotification_TaskProgress_ProgressMax";
inline constexpr char kPluginNotification_TaskError_ErrorFontID[] =
    "kPluginNotification_TaskError_ErrorFontID";
inline constexpr char kPluginNotification_NumFonts[] = "kPluginNotification_NumFonts";
inline constexpr char kNotificationIsOnlineKey[] = "isOnline";      ///< boolean
inline constexpr char kNotificationIsLoggedInKey[] = "isLoggedIn";  ///< boolean
inline constexpr char kNotificationServerTypeKey[] = "serverType";  ///< number
inline constexpr char kNotificationIsEnabledKey[] = "isEnabled";    ///< boolean

/// What a report comes with, and what becomes of it in the payload.
enum class ReportData {
    kNothing,
    kTruth,      ///< a bool, under the key
    kFontID,     ///< a uint32_t, under the key
    kDictionary  ///< a copy: under the key, or the payload itself where there is none
};

/// Who reacts to a report.
enum class ReportHearers { kCore, kCoreAndPanels };

/* clang-format off */
/* States: X(name, key of the truth in the payload, report of true, its data, report of false) */
#define PLUGIN_STATE_NOTIFICATIONS(X)                                                        \
    X(OnlineStateChanged, kNotificationIsOnlineKey, WentOnline, kNothing, WentOffline)       \
    X(LoggedInStateChanged, kNotificationIsLoggedInKey, LoggedIn, kDictionary, LoggedOut)

/* Events, each with a report of the same name: X(name, data, key, hearers) */
#define PLUGIN_EVENT_NOTIFICATIONS(X)                                                                     \
    X(PanelDataChanged, kNothing, nullptr, kCoreAndPanels)                                                \
    X(WorkgroupsChanged, kNothing, nullptr, kCore)                                                        \
    X(AgentShutdown, kNothing, nullptr, kCore)                                                            \
    X(FontActivated, kFontID, kPluginNotification_FontActivation_Font_ID, kCoreAndPanels)                 \
    X(FontDeactivated, kFontID, kPluginNotification_FontActivation_Font_ID, kCoreAndPanels)               \
    X(FontMissing, kFontID, kPluginNotification_FontActivation_Font_ID, kCoreAndPanels)                   \
    X(DesignActivationNonCompliant, kFontID, kPluginNotification_FontActivation_Font_ID, kCoreAndPanels)  \
    X(UserPermissionsChanged, kNothing, nullptr, kCoreAndPanels)                                          \
    X(TaskStarted, kDictionary, nullptr, kCoreAndPanels)                                                  \
    X(TaskProgress, kDictionary, nullptr, kCoreAndPanels)                                                 \
    X(TaskFinished, kDictionary, nullptr, kCoreAndPanels)                                                 \
    X(TaskError, kDictionary, nullptr, kCoreAndPanels)                                                    \
    X(BulkReplicationProgress, kDictionary, nullptr, kCoreAndPanels)                                      \
    X(BulkReplicationStopped, kNothing, nullptr, kCoreAndPanels)                                          \
    X(IncrementalReplicationProgress, kDictionary, nullptr, kCoreAndPanels)                               \
    X(IncrementalReplicationStopped, kNothing, nullptr, kCoreAndPanels)                                   \
    X(GoogleReplicationProgress, kDictionary, nullptr, kCoreAndPanels)                                    \
    X(GoogleReplicationStopped, kNothing, nullptr, kCoreAndPanels)                                        \
    X(FontServerReplicationProgress, kDictionary, nullptr, kCoreAndPanels)                                \
    X(FontServerReplicationStopped, kNothing, nullptr, kCoreAndPanels)                                    \
    X(GoogleWebFontsEnabled, kTruth, kNotificationIsEnabledKey, kCoreAndPanels)                           \
    X(PreviewPNGsRendered, kDictionary, kPluginNotification_FontPNGs, kCoreAndPanels)                     \
    X(SmartListsChanged, kNothing, nullptr, kCoreAndPanels)                                               \
    X(OfflineDownloadFinished, kNothing, nullptr, kCoreAndPanels)                                         \
    X(Enabled, kTruth, kNotificationIsEnabledKey, kCoreAndPanels)
/* clang-format on */

#define DECLARE_STATE_NAME(name, key, onTrue, data, onFalse) \
    inline constexpr char kPluginNotification_##name[] = "kPluginNotification_" #name;
#define DECLARE_EVENT_NAME(name, data, key, hearers) \
    inline constexpr char kPluginNotification_##name[] = "kPluginNotification_" #name;
PLUGIN_STATE_NOTIFICATIONS(DECLARE_STATE_NAME)
PLUGIN_EVENT_NOTIFICATIONS(DECLARE_EVENT_NAME)
#undef DECLARE_STATE_NAME
#undef DECLARE_EVENT_NAME

/// One report of the interface library.
struct ReportKind {
    PluginNotificationType type;
    std::string_view name;  ///< of the notification that it becomes
    ReportData data;
    const char* key;  ///< in the payload; null for none
    std::optional<bool> state;
    ReportHearers hearers;
};

/// By type.
inline constexpr ReportKind kReportKinds[] = {
/* clang-format off */
#define REPORT_ROW(type, name, data, key, state, hearers)                                   \
    {kPluginCallback_##type, kPluginNotification_##name, ReportData::data, key, state,      \
     ReportHearers::hearers},
#define STATE_ROWS(name, key, onTrue, data, onFalse)                                        \
    REPORT_ROW(onTrue, name, data, key, true, kCoreAndPanels)                               \
    REPORT_ROW(onFalse, name, kNothing, key, false, kCoreAndPanels)
#define EVENT_ROW(name, data, key, hearers) REPORT_ROW(name, name, data, key, std::nullopt, hearers)
    PLUGIN_STATE_NOTIFICATIONS(STATE_ROWS)
    PLUGIN_EVENT_NOTIFICATIONS(EVENT_ROW)
#undef EVENT_ROW
#undef STATE_ROWS
#undef REPORT_ROW
    /* clang-format on */
};

consteval bool IsEveryReportInItsPlace() {
    int32_t type = 0;
    for (const ReportKind& kind : kReportKinds) {
        if (kind.type != type++)
            return false;
    }
    return type == kPluginCallback_Enabled + 1;
}
static_assert(IsEveryReportInItsPlace(), "a row is missing, or stands where another belongs");

struct PluginNotification {
    std::string_view name;           ///< one of the constants above
    CFRef<CFDictionaryRef> payload;  ///< never null
};
