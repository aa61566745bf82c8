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
