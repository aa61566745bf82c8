#include "CoreFoundation/CFUUID.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

#include "CoreFoundation++/CFRef.h"

namespace {

std::string TextOf(CFUUIDRef uuid) {
    return cf::ToUtf8(AdoptCF(CFUUIDCreateString(nullptr, uuid)).get());
}

CFRef<CFUUIDRef> FromText(const char* text) {
    return AdoptCF(CFUUIDCreateFromString(nullptr, cf::String(text).get()));
}

TEST(CFUUID, NewOnesAreRandomVersion4InUpperCase) {
    std::set<std::string> texts;
    for (int i = 0; i < 100; ++i) {
        const std::string text = TextOf(AdoptCF(CFUUIDCreate(nullptr)).get());
        EXPECT_TRUE(std::regex_match(
            text, std::regex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")))
            << text;
        texts.insert(text);
    }
    EXPECT_EQ(texts.size(), 100U);
}

TEST(CFUUID, TextAndBytesHaveOneOrder) {
    const auto uuid = FromText("00112233-4455-6677-8899-aabbccddeeff");
    const CFUUIDBytes bytes = CFUUIDGetUUIDBytes(uuid.get());
    EXPECT_EQ(bytes.byte1, 0x11);
    EXPECT_EQ(bytes.byte15, 0xFF);
    const auto copy = AdoptCF(CFUUIDCreateFromUUIDBytes(nullptr, bytes));
    EXPECT_TRUE(CFEqual(copy.get(), uuid.get()));
    EXPECT_EQ(CFHash(copy.get()), CFHash(uuid.get()));
    EXPECT_EQ(TextOf(copy.get()), "00112233-4455-6677-8899-AABBCCDDEEFF");
}

TEST(CFUUID, OtherTextsAreRefused) {
    for (const char* text :
         {"", "00112233-4455-6677-8899-aabbccddeef", "00112233-4455-6677-8899-aabbccddeeff0",
          "00112233445566778899aabbccddeeff0000", "0011223-34455-6677-8899-aabbccddeeff",
          "g0112233-4455-6677-8899-aabbccddeeff", "{0112233-4455-6677-8899-aabbccddeef}"})
        EXPECT_FALSE(FromText(text)) << text;
}

}  // namespace
