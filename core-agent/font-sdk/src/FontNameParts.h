// What a font's name says: the family, and the style within it. Names of one font differ between foundries,
// formats and programs, "TimesNewRomanPS-BoldMT", "Times New Roman Bold", "ABCDEF+TimesNewRoman,Bold"; their
// parts do not.
#pragma once

#include <string>
#include <string_view>

/// The fields usWeightClass and usWidthClass as in the table OS/2:
/// https://learn.microsoft.com/typography/opentype/spec/os2
struct FontStyle {
    int weight = 400;  ///< 100 (thin) to 900 (black)
    int width = 5;     ///< 1 (ultra-condensed) to 9 (ultra-expanded)
    bool isSlanted = false;
    std::string others;  ///< what else the style is called, optical sizes for example

    bool operator==(const FontStyle&) const = default;
};

/// The style in words, for people: "Regular", "SemiBold Condensed Italic".
std::string StyleText(const FontStyle& style);

/// How unlike two styles look, 0 for the same: in steps of weight, of which one of width counts for two and
/// the slope for three.
int StyleDistance(const FontStyle& left, const FontStyle& right);

/// Names are lower case, without blanks, hyphens and other separators.
struct FontNameParts {
    std::string plainName;   ///< all words
    std::string wholeName;   ///< all words but marks of formats and vendors ("PS", "MT", "Std", "Pro", "LT")
    std::string familyName;  ///< those of the words that do not tell the style
    FontStyle style;
};

/// Reads a PostScript name or anything that is used as one. A subset tag ("ABCDEF+") is not a part of it.
FontNameParts ParsePostScriptName(std::string_view name);

/// Reads the names that a font has for people. Either may be empty.
FontNameParts ParseFamilyAndStyle(std::string_view family, std::string_view style);
