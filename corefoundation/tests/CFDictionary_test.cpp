#include "CoreFoundation/CFDictionary.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "CoreFoundation++/CFRef.h"

namespace {

std::string KeysOf(CFDictionaryRef dictionary) {
    std::string keys;
    CFDictionaryApplyFunction(
        dictionary,
        [](const void* key, const void*, void* context) {
            *static_cast<std::string*>(context) += cf::ToUtf8(static_cast<CFStringRef>(key)) + " ";
        },
        &keys);
    return keys;
}

TEST(CFDictionary, SetAddReplaceAndRemoveDoWhatTheirNamesSay) {
    const auto dictionary = cf::MutableDictionary();
    CFDictionaryReplaceValue(dictionary.get(), CFSTR("a"), cf::Number(1).get());
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 0);
    CFDictionaryAddValue(dictionary.get(), CFSTR("a"), cf::Number(2).get());
    CFDictionaryAddValue(dictionary.get(), CFSTR("a"), cf::Number(3).get());
    EXPECT_EQ(cf::GetInt64(dictionary.get(), "a"), 2);
    CFDictionaryReplaceValue(dictionary.get(), CFSTR("a"), cf::Number(4).get());
    EXPECT_EQ(cf::GetInt64(dictionary.get(), "a"), 4);
    CFDictionaryRemoveValue(dictionary.get(), CFSTR("a"));
    CFDictionaryRemoveValue(dictionary.get(), CFSTR("a"));
    EXPECT_FALSE(CFDictionaryContainsKey(dictionary.get(), CFSTR("a")));
}

TEST(CFDictionary, VisitsKeysInTheOrderOfTheirFirstSetting) {
    const auto dictionary = cf::MutableDictionary();
    for (const char* key : {"zebra", "apple", "mango", "fig"})
        cf::Set(dictionary, key, 1);
    cf::Set(dictionary, "apple", 2);
    CFDictionaryRemoveValue(dictionary.get(), CFSTR("zebra"));
    cf::Set(dictionary, "zebra", 3);
    EXPECT_EQ(KeysOf(dictionary.get()), "apple mango fig zebra ");

    const void* keys[4];
    const void* values[4];
    CFDictionaryGetKeysAndValues(dictionary.get(), keys, values);
    EXPECT_TRUE(CFEqual(keys[3], CFSTR("zebra")));
    EXPECT_EQ(cf::ToInt64(values[3]), 3);
    EXPECT_EQ(KeysOf(AdoptCF(CFDictionaryCreateCopy(nullptr, dictionary.get())).get()),
              KeysOf(dictionary.get()));
}

TEST(CFDictionary, AgreesWithAModelThroughManyRandomChanges) {
    const auto dictionary = cf::MutableDictionary();
    std::map<int, int> model;
    std::minstd_rand random(7);
    for (int step = 0; step < 20000; ++step) {
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

TEST(CFDictionary, KeysWithOneHashAreToldApart) {
    auto callBacks = kCFTypeDictionaryKeyCallBacks;
    callBacks.hash = [](const void*) { return CFHashCode{42}; };
    const auto dictionary =
        AdoptCF(CFDictionaryCreateMutable(nullptr, 0, &callBacks, &kCFTypeDictionaryValueCallBacks));
    for (int i = 0; i < 50; ++i)
        cf::Set(dictionary, std::to_string(i), i);
    CFDictionaryRemoveValue(dictionary.get(), CFSTR("25"));
    EXPECT_EQ(cf::GetInt64(dictionary.get(), "49"), 49);
    EXPECT_EQ(cf::GetInt64(dictionary.get(), "25"), std::nullopt);
}

TEST(CFDictionary, TellsAStoredNullFromAMissingKey) {
    int first = 0;
    int second = 0;
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

TEST(CFDictionary, EqualityIgnoresTheOrder) {
    const auto first = cf::MutableDictionary();
    const auto second = cf::MutableDictionary();
    cf::Set(first, "a", 1);
    cf::Set(first, "b", "x");
    cf::Set(second, "b", "x");
    cf::Set(second, "a", 1);
    EXPECT_TRUE(CFEqual(first.get(), second.get()));
    EXPECT_EQ(CFHash(first.get()), CFHash(second.get()));
    EXPECT_TRUE(CFDictionaryContainsValue(first.get(), CFSTR("x")));
    cf::Set(second, "a", 2);
    EXPECT_FALSE(CFEqual(first.get(), second.get()));
    CFDictionaryRemoveAllValues(second.get());
    EXPECT_FALSE(CFEqual(second.get(), first.get()));
}

}  // namespace
