// The texts that users read, by the numbers under which the framework has them. The table is
// LocalizedStrings.inc.
#pragma once

#include <cstdint>
#include <iterator>
#include <string_view>

namespace localized {

enum StringID : uint32_t {
#define STRING(name, number, english) name = number,
#include "LocalizedStrings.inc"
#undef STRING
};

struct String {
    StringID id;
    const char* text;  ///< UTF-8
};

/// In ascending order of the numbers.
inline constexpr String kEnglish[] = {
#define STRING(name, number, english) {name, english},
#include "LocalizedStrings.inc"
#undef STRING
};

constexpr std::string_view EnglishText(StringID id) {
    for (const String& each : kEnglish) {
        if (each.id == id)
            return each.text;
    }
    return {};
}

/// Whether the text has a place for a name, "%s".
constexpr bool NamesSomething(std::string_view text) {
    return text.find("%s") != std::string_view::npos;
}

}  // namespace localized
