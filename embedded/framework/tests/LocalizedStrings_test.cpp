#include "strings/LocalizedStrings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "StringConversion.h"

namespace {

std::vector<uint32_t> Identifiers(std::string_view language) {
    std::vector<uint32_t> identifiers;
    for (const LocalizedString& entry : LocalizedStringTable(language))
        identifiers.push_back(entry.id);
    return identifiers;
}

std::vector<std::string> Conversions(const std::string& text) {
    static const std::regex conversion("%[^a-zA-Z%]*[a-zA-Z%]?");
    return {std::sregex_token_iterator(text.begin(), text.end(), conversion), {}};
}

TEST(LocalizedStrings, EveryLanguageHasTheSameTextsWithTheSameConversions) {
    const auto german = LocalizedStringTable("de");
    ASSERT_EQ(Identifiers("de"), Identifiers("en"));
    ASSERT_NE(german.data(), LocalizedStringTable("en").data());
    for (const LocalizedString& entry : german) {
        const std::string english = FindLocalizedString("en", entry.id);
        EXPECT_NE(english, "") << entry.id;
        EXPECT_STRNE(entry.text, "") << entry.id;
        EXPECT_TRUE(IsValidUtf8(entry.text)) << entry.id;
        EXPECT_EQ(Conversions(entry.text), Conversions(english)) << entry.id;
    }
}

TEST(LocalizedStrings, EveryTextThatTheCoreAsksForIsThere) {
    for (const uint32_t id :
         {105, 199, 200, 201, 204, 205, 206, 208, 211, 212, 213, 214, 215, 216, 219, 222, 598, 599,
          600, 601, 602, 603, 604, 605, 606, 609, 610, 611, 620, 621, 630, 631, 632, 633, 639, 640})
        EXPECT_NE(FindLocalizedString("en", id), nullptr) << id;
    EXPECT_EQ(FindLocalizedString("en", 607), nullptr);
    EXPECT_EQ(FindLocalizedString("de", 0), nullptr);
}

TEST(LocalizedStrings, ALanguageWithoutATableIsServedInEnglish) {
    EXPECT_STREQ(FindLocalizedString("fr", 200), "Preferences...");
    EXPECT_STREQ(FindLocalizedString("", 200), "Preferences...");
    EXPECT_STREQ(FindLocalizedString("de", 200), "Einstellungen...");
}

}  // namespace
