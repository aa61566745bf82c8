// The texts of menus, dialogs and message boxes, by number, in the user's language.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "LocalizedStrings.h"

/// The table of a language, by its two-letter code, in ascending order of the identifiers; English for a
/// language that has none. Any thread.
std::span<const localized::String> LocalizedStringTable(std::string_view language);

/// The text in that language, else in English; null when there is none. Lives to process end. Any thread.
const char* FindLocalizedString(std::string_view language, uint32_t id);

/// The same to show: where there is no text, one that names the identifier. Any thread.
std::string LocalizedText(std::string_view language, uint32_t id);

/// `text` with `value`, whatever that holds, in place of its first "%s". Any thread.
std::string FillIn(std::string text, std::string_view value);

/// The text of a menu item as a title: without the dots at its end. Any thread.
std::string WithoutDots(const std::string& text);
