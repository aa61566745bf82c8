#include "FontNameParts.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

std::string Describe(const FontNameParts& parts) {
    const FontStyle& style = parts.style;
    return parts.familyName + " " + std::to_string(style.weight) + " " + std::to_string(style.width) +
           (style.isSlanted ? " slanted" : "") + (style.others.empty() ? "" : " " + style.others);
}

}  // namespace

TEST(FontNameParts, FamilyAndStyleAreReadOutOfPostScriptNames) {
    const std::pair<const char*, const char*> cases[] = {
        {"Sample", "sample 400 5"},
        {"Sample-Regular", "sample 400 5"},
        {"TimesNewRomanPS-BoldItalicMT", "timesnew 700 5 slanted"},
        {"TimesNewRomanPSMT", "timesnew 400 5"},
        {"ArialMT", "arial 400 5"},
        {"Arial-Black", "arial 900 5"},
        {"ArialNarrow-Bold", "arial 700 3"},
        {"ABCDEF+Arial,BoldItalic", "arial 700 5 slanted"},
        {"HelveticaNeueLTStd-BdCn", "helveticaneue 700 3"},
        {"HelveticaNeueLTStd-LtIt", "helveticaneue 300 5 slanted"},
        {"HelveticaNeueLT-75Bold", "helveticaneue 700 5"},
        {"MinionPro-SemiboldIt", "minion 600 5 slanted"},
        {"MinionPro-BoldCapt", "minion 700 5 capt"},
        {"DINPro-ExtraLight", "din 200 5"},
        {"Open-Sans", "opensans 400 5"},
        {"SampleSans-Variable", "samplesans 400 5"},
        {"Sample-BoldItallic", "sample 700 5 slanted"},
        {"Bold-Italic", "bold 400 5 slanted"},
        {"Univers-UltraCondensedThin", "univers 100 1"},
        {"Sample-950", "sample 950 5"},
        {"Sample-333", "sample333 400 5"},
        {"Sample-100", "sample 100 5"},
        {"ZapfPS-Zz", "zapfzz 400 5"},
        {"\u00DCberschrift-Fett", "\u00DCberschriftfett 400 5"},
        {"-", " 400 5"},
        {"", " 400 5"}};
    for (const auto& [name, expected] : cases)
        EXPECT_EQ(Describe(ParsePostScriptName(name)), expected) << name;
    const FontNameParts parts = ParsePostScriptName("MinionPro-Bold");
    EXPECT_EQ(parts.plainName + " " + parts.wholeName, "minionprobold minionbold");
}

TEST(FontNameParts, NamesForPeopleHaveTheSameParts) {
    const struct {
        const char *family, *style, *postScriptName;
    } cases[] = {{"Helvetica Neue LT Std", "77 Bold Condensed", "HelveticaNeueLTStd-BdCn"},
                 {"Helvetica Neue LT Std Light", "Italic", "HelveticaNeueLTStd-LtIt"},
                 {"Arial Black", "Regular", "Arial-Black"},
                 {"Times New Roman", "Bold Italic", "TimesNewRomanPS-BoldItalicMT"},
                 {"Sample", "", "Sample-Regular"}};
    for (const auto& [family, style, postScriptName] : cases)
        EXPECT_EQ(Describe(ParseFamilyAndStyle(family, style)),
                  Describe(ParsePostScriptName(postScriptName)));
}

TEST(FontNameParts, EachStyleHasATextThatMeansItAndOtherWordsForIt) {
    for (int weight = 100; weight <= 900; weight += 100) {
        for (int width = 1; width <= 9; ++width) {
            const FontStyle style{
                .weight = weight, .width = width, .isSlanted = width % 2 == 0, .others = ""};
            const FontStyle read = ParseFamilyAndStyle("Sample", StyleText(style)).style;
            EXPECT_EQ(StyleDistance(style, read), 0) << StyleText(style);
        }
    }
    EXPECT_EQ(StyleText({}), "Regular");
    EXPECT_EQ(StyleText({.weight = 400, .width = 3, .isSlanted = true, .others = "caption"}),
              "Condensed Italic caption");
    for (const char* words :
         {"Thin Hairline Th", "ExtraLight UltraLight", "Light Lt", "Regular Normal Roman Plain Book Rg Reg",
          "Medium Md Med", "SemiBold DemiBold Demi Sb", "Bold Bd", "ExtraBold UltraBold Heavy Hv",
          "Black ExtraBlack UltraBlack Blk", "ExtraCondensed Compressed", "Condensed Narrow Cond Cn",
          "SemiCondensed SemiCn", "SemiExpanded SemiExtended", "Expanded Extended Wide Ext Ex",
          "ExtraExpanded ExtraExtended", "Italic Oblique Slanted Inclined Kursiv It Ital Obl"}) {
        std::istringstream each(words);
        std::string first, other;
        for (each >> first; each >> other;)
            EXPECT_EQ(Describe(ParsePostScriptName("S-" + other)),
                      Describe(ParsePostScriptName("S-" + first)))
                << other;
    }
}

TEST(FontNameParts, StylesAreNearerTheLessTheyLookDifferent) {
    const char* nearestFirst[] = {"S-Bold",       "S-BoldCapt",   "S-Black",
                                  "S-BoldItalic", "S-BoldNarrow", "S-LightCondensedItalic"};
    const FontStyle wanted = ParsePostScriptName("S-Bold").style;
    int last = -1;
    for (const char* name : nearestFirst) {
        const int distance = StyleDistance(wanted, ParsePostScriptName(name).style);
        EXPECT_GT(distance, last) << name;
        last = distance;
    }
}
