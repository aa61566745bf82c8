// The preferences of the plug-in.
#pragma once

#include <cstdint>
#include <iterator>
#include <optional>

#include "LocalizedStrings.h"

/// X(key, kind, default, title of its switch in the preferences dialog), in the order in which hosts are given
/// them. What has no default reads as 0 or as the empty text. Those marked "kept" are there for hosts and panels;
/// nothing here acts on them, and on "DialogSuppression" hosts do.
/* clang-format off */
#define PREFERENCES(X)                                                                                      \
    X(EnablePlugin,                     kSwitch, 1,            kEnablePluginSwitch)                         \
    X(EnableGlyphscan,                  kSwitch, 1,            kEnableGlyphscanSwitch)                      \
    X(PickBestMatch,                    kSwitch, 1,            kPickBestMatchSwitch)                        \
    X(SupportEmbeddedObjects,           kSwitch, 1,            kSupportEmbeddedObjectsSwitch)               \
    X(CloseFontsOnHostAppQuit,          kSwitch, 1,            kCloseFontsOnHostAppQuitSwitch)              \
    X(CloseFontsOnDocClose,             kSwitch, 0,            kCloseFontsOnDocCloseSwitch)                 \
    X(ActivateEntireFamilies,           kSwitch, 0,            kActivateEntireFamiliesSwitch)               \
    X(ActivateGlobally,                 kSwitch, std::nullopt, kNoSwitch)                                   \
    X(ActivateLocally,                  kSwitch, std::nullopt, kNoSwitch)                       /* kept */  \
    X(CurrentWorkgroup,                 kNumber, std::nullopt, kNoSwitch)                                   \
    X(DialogSuppression,                kSwitch, 1,            kDialogSuppressionSwitch)                    \
    X(GWFHaveEverBeenEnabled,           kSwitch, std::nullopt, kNoSwitch)                       /* kept */  \
    X(LastCFOFolder,                    kText,   std::nullopt, kNoSwitch)                                   \
    X(RMF4,                             kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(RMF5,                             kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(RMF6,                             kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(RMF7,                             kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(NotificationDelay,                kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(SuppressPanelLaunch,              kSwitch, std::nullopt, kNoSwitch)                       /* kept */  \
    X(CS5PanelWidth,                    kNumber, 260,          kNoSwitch)                       /* kept */  \
    X(CS5PanelHeight,                   kNumber, 350,          kNoSwitch)                       /* kept */  \
    X(CS6PanelWidth,                    kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(CS6PanelHeight,                   kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(CS7PanelWidth,                    kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(CS7PanelHeight,                   kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(DropDownSelection,                kSwitch, 0,            kNoSwitch)                       /* kept */  \
    X(DropDownSelectionSavesSmartLists, kSwitch, std::nullopt, kNoSwitch)                       /* kept */  \
    X(EnableLogging,                    kSwitch, std::nullopt, kEnableLoggingSwitch)                        \
    X(LastAddress,                      kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(LastPort,                         kNumber, std::nullopt, kNoSwitch)                       /* kept */  \
    X(LastUsername,                     kText,   std::nullopt, kNoSwitch)                       /* kept */
/* clang-format on */

namespace preferences {

// Their keys: preferences::EnablePlugin and so on.
#define PREFERENCE_KEY(key, kind, value, title) inline constexpr char key[] = #key;
PREFERENCES(PREFERENCE_KEY)
#undef PREFERENCE_KEY

enum class Kind { kSwitch, kNumber, kText };

inline constexpr localized::StringID kNoSwitch{};

struct Preference {
    const char* key;
    Kind kind;
    std::optional<int32_t> defaultValue;
    localized::StringID switchTitle;
};

namespace table {
using namespace localized;
inline constexpr Preference kRows[] = {
#define PREFERENCE_ROW(key, kind, value, title) {#key, Kind::kind, value, title},
    PREFERENCES(PREFERENCE_ROW)
#undef PREFERENCE_ROW
};
}  // namespace table

inline constexpr auto& kAll = table::kRows;

}  // namespace preferences
