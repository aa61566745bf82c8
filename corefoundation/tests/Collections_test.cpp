#include <gtest/gtest.h>

#include <map>
#include <random>

#include "CoreFoundation/CFArray.h"
#include "CoreFoundation/CFBase.h"
#include "CoreFoundation/CFData.h"
#include "CoreFoundation/CFDictionary.h"
#include "Records.h"

namespace {

/// What is in it, in its order: "(1, 2)", "{a = 1}".
std::string Text(CFTypeRef object) {
    return cf::ToUtf8(AdoptCF(CFCopyDescription(object)).get());
}

TEST(CFDictionary, VisitsKeysInTheOrderOfTheirFirstSetting) {
    const auto dictionary = Record("zebra", 1, "apple", 1, "mango", 1, "fig", 1);
    cf::Set(dictionary, "apple", 2);
    CFDictionaryRemoveValue(dictionary.get(), CFSTR("zebra"));
    cf::Set(dictionary, "zebra", 3);
    EXPECT_EQ(Text(AdoptCF(CFDictionaryCreateCopy(nullptr, dictionary.get())).get()),
              "{apple = 2, mango = 1, fig = 1, zebra = 3}");
    std::string visited;
    CFDictionaryApplyFunction(
        dictionary.get(),
        [](const void* key, const void*, void* context) {
            *static_cast<std::string*>(context) += cf::ToUtf8(static_cast<CFStringRef>(key)) + " ";
        },
        &visited);
    EXPECT_EQ(visited, "apple mango fig zebra ");
    const void* values[4] = {};
    CFDictionaryGetKeysAndValues(dictionary.get(), nullptr, values);
    EXPECT_EQ(cf::ToInt64(values[3]), 3);
}

TEST(CFDictionary, AgreesWithAModelThroughManyRandomChangesThoughHashesAreTheSame) {
    auto oneHash = kCFTypeDictionaryKeyCallBacks;
    oneHash.hash = [](const void*) { return CFHashCode{42}; };
    for (const CFDictionaryKeyCallBacks* callBacks :
         {&kCFTypeDictionaryKeyCallBacks, &std::as_const(oneHash)}) {
        const auto dictionary =
            AdoptCF(CFDictionaryCreateMutable(nullptr, 0, callBacks, &kCFTypeDictionaryValueCallBacks));
        std::map<int, int> model;
        std::minstd_rand random(7);
        for (int step = 0; step < (callBacks == &oneHash ? 300 : 20000); ++step) {
            const int key = static_cast<int>(random() % 500);
            if (random() % 3 == 0) {
                CFDictionaryRemoveValue(dictionary.get(), cf::Number(key).get());
                model.erase(key);
            } else {
                CFDictionarySetValue(dictionary.get(), cf::Number(key).get(), cf::Number(step).get());
                model[key] = step;
            }
        }
        ASSERT_EQ(CFDictionaryGetCount(dictionary.get()), static_cast<CFIndex>(model.size()));
        for (const auto& [key, value] : model)
            EXPECT_EQ(cf::ToInt64(CFDictionaryGetValue(dictionary.get(), cf::Number(key).get())), value);
    }
}

TEST(CFBase, EqualityNeedsOneTypeAndValueAndNoOrderOfKeys) {
    const auto first = Record("a", List(1), "b", List(2)), second = Record("b", List(2), "a", List(1));
    EXPECT_TRUE(CFEqual(first.get(), second.get()));
    EXPECT_EQ(CFHash(first.get()), CFHash(second.get()));
    EXPECT_TRUE(CFDictionaryContainsValue(first.get(), List(2).get()));
    cf::Set(second, "a", cf::MutableArray());
    EXPECT_FALSE(CFEqual(first.get(), second.get()));
    CFDictionaryRemoveAllValues(second.get());
    EXPECT_FALSE(CFEqual(second.get(), first.get()));
    EXPECT_FALSE(CFEqual(cf::Number(1).get(), kCFBooleanTrue));
    EXPECT_FALSE(CFEqual(cf::Number(1).get(), cf::String("1").get()));
    const void* pointers[] = {"one", "other"};  // without callbacks they are themselves
    const auto both = AdoptCF(CFArrayCreate(nullptr, pointers, 2, nullptr));
    const auto part = AdoptCF(CFArrayCreateMutable(nullptr, 0, nullptr));
    EXPECT_TRUE(CFEqual(AdoptCF(CFArrayCreate(nullptr, nullptr, 0, nullptr)).get(), part.get()));
    CFArrayAppendArray(part.get(), both.get(), CFRangeMake(1, 1));
    EXPECT_TRUE(CFEqual(part.get(), AdoptCF(CFArrayCreate(nullptr, pointers + 1, 1, nullptr)).get()));
}

TEST(CFBase, CollectionsOwnWhatTheyHoldAndGiveItBack) {
    const auto text = cf::String("held");
    const auto array = List(text, text);
    const auto dictionary = Record();
    cf::Set(dictionary, text.get(), text);
    EXPECT_EQ(CFGetRetainCount(text.get()), 5);
    CFArraySetValueAtIndex(array.get(), 0, kCFNull);
    CFArrayRemoveValueAtIndex(array.get(), 1);
    EXPECT_EQ(CFGetRetainCount(text.get()), 3);
    cf::Set(dictionary, text.get(), 1);
    EXPECT_EQ(CFGetRetainCount(text.get()), 2);
    cf::Set(dictionary, "value", text);
    for (const CFStringRef key : {text.get(), CFSTR("value")})
        CFDictionaryRemoveValue(dictionary.get(), key);
    EXPECT_EQ(CFGetRetainCount(text.get()), 1);

    cf::Append(array, "owned by it alone");  // a replaced value may be its own replacement
    CFArraySetValueAtIndex(array.get(), 1, CFArrayGetValueAtIndex(array.get(), 1));
    cf::Set(dictionary, "key", "owned by it alone");
    CFDictionarySetValue(dictionary.get(), CFSTR("key"), cf::Get(dictionary.get(), "key"));
    EXPECT_EQ(Text(CFArrayGetValueAtIndex(array.get(), 1)) + Text(dictionary.get()),
              "owned by it alone{key = owned by it alone}");
}

// Debug builds stop at a programming error; in release builds the same calls answer with nothing.
TEST(CFBaseDeathTest, WrongTypesAndChangesOfImmutableObjectsAreRefused) {
    const auto number = cf::Number(7);
    const void* values[] = {number.get()};
    const auto fixed = AdoptCF(CFArrayCreate(nullptr, values, 1, &kCFTypeArrayCallBacks));
    CFIndex length = 0;
    EXPECT_DEBUG_DEATH(length = CFStringGetLength(static_cast<CFStringRef>(values[0])), "another type");
    EXPECT_DEBUG_DEATH(length = CFArrayGetCount(nullptr), "not NULL");
    EXPECT_EQ(length, 0);
    EXPECT_DEBUG_DEATH(CFArrayRemoveAllValues(const_cast<CFMutableArrayRef>(fixed.get())),
                       "cannot be changed");
    EXPECT_EQ(CFArrayGetCount(fixed.get()), 1);
    const void* value = nullptr;
    EXPECT_DEBUG_DEATH(CFArraySetValueAtIndex(List(1).get(), 2, number.get()), "index");
    EXPECT_DEBUG_DEATH(value = CFArrayGetValueAtIndex(fixed.get(), 1), "index");
    EXPECT_EQ(value, nullptr);
}

TEST(CFRef, EveryOwnerCountsOnceAndCastsAreChecked) {
    auto first = cf::String("owned");
    const CFStringRef object = first.get();
    auto second = first;
    const auto third = RetainCF(object);
    EXPECT_EQ(CFGetRetainCount(object), 3);
    const auto moved = std::move(second);
    first = moved;
    const auto& self = first;
    first = self;
    EXPECT_EQ(CFGetRetainCount(object), 3);
    first.reset();
    EXPECT_FALSE(first);
    CFRef<CFTypeRef> general = moved;
    CFRelease(general.release());
    EXPECT_EQ(CFGetRetainCount(object), 2);
    EXPECT_FALSE(CFRef<CFStringRef>::Retain(nullptr));
    EXPECT_EQ(cf::As<CFStringRef>(object), object);
    EXPECT_EQ(cf::As<CFArrayRef>(object), nullptr);
    EXPECT_EQ(cf::As<CFStringRef>(nullptr), nullptr);
}

TEST(CFRef, DictionariesAnswerWithTypedValuesOrNothing) {
    const auto dictionary = Record("text", std::string("\u00E9\0z", 4), "whole", uint16_t{65535}, "real", 2.5,
                                   "flag", true, "list", List(1, "b"));
    EXPECT_TRUE(
        Text(dictionary.get()).ends_with("z, whole = 65535, real = 2.5, flag = true, list = (1, b)}"));
    const CFDictionaryRef values = dictionary.get();
    EXPECT_EQ(cf::GetString(values, "text"), std::string("\u00E9\0z", 4));
    EXPECT_EQ(cf::GetString(values, "whole"), "");
    EXPECT_EQ(cf::GetInt64(values, CFSTR("whole")), 65535);
    EXPECT_EQ(cf::GetInt64(values, "real"), std::nullopt);
    EXPECT_EQ(cf::GetInt64(values, "flag"), 1);
    EXPECT_EQ(cf::GetInt64(values, "text"), std::nullopt);
    EXPECT_EQ(cf::GetBool(values, "whole"), true);
    EXPECT_EQ(cf::GetBool(values, "missing"), std::nullopt);
    EXPECT_NE(cf::GetArray(values, "list"), nullptr);
    EXPECT_EQ(cf::GetDictionary(values, "list"), nullptr);
    EXPECT_EQ(cf::GetString(nullptr, "text"), "");
    EXPECT_EQ(cf::GetString(values, "\xFF"), "");
}

}  // namespace
