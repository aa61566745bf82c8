#include "JSONConversion.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using nlohmann::json;

TEST(JSONConversion, WhatCoreFoundationHoldsComesBackAsItWasDownToTheDeepestLevel) {
    const auto comesBack = [](const json& value, int deepest, int deepestBack, WholeNumbers numbers) {
        return JSONFromCF(CFFromJSON(value, deepest).get(), deepestBack, numbers).dump();
    };
    const json value = {{"flag", true}, {"whole", -7}, {"real", 3.0}, {"list", {1, "Grün", {{"k", 2.5}}}}};
    EXPECT_EQ(comesBack(value, 9, 9, WholeNumbers::kAsTheyAre), value.dump());
    EXPECT_EQ(comesBack({3.0, 3.5}, 9, 9, WholeNumbers::kAsIntegers), "[3,3.5]");
    const json odd = {18446744073709551615u, nullptr, "a\xFF", {{"k\xFF", 1}, {"none", nullptr}}};
    EXPECT_EQ(comesBack(odd, 9, 9, WholeNumbers::kAsTheyAre),
              "[1.8446744073709552e+19,\"a\uFFFD\",{\"k\uFFFD\":1}]");
    const json deep = {{{"k", {1}}}};
    EXPECT_EQ(comesBack(deep, 9, 2, WholeNumbers::kAsTheyAre), R"([{"k":[null]}])");
    EXPECT_EQ(comesBack(deep, 2, 9, WholeNumbers::kAsTheyAre), R"([{"k":[]}])");
}
