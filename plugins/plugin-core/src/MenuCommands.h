// The commands of the plug-in menu: their places, their texts, and what they do.
#pragma once

#include <optional>
#include <string>

#include "MenuItems.h"
#include "Workgroup.h"

namespace MenuCommands {

/// The text of an item of the menu in the user's language; empty for a label without a text of its own.
std::string TitleOf(MenuLabel label);

/// The command with that text, in English or in the user's language; nothing for any other text.
std::optional<MenuLabel> FromText(const std::string& text);

/// Whether the commands that work on a document are on offer: one is open, and the plug-in is switched on.
bool AreAllowed(const std::string& document);

/// Carries out a command. Without a login every command but the about box only tells the user so. A command
/// that is chosen from behind the dialog of another one is refused with a log line. `extra`: what the host
/// knows about the document's fonts, may be empty.
void Run(MenuLabel command, bool isLoggedIn, const std::string& document, const std::string& extra);

/// Works in the workgroup of that name, or in this one, from now on. The same about the login.
void ChooseWorkgroup(const std::string& name, bool isLoggedIn);
void ChooseWorkgroup(const Workgroup& workgroup, bool isLoggedIn);

}  // namespace MenuCommands
