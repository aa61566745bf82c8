#include "strings/LocalizedStrings.h"

#include <algorithm>

namespace {

constexpr LocalizedString kEnglish[] = {
#include "strings/English.inc"
};

constexpr LocalizedString kGerman[] = {
#include "strings/German.inc"
};

constexpr bool IsAscending(std::span<const LocalizedString> table) {
    const auto isOutOfOrder = [](const LocalizedString& left, const LocalizedString& right) {
        return left.id >= right.id;
    };
    return std::adjacent_find(table.begin(), table.end(), isOutOfOrder) == table.end();
}
static_assert(IsAscending(kEnglish) && IsAscending(kGerman), "tables are searched by halving");

struct Language {
    std::string_view code;
    std::span<const LocalizedString> table;
};

constexpr Language kLanguages[] = {{"en", kEnglish}, {"de", kGerman}};

const char* Find(std::span<const LocalizedString> table, uint32_t id) {
    const auto isBefore = [](const LocalizedString& entry, uint32_t wanted) { return entry.id < wanted; };
    const auto found = std::lower_bound(table.begin(), table.end(), id, isBefore);
    return found != table.end() && found->id == id ? found->text : nullptr;
}

}  // namespace

std::span<const LocalizedString> LocalizedStringTable(std::string_view language) {
    const auto found = std::find_if(std::begin(kLanguages), std::end(kLanguages),
                                    [language](const Language& known) { return known.code == language; });
    return found != std::end(kLanguages) ? found->table : std::span<const LocalizedString>(kEnglish);
}

const char* FindLocalizedString(std::string_view language, uint32_t id) {
    const char* text = Find(LocalizedStringTable(language), id);
    return text != nullptr ? text : Find(kEnglish, id);
}

std::string LocalizedText(std::string_view language, uint32_t id) {
    const char* text = FindLocalizedString(language, id);
    return text != nullptr ? text : "Message " + std::to_string(id);
}

std::string FillIn(std::string text, std::string_view value) {
    constexpr std::string_view kPlaceholder = "%s";
    const size_t place = text.find(kPlaceholder);
    return place != std::string::npos ? text.replace(place, kPlaceholder.size(), value) : text;
}

std::string WithoutDots(const std::string& text) {
    return text.ends_with("...") ? text.substr(0, text.size() - 3) : text;
}
