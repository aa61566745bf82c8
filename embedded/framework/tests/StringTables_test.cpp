#include "strings/StringTables.h"

#include <gtest/gtest.h>

#include <regex>
#include <vector>

#include "StringConversion.h"

namespace {

/// The places for something else: one name at most, which every language has a place for.
std::vector<std::string> Conversions(const std::string& text) {
    static const std::regex conversion("%[^a-zA-Z%]*[a-zA-Z%]?");
    return {std::sregex_token_iterator(text.begin(), text.end(), conversion), {}};
}

TEST(LocalizedStrings, EveryTextIsOneToShow) {
    for (const char* language : {"en", "de"}) {
        for (const localized::String& entry : LocalizedStringTable(language)) {
            EXPECT_STRNE(entry.text, "") << entry.id;
            EXPECT_TRUE(IsValidUtf8(entry.text)) << entry.id;
            const bool names = localized::NamesSomething(entry.text);
            EXPECT_EQ(Conversions(entry.text), std::vector<std::string>(names ? 1 : 0, "%s")) << entry.id;
        }
    }
    EXPECT_STREQ(FindLocalizedString("fr", 200), "Preferences...") << "without a table";
    EXPECT_STREQ(FindLocalizedString("de", 200), "Einstellungen...");
    EXPECT_EQ(FindLocalizedString("en", 607), nullptr);
    EXPECT_EQ(FindLocalizedString("de", 0), nullptr);
}

}  // namespace
