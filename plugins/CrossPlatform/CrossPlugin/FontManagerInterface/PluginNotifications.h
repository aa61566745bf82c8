// What the font manager's agent reports, as the core passes it on: a name and a payload.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <string_view>

/* clang-format off */
/* X(name), in the order in which callback types from 4 on count through them; the first two have two types each. */
#define PLUGIN_NOTIFICATIONS(X)                              \
    X(kPluginNotification_OnlineStateChanged)                \
    X(kPluginNotification_LoggedInStateChanged)              \
    X(kPluginNotification_PanelDataChanged)                  \
    X(kPluginNotification_WorkgroupsChanged)                 \
    X(kPluginNotification_AgentShutdown)                     \
    X(kPluginNotification_FontActivated)                     \
    X(kPluginNotification_FontDeactivated)                   \
    X(kPluginNotification_FontMissing)                       \
    X(kPluginNotification_DesignActivationNonCompliant)      \
    X(kPluginNotification_UserPermissionsChanged)            \
    X(kPluginNotification_TaskStarted)                       \
    X(kPluginNotification_TaskProgress)                      \
    X(kPluginNotification_TaskFinished)                      \
    X(kPluginNotification_TaskError)                         \
    X(kPluginNotification_BulkReplicationProgress)           \
    X(kPluginNotification_BulkReplicationStopped)            \
    X(kPluginNotification_IncrementalReplicationProgress)    \
    X(kPluginNotification_IncrementalReplicationStopped)     \
    X(kPluginNotification_GoogleReplicationProgress)         \
    X(kPluginNotification_GoogleReplicationStopped)          \
    X(kPluginNotification_FontServerReplicationProgress)     \
    X(kPluginNotification_FontServerReplicationStopped)      \
    X(kPluginNotification_GoogleWebFontsEnabled)             \
    X(kPluginNotification_PreviewPNGsRendered)               \
    X(kPluginNotification_SmartListsChanged)                 \
    X(kPluginNotification_OfflineDownloadFinished)           \
    X(kPluginNotification_Enabled)
/* clang-format on */

#define DECLARE_NOTIFICATION_NAME(name) inline constexpr char name[] = #name;
PLUGIN_NOTIFICATIONS(DECLARE_NOTIFICATION_NAME)
#undef DECLARE_NOTIFICATION_NAME

// Keys of payloads. Progress payloads and those of tasks are the font manager's own dictionaries.
inline constexpr char kPluginNotification_FontActivation_Font_ID[] =
    "kPluginNotification_FontActivation_Font_ID";                                       ///< number
inline constexpr char kPluginNotification_FontPNGs[] = "kPluginNotification_FontPNGs";  ///< dictionary
inline constexpr char kNotificationIsOnlineKey[] = "isOnline";                          ///< boolean
inline constexpr char kNotificationIsLoggedInKey[] = "isLoggedIn";                      ///< boolean
inline constexpr char kNotificationServerTypeKey[] = "serverType";                      ///< number
inline constexpr char kNotificationIsEnabledKey[] = "isEnabled";                        ///< boolean

struct PluginNotification {
    std::string_view name;           ///< one of the constants above
    CFRef<CFDictionaryRef> payload;  ///< never null
};
