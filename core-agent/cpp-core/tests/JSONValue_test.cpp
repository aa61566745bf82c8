#include "JSONValue.h"

#include <gmock/gmock.h>

#include <clocale>
#include <cstdlib>
#include <limits>
#include <stdexcept>

#include "TemporaryFolder.h"
#include "platform/Environment.h"

using testing::StartsWith;

namespace {

template <class Action>
std::string Thrown(Action action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing";
}

JSONValue Load(JSONObject& document, const std::string& text) {
    document.load(text);
    return document.root();
}

std::string Nested(int depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

}  // namespace

TEST(JSONObject, HoldsOneTreeAtATimeThroughWhichPathsLead) {
    JSONObject document;
    EXPECT_EQ(Thrown([&] { document.root(); }), "No JSON loaded in parser");
    EXPECT_EQ(Load(document, R"({"a":{"b":{"c":7}},"a2":[]})").name(), "root");
    EXPECT_EQ(document.get({"a", "b", "c"}).as_int64(), 7);
    EXPECT_EQ(document.get({"a", "b", "c"}).name(), "abc");
    EXPECT_NE(Thrown([&] { document.get({"a", "x"}); }), "nothing");
    EXPECT_NE(Thrown([&] { document.get({"a2", "0"}); }), "nothing");
    EXPECT_THAT(Thrown([&] { document.load("OK "); }), StartsWith("JSON parse error:\n"));
    EXPECT_EQ(Thrown([&] { document.root(); }), "No JSON loaded in parser") << "the old tree is gone";
    document.load("OK");
    EXPECT_EQ(Thrown([&] { document.get({"a"}); }), "No JSON loaded in parser");
    document.load_map();
    EXPECT_EQ(document.root().to_json(), "{}");
}

TEST(JSONObject, RefusesWhatIsNoJSON) {
    const std::string texts[] = {
        // Comments, which could hide brackets.
        "/*\"*/" + Nested(300000), "//\"\n" + Nested(300000), "{}//x", "[\"\xC0\x80\"]", "[\"\xED\xA0\x80\"]",
        "[\"\xF5\x80\x80\x80\"]", "[\"\xE5\xAD\"]",
        // Halves of surrogate pairs, zero characters and zero bytes.
        R"(["\uDC00"])", R"(["\uDFFF"])", R"(["\uD83D"])", R"(["\uDBFF\n"])", R"(["\uD83D\uD83D"])",
        R"(["\uD800\uE000"])", R"(["\u0000"])", R"({"a\u0000b":1})", std::string("[1]\0[", 5), R"(["\u12)"};
    JSONObject document;
    for (const std::string& text : texts)
        EXPECT_THAT(Thrown([&] { document.load(text); }), StartsWith("JSON parse error:\n"))
            << text.substr(0, 20);
    for (const std::string& text : {Nested(513), "[\"ab\"," + Nested(512) + "]"})
        EXPECT_EQ(Thrown([&] { document.load(text); }), "JSON parse error:\nnested too deep\n");
    document.load(Nested(512));
    const JSONValue root =
        Load(document, R"(["[[[\"[[[", "\uD83D\uDE42\uDBFF\uDFFF\u00e9\\uDC00\uD7FF\uE000"])");
    EXPECT_EQ(root.as_array()[1].as_string(), "🙂\U0010FFFFé\\uDC00\uD7FF\uE000");
    document.load(Nested(200));
    EXPECT_EQ(Thrown([&] { document.root().to_json(); }), "YAJL's maximum generation depth was exceeded");
}

TEST(JSONObject, NumbersAreReadAlikeWhateverTheHostsLocale) {
    const TemporaryFolder folder;
    if (std::system(("localedef -i de_DE -f UTF-8 '" + (folder / "de") + "' 2>/dev/null").c_str()) != 0)
        GTEST_SKIP() << "no locales to make";
    platform::SetEnvironment("LOCPATH", folder / ".");
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de"), nullptr);
    JSONObject document;
    const auto numbers = Load(document, R"([2.5,1e3,1e999,7,{"a":[-0.5]}])").as_array();
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_EQ(numbers[0].as_double(), 2.5);
    EXPECT_EQ(numbers[1].as_double(), 1000);
    EXPECT_FALSE(numbers[2].is_double());
    EXPECT_TRUE(numbers[3].is_int() && numbers[3].is_double());
    EXPECT_EQ(numbers[4].as_map()[0].second.as_array()[0].as_double(), -.5);
}

TEST(JSONValue, AReadOfTheWrongKindSaysWhatWasFound) {
    JSONObject document;
    const auto values = Load(document, R"(["text",-5,2.5,{},[],true,null])").as_array();
    using Read = void (*)(const JSONValue&);
    const std::pair<Read, const char*> reads[] = {
        {[](const JSONValue& value) { value.as_int64(); }, "INTEGER, found STRING: text"},
        {[](const JSONValue& value) { value.as_string(); }, "STRING, found INTEGER: -5"},
        {[](const JSONValue& value) { value.as_int64(); }, "INTEGER, found DOUBLE: 2.5"},
        {[](const JSONValue& value) { value.as_array(); }, "ARRAY, found OBJECT"},
        {[](const JSONValue& value) { value.as_map(); }, "OBJECT, found ARRAY"},
        {[](const JSONValue& value) { value.as_double(); }, "DOUBLE, found BOOLEAN: true"},
        {[](const JSONValue& value) { value.as_bool(); }, "BOOLEAN, found"}};
    for (size_t index = 0; index < std::size(reads); ++index)
        EXPECT_THAT(Thrown([&] { reads[index].first(values[index]); }),
                    testing::EndsWith(std::string("to be ") + reads[index].second));
    EXPECT_EQ(Thrown([&] { JSONValue().as_bool(); }), R"(Expected JSON node "" to be BOOLEAN, found)");
}

TEST(JSONValue, BuildsWhatItWrites) {
    JSONObject document;
    JSONValue root = Load(document, "{}");
    JSONValue list, map, value;
    ASSERT_TRUE(root.add_int64("messageID", std::numeric_limits<int64_t>::min(), value) &&
                root.add_array("list", list) && list.add_string("Grün \"字\"\n", value) &&
                list.add_double(0.1, value) && list.add_bool(false, value) && list.add_int64(7, value) &&
                list.add_map(map) && map.add_string("k", "v", value) && map.add_map("m", value) &&
                list.add_array(value) && root.add_bool("flag", true, value) &&
                root.add_double("half", 0.5, value) &&
                root.add_string(std::string("a\0b", 3), std::string("\0c", 2), value));
    EXPECT_EQ(root.to_json(),
              R"({"messageID":-9223372036854775808,"list":["Grün \"字\"\n",0.1,false,7,{"k":"v","m":{}},[]],)"
              "\"flag\":true,\"half\":0.5,\"a\uFFFDb\":\"\uFFFDc\"}")
        << "a zero byte cuts nothing off";
    EXPECT_FALSE(root.add_int64(1, value) || root.add_map(value) || list.add_bool("k", true, value));
    EXPECT_EQ(list.as_array().size(), 6u);
    EXPECT_EQ(list.as_array()[3].as_double(), 7);

    ASSERT_TRUE(root.add_string("k", "\xED\xB0\x80", value));
    EXPECT_EQ(Thrown([&] { root.to_json(); }), "An invalid UTF-8 string was passed to the JSON generator");
    root = Load(document, "{}");
    ASSERT_TRUE(root.add_double("k", std::numeric_limits<double>::infinity(), value));
    EXPECT_THAT(Thrown([&] { root.to_json(); }), StartsWith("An invalid floating point value was passed"));
}
