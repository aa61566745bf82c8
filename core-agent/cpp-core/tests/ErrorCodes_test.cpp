#include "ErrorCodes.h"

#include <gtest/gtest.h>

#include <set>

namespace {

const std::set<std::string> kNames = {
#define NAMESPACE(identifier, name)
#define MEMBER(space, name, number) #space "::" #name,
#define ODD_MEMBER(space, name, code) #space "::" #name,
#define END_NAMESPACE(name)
#include "ErrorCodeTable.inc"
#undef NAMESPACE
#undef MEMBER
#undef ODD_MEMBER
#undef END_NAMESPACE
};

/// FNV-1a, 64 bits.
uint64_t Digest(const std::string& text) {
    uint64_t digest = 0xCBF29CE484222325;
    for (const char byte : text)
        digest = (digest ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    return digest;
}

}  // namespace

TEST(ErrorCodes, CodesAndNamesAreThoseThatOtherProgramsKnow) {
    std::string table;
    for (const std::string& name : kNames) {
        const ErrorCode code = ErrorNameToCode(name);
        EXPECT_EQ(ErrorCodeToName(code), name);
        table += name + "=" + std::to_string(code) + "\n";
    }
    // Of the lines NAME=CODE in the order of names; made from the makers' list, not from the table here.
    EXPECT_EQ(kNames.size(), 282u);
    EXPECT_EQ(Digest(table), 0x4AC2589873C4BDF3u);
    EXPECT_EQ(GAgentIF::kShutdown, 0x0200200Du);
    EXPECT_EQ(ErrorCodeToName(0x07004005), "GFontToolResults::kFontAlreadyInDatabase") << "an odd one";
}

TEST(ErrorCodes, WhatIsNotInTheTableIsUnknown) {
    for (const ErrorCode code : {0x0B000000u, 0x01000001u, 0xFFFFFFFFu})
        EXPECT_EQ(ErrorCodeToName(code), "Unknown error code");
    for (const char* name : {"gagentif::kshutdown", "kShutdown", ""})
        EXPECT_EQ(ErrorNameToCode(name), CoreErrorCodes::kUnknownError);
}
