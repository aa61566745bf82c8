#include "CoreFoundation/CFArray.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "CoreFoundation++/CFRef.h"

namespace {

CFRef<CFMutableArrayRef> Numbers(const std::vector<int>& values) {
    const auto array = cf::MutableArray();
    for (const int value : values)
        cf::Append(array, value);
    return array;
}

std::vector<int64_t> ValuesOf(CFArrayRef array) {
    std::vector<int64_t> values;
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i)
        values.push_back(cf::ToInt64(CFArrayGetValueAtIndex(array, i)).value());
    return values;
}

using Values = std::vector<int64_t>;

TEST(CFArray, KeepsItsOrderThroughChanges) {
    const auto array = Numbers({1, 2, 3});
    CFArrayInsertValueAtIndex(array.get(), 0, cf::Number(0).get());
    CFArrayInsertValueAtIndex(array.get(), 4, cf::Number(4).get());
    CFArraySetValueAtIndex(array.get(), 5, cf::Number(5).get());
    CFArraySetValueAtIndex(array.get(), 1, cf::Number(10).get());
    CFArrayRemoveValueAtIndex(array.get(), 2);
    EXPECT_EQ(ValuesOf(array.get()), (Values{0, 10, 3, 4, 5}));
    CFArrayAppendArray(array.get(), array.get(), CFRangeMake(1, 4));
    EXPECT_EQ(ValuesOf(array.get()), (Values{0, 10, 3, 4, 5, 10, 3, 4, 5}));
    CFArrayRemoveAllValues(array.get());
    EXPECT_EQ(CFArrayGetCount(array.get()), 0);
}

TEST(CFArray, FindsByEqualityWithinTheRange) {
    const auto array = Numbers({7, 8, 7});
    const auto seven = cf::Number(7);
    EXPECT_EQ(CFArrayGetFirstIndexOfValue(array.get(), CFRangeMake(0, 3), seven.get()), 0);
    EXPECT_EQ(CFArrayGetFirstIndexOfValue(array.get(), CFRangeMake(1, 2), seven.get()), 2);
    EXPECT_FALSE(CFArrayContainsValue(array.get(), CFRangeMake(1, 1), seven.get()));
    EXPECT_FALSE(CFArrayContainsValue(array.get(), CFRangeMake(3, 0), seven.get()));
}

TEST(CFArray, CopiesAreIndependentAndFixedOnesShared) {
    const auto array = Numbers({1});
    const auto fixed = AdoptCF(CFArrayCreateCopy(nullptr, array.get()));
    const auto changeable = AdoptCF(CFArrayCreateMutableCopy(nullptr, 0, fixed.get()));
    cf::Append(array, 2);
    cf::Append(changeable, 3);
    EXPECT_EQ(ValuesOf(fixed.get()), Values{1});
    EXPECT_EQ(ValuesOf(changeable.get()), (Values{1, 3}));
    EXPECT_EQ(AdoptCF(CFArrayCreateCopy(nullptr, fixed.get())).get(), fixed.get());
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
    EXPECT_EQ(ValuesOf(array.get()), (Values{99, 12, 11, 31, 32, 0}));
}

TEST(CFArray, PlainPointersAreHeldAsTheyAre) {
    int first = 0;
    int second = 0;
    const void* values[] = {&first, &second, nullptr};
    const auto array = AdoptCF(CFArrayCreate(nullptr, values, 3, nullptr));
    EXPECT_EQ(CFArrayGetFirstIndexOfValue(array.get(), CFRangeMake(0, 3), &second), 1);
    int visits = 0;
    CFArrayApplyFunction(
        array.get(), CFRangeMake(0, 2), [](const void*, void* context) { ++*static_cast<int*>(context); },
        &visits);
    EXPECT_EQ(visits, 2);
}

}  // namespace
