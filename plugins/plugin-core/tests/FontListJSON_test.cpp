#include "FontListJSON.h"

#include <CoreFoundation++/CFRef.h>
#include <gtest/gtest.h>

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
    EXPECT_EQ(RoundTrip(R"([{"huge":18446744073709551615}])"), R"([{"huge":1.8446744073709552e+19}])");
}

TEST(FontListJSON, OtherFormsAreRefused) {
    for (const char* text : {"", "{", "1", "{}", R"({"DocumentFonts":{}})"})
        EXPECT_EQ(RoundTrip(text), "error") << text;
    EXPECT_EQ(RoundTrip(R"({"DocumentFonts":[]})", FontListForm::kArray), "error");
    EXPECT_EQ(RoundTrip("[]", FontListForm::kArray), "[]");
}

TEST(FontListJSON, EndlessNestingIsCut) {
    const std::string text = "[{\"x\":" + std::string(100000, '[') + std::string(100000, ']') + "}]";
    EXPECT_LT(RoundTrip(text).size(), 200u);
}
