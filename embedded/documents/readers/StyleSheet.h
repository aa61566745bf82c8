// As much of CSS as drawings that are exported use for the fonts of their text.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "TextProperties.h"

namespace documents {

/// Reads the declarations of a style attribute, or of a rule: "font-family: A; font: italic 12px B".
TextProperties ParseDeclarations(std::string_view declarations);

/// Rules for elements, classes and identifiers, alone or together, as in "text.title"; rules that depend on
/// other elements are left out.
class StyleSheet {
public:
    void Add(std::string_view text);

    /// What the rules set for an element, by their weight and then by their order.
    TextProperties PropertiesOf(std::string_view element, std::string_view id,
                                std::string_view classes) const;
    /// Whether the sheet itself brings the font along.
    bool Brings(const std::string& family) const { return mFontFaces.contains(family); }

private:
    struct Rule {
        std::string element, id;
        std::vector<std::string> classes;
        TextProperties properties;

        size_t Weight() const {
            return (id.empty() ? 0 : 100) + 10 * classes.size() + (element.empty() ? 0 : 1);
        }
    };

    void AddBlock(std::string_view selectors, std::string_view declarations);
    void AddRule(std::string_view selector, const TextProperties& properties);

    std::vector<Rule> mRules;  ///< lightest first
    std::set<std::string> mFontFaces;
};

}  // namespace documents
