#include "JSONConversion.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using nlohmann::json;

TEST(JSONConversion, WhatCoreFoundationHoldsComesBackAsItWas) {
    const json value = {
        {"text", "Grün"}, {"flag", true}, {"whole", -7}, {"real", 3.0}, {"list", {1, "a", {{"k", 2.5}}}}};
    EXPECT_EQ(JSONFromCF(CFFromJSON(value, 9).get(), 9, WholeNumbers::kAsTheyAre).dump(), value.dump());
    EXPECT_EQ(JSONFromCF(CFFromJSON(3.0, 0).get(), 0, WholeNumbers::kAsIntegers).dump(), "3");
    EXPECT_EQ(JSONFromCF(CFFromJSON(3.5, 0).get(), 0, WholeNumbers::kAsIntegers).dump(), "3.5");
    const json odd = {18446744073709551615u, nullptr, "a\xFF", {{"k\xFF", 1}, {"none", nullptr}}};
    EXPECT_EQ(JSONFromCF(CFFromJSON(odd, 9).get(), 9, WholeNumbers::kAsTheyAre).dump(),
              "[1.8446744073709552e+19,\"a\uFFFD\",{\"k\uFFFD\":1}]");
    EXPECT_EQ(JSONFromCF(nullptr, 9, WholeNumbers::kAsTheyAre), nullptr);
}

TEST(JSONConversion, NothingIsConvertedBelowTheDeepestLevel) {
    const json value = {{{"k", {1}}}};
    EXPECT_EQ(JSONFromCF(CFFromJSON(value, 9).get(), 2, WholeNumbers::kAsTheyAre).dump(),
              R"([{"k":[null]}])");
    EXPECT_EQ(JSONFromCF(CFFromJSON(value, 2).get(), 9, WholeNumbers::kAsTheyAre).dump(), R"([{"k":[]}])");
    EXPECT_EQ(JSONFromCF(CFFromJSON(value, 1).get(), 9, WholeNumbers::kAsTheyAre).dump(), "[{}]");
}
