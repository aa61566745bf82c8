#include "strings/StringTables.h"

#include <algorithm>

namespace {

using localized::String;

constexpr String kGerman[] = {
#define STRING(name, text) {localized::name, text},
#include "strings/German.inc"
#undef STRING
};

constexpr bool IsAscending(std::span<const String> table) {
    const auto isOutOfOrder = [](const String& left, const String& right) { return left.id >= right.id; };
    return std::adjacent_find(table.begin(), table.end(), isOutOfOrder) == table.end();
}
static_assert(IsAscending(localized::kEnglish), "tables are searched by halving");

/// The same texts as in English, with a place for a name where that has one.
constexpr bool IsTranslationComplete(std::span<const String> table) {
    const auto isSame = [](const String& left, const String& right) {
        return left.id == right.id &&
               localized::NamesSomething(left.text) == localized::NamesSomething(right.text);
    };
    return std::equal(table.begin(), table.end(), std::begin(localized::kEnglish),
                      std::end(localized::kEnglish), isSame);
}
static_assert(IsTranslationComplete(kGerman));

struct Language {
    std::string_view code;
    std::span<const String> table;
};

constexpr Language kLanguages[] = {{"en", localized::kEnglish}, {"de", kGerman}};

const char* Find(std::span<const String> table, uint32_t id) {
    const auto isBefore = [](const String& entry, uint32_t wanted) { return entry.id < wanted; };
    const auto found = std::lower_bound(table.begin(), table.end(), id, isBefore);
    return found != table.end() && found->id == id ? found->text : nullptr;
}

}  // namespace

std::span<const String> LocalizedStringTable(std::string_view language) {
    const auto found = std::find_if(std::begin(kLanguages), std::end(kLanguages),
                                    [language](const Language& known) { return known.code == language; });
    return found != std::end(kLanguages) ? found->table : std::span<const String>(localized::kEnglish);
}

const char* FindLocalizedString(std::string_view language, uint32_t id) {
    const char* text = Find(LocalizedStringTable(language), id);
    return text != nullptr ? text : Find(localized::kEnglish, id);
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
