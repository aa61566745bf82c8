#include "CoreFoundation/CFNumber.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "CoreFoundation++/CFRef.h"

namespace {

template <class T>
void ExpectReading(const CFRef<CFNumberRef>& number, CFNumberType type, bool isExact, T value) {
    T read{};
    EXPECT_EQ(CFNumberGetValue(number.get(), type, &read), isExact) << value;
    EXPECT_EQ(read, value);
}

constexpr int64_t kLowest = std::numeric_limits<int64_t>::min();
constexpr int64_t kHighest = std::numeric_limits<int64_t>::max();

template <class T>
void ExpectRoundTrip(CFNumberType type, CFNumberType stored) {
    for (const T value : {std::numeric_limits<T>::lowest(), T{0}, std::numeric_limits<T>::max()}) {
        const auto number = AdoptCF(CFNumberCreate(nullptr, type, &value));
        EXPECT_EQ(CFNumberGetType(number.get()), stored);
        EXPECT_EQ(CFNumberGetByteSize(number.get()), static_cast<CFIndex>(sizeof(T)));
        ExpectReading<T>(number, type, true, value);
    }
}

TEST(CFNumber, EveryTypeReturnsWhatItWasGiven) {
    constexpr auto kLongStored = sizeof(long) == 8 ? kCFNumberSInt64Type : kCFNumberSInt32Type;
    ExpectRoundTrip<float>(kCFNumberFloat32Type, kCFNumberFloat32Type);
    ExpectRoundTrip<double>(kCFNumberFloat64Type, kCFNumberFloat64Type);
    ExpectRoundTrip<signed char>(kCFNumberCharType, kCFNumberSInt8Type);
    ExpectRoundTrip<short>(kCFNumberShortType, kCFNumberSInt16Type);
    ExpectRoundTrip<int>(kCFNumberIntType, kCFNumberSInt32Type);
    ExpectRoundTrip<long>(kCFNumberLongType, kLongStored);
    ExpectRoundTrip<long long>(kCFNumberLongLongType, kCFNumberSInt64Type);
    ExpectRoundTrip<float>(kCFNumberFloatType, kCFNumberFloat32Type);
    ExpectRoundTrip<double>(kCFNumberDoubleType, kCFNumberFloat64Type);
    ExpectRoundTrip<CFIndex>(kCFNumberCFIndexType, kCFNumberSInt64Type);
    ExpectRoundTrip<double>(kCFNumberCGFloatType, kCFNumberFloat64Type);
}

TEST(CFNumber, LossyReadingsSaySoAndGiveTheNearestValue) {
    const double two63 = std::ldexp(1, 63);
    ExpectReading<int8_t>(cf::Number(-129), kCFNumberSInt8Type, false, -128);
    ExpectReading<int32_t>(cf::Number(kHighest), kCFNumberSInt32Type, false, 2147483647);
    ExpectReading<int32_t>(cf::RealNumber(-2.75), kCFNumberSInt32Type, false, -2);
    ExpectReading<int8_t>(cf::RealNumber(-128.5), kCFNumberSInt8Type, false, -128);
    ExpectReading<int64_t>(cf::RealNumber(two63), kCFNumberSInt64Type, false, kHighest);
    ExpectReading<int64_t>(cf::RealNumber(-two63), kCFNumberSInt64Type, true, kLowest);
    ExpectReading<int64_t>(cf::RealNumber(-INFINITY), kCFNumberSInt64Type, false, kLowest);
    ExpectReading<int32_t>(cf::RealNumber(NAN), kCFNumberSInt32Type, false, 0);
    ExpectReading<double>(cf::Number(kHighest), kCFNumberDoubleType, false, two63);
    ExpectReading<double>(cf::Number(int64_t{1} << 53), kCFNumberDoubleType, true, 0x1p53);
    ExpectReading<float>(cf::RealNumber(-1e300), kCFNumberFloatType, false,
                         std::numeric_limits<float>::lowest());
    ExpectReading<float>(cf::RealNumber(0.1), kCFNumberFloatType, false, 0.1F);
    ExpectReading<float>(cf::RealNumber(INFINITY), kCFNumberFloatType, true, INFINITY);
}

TEST(CFNumber, IsOneKeyWhateverItsType) {
    EXPECT_TRUE(CFEqual(cf::Number(3).get(), cf::RealNumber(3).get()));
    EXPECT_EQ(CFHash(cf::Number(3).get()), CFHash(cf::RealNumber(3).get()));
    EXPECT_EQ(CFHash(cf::RealNumber(-0.0).get()), CFHash(cf::Number(0).get()));
    EXPECT_FALSE(CFEqual(cf::Number(kHighest).get(), cf::RealNumber(std::ldexp(1, 63)).get()));
    EXPECT_TRUE(CFEqual(cf::Number(kLowest).get(), cf::RealNumber(-std::ldexp(1, 63)).get()));
    EXPECT_TRUE(CFEqual(cf::RealNumber(NAN).get(), cf::RealNumber(NAN).get()));
    EXPECT_FALSE(CFEqual(cf::RealNumber(NAN).get(), cf::RealNumber(1).get()));
}

}  // namespace
