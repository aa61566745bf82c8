#include "JSONValue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// What the action throws.
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

}  // namespace

TEST(JSONObject, HoldsOneTreeAtATime) {
    JSONObject document;
    EXPECT_EQ(Thrown([&] { document.root(); }), "No JSON loaded in parser");
    EXPECT_EQ(Load(document, R"({"a":1})").as_map().size(), 1u);
    EXPECT_THAT(Thrown([&] { document.load("{\"a\":"); }), StartsWith("JSON parse error:\n"));
    EXPECT_EQ(Thrown([&] { document.root(); }), "No JSON loaded in parser") << "the old tree is gone";
    document.load("OK");
    EXPECT_EQ(Thrown([&] { document.get({"a"}); }), "No JSON loaded in parser");
    EXPECT_THAT(Thrown([&] { document.load("OK "); }), StartsWith("JSON parse error:\n"));
    document.load_map();
    EXPECT_EQ(document.root().to_json(), "{}");
}

TEST(JSONObject, PathsLeadThroughObjects) {
    JSONObject document;
    const JSONValue root = Load(document, R"({"a":{"b":{"c":7}},"a2":[]})");
    EXPECT_EQ(root.name(), "root");
    EXPECT_EQ(document.get({"a", "b", "c"}).as_int64(), 7);
    EXPECT_EQ(document.get({"a", "b", "c"}).name(), "abc");
    EXPECT_NE(Thrown([&] { document.get({"a", "x"}); }), "nothing");
    EXPECT_NE(Thrown([&] { document.get({"a2", "0"}); }), "nothing");
}

TEST(JSONObject, WhatIsNestedTooDeepIsNoDocument) {
    JSONObject document;
    const auto nested = [](int depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    document.load(nested(512));
    EXPECT_EQ(Thrown([&] { document.load(nested(513)); }), "JSON parse error:\nnested too deep\n");
    EXPECT_EQ(Thrown([&] { document.load(std::string(10'000'000, '[')); }),
              "JSON parse error:\nnested too deep\n");
    EXPECT_TRUE(Load(document, R"(["[[[\"[[["])").is_array()) << "brackets in texts do not count";
    // Comments would hide brackets.
    for (const std::string comment : {"/*\"*/", "/*]]]]*/", "//\"\n"})
        EXPECT_THAT(Thrown([&] { document.load(comment + nested(300000)); }),
                    StartsWith("JSON parse error:\n"));
    EXPECT_THAT(Thrown([&] { document.load("{}//x"); }), StartsWith("JSON parse error:\n"));
    EXPECT_TRUE(Load(document, R"(["http://x"])").is_array()) << "slashes in texts do not count";
    document.load(nested(200));
    EXPECT_EQ(Thrown([&] { document.root().to_json(); }), "YAJL's maximum generation depth was exceeded");
}

TEST(JSONValue, TellsTheKindsApart) {
    JSONObject document;
    const auto elements =
        Load(document, R"(["s", 3, 3.0, 1e3, 9223372036854775807, 9223372036854775808, true, null, {}, []])")
            .as_array();
    std::string kinds;
    for (const JSONValue& each : elements) {
        kinds += each.is_string() ? "s" : each.is_int() ? "i" : each.is_double() ? "d" : "";
        kinds += each.is_bool() ? "b" : each.is_map() ? "m" : each.is_array() ? "a" : "";
        kinds += " ";
    }
    EXPECT_EQ(kinds, "s i d d i d b  m a ");
    EXPECT_EQ(elements[1].as_double(), 3) << "an integer is a double too";
    EXPECT_EQ(elements[4].as_int64(), std::numeric_limits<int64_t>::max());
}

TEST(JSONValue, AReadOfTheWrongKindSaysWhatWasFound) {
    JSONObject document;
    const JSONValue root = Load(document, R"({"k":"text","i":-5,"d":2.5,"o":{},"a":[],"t":true,"n":null})");
    const auto read = [&](const char* key) {
        JSONValue value;
        EXPECT_TRUE(root.find(key, value));
        return value;
    };
    EXPECT_EQ(Thrown([&] { read("k").as_int64(); }),
              R"(Expected JSON node "k" to be INTEGER, found STRING: text)");
    EXPECT_EQ(Thrown([&] { read("i").as_string(); }),
              R"(Expected JSON node "i" to be STRING, found INTEGER: -5)");
    EXPECT_EQ(Thrown([&] { read("d").as_int64(); }),
              R"(Expected JSON node "d" to be INTEGER, found DOUBLE: 2.5)");
    EXPECT_EQ(Thrown([&] { read("o").as_array(); }), R"(Expected JSON node "o" to be ARRAY, found OBJECT)");
    EXPECT_EQ(Thrown([&] { read("a").as_map(); }), R"(Expected JSON node "a" to be OBJECT, found ARRAY)");
    EXPECT_EQ(Thrown([&] { read("t").as_double(); }),
              R"(Expected JSON node "t" to be DOUBLE, found BOOLEAN: true)");
    EXPECT_EQ(Thrown([&] { read("n").as_bool(); }), R"(Expected JSON node "n" to be BOOLEAN, found)");
    EXPECT_EQ(Thrown([&] { JSONValue().as_bool(); }), R"(Expected JSON node "" to be BOOLEAN, found)");
}

TEST(JSONValue, FindsTheFirstMemberOfThatKeyOneLevelDown) {
    JSONObject document;
    const JSONValue root = Load(document, R"({"a":{"b":1},"c":1,"c":2})");
    JSONValue value("kept", nullptr);
    EXPECT_FALSE(root.find("b", value));
    EXPECT_EQ(value.name(), "kept");
    ASSERT_TRUE(root.find("c", value));
    EXPECT_EQ(value.as_int64(), 1);
    EXPECT_FALSE(value.find("c", value)) << "a number has no members";
}

TEST(JSONValue, BuildsWhatItWrites) {
    JSONObject document;
    JSONValue root = Load(document, "{}");
    JSONValue array;
    JSONValue map;
    JSONValue value;
    ASSERT_TRUE(root.add_int64("messageID", std::numeric_limits<int64_t>::min(), value));
    ASSERT_TRUE(root.add_array("list", array));
    ASSERT_TRUE(array.add_string("Grün \"字\"\n", value));
    ASSERT_TRUE(array.add_double(0.1, value));
    ASSERT_TRUE(array.add_bool(false, value));
    ASSERT_TRUE(array.add_int64(7, value));
    ASSERT_TRUE(array.add_map(map));
    ASSERT_TRUE(map.add_string("k", "v", value));
    ASSERT_TRUE(map.add_map("m", value));
    ASSERT_TRUE(array.add_array(value));
    ASSERT_TRUE(root.add_bool("flag", true, value));
    ASSERT_TRUE(root.add_double("half", 0.5, value));
    EXPECT_EQ(root.to_json(),
              R"({"messageID":-9223372036854775808,"list":["Grün \"字\"\n",0.1,false,7,{"k":"v","m":{}},[]],)"
              R"("flag":true,"half":0.5})");
    // Parsed nodes are added to as built ones are.
    JSONValue parsed = Load(document, R"({"a":[1,2,3]})");
    ASSERT_TRUE(parsed.find("a", array));
    for (int number = 4; number < 100; ++number)
        ASSERT_TRUE(array.add_int64(number, value));
    EXPECT_EQ(array.as_array().size(), 99u);
    EXPECT_EQ(array.as_array().back().as_int64(), 99);
}

TEST(JSONValue, AddingToAnotherKindChangesNothing) {
    JSONObject document;
    JSONValue root = Load(document, "{}");
    JSONValue value("kept", nullptr);
    EXPECT_FALSE(root.add_int64(1, value));
    EXPECT_FALSE(root.add_map(value));
    EXPECT_FALSE(JSONValue().add_string("k", "v", value));
    EXPECT_EQ(value.name(), "kept");
    EXPECT_EQ(root.to_json(), "{}");
}

TEST(JSONValue, WhatIsNoJSONCannotBeWritten) {
    JSONObject document;
    JSONValue value;
    JSONValue root = Load(document, "{}");
    ASSERT_TRUE(root.add_string("k", "\xFF", value));
    EXPECT_EQ(Thrown([&] { root.to_json(); }), "An invalid UTF-8 string was passed to the JSON generator");
    root = Load(document, "{}");
    ASSERT_TRUE(root.add_double("k", std::numeric_limits<double>::infinity(), value));
    EXPECT_EQ(Thrown([&] { root.to_json(); }),
              "An invalid floating point value was passed to the JSON generator (infinity or NaN)");
}
