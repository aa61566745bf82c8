#include "PrintableText.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

/// What a terminal or a reader of lines must not get, how PrintableText shows it, and how PrintableJson writes it.
const struct {
    std::string raw, text, json;
} kUnprintables[] = {{"\n", "\\x0A", ""},
                     {"\x1B[31m", "\\x1B[31m", ""},
                     {"\x7F", "\\x7F", "\\u007F"},
                     {"\xC2\x80", "\\u{0080}", "\\u0080"},
                     {"\xC2\x9F", "\\u{009F}", "\\u009F"},
                     {"\xD8\x9C", "\\u{061C}", "\\u061C"},
                     {"\xE2\x80\x8E", "\\u{200E}", "\\u200E"},
                     {"\xE2\x80\x8F", "\\u{200F}", "\\u200F"},
                     {"\xE2\x80\xA8", "\\u{2028}", "\\u2028"},
                     {"\xE2\x80\xAE", "\\u{202E}", "\\u202E"},
                     {"\xE2\x81\xA6", "\\u{2066}", "\\u2066"},
                     {"\xE2\x81\xA9", "\\u{2069}", "\\u2069"}};

/// The neighbours of all these, and writing that needs joiners.
constexpr char kPlain[] =
    " ~"
    "\xC2\xA0\xD8\x9B\xD8\x9D\xE2\x80\x8D\xE2\x80\x90\xE2\x80\xA7\xE2\x80\xAF\xE2\x81\xA5\xE2\x81\xAA\xF0\x9F"
    "\x99\x82";

}  // namespace

TEST(PrintableText, ShowsWhatWouldDoSomethingAndNothingElse) {
    for (const auto& each : kUnprintables) {
        EXPECT_EQ(PrintableText("a" + each.raw + "z"), "a" + each.text + "z");
        EXPECT_FALSE(IsPlainText("a" + each.raw)) << each.text;
    }
    EXPECT_EQ(PrintableText(kPlain), kPlain);
    EXPECT_TRUE(IsPlainText(kPlain));
    EXPECT_EQ(PrintableText("\xE2\x80\xFF\xC2"), "\\xE2\\x80\\xFF\\xC2") << "no UTF-8";
    EXPECT_EQ(PrintableText(std::string_view("\0x", 2)), "\\x00x");
    EXPECT_FALSE(IsPlainText("\xC2"));
}

TEST(PrintableText, LeavesJsonItsValues) {
    for (const auto& each : kUnprintables) {
        const nlohmann::json value = {{"na" + each.raw, each.raw + kPlain}};
        const std::string dumped = PrintableJson(value.dump());
        EXPECT_EQ(nlohmann::json::parse(dumped), value);
        EXPECT_TRUE(IsPlainText(dumped)) << dumped;
        EXPECT_NE(dumped.find(each.json), std::string::npos) << dumped;
    }
    EXPECT_EQ(nlohmann::json::parse(PrintableJson("[\"\xFF\n\"]"))[0], "\xEF\xBF\xBD\n");
}

TEST(PrintableText, NamesLoseWhatCannotBeShown) {
    for (const auto& each : kUnprintables)
        EXPECT_EQ(WithoutUnprintables("Na" + each.raw.substr(0, each.raw[0] == '\x1B' ? 1 : 3) + "me"),
                  "Name");
    EXPECT_EQ(WithoutUnprintables(kPlain), kPlain);
    EXPECT_EQ(WithoutUnprintables("a\xC2"), "a\xEF\xBF\xBD");
    EXPECT_TRUE(IsBlank("") && IsBlank(" \xC2\xA0\xE3\x80\x80\xE2\x80\x8B"));
    EXPECT_FALSE(IsBlank(" .") || IsBlank("\xFF"));
}

TEST(PrintableText, TextsAreCutBetweenCharacters) {
    const std::string text = "a\u00FC\U0001F642";  // 1, 2 and 4 bytes
    EXPECT_EQ(CountCodePoints(text), 3u);
    for (size_t size = 0; size <= 8; ++size)
        EXPECT_EQ(FirstBytes(text, size), text.substr(0, size < 1 ? 0 : size < 3 ? 1 : size < 7 ? 3 : 7));
    for (size_t count = 0; count <= 4; ++count)
        EXPECT_EQ(CountCodePoints(FirstCodePoints(text, count)), std::min<size_t>(count, 3));
    EXPECT_EQ(FirstBytes("\x80\x80\x80\x80\x80", 4), "\x80") << "no UTF-8";
}
