#include "FontListJSON.h"

#include <CoreFoundation++/CFRef.h>
#include <gtest/gtest.h>

namespace {

std::string RoundTrip(const std::string& text, FontListForm form = FontListForm::kArrayOrObject) {
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    const ErrorCode code = AppendFontsFromJSON(text, form, fonts.get());
    std::string written;
    EXPECT_EQ(FontsToJSON(fonts.get(), written), CoreErrorCodes::kSuccess);
    return code == CoreErrorCodes::kSuccess ? written : "error";
}

}  // namespace

TEST(FontListJSON, FontsCrossBothWaysAndWhatIsNoneIsPassedOverOrRefused) {
    const std::string fonts =
        R"([{"DatabaseID":4294967295,"Keywords":["ä","字🙂"],"MatchedFont":{"Path":"/a b"},"b":true,"r":1.5}])";
    const std::pair<std::string, std::string> cases[] = {
        {fonts, fonts},
        {R"({"DocumentFonts":[{"PostScriptName":"A"}],"x":1})", R"([{"PostScriptName":"A"}])"},
        {R"([1,"x",null,[],{"PostScriptName":null},{}])", "[{},{}]"},
        {R"([{"x":9223372036854775807},{"x":9223372036854775808}])",
         R"([{"x":9223372036854775807},{"x":9.223372036854776e+18}])"},
        // Texts are unescaped, and members sorted.
        {R"([{"b":"\u00e4\ud83d\ude42\/\n\u0000","a":1}])", R"([{"a":1,"b":"ä🙂/\n\u0000"}])"},
        {R"([{"a":1,"b":{"x":1},"a":"last"}])", R"([{"a":"last","b":{"x":1}}])"}};
    for (const auto& [text, written] : cases)
        EXPECT_EQ(RoundTrip(text), written);
    for (const char* text : {"", "{", "1", "{}", R"({"DocumentFonts":{}})", R"([{"x":1e400}])",
                             "[{\"a\":\"\xff\"}]", R"([{"a":"\ud800"}])", "[{\"\xc3\":1}]"})
        EXPECT_EQ(RoundTrip(text), "error") << text;
    EXPECT_EQ(RoundTrip(R"({"DocumentFonts":[]})", FontListForm::kArray), "error");
    EXPECT_EQ(RoundTrip("[]", FontListForm::kArray), "[]");
    const auto nested = [](size_t depth) {
        return "[{\"x\":" + std::string(depth, '[') + std::string(depth, ']') + "}]";
    };
    EXPECT_EQ(RoundTrip(nested(32)), nested(32));
    EXPECT_NE(RoundTrip(nested(33)), nested(33));
    EXPECT_LT(RoundTrip(nested(100000)).size(), 200u);
}
