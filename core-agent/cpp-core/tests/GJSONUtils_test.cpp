#include "GJSONUtils.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "CapturedTrace.h"

using nlohmann::json;
using testing::HasSubstr;

TEST(GJSONUtils, DocumentsAreReadAndWrittenAsTheyAreOrLeftAlone) {
    CapturedTrace trace;
    json document;
    std::string text;
    ASSERT_EQ(GJSONUtils::Parse(R"( { "b" : [ 1, 2.5, "Grün 字" ], "a": 7 } )", document), 0u);
    ASSERT_EQ(GJSONUtils::Serialise(document, text), 0u);
    EXPECT_EQ(text, R"({"a":7,"b":[1,2.5,"Grün 字"]})");
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

TEST(GJSONUtils, ATreeGivesEachKindOrSaysWhatIsWrong) {
    CapturedTrace trace;
    JSONObject document;
    JSONValue root;
    EXPECT_EQ(GJSONUtils::Parse(document, "OK", root), CoreErrorCodes::kInvalidParam);
    EXPECT_THAT(trace.Text(), HasSubstr("Failed to parse JSON: No JSON loaded in parser"));
    constexpr char kText[] =
        R"({"s":"t","i":5,"d":2.5,"b":true,"l":[1,2],"n":null,"big":4294967296,"minus":-1,
                                 "huge":99999999999999999999,"mixed":[1,-1]})";
    ASSERT_EQ(GJSONUtils::Parse(document, kText, root), 0u);
    std::string text;
    uint32_t integer = 0;
    int64_t wide = 0;
    double number = -1;
    bool flag = false;
    std::vector<JSONValue> values;
    std::vector<uint32_t> integers{9};
    using GJSONUtils::GetValueForKey;
    for (const ErrorCode code : {GetValueForKey(root, "s", text), GetValueForKey(root, "i", integer),
                                 GetValueForKey(root, "big", wide), GetValueForKey(root, "i", number),
                                 GetValueForKey(root, "b", flag), GetValueForKey(root, "l", values),
                                 GetValueForKey(root, "l", integers)})
        EXPECT_EQ(code, 0u);
    EXPECT_EQ(GetValueForKey(root, "none", text), CoreErrorCodes::kNotFound);
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='!jsonValue.find(key, value)'"));
    const ErrorCode ofOtherKinds[] = {
        GetValueForKey(root, "n", text),      GetValueForKey(root, "d", integer),
        GetValueForKey(root, "big", integer), GetValueForKey(root, "minus", integer),
        GetValueForKey(root, "huge", wide),   GetValueForKey(root, "mixed", integers),
        GetValueForKey(root, "s", number),    GetValueForKey(root, "i", flag),
        GetValueForKey(root, "s", values)};
    EXPECT_THAT(ofOtherKinds, testing::Each(CoreErrorCodes::kError));
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='!valueObject.is_bool()'"));
    EXPECT_EQ(std::tie(text, integer, wide, number, flag), std::tuple("t", 5u, 4294967296, 5., true));
    EXPECT_EQ(values.size(), 2u);
    EXPECT_EQ(integers, (std::vector<uint32_t>{1, 2}));
}
