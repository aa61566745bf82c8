// The message boxes of the core, each a pair of localized strings.
#pragma once

#include "LocalizedStrings.h"

/// A title and a text, which has a place for a name or has none.
template <bool kNamesSomething>
struct MessageBoxNumbers {
    consteval MessageBoxNumbers(localized::StringID title, localized::StringID text)
        : titleID(title), textID(text) {
        if (localized::NamesSomething(localized::EnglishText(text)) != kNamesSomething)
            throw "the text is one for the other kind of box";
    }

    localized::StringID titleID;
    localized::StringID textID;
};

/// One that says the same each time.
using MessageBoxStrings = MessageBoxNumbers<false>;
/// One that names a folder, a set or what is missing.
using MessageBoxAbout = MessageBoxNumbers<true>;

namespace message_boxes {

inline constexpr MessageBoxStrings kIncompatibleHost{localized::kIncompatibleHostTitle,
                                                     localized::kIncompatibleHost};
inline constexpr MessageBoxStrings kAgentNotRunning{localized::kAgentNotRunningTitle,
                                                    localized::kAgentNotRunning};
inline constexpr MessageBoxStrings kFontManagerUnreachable{localized::kFontManagerUnreachableTitle,
                                                           localized::kFontManagerUnreachable};
/// Yes or no: start the agent again? The second one is for hosts that name their panel an extension.
inline constexpr MessageBoxStrings kRelaunchAgent{localized::kRelaunchAgentTitle, localized::kRelaunchAgent};
inline constexpr MessageBoxStrings kRelaunchAgentFromExtension{localized::kRelaunchAgentTitle,
                                                               localized::kRelaunchAgentFromExtension};
inline constexpr MessageBoxStrings kNotLoggedIn{localized::kNotLoggedInTitle, localized::kNotLoggedIn};
/// Yes or no. Nothing asks so yet: people log in at the font manager itself.
inline constexpr MessageBoxStrings kLogInNow{localized::kNotLoggedInTitle, localized::kLogInNow};
inline constexpr MessageBoxStrings kNoWorkgroup{localized::kNoWorkgroupTitle, localized::kNoWorkgroup};
inline constexpr MessageBoxStrings kNoWorkgroupStandalone{localized::kNoLibraryTitle, localized::kNoLibrary};
inline constexpr MessageBoxStrings kVaultInUse{localized::kFontsUnusableTitle, localized::kVaultInUse};
inline constexpr MessageBoxStrings kInvalidVault{localized::kFontsUnusableTitle, localized::kInvalidVault};
inline constexpr MessageBoxStrings kAgentFailedToInitialize{localized::kFontsUnusableTitle,
                                                            localized::kAgentFailedToInitialize};

// What the document commands tell.
inline constexpr MessageBoxAbout kFontsCollected{localized::kCollectFonts, localized::kFontsCollected};
inline constexpr MessageBoxAbout kFontsCollectedExceptMissing{localized::kCollectFonts,
                                                              localized::kFontsCollectedExceptMissing};
inline constexpr MessageBoxAbout kNoFontsToCollect{localized::kCollectFonts, localized::kNoFontsToCollect};
inline constexpr MessageBoxAbout kFontsNotCollected{localized::kCollectFonts, localized::kFontsNotCollected};
inline constexpr MessageBoxAbout kCollectingStopped{localized::kCollectFonts, localized::kCollectingStopped};
inline constexpr MessageBoxStrings kAllFontsActive{localized::kCheckFonts, localized::kAllFontsActive};
inline constexpr MessageBoxStrings kDocumentHasNoFonts{localized::kCheckFonts,
                                                       localized::kDocumentHasNoFonts};
inline constexpr MessageBoxStrings kFontsNotChecked{localized::kCheckFonts, localized::kFontsNotChecked};
inline constexpr MessageBoxAbout kDocumentSetCreated{localized::kCreateDocumentSet,
                                                     localized::kDocumentSetCreated};
inline constexpr MessageBoxAbout kDocumentSetNotCreated{localized::kCreateDocumentSet,
                                                        localized::kDocumentSetNotCreated};
inline constexpr MessageBoxAbout kDocumentNotOpen{localized::kProductName, localized::kDocumentNotOpen};
inline constexpr MessageBoxAbout kCollectingNotPermitted{localized::kCollectFonts,
                                                         localized::kCollectingNotPermitted};
inline constexpr MessageBoxAbout kFontsMissing{localized::kCheckFonts, localized::kFontsMissing};

}  // namespace message_boxes
