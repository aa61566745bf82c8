#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "CoreFoundation++/CFRef.h"
#include "CoreFoundation/CFArray.h"
#include "CoreFoundation/CFBase.h"
#include "CoreFoundation/CFData.h"
#include "CoreFoundation/CFDictionary.h"

namespace {

CFRef<CFMutableArrayRef> Numbers(const std::vector<int>& values) {
    const auto array = cf::MutableArray();
    for (const int value : values)
        cf::Append(array, value);
    return array;
}

/// What is in it, in its order: "(1, 2)", "{a = 1}", "<6f6e65>".
std::string Text(CFTypeRef object) {
    return cf::ToUtf8(AdoptCF(CFCopyDescription(object)).get());
}

CFRef<CFDataRef> Data(const std::string& text) {
    return AdoptCF(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                static_cast<CFIndex>(text.size())));
}

void ExpectEqual(CFTypeRef left, CFTypeRef right) {
    EXPECT_TRUE(CFEqual(left, right));
    EXPECT_EQ(CFHash(left), CFHash(right));
}

TEST(CFArray, KeepsItsOrderThroughChangesAndFindsByEqualityWithinTheRange) {
    const auto array = Numbers({1, 2, 3});
    CFArrayInsertValueAtIndex(array.get(), 0, cf::Number(0).get());
    CFArrayInsertValueAtIndex(array.get(), 4, cf::Number(4).get());
    CFArraySetValueAtIndex(array.get(), 5, cf::Number(5).get());
    CFArraySetValueAtIndex(array.get(), 1, cf::Number(10).get());
    CFArrayRemoveValueAtIndex(array.get(), 2);
    CFArrayAppendArray(array.get(), array.get(), CFRangeMake(1, 4));
    EXPECT_EQ(Text(array.get()), "(0, 10, 3, 4, 5, 10, 3, 4, 5)");
    const auto ten = cf::Number(10);
    EXPECT_EQ(CFArrayGetFirstIndexOfValue(array.get(), CFRangeMake(0, 9), ten.get()), 1);
    EXPECT_EQ(CFArrayGetFirstIndexOfValue(array.get(), CFRangeMake(2, 4), ten.get()), 5);
    EXPECT_FALSE(CFArrayContainsValue(array.get(), CFRangeMake(2, 3), ten.get()));
    EXPECT_FALSE(CFArrayContainsValue(array.get(), CFRangeMake(9, 0), ten.get()));
    CFArrayRemoveAllValues(array.get());
    EXPECT_EQ(CFArrayGetCount(array.get()), 0);
}

TEST(CFArray, SortsTheRangeAndKeepsEqualValuesInOrder) {
    const auto array = Numbers({99, 31, 12, 11, 32, 0});
    const auto byTens = [](const void* left, const void* right, void* divisor) {
        const int64_t tens = *static_cast<int*>(divisor);
        const int64_t difference = *cf::ToInt64(left) / tens - *cf::ToInt64(right) / tens;
        return difference < 0 ? kCFCompareLessThan
                              : (difference > 0 ? kCFCompareGreaterThan : kCFCompareEqualTo);
    };
    int divisor = 10;
    CFArraySortValues(array.get(), CFRangeMake(1, 4), byTens, &divisor);
    EXPECT_EQ(Text(array.get()), "(99, 12, 11, 31, 32, 0)");
}

TEST(CFCollections, CopiesAreIndependentAndFixedOnesShared) {
    const auto array = Numbers({1});
    const auto fixed = AdoptCF(CFArrayCreateCopy(nullptr, array.get()));
    const auto changeable = AdoptCF(CFArrayCreateMutableCopy(nullptr, 0, fixed.get()));
    cf::Append(array, 2);
    cf::Append(changeable, 3);
    EXPECT_EQ(Text(fixed.get()) + Text(changeable.get()), "(1)(1, 3)");
    EXPECT_EQ(AdoptCF(CFArrayCreateCopy(nullptr, fixed.get())).get(), fixed.get());

    const auto growing = AdoptCF(CFDataCreateMutable(nullptr, 0));
    const UInt8 bytes[] = {0xAB, 0xCD};
    CFDataAppendBytes(growing.get(), bytes, 2);
    const auto data = AdoptCF(CFDataCreateCopy(nullptr, growing.get()));
    const auto other = AdoptCF(CFDataCreateMutableCopy(nullptr, 0, data.get()));
    CFDataAppendBytes(growing.get(), bytes, 1);
    CFDataAppendBytes(other.get(), bytes + 1, 1);
    EXPECT_EQ(Text(data.get()) + Text(growing.get()) + Text(other.get()), "<abcd><abcdab><abcdcd>");
    EXPECT_EQ(AdoptCF(CFDataCreateCopy(nullptr, data.get())).get(), data.get());
    ExpectEqual(Data("\xAB\xCD").get(), data.get());
    UInt8 buffer[2] = {'.', '.'};
    CFDataGetBytes(growing.get(), CFRangeMake(1, 1), buffer);
    EXPECT_EQ(std::string(buffer, buffer + 2), "\xCD.");
    EXPECT_EQ(CFDataGetLength(AdoptCF(CFDataCreate(nullptr, nullptr, 0)).get()), 0);
}

TEST(CFDictionary, AddsWhatIsNotThereAndReplacesWhatIs) {
    const auto dictionary = cf::MutableDictionary();
    CFDictionaryReplaceValue(dictionary.get(), CFSTR("a"), cf::Number(1).get());
    EXPECT_FALSE(CFDictionaryContainsKey(dictionary.get(), CFSTR("a")));
    for (const int number : {2, 3})
        CFDictionaryAddValue(dictionary.get(), CFSTR("a"), cf::Number(number).get());
    EXPECT_EQ(Text(dictionary.get()), "{a = 2}");
    CFDictionaryReplaceValue(dictionary.get(), CFSTR("a"), cf::Number(4).get());
    EXPECT_EQ(Text(dictionary.get()), "{a = 4}");
}

TEST(CFDictionary, VisitsKeysInTheOrderOfTheirFirstSetting) {
    const auto dictionary = cf::MutableDictionary();
    for (const char* key : {"zebra", "apple", "mango", "fig"})
        cf::Set(dictionary, key, 1);
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

TEST(CFDictionary, TellsAStoredNullFromAMissingKey) {
    int first = 0, second = 0;
    const void* keys[] = {&first, &first};
    const void* values[] = {nullptr, &second};
    const auto dictionary = AdoptCF(CFDictionaryCreate(nullptr, keys, values, 2, nullptr, nullptr));
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 1);  // the first of two equal keys won
    const void* value = &first;
    EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary.get(), &second, &value));
    EXPECT_EQ(value, &first);
    EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), &first, &value));
    EXPECT_EQ(value, nullptr);
    EXPECT_FALSE(CFDictionaryContainsValue(dictionary.get(), &second));
}

TEST(CFBase, EqualityNeedsOneTypeAndValueAndNoOrderOfKeys) {
    const auto first = cf::MutableDictionary(), second = cf::MutableDictionary();
    for (const auto& [dictionary, keys] : {std::pair(first, "ab"), std::pair(second, "ba")}) {
        for (const char* key = keys; *key != '\0'; ++key)
            cf::Set(dictionary, std::string(1, *key), Numbers({*key}));
    }
    ExpectEqual(first.get(), second.get());
    EXPECT_TRUE(CFDictionaryContainsValue(first.get(), Numbers({'b'}).get()));
    cf::Set(second, "a", cf::MutableArray());
    EXPECT_FALSE(CFEqual(first.get(), second.get()));
    CFDictionaryRemoveAllValues(second.get());
    EXPECT_FALSE(CFEqual(second.get(), first.get()));
    EXPECT_FALSE(CFEqual(cf::Number(1).get(), kCFBooleanTrue));
    EXPECT_FALSE(CFEqual(cf::Number(1).get(), cf::String("1").get()));
}

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
    EXPECT_DEBUG_DEATH(CFArraySetValueAtIndex(Numbers({1}).get(), 2, number.get()), "index");
    EXPECT_DEBUG_DEATH(CFArrayInsertValueAtIndex(Numbers({1}).get(), 2, number.get()), "index");
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
    const auto dictionary = cf::MutableDictionary();
    cf::Set(dictionary, "text", std::string("\u00E9\0z", 4));
    cf::Set(dictionary, "whole", uint16_t{65535});
    cf::Set(dictionary, "real", 2.5);
    cf::Set(dictionary, "flag", true);
    cf::Set(dictionary, "list", cf::MutableArray());
    EXPECT_TRUE(Text(dictionary.get()).ends_with("z, whole = 65535, real = 2.5, flag = true, list = ()}"));
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
