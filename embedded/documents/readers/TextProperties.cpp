#include "TextProperties.h"

#include <algorithm>

namespace documents {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

/// Where the first family of a list ends: at a comma that no quotes enclose.
size_t EndOfFirst(std::string_view list) {
    char quote = '\0';
    for (size_t at = 0; at < list.size(); ++at) {
        const char character = list[at];
        if (quote != '\0')
            quote = character == quote ? '\0' : quote;
        else if (character == '\'' || character == '"')
            quote = character;
        else if (character == ',')
            return at;
    }
    return list.size();
}

void OverrideOne(std::string& value, const std::string& other) {
    if (!other.empty())
        value = other;
}

}  // namespace

void TextProperties::Override(const TextProperties& other) {
    OverrideOne(family, other.family);
    OverrideOne(weight, other.weight);
    OverrideOne(slant, other.slant);
}

std::string FirstFamily(std::string_view list) {
    std::string_view family = Trimmed(list.substr(0, EndOfFirst(list)));
    if (family.size() >= 2 && (family.front() == '\'' || family.front() == '"') &&
        family.back() == family.front())
        family = Trimmed(family.substr(1, family.size() - 2));
    return std::string(family);
}

std::string_view OtherFamilies(std::string_view list) {
    return list.substr(std::min(EndOfFirst(list) + 1, list.size()));
}

bool HasLetters(std::string_view text) {
    return text.find_first_not_of(kBlanks) != std::string_view::npos;
}

std::string_view Trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

}  // namespace documents
