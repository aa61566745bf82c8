#include "CoreFoundation/CFData.h"

#include <gtest/gtest.h>

#include <string>

#include "CoreFoundation++/CFRef.h"

namespace {

const UInt8* Bytes(const char* text) {
    return reinterpret_cast<const UInt8*>(text);
}

std::string TextOf(CFDataRef data) {
    const UInt8* bytes = CFDataGetBytePtr(data);
    return {bytes, bytes + CFDataGetLength(data)};
}

TEST(CFData, CopiesAreIndependentOfTheirSource) {
    const auto growing = AdoptCF(CFDataCreateMutable(nullptr, 0));
    CFDataAppendBytes(growing.get(), Bytes("one"), 3);
    const auto fixed = AdoptCF(CFDataCreateCopy(nullptr, growing.get()));
    const auto other = AdoptCF(CFDataCreateMutableCopy(nullptr, 0, fixed.get()));
    CFDataAppendBytes(growing.get(), Bytes("two"), 3);
    CFDataAppendBytes(other.get(), Bytes("three"), 5);
    EXPECT_EQ(TextOf(fixed.get()), "one");
    EXPECT_EQ(TextOf(growing.get()), "onetwo");
    EXPECT_EQ(TextOf(other.get()), "onethree");
    EXPECT_EQ(AdoptCF(CFDataCreateCopy(nullptr, fixed.get())).get(), fixed.get());

    const auto same = AdoptCF(CFDataCreate(nullptr, Bytes("one"), 3));
    EXPECT_TRUE(CFEqual(same.get(), fixed.get()));
    EXPECT_EQ(CFHash(same.get()), CFHash(fixed.get()));
    EXPECT_EQ(CFDataGetLength(AdoptCF(CFDataCreate(nullptr, nullptr, 0)).get()), 0);
}

TEST(CFData, CopiesOutTheRangeAlone) {
    const auto data = AdoptCF(CFDataCreate(nullptr, Bytes("abcdef"), 6));
    UInt8 buffer[4] = {'.', '.', '.', '.'};
    CFDataGetBytes(data.get(), CFRangeMake(2, 3), buffer);
    EXPECT_EQ(std::string(buffer, buffer + 4), "cde.");
}

}  // namespace
