#include "StringConversion.h"

#include <gtest/gtest.h>

TEST(StringConversion, Utf16AndUtf8BecomeEachOther) {
    const std::u16string units = u"Aé字\U0001F642";
    EXPECT_EQ(Utf16ToUtf8(units), "Aé字🙂");
    EXPECT_EQ(Utf16Length("Aé字🙂"), units.size());
}

TEST(StringConversion, WhatIsIllFormedIsFoundAndReplaced) {
    EXPECT_EQ(Utf16ToUtf8(std::u16string{u'a', char16_t{0xD83D}}), "a\uFFFD");
    EXPECT_EQ(Utf16ToUtf8(std::u16string{char16_t{0xDE42}, u'b'}), "\uFFFDb");
    EXPECT_EQ(Utf16ToUtf8(std::u16string{char16_t{0xD83D}, char16_t{0xD83D}, char16_t{0xDE42}}),
              "\uFFFD🙂");
    EXPECT_TRUE(IsValidUtf8("字"));
    for (const char* text : {"\xff", "\xE5\xAD", "\xED\xA0\x80", "\xF5\x80\x80\x80"})
        EXPECT_FALSE(IsValidUtf8(text));
    EXPECT_EQ(ReplaceInvalidUtf8("a\xff-"), "a\uFFFD-");
    EXPECT_EQ(WellFormedTail("a\xFF\xFE字"), 3u);
    EXPECT_EQ(WellFormedTail("a\xFF字"), 2u);
}

TEST(StringConversion, EncodingsAreConvertedByName) {
    std::string text;
    const std::string large(5000, 'x');  // more than one piece
    ASSERT_EQ(ConvertEncoding(large, "UTF-8", "UTF-32LE", text), 0u);
    EXPECT_EQ(text.size(), 4 * large.size());
    EXPECT_EQ(ConvertEncoding("x", "NO-SUCH-ENCODING", "UTF-8", text), CoreErrorCodes::kNotSupported);
    EXPECT_EQ(ConvertEncoding("\xff", "UTF-8", "UTF-16LE", text), CoreErrorCodes::kInvalidParam);
    EXPECT_EQ(text.size(), 4 * large.size());
}
