#include "FontListJSON.h"

#include <CoreFoundation++/CFRef.h>
#include <gtest/gtest.h>

#include "TextBuffer.h"

namespace {

/// What the text becomes when it is read and written again.
std::string RoundTrip(const std::string& text, FontListForm form = FontListForm::kArrayOrObject) {
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    const ErrorCode code = AppendFontsFromJSON(text, form, fonts.get());
    std::string written;
    EXPECT_EQ(FontsToJSON(fonts.get(), written), CoreErrorCodes::kSuccess);
    return code == CoreErrorCodes::kSuccess ? written : "error";
}

}  // namespace

TEST(FontListJSON, EveryKindOfValueCrossesBothWays) {
    const std::string fonts =
        R"([{"DatabaseID":4294967295,"Keywords":["ä","字🙂"],"MatchedFont":{"Path":"/a b"},"b":true,"r":1.5}])";
    EXPECT_EQ(RoundTrip(fonts), fonts);
    EXPECT_EQ(RoundTrip(R"({"DocumentFonts":[{"PostScriptName":"A"}],"x":1})"),
              R"([{"PostScriptName":"A"}])");
}

TEST(FontListJSON, WhatIsNoFontIsPassedOver) {
    EXPECT_EQ(RoundTrip(R"([1,"x",null,[],{"PostScriptName":null},{}])"), "[{},{}]");
    EXPECT_EQ(RoundTrip(R"([{"x":9223372036854775807},{"x":9223372036854775808}])"),
              R"([{"x":9223372036854775807},{"x":9.223372036854776e+18}])");
    EXPECT_EQ(RoundTrip(R"([{"x":1e400}])"), "error");
}

TEST(FontListJSON, OtherFormsAreRefused) {
    for (const char* text : {"", "{", "1", "{}", R"({"DocumentFonts":{}})"})
        EXPECT_EQ(RoundTrip(text), "error") << text;
    EXPECT_EQ(RoundTrip(R"({"DocumentFonts":[]})", FontListForm::kArray), "error");
    EXPECT_EQ(RoundTrip("[]", FontListForm::kArray), "[]");
}

TEST(FontListJSON, TextsAreUnescapedAndMembersSorted) {
    EXPECT_EQ(RoundTrip(R"([{"b":"\u00e4\ud83d\ude42\/\n\u0000","a":1}])"),
              R"([{"a":1,"b":"ä🙂/\n\u0000"}])");
    EXPECT_EQ(RoundTrip(R"([{"a":1,"b":{"x":1},"a":"last"}])"), R"([{"a":"last","b":{"x":1}}])");
    for (const char* broken : {"[{\"a\":\"\xff\"}]", R"([{"a":"\ud800"}])", "[{\"\xc3\":1}]"})
        EXPECT_EQ(RoundTrip(broken), "error") << broken;
}

TEST(FontListJSON, EndlessNestingIsCut) {
    const auto nested = [](size_t depth) {
        return "[{\"x\":" + std::string(depth, '[') + std::string(depth, ']') + "}]";
    };
    EXPECT_EQ(RoundTrip(nested(32)), nested(32));
    EXPECT_NE(RoundTrip(nested(33)), nested(33));
    EXPECT_LT(RoundTrip(nested(100000)).size(), 200u);
}

TEST(TextBuffer, ATextMustBeShorterThanItsBuffer) {
    for (const size_t room : {0, 4, 5, 6}) {
        char buffer[16] = "untouched";
        size_t size = room;
        EXPECT_EQ(CopyTextToBuffer("12345", buffer, &size), room > 5 ? 0 : CoreErrorCodes::kIndexOutOfRange);
        EXPECT_STREQ(buffer, room > 5 ? "12345" : "untouched");
        EXPECT_EQ(size, room > 5 ? room : 5) << "the length, without the terminating zero";
    }
}

TEST(TextBuffer, ANullListWritesNothing) {
    char buffer[] = "untouched";
    size_t size = 0;
    EXPECT_EQ(CopyFontsToBuffer(nullptr, buffer, &size), CoreErrorCodes::kSuccess);
    EXPECT_STREQ(buffer, "untouched");
    size = sizeof buffer;
    EXPECT_EQ(CopyFontsToBuffer(cf::MutableArray().get(), buffer, &size), CoreErrorCodes::kSuccess);
    EXPECT_STREQ(buffer, "[]");
}
