#include "strings/LocalizedStrings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "FrameworkTestSupport.h"
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

TEST(LocalizedStrings, EveryMessageBoxOfTheCoreHasItsTextsWithAPlaceForWhatTheyName) {
    const std::string source = ReadText(MESSAGE_BOX_IDS_HEADER);
    const std::regex declaration(R"(MessageBoxStrings \w+\{(\d+), (\d+)\};(.*))");
    size_t count = 0;
    for (std::sregex_iterator box(source.begin(), source.end(), declaration), end; box != end; ++box) {
        const char* text = FindLocalizedString("en", static_cast<uint32_t>(std::stoul((*box)[2])));
        EXPECT_NE(FindLocalizedString("en", static_cast<uint32_t>(std::stoul((*box)[1]))), nullptr)
            << box->str();
        ASSERT_NE(text, nullptr) << box->str();
        const bool namesSomething = (*box)[3].str().find("< *") != std::string::npos;
        EXPECT_EQ(Conversions(text), std::vector<std::string>(namesSomething ? 1 : 0, "%s")) << box->str();
        ++count;
    }
    EXPECT_GT(count, 20u) << "the header has another form than this test knows";
}

TEST(LocalizedStrings, EveryOtherTextThatTheCoreAsksForIsThere) {
    for (const uint32_t id : {105, 199, 200, 201, 204, 205, 206, 208, 211, 212, 213, 214, 215, 216, 219, 222})
        EXPECT_NE(FindLocalizedString("en", id), nullptr) << id;
    EXPECT_EQ(FindLocalizedString("en", 607), nullptr);
    EXPECT_EQ(FindLocalizedString("de", 0), nullptr);
}

TEST(LocalizedStrings, ALanguageWithoutATableIsServedInEnglish) {
    EXPECT_STREQ(FindLocalizedString("fr", 200), "Preferences...");
    EXPECT_STREQ(FindLocalizedString("", 200), "Preferences...");
    EXPECT_STREQ(FindLocalizedString("de", 200), "Einstellungen...");
}

TEST(LocalizedStrings, WhatIsFilledInIsTakenAsItIs) {
    EXPECT_EQ(FillIn("In %s.", "/a/100%s %n %"), "In /a/100%s %n %.");
    EXPECT_EQ(FillIn("In it.", "/a"), "In it.");
    EXPECT_EQ(FillIn("%s", ""), "");
}

}  // namespace
