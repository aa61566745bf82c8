#include "CoreFoundation/CFString.h"

#include <gtest/gtest.h>

#include <limits>
#include <regex>

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

TEST(CFString, EveryEncodingReturnsWhatItWasGiven) {
    EXPECT_EQ(CFStringGetLength(cf::String(kMixedText).get()), 6) << "UTF-16 units";
    const std::string text = std::string(kMixedText) + "\uFFFF";  // the last that one unit holds
    for (const CFStringEncoding encoding :
         {CFStringEncoding{kCFStringEncodingUTF8}, CFStringEncoding{kCFStringEncodingUTF16},
          CFStringEncoding{kCFStringEncodingUTF16BE}, CFStringEncoding{kCFStringEncodingUTF16LE}}) {
        const std::string bytes = BytesOf(cf::String(text).get(), encoding);
        EXPECT_EQ(cf::ToUtf8(FromBytes(bytes, encoding).get()), text) << std::hex << encoding;
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
    EXPECT_FALSE(FromBytes("\x80", kCFStringEncodingASCII));
    EXPECT_FALSE(FromBytes("odd", kCFStringEncodingUTF16LE));
    EXPECT_FALSE(FromBytes("text", 0x0500));
    EXPECT_FALSE(FromBytes({"\xD8\x3D\0x", 4}, kCFStringEncodingUTF16BE)) << "half a pair";
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

TEST(CFUUID, IsRandomAndWrittenInTheUsualForm) {
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    const auto text = [] {
        const auto uuid = AdoptCF(CFUUIDCreate(nullptr));
        return cf::ToUtf8(AdoptCF(CFUUIDCreateString(nullptr, uuid.get())).get());
    };
    const std::string one = text(), other = text();
    EXPECT_TRUE(std::regex_match(one, form)) << one;
    EXPECT_NE(one, other);
}

}  // namespace
