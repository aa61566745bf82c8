#include "GJSONUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "CapturedTrace.h"

using nlohmann::json;
using testing::HasSubstr;

TEST(GJSONUtils, DocumentsAreReadAndWrittenAsTheyAreOrLeftAlone) {
    CapturedTrace trace;
    json document;
    std::string text;
    ASSERT_EQ(GJSONUtils::Parse(R"( { "b" : [ 1, 2.5, "Grün 字" ], "a": null } )", document), 0u);
    ASSERT_EQ(GJSONUtils::Serialise(document, text), 0u);
    EXPECT_EQ(text, R"({"a":null,"b":[1,2.5,"Grün 字"]})");
    for (const char* wrong : {"", "{", "\"\xff\"", "nul", "[1,]"}) {
        EXPECT_EQ(GJSONUtils::Parse(std::string(wrong), document), CoreErrorCodes::kInvalidParam) << wrong;
        EXPECT_THAT(trace.Text(),
                    HasSubstr("Logging string that failed to json parse: " + std::string(wrong) + "\n"));
    }
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='CoreErrorCodes::kInvalidParam'"));
    EXPECT_EQ(document["b"][0], 1);
    const std::string bytes("[1]\0garbage", 11);
    ASSERT_EQ(GJSONUtils::Parse(std::vector<char>(bytes.begin(), bytes.end()), document), 0u);
    EXPECT_EQ(document, json::array({1}));
}

TEST(GJSONUtils, WhatCannotBeWrittenLeavesTheTextAlone) {
    const auto nested = [](int depth) {
        return json::parse(std::string(depth, '[') + std::string(depth, ']'));
    };
    std::string text = "kept";
    EXPECT_EQ(GJSONUtils::Serialise(json("\xff"), text), CoreErrorCodes::kInvalidParam);
    for (const int depth : {200000, 514})
        EXPECT_EQ(GJSONUtils::Serialise(json{{"a", 1}, {"b", nested(depth)}}, text),
                  CoreErrorCodes::kInvalidParam);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(GJSONUtils::Serialise(nested(513), text), 0u);
}

namespace {

class JSONTree : public testing::Test {
protected:
    void Load(const std::string& text) { ASSERT_EQ(GJSONUtils::Parse(document, text, root), 0u); }
    /// The call was answered with the code and reported with the expression.
    void ExpectFailure(ErrorCode expected, const std::string& expression, ErrorCode code) {
        EXPECT_EQ(code, expected) << expression;
        EXPECT_THAT(trace.Text(), HasSubstr("Expression='" + expression + "'"));
        trace.Clear();
    }

    CapturedTrace trace;
    JSONObject document;
    JSONValue root;
};

}  // namespace

TEST_F(JSONTree, WhatDoesNotParseIsLoggedAndLeavesTheHandleAlone) {
    Load("{\"a\":1}");
    for (const std::string text : {"", "{", "{} x", "\xFF", "OK"}) {
        trace.Clear();
        EXPECT_EQ(GJSONUtils::Parse(document, text, root), CoreErrorCodes::kInvalidParam) << text;
        EXPECT_THAT(trace.Text(), HasSubstr("Failed to parse JSON: "));
        EXPECT_THAT(trace.Text(),
                    HasSubstr(text == "OK" ? "No JSON loaded in parser" : "JSON parse error:\n"));
        EXPECT_THAT(trace.Text(), HasSubstr("Expression='err'"));
    }
    EXPECT_EQ(root.name(), "root");
}

TEST_F(JSONTree, ReadsEachKindOrSaysWhatIsWrong) {
    Load(R"({"s":"t","i":5,"d":2.5,"b":true,"l":[1,2],"n":null,"big":4294967296,"minus":-1,
             "huge":99999999999999999999,"mixed":[1,-1]})");
    std::string text;
    uint32_t integer = 0;
    int64_t wide = 0;
    double number = -1;
    bool flag = false;
    std::vector<JSONValue> values;
    std::vector<uint32_t> integers{9};
    using GJSONUtils::GetValueForKey;
    EXPECT_EQ(GetValueForKey(root, "s", text), 0u);
    EXPECT_EQ(GetValueForKey(root, "i", integer), 0u);
    EXPECT_EQ(GetValueForKey(root, "big", wide), 0u);
    EXPECT_EQ(GetValueForKey(root, "i", number), 0u) << "an integer is a double too";
    EXPECT_EQ(GetValueForKey(root, "b", flag), 0u);
    EXPECT_EQ(GetValueForKey(root, "l", values), 0u);
    EXPECT_EQ(GetValueForKey(root, "l", integers), 0u);

    const ErrorCode missing = GetValueForKey(root, "none", text);
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='!jsonValue.find(key, value)'"));
    ExpectFailure(CoreErrorCodes::kNotFound, "GetValueForKey(jsonValue, key, valueObject)", missing);
    constexpr ErrorCode kError = CoreErrorCodes::kError;
    ExpectFailure(kError, "!valueObject.is_string()", GetValueForKey(root, "n", text));
    for (const char* key : {"d", "big", "minus"})
        ExpectFailure(kError, "!valueObject.is_int()", GetValueForKey(root, key, integer));
    ExpectFailure(kError, "!valueObject.is_int()", GetValueForKey(root, "huge", wide));
    ExpectFailure(kError, "!valueObject.is_int()", GetValueForKey(root, "mixed", integers));
    ExpectFailure(kError, "!valueObject.is_double()", GetValueForKey(root, "s", number));
    ExpectFailure(kError, "!valueObject.is_bool()", GetValueForKey(root, "i", flag));
    ExpectFailure(kError, "!valueObject.is_array()", GetValueForKey(root, "s", values));
    EXPECT_EQ(std::tie(text, integer, wide, number, flag), std::tuple("t", 5u, 4294967296, 5., true));
    EXPECT_EQ(values.size(), 2u);
    EXPECT_EQ(integers, (std::vector<uint32_t>{1, 2}));
}

TEST_F(JSONTree, AFailedAdditionIsReported) {
    Load("{}");
    JSONValue value;
    JSONValue number;
    ASSERT_EQ(GJSONUtils::SetValueForKey(1, "i", root, number), 0u);
    using namespace GJSONUtils;
    const std::pair<const char*, ErrorCode> additions[] = {
        {"!jsonValue.add_string(key, value, newValue)", SetValueForKey("v", "k", number, value)},
        {"!jsonValue.add_int64(key, value, newValue)", SetValueForKey(1u, "k", number, value)},
        {"!jsonValue.add_double(key, value, newValue)", SetValueForKey(.5, "k", number, value)},
        {"!jsonValue.add_bool(key, value, newValue)", SetValueForKey(true, "k", number, value)},
        {"!jsonValue.add_array(key, newValue)", AddArrayForKey("k", number, value)},
        {"!jsonValue.add_map(key, newValue)", AddMapForKey("k", number, value)},
        {"!jsonValue.add_string(value, newValue)", AddValueToArray(root, "v", value)},
        {"!jsonValue.add_int64(value, newValue)", AddValueToArray(root, 1, value)},
        {"!jsonValue.add_double(value, newValue)", AddValueToArray(root, .5, value)},
        {"!jsonValue.add_bool(value, newValue)", AddValueToArray(root, false, value)},
        {"!jsonValue.add_array(newValue)", AddArrayToArray(root, value)},
        {"!jsonValue.add_map(newValue)", AddMapToArray(root, value)}};
    for (const auto& [expression, code] : additions) {
        EXPECT_EQ(code, CoreErrorCodes::kOutOfMemory) << expression;
        EXPECT_THAT(trace.Text(), HasSubstr("Expression='" + std::string(expression) + "'"));
    }
    EXPECT_EQ(root.to_json(), R"({"i":1})");
}
