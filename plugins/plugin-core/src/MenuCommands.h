// The commands of the plug-in menu: their places, their texts, and what they do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// The numbers that label the items of the menu.
enum class MenuLabel : int32_t {
    kSeparator = 0,
    kRoot = 1,
    kWorkgroups = 2,
    kCollectFonts = 3,
    kCreateDocumentSet = 4,
    kCheckFonts = 5,
    kPreferences = 6,
    kAbout = 7,
    kFirstWorkgroup = 8  ///< one for each workgroup from here on
};

namespace MenuCommands {

/// The text of an item of the menu in the user's language; empty for a label without a text of its own.
std::string TitleOf(MenuLabel label);

/// The command with that text, in English or in the user's language; nothing for any other text.
std::optional<MenuLabel> FromText(const std::string& text);

/// Carries out a command. Without a login every command but the about box only tells the user so. A command
/// that is chosen from behind the dialog of another one is refused with a log line. `extra`: what the host
/// knows about the document's fonts, may be empty.
void Run(MenuLabel command, const std::string& document, const std::string& extra);

/// Works in the workgroup of that name from now on. The same about the login.
void ChooseWorkgroup(const std::string& name);

}  // namespace MenuCommands
