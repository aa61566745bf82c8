// The framework's message boxes, each a pair of localized strings: title and text.
#pragma once

#include <cstdint>

struct MessageBoxStrings {
    uint32_t titleID;
    uint32_t textID;
};

namespace message_boxes {

inline constexpr MessageBoxStrings kIncompatibleHost{598, 599};
inline constexpr MessageBoxStrings kAgentNotRunning{600, 601};
inline constexpr MessageBoxStrings kFontManagerUnreachable{602, 603};
/// Yes or no: start the agent again? The second one is for hosts that name their panel an extension.
inline constexpr MessageBoxStrings kRelaunchAgent{604, 605};
inline constexpr MessageBoxStrings kRelaunchAgentFromExtension{604, 606};
inline constexpr MessageBoxStrings kNotLoggedIn{609, 611};
inline constexpr MessageBoxStrings kLogInNow{609, 610};
inline constexpr MessageBoxStrings kNoWorkgroup{620, 621};
inline constexpr MessageBoxStrings kNoWorkgroupStandalone{639, 640};
inline constexpr MessageBoxStrings kVaultInUse{630, 631};
inline constexpr MessageBoxStrings kInvalidVault{630, 632};
inline constexpr MessageBoxStrings kAgentFailedToInitialize{630, 633};

// What the document commands tell. Texts marked with * name a folder, a set or what is missing: "%s".
inline constexpr MessageBoxStrings kFontsCollected{204, 650};               ///< *
inline constexpr MessageBoxStrings kFontsCollectedExceptMissing{204, 651};  ///< *
inline constexpr MessageBoxStrings kNoFontsToCollect{204, 652};             ///< *
inline constexpr MessageBoxStrings kFontsNotCollected{204, 653};            ///< *
inline constexpr MessageBoxStrings kCollectingStopped{204, 654};            ///< *
inline constexpr MessageBoxStrings kAllFontsActive{206, 655};
inline constexpr MessageBoxStrings kDocumentHasNoFonts{206, 656};
inline constexpr MessageBoxStrings kFontsNotChecked{206, 657};
inline constexpr MessageBoxStrings kDocumentSetCreated{205, 658};      ///< *
inline constexpr MessageBoxStrings kDocumentSetNotCreated{205, 659};   ///< *
inline constexpr MessageBoxStrings kDocumentNotOpen{199, 660};         ///< *
inline constexpr MessageBoxStrings kCollectingNotPermitted{204, 661};  ///< *
inline constexpr MessageBoxStrings kFontsMissing{206, 662};            ///< *

}  // namespace message_boxes

/// String resource of the framework's module that says that the framework itself cannot be used.
inline constexpr uint32_t kFrameworkFailureStringID = 105;
