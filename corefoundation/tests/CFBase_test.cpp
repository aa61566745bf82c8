#include "CoreFoundation/CFBase.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

#include "CoreFoundation++/CFRef.h"

namespace {

TEST(CFBase, CollectionsOwnWhatTheyHoldAndGiveItBack) {
    const auto text = cf::String("held");
    const auto array = cf::MutableArray();
    const auto dictionary = cf::MutableDictionary();
    cf::Append(array, text);
    cf::Append(array, text);
    cf::Set(dictionary, text.get(), text);
    EXPECT_EQ(CFGetRetainCount(text.get()), 5);

    CFArraySetValueAtIndex(array.get(), 0, kCFNull);
    CFArrayRemoveValueAtIndex(array.get(), 1);
    EXPECT_EQ(CFGetRetainCount(text.get()), 3);
    cf::Set(dictionary, text.get(), 1);
    EXPECT_EQ(CFGetRetainCount(text.get()), 2);
    CFDictionaryRemoveValue(dictionary.get(), text.get());
    EXPECT_EQ(CFGetRetainCount(text.get()), 1);
}

TEST(CFBase, AReplacedValueMayBeItsOwnReplacement) {
    const auto array = cf::MutableArray();
    cf::Append(array, "only owned by the array");
    CFArraySetValueAtIndex(array.get(), 0, CFArrayGetValueAtIndex(array.get(), 0));
    EXPECT_EQ(cf::ToUtf8(cf::Get<CFStringRef>(array.get(), 0)), "only owned by the array");

    const auto dictionary = cf::MutableDictionary();
    cf::Set(dictionary, "key", "only owned by the dictionary");
    CFDictionarySetValue(dictionary.get(), CFSTR("key"), cf::Get(dictionary.get(), "key"));
    EXPECT_EQ(cf::GetString(dictionary.get(), "key"), "only owned by the dictionary");
}

TEST(CFBase, ManyThreadsMayRetainAndReleaseOneObject) {
    const auto text = cf::String("shared");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&text] {
            for (int turn = 0; turn < 20000; ++turn) {
                const CFRef<CFStringRef> copy = text;
                const auto array = cf::MutableArray();
                cf::Append(array, copy);
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(CFGetRetainCount(text.get()), 1);
}

TEST(CFBase, ConstantsOutliveEveryRelease) {
    for (const CFTypeRef constant : {CFTypeRef{kCFNull}, CFTypeRef{kCFBooleanTrue},
                                     CFTypeRef{kCFBooleanFalse}, CFTypeRef{CFSTR("constant")}}) {
        CFRelease(constant);
        CFRelease(constant);
        EXPECT_EQ(CFGetRetainCount(constant), std::numeric_limits<CFIndex>::max());
        EXPECT_TRUE(CFEqual(constant, CFRetain(constant)));
    }
}

TEST(CFBase, EqualityNeedsOneTypeAndHashesFollowIt) {
    const auto build = [] {
        const auto list = cf::MutableArray();
        cf::Append(list, cf::Number(1));
        cf::Append(list, "one");
        const auto dictionary = cf::MutableDictionary();
        cf::Set(dictionary, "list", list);
        return dictionary;
    };
    const auto first = build();
    const auto second = build();
    EXPECT_TRUE(CFEqual(first.get(), second.get()));
    EXPECT_EQ(CFHash(first.get()), CFHash(second.get()));
    cf::Set(second, "list", cf::MutableArray());
    EXPECT_FALSE(CFEqual(first.get(), second.get()));
    EXPECT_FALSE(CFEqual(cf::Number(1).get(), kCFBooleanTrue));
    EXPECT_FALSE(CFEqual(cf::Number(1).get(), cf::String("1").get()));
}

TEST(CFBase, DescriptionsShowWhatIsInside) {
    const auto dictionary = cf::MutableDictionary();
    const auto array = cf::MutableArray();
    const uint8_t bytes[] = {0xCA, 0xFE};
    cf::Append(array, AdoptCF(CFDataCreate(nullptr, bytes, 2)));
    cf::Append(array, 2.5);
    cf::Set(dictionary, "flag", true);
    cf::Set(dictionary, "values", array);
    EXPECT_EQ(cf::ToUtf8(AdoptCF(CFCopyDescription(dictionary.get())).get()),
              "{flag = true, values = (<cafe>, 2.5)}");
}

// Debug builds stop at a programming error; in release builds the same calls answer with nothing.
TEST(CFBaseDeathTest, WrongTypesAndChangesOfImmutableObjectsAreRefused) {
    const auto number = cf::Number(7);
    const void* misplaced = number.get();
    CFIndex length = 0;
    EXPECT_DEBUG_DEATH(length = CFStringGetLength(static_cast<CFStringRef>(misplaced)), "another type");
    EXPECT_EQ(length, 0);
    EXPECT_DEBUG_DEATH(length = CFArrayGetCount(nullptr), "not NULL");
    EXPECT_EQ(length, 0);

    const void* values[] = {number.get()};
    const auto fixed = AdoptCF(CFArrayCreate(nullptr, values, 1, &kCFTypeArrayCallBacks));
    EXPECT_DEBUG_DEATH(CFArrayRemoveAllValues(const_cast<CFMutableArrayRef>(fixed.get())),
                       "cannot be changed");
    EXPECT_EQ(CFArrayGetCount(fixed.get()), 1);
    const void* value = nullptr;
    EXPECT_DEBUG_DEATH(value = CFArrayGetValueAtIndex(fixed.get(), 1), "index");
    EXPECT_EQ(value, nullptr);
}

}  // namespace
