#include "CoreFoundation++/CFRef.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

TEST(CFRef, EveryOwnerCountsOnce) {
    auto first = AdoptCF(CFStringCreateWithCString(nullptr, "owned", kCFStringEncodingUTF8));
    const CFStringRef object = first.get();
    EXPECT_EQ(CFGetRetainCount(object), 1);
    auto second = first;
    const auto third = RetainCF(object);
    EXPECT_EQ(CFGetRetainCount(object), 3);
    const auto moved = std::move(second);
    first = moved;
    EXPECT_EQ(CFGetRetainCount(object), 3);
    const auto& self = first;
    first = self;
    EXPECT_EQ(CFGetRetainCount(object), 3);
    first.reset();
    EXPECT_FALSE(first);
    CFRef<CFTypeRef> general = moved;
    CFRelease(general.release());
    EXPECT_EQ(CFGetRetainCount(object), 2);
    EXPECT_FALSE(CFRef<CFStringRef>::Retain(nullptr));
}

TEST(CFRef, CastsAreChecked) {
    const auto text = cf::String("text");
    EXPECT_EQ(cf::As<CFStringRef>(text.get()), text.get());
    EXPECT_EQ(cf::As<CFArrayRef>(text.get()), nullptr);
    EXPECT_EQ(cf::As<CFStringRef>(nullptr), nullptr);
}

TEST(CFRef, DictionariesAnswerWithTypedValuesOrNothing) {
    const auto dictionary = cf::MutableDictionary();
    cf::Set(dictionary, "text", std::string("\u00E9\0z", 4));
    cf::Set(dictionary, "whole", uint16_t{65535});
    cf::Set(dictionary, "real", 2.5);
    cf::Set(dictionary, "flag", true);
    cf::Set(dictionary, "list", cf::MutableArray());
    const CFDictionaryRef values = dictionary.get();
    EXPECT_EQ(cf::GetString(values, "text"), std::string("\u00E9\0z", 4));
    EXPECT_EQ(cf::GetString(values, "whole"), "");
    EXPECT_EQ(cf::GetInt64(values, CFSTR("whole")), 65535);
    EXPECT_EQ(cf::GetInt64(values, "real"), std::nullopt);
    EXPECT_EQ(cf::GetInt64(values, "flag"), 1);
    EXPECT_EQ(cf::GetInt64(values, "text"), std::nullopt);
    EXPECT_EQ(cf::GetBool(values, "whole"), true);
    EXPECT_EQ(cf::GetBool(values, "missing"), std::nullopt);
    EXPECT_EQ(cf::GetDouble(values, "real"), 2.5);
    EXPECT_NE(cf::GetArray(values, "list"), nullptr);
    EXPECT_EQ(cf::GetDictionary(values, "list"), nullptr);
    EXPECT_EQ(cf::GetString(nullptr, "text"), "");
    EXPECT_EQ(cf::GetString(values, "\xFF"), "");
}

TEST(CFRef, SettingNothingRemovesTheKey) {
    const auto dictionary = cf::MutableDictionary();
    for (const char* key : {"a", "b", "c"})
        cf::Set(dictionary, key, 1);
    cf::Set(dictionary, "a", CFStringRef{nullptr});
    cf::Set(dictionary, "b", "\xFF");
    cf::Set(dictionary, "c", UINT64_MAX);
    EXPECT_EQ(cf::Count(dictionary.get()), 0);
}

}  // namespace
