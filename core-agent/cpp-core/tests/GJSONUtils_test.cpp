#include "GJSONUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "CapturedTrace.h"

using nlohmann::json;

TEST(GJSONUtils, WritesCompactTextWithItsCharactersAsTheyAre) {
    json document;
    ASSERT_EQ(GJSONUtils::Parse(R"( { "b" : [ 1, 2.5, "Grün 字" ], "a": null } )", document), 0u);
    std::string text;
    ASSERT_EQ(GJSONUtils::Serialise(document, text), 0u);
    EXPECT_EQ(text, R"({"a":null,"b":[1,2.5,"Grün 字"]})");
}

TEST(GJSONUtils, WhatIsNotJSONLeavesTheDocumentAlone) {
    CapturedTrace trace;
    json document = "kept";
    for (const char* text : {"", "{", "[1,]", "\"\xff\"", "nul"})
        EXPECT_EQ(GJSONUtils::Parse(std::string(text), document), CoreErrorCodes::kInvalidParam) << text;
    EXPECT_EQ(document, "kept");
    EXPECT_THAT(trace.Text(), testing::HasSubstr("Logging string that failed to json parse: [1,]\n"));
    EXPECT_THAT(trace.Text(), testing::HasSubstr("Expression='CoreErrorCodes::kInvalidParam'"));
}

TEST(GJSONUtils, BytesAfterAZeroByteAreIgnored) {
    json document;
    const std::string bytes("[1]\0garbage", 11);
    ASSERT_EQ(GJSONUtils::Parse(std::vector<char>(bytes.begin(), bytes.end()), document), 0u);
    EXPECT_EQ(document, json::array({1}));
}

TEST(GJSONUtils, DeepNestingIsTakenApartWithoutHarm) {
    json document;
    const std::string text = std::string(100000, '[') + std::string(100000, ']');
    EXPECT_EQ(GJSONUtils::Parse(text, document), 0u);
}

TEST(GJSONUtils, TextThatIsNoUtf8CannotBeWritten) {
    std::string text = "kept";
    EXPECT_EQ(GJSONUtils::Serialise(json("\xff"), text), CoreErrorCodes::kInvalidParam);
    EXPECT_EQ(text, "kept");
}

namespace {

class TreeTest : public testing::Test {
protected:
    void Load(const std::string& text) { ASSERT_EQ(GJSONUtils::Parse(document, text, root), 0u); }

    CapturedTrace trace;
    JSONObject document;
    JSONValue root;
};

using JSONTree = TreeTest;

}  // namespace

TEST_F(JSONTree, WhatDoesNotParseIsLoggedAndLeavesTheHandleAlone) {
    Load("{\"a\":1}");
    const JSONValue before = root;
    for (const char* text : {"", "{", "{} x", "OK", "\xFF"}) {
        trace.Clear();
        EXPECT_EQ(GJSONUtils::Parse(document, text, root), CoreErrorCodes::kInvalidParam) << text;
        EXPECT_THAT(trace.Text(), testing::HasSubstr("Expression='err'"));
        EXPECT_THAT(trace.Text(), testing::HasSubstr(std::string(text) == "OK"
                                                         ? "Failed to parse JSON: No JSON loaded in parser"
                                                         : "Failed to parse JSON: JSON parse error:\n"));
    }
    EXPECT_EQ(root.name(), "root");
}

TEST_F(JSONTree, ReadsEachKindOrSaysWhatIsWrong) {
    Load(R"({"s":"t","i":5,"d":2.5,"b":true,"l":[1,2],"n":null})");
    std::string text = "kept";
    int32_t integer = -1;
    double number = -1;
    bool flag = false;
    std::vector<JSONValue> values;
    std::vector<uint32_t> integers{9};
    using GJSONUtils::GetValueForKey;
    EXPECT_EQ(GetValueForKey(root, "s", text), 0u);
    EXPECT_EQ(GetValueForKey(root, "i", integer), 0u);
    EXPECT_EQ(GetValueForKey(root, "i", number), 0u) << "an integer is a double too";
    EXPECT_EQ(GetValueForKey(root, "b", flag), 0u);
    EXPECT_EQ(GetValueForKey(root, "l", values), 0u);
    EXPECT_EQ(GetValueForKey(root, "l", integers), 0u);
    EXPECT_EQ(text, "t");
    EXPECT_EQ(integer, 5);
    EXPECT_EQ(number, 5);
    EXPECT_TRUE(flag);
    EXPECT_EQ(values.size(), 2u);
    EXPECT_EQ(integers, (std::vector<uint32_t>{1, 2}));

    EXPECT_EQ(GetValueForKey(root, "none", text), CoreErrorCodes::kNotFound);
    EXPECT_THAT(trace.Text(), testing::HasSubstr("Expression='!jsonValue.find(key, value)'"));
    EXPECT_THAT(trace.Text(), testing::HasSubstr("Expression='GetValueForKey(jsonValue, key, valueObject)'"));
    const auto isWrongKind = [&](const char* expression, ErrorCode code) {
        EXPECT_EQ(code, CoreErrorCodes::kError) << expression;
        EXPECT_THAT(trace.Text(), testing::HasSubstr("Expression='" + std::string(expression) + "'"));
        trace.Clear();
    };
    isWrongKind("!valueObject.is_string()", GetValueForKey(root, "n", text));
    isWrongKind("!valueObject.is_int()", GetValueForKey(root, "d", integer));
    isWrongKind("!valueObject.is_double()", GetValueForKey(root, "s", number));
    isWrongKind("!valueObject.is_bool()", GetValueForKey(root, "i", flag));
    isWrongKind("!valueObject.is_array()", GetValueForKey(root, "s", values));
    isWrongKind("!valueObject.is_array()", GetValueForKey(root, "i", integers));
    EXPECT_EQ(text, "t");
    EXPECT_EQ(integer, 5);
    EXPECT_EQ(integers.size(), 2u);
}

TEST_F(JSONTree, AnIntegerThatDoesNotFitIsOfAnotherKind) {
    Load(R"({"big":4294967296,"minus":-1,"huge":99999999999999999999,"list":[1,-1]})");
    uint32_t value = 7;
    int64_t wide = 0;
    std::vector<uint32_t> values{9};
    EXPECT_EQ(GJSONUtils::GetValueForKey(root, "big", value), CoreErrorCodes::kError);
    EXPECT_EQ(GJSONUtils::GetValueForKey(root, "minus", value), CoreErrorCodes::kError);
    EXPECT_EQ(GJSONUtils::GetValueForKey(root, "huge", wide), CoreErrorCodes::kError);
    EXPECT_EQ(GJSONUtils::GetValueForKey(root, "list", values), CoreErrorCodes::kError);
    EXPECT_EQ(GJSONUtils::GetValueForKey(root, "big", wide), 0u);
    EXPECT_EQ(value, 7u);
    EXPECT_EQ(values, (std::vector<uint32_t>{9}));
}

TEST_F(JSONTree, AFailedAdditionIsReported) {
    Load("{}");
    JSONValue value;
    JSONValue number;
    ASSERT_EQ(GJSONUtils::SetValueForKey(1, "i", root, number), 0u);
    const auto fails = [&](const char* expression, ErrorCode code) {
        EXPECT_EQ(code, CoreErrorCodes::kOutOfMemory) << expression;
        EXPECT_THAT(trace.Text(), testing::HasSubstr("Expression='" + std::string(expression) + "'"));
        trace.Clear();
    };
    fails("!jsonValue.add_string(key, value, newValue)", GJSONUtils::SetValueForKey("v", "k", number, value));
    fails("!jsonValue.add_int64(key, value, newValue)", GJSONUtils::SetValueForKey(1u, "k", number, value));
    fails("!jsonValue.add_double(key, value, newValue)", GJSONUtils::SetValueForKey(.5, "k", number, value));
    fails("!jsonValue.add_bool(key, value, newValue)", GJSONUtils::SetValueForKey(true, "k", number, value));
    fails("!jsonValue.add_array(key, newValue)", GJSONUtils::AddArrayForKey("k", number, value));
    fails("!jsonValue.add_map(key, newValue)", GJSONUtils::AddMapForKey("k", number, value));
    fails("!jsonValue.add_string(value, newValue)", GJSONUtils::AddValueToArray(root, "v", value));
    fails("!jsonValue.add_int64(value, newValue)", GJSONUtils::AddValueToArray(root, 1, value));
    fails("!jsonValue.add_map(newValue)", GJSONUtils::AddMapToArray(root, value));
    EXPECT_EQ(root.to_json(), R"({"i":1})");
}
