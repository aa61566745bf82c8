#include "StyleSheet.h"

#include <algorithm>
#include <cctype>

namespace documents {
namespace {

/// Takes what stands before the next `separator`, which goes too.
std::string_view TakeUntil(std::string_view& text, std::string_view separator) {
    const size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + separator.size());
    return part;
}

std::string WithoutComments(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        result += TakeUntil(text, "/*");
        TakeUntil(text, "*/");
    }
    return result;
}

/// Takes a block and what is nested in it; `text` begins behind its "{".
std::string_view TakeBlock(std::string_view& text) {
    const std::string_view whole = text;
    for (size_t depth = 1; depth > 0 && !text.empty(); text.remove_prefix(1))
        depth += text.front() == '{' ? 1 : text.front() == '}' ? -1 : 0;
    return whole.substr(0, whole.size() - text.size() - (whole.size() > text.size() ? 1 : 0));
}

bool IsSize(std::string_view word) {
    return word.front() >= '0' && word.front() <= '9' && word.find_first_not_of("0123456789") != word.npos;
}

/// "italic bold 12px/1.5 A, B": what stands behind the size is the family.
TextProperties ParseShorthand(std::string_view value) {
    TextProperties properties{"", "normal", "normal"};
    while (!value.empty()) {
        const std::string_view word = TakeUntil(value, " ");
        if (word.empty())
            continue;
        if (IsSize(word))
            break;
        if (word == "italic" || word == "oblique")
            properties.slant = word;
        else if (word.starts_with("bold") || word.front() <= '9')
            properties.weight = word;
    }
    properties.family = Trimmed(value);
    return properties.family.empty() ? TextProperties() : properties;
}

std::string_view ValueOf(std::string_view text) {
    return Trimmed(text.substr(0, text.find('!')));  // "!important"
}

bool IsNameCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '-' || character == '_' ||
           static_cast<unsigned char>(character) >= 0x80;
}

}  // namespace

TextProperties ParseDeclarations(std::string_view declarations) {
    TextProperties properties;
    while (!declarations.empty()) {
        std::string_view value = TakeUntil(declarations, ";");
        const std::string_view name = Trimmed(TakeUntil(value, ":"));
        value = ValueOf(value);
        if (name == "font-family")
            properties.family = value;
        else if (name == "font-weight")
            properties.weight = value;
        else if (name == "font-style")
            properties.slant = value;
        else if (name == "font")
            properties.Override(ParseShorthand(value));
    }
    return properties;
}

void StyleSheet::Add(std::string_view text) {
    const std::string sheet = WithoutComments(text);
    std::string_view rest = sheet;
    while (!rest.empty()) {
        const std::string_view selectors = Trimmed(TakeUntil(rest, "{"));
        AddBlock(selectors, TakeBlock(rest));
    }
}

void StyleSheet::AddBlock(std::string_view selectors, std::string_view declarations) {
    const TextProperties properties = ParseDeclarations(declarations);
    if (selectors.ends_with("@font-face")) {
        if (declarations.find("url(") != std::string_view::npos)
            mFontFaces.insert(FirstFamily(properties.family));
        return;
    }
    while (!selectors.empty() && selectors.front() != '@')
        AddRule(Trimmed(TakeUntil(selectors, ",")), properties);
}

void StyleSheet::AddRule(std::string_view selector, const TextProperties& properties) {
    Rule rule;
    rule.properties = properties;
    for (size_t at = 0; at < selector.size();) {
        const char kind = selector[at];
        const size_t begin = at + (kind == '.' || kind == '#' || kind == '*' ? 1 : 0);
        for (at = begin; at < selector.size() && IsNameCharacter(selector[at]);)
            ++at;
        const std::string name(selector.substr(begin, at - begin));
        if (name.empty() && kind != '*')
            return;  // depends on other elements, or on states
        if (kind == '.')
            rule.classes.push_back(name);
        else
            (kind == '#' ? rule.id : rule.element) = name;
    }
    const auto after =
        std::upper_bound(mRules.begin(), mRules.end(), rule.Weight(),
                         [](size_t weight, const Rule& each) { return weight < each.Weight(); });
    mRules.insert(after, std::move(rule));
}

TextProperties StyleSheet::PropertiesOf(std::string_view element, std::string_view id,
                                        std::string_view classes) const {
    std::vector<std::string_view> names;
    while (!classes.empty())
        names.push_back(TakeUntil(classes, " "));
    TextProperties properties;
    for (const Rule& rule : mRules) {
        const bool isMeant =
            (rule.element.empty() || rule.element == element) && (rule.id.empty() || rule.id == id) &&
            std::all_of(rule.classes.begin(), rule.classes.end(), [&](const std::string& name) {
                return std::find(names.begin(), names.end(), name) != names.end();
            });
        if (isMeant)
            properties.Override(rule.properties);
    }
    return properties;
}

}  // namespace documents
