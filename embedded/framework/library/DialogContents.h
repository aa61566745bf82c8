// The dialogs made of the records that the core hands over, and what was chosen in them. Preferences and ResolveFonts
// have headers of their own.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <string>
#include <string_view>

#include "presenters/Dialogs.h"

SelectWorkgroupDialog MakeSelectWorkgroupDialog(CFArrayRef workgroups, int32_t currentID);
/// `language` is a two-letter code.
CommandBoxDialog MakeCommandBoxDialog(CFDictionaryRef state, std::string_view language);
RestrictedFontsDialog MakeRestrictedFontsDialog(CFArrayRef fonts, bool onlyNew);
ChooseFolderDialog MakeChooseFolderDialog(CFStringRef prompt, CFStringRef initialFolder);

/// The full path of the folder chosen; empty when that has none. Nothing, after a log line, when a file that is no
/// folder stands there or no path was given.
std::optional<std::string> ChosenFolder(const ChooseFolderDialog& dialog);
