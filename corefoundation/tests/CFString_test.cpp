#include "CoreFoundation/CFString.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "CoreFoundation++/CFRef.h"
#include "CoreFoundation/CFUUID.h"

namespace {

constexpr const char* kMixedText = "A\u00E9\u4E2D\U0001F600z";  // 1, 2, 3 and 4 bytes in UTF-8

CFRef<CFStringRef> FromBytes(const std::string& bytes, CFStringEncoding encoding, bool isExternal = false) {
    return AdoptCF(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                           static_cast<CFIndex>(bytes.size()), encoding, isExternal));
}

std::string BytesOf(CFStringRef string, CFStringEncoding encoding, UInt8 lossByte = 0,
                    bool isExternal = false) {
    const CFRange whole = CFRangeMake(0, CFStringGetLength(string));
    CFIndex size = 0;
    CFStringGetBytes(string, whole, encoding, lossByte, isExternal, nullptr, 0, &size);
    std::string bytes(static_cast<size_t>(size), '?');
    CFStringGetBytes(string, whole, encoding, lossByte, isExternal, reinterpret_cast<UInt8*>(bytes.data()),
                     size, nullptr);
    return bytes;
}

TEST(CFString, CountsAndReadsUtf16Units) {
    const auto string = cf::String(kMixedText);
    ASSERT_EQ(CFStringGetLength(string.get()), 6);
    std::u16string units(6, u'?');
    CFStringGetCharacters(string.get(), CFRangeMake(0, 6), reinterpret_cast<UniChar*>(units.data()));
    EXPECT_EQ(units, u"A\u00E9\u4E2D\U0001F600z");
    EXPECT_EQ(CFStringGetCharacterAtIndex(string.get(), 4), 0xDE00);

    const auto* characters = reinterpret_cast<const UniChar*>(units.data());
    const auto copy = AdoptCF(CFStringCreateWithCharacters(nullptr, characters, 6));
    EXPECT_TRUE(CFEqual(copy.get(), string.get()));
    EXPECT_EQ(CFHash(copy.get()), CFHash(string.get()));
}

TEST(CFString, EveryEncodingReturnsWhatItWasGiven) {
    for (const CFStringEncoding encoding :
         {CFStringEncoding{kCFStringEncodingUTF8}, CFStringEncoding{kCFStringEncodingUTF16},
          CFStringEncoding{kCFStringEncodingUTF16BE}, CFStringEncoding{kCFStringEncodingUTF16LE}}) {
        const std::string bytes = BytesOf(cf::String(kMixedText).get(), encoding);
        EXPECT_EQ(cf::ToUtf8(FromBytes(bytes, encoding).get()), kMixedText) << std::hex << encoding;
    }
    std::string latin;
    for (int byte = 1; byte < 256; ++byte)
        latin += static_cast<char>(byte);
    EXPECT_EQ(BytesOf(FromBytes(latin, kCFStringEncodingISOLatin1).get(), kCFStringEncodingISOLatin1), latin);
    EXPECT_EQ(BytesOf(cf::String("\U0001F601").get(), kCFStringEncodingUTF16BE), "\xD8\x3D\xDE\x01");
    EXPECT_EQ(BytesOf(cf::String("\U0010FFFF").get(), kCFStringEncodingASCII, '?'), "?");
}

TEST(CFString, InvalidBytesMakeNoString) {
    for (const char* bytes : {"\x80", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xFF"})
        EXPECT_FALSE(cf::String(bytes)) << bytes;
    EXPECT_FALSE(FromBytes("\xE9", kCFStringEncodingASCII));
    EXPECT_FALSE(FromBytes("odd", kCFStringEncodingUTF16LE));
    EXPECT_FALSE(FromBytes("text", 0x0500));
    for (const std::u16string units : {u"\xD83D", u"\xDE00", u"\xD83Dx", u"\xDE00\xD83D"}) {
        EXPECT_EQ(CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(units.data()),
                                               static_cast<CFIndex>(units.size())),
                  nullptr);
    }
}

TEST(CFString, ByteOrderMarksAreObeyedOnlyWhenAskedFor) {
    EXPECT_EQ(cf::ToUtf8(FromBytes("\xEF\xBB\xBFx", kCFStringEncodingUTF8, true).get()), "x");
    EXPECT_EQ(CFStringGetLength(FromBytes("\xEF\xBB\xBFx", kCFStringEncodingUTF8).get()), 2);
    EXPECT_EQ(cf::ToUtf8(FromBytes({"\xFE\xFF\0x", 4}, kCFStringEncodingUTF16, true).get()), "x");
    EXPECT_EQ(cf::ToUtf8(FromBytes({"\xFF\xFEx\0", 4}, kCFStringEncodingUTF16, true).get()), "x");
    const std::string marked = BytesOf(CFSTR("x"), kCFStringEncodingUTF16, 0, true);
    EXPECT_EQ(cf::ToUtf8(FromBytes(marked, kCFStringEncodingUTF16, true).get()), "x");
    EXPECT_EQ(marked.size(), 4U);
}

TEST(CFString, ACStringIsWholeOrEmpty) {
    const auto string = cf::String(kMixedText);  // 11 bytes
    char buffer[12] = "unchanged";
    EXPECT_FALSE(CFStringGetCString(string.get(), buffer, 11, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "");
    EXPECT_TRUE(CFStringGetCString(string.get(), buffer, 12, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, kMixedText);
    EXPECT_FALSE(CFStringGetCString(string.get(), buffer, 12, kCFStringEncodingISOLatin1));
    EXPECT_TRUE(CFStringGetCString(cf::String("\u00E9").get(), buffer, 2, kCFStringEncodingISOLatin1));
    EXPECT_STREQ(buffer, "\xE9");

    EXPECT_STREQ(CFStringGetCStringPtr(string.get(), kCFStringEncodingUTF8), kMixedText);
    EXPECT_EQ(CFStringGetCStringPtr(string.get(), kCFStringEncodingISOLatin1), nullptr);
    EXPECT_EQ(CFStringGetCStringPtr(cf::String({"a\0b", 3}).get(), kCFStringEncodingUTF8), nullptr);
}

TEST(CFString, BytesAreCutBetweenCharactersOnly) {
    const auto string = cf::String(kMixedText);
    UInt8 buffer[16];
    CFIndex used = 0;
    const auto convert = [&](CFRange range, CFStringEncoding encoding, UInt8 lossByte, CFIndex size) {
        return CFStringGetBytes(string.get(), range, encoding, lossByte, false, buffer, size, &used);
    };
    EXPECT_EQ(convert(CFRangeMake(0, 6), kCFStringEncodingUTF8, 0, 9),
              3);  // no room for the fourth character
    EXPECT_EQ(used, 6);
    EXPECT_EQ(convert(CFRangeMake(3, 1), kCFStringEncodingUTF8, 0, 16), 0);  // half a pair
    EXPECT_EQ(convert(CFRangeMake(1, 5), kCFStringEncodingASCII, '?', 16), 5);
    EXPECT_EQ(std::string(buffer, buffer + used), "???z");
    EXPECT_EQ(convert(CFRangeMake(0, 6), kCFStringEncodingISOLatin1, 0, 16), 2);

    CFStringGetBytes(CFSTR("abcdef"), CFRangeMake(2, 3), kCFStringEncodingUTF8, 0, false, buffer, 16, &used);
    EXPECT_EQ(std::string(buffer, buffer + used), "cde");
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(6, kCFStringEncodingUTF8), 18);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(std::numeric_limits<CFIndex>::max(), kCFStringEncodingUTF8),
              kCFNotFound);
}

TEST(CFString, ComparesByUnitAndFoldsAsciiCase) {
    const auto compare = [](const char* left, const char* right, CFStringCompareFlags flags = 0) {
        return CFStringCompare(cf::String(left).get(), cf::String(right).get(), flags);
    };
    EXPECT_EQ(compare("abc", "abd"), kCFCompareLessThan);
    EXPECT_EQ(compare("abc", "ab"), kCFCompareGreaterThan);
    EXPECT_EQ(compare("\uFF5E", "\U0001F600"), kCFCompareGreaterThan);  // units, not characters
    EXPECT_EQ(compare("Times", "tIMES"), kCFCompareLessThan);
    EXPECT_EQ(compare("Times", "tIMES", kCFCompareCaseInsensitive), kCFCompareEqualTo);

    const auto string = cf::String("\u00C9t\u00E9");
    EXPECT_TRUE(CFStringHasPrefix(string.get(), cf::String("\u00C9").get()));
    EXPECT_FALSE(CFStringHasPrefix(string.get(), cf::String("\u00E9").get()));
    EXPECT_TRUE(CFStringHasSuffix(string.get(), cf::String("t\u00E9").get()));
    EXPECT_FALSE(CFStringHasSuffix(string.get(), cf::String("xx\u00C9t\u00E9").get()));
}

TEST(CFString, ReadsTheNumberInFront) {
    const auto value = [](const char* text) { return CFStringGetIntValue(cf::String(text).get()); };
    EXPECT_EQ(value("  -42px"), -42);
    EXPECT_EQ(value("px"), 0);
    EXPECT_EQ(value("99999999999999999999"), std::numeric_limits<SInt32>::max());
    EXPECT_EQ(value("-2147483649"), std::numeric_limits<SInt32>::min());
}

std::string TextOf(CFUUIDRef uuid) {
    return cf::ToUtf8(AdoptCF(CFUUIDCreateString(nullptr, uuid)).get());
}

CFRef<CFUUIDRef> FromText(const char* text) {
    return AdoptCF(CFUUIDCreateFromString(nullptr, cf::String(text).get()));
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
