#include <algorithm>
#include <array>
#include <bit>
#include <string_view>

#include "CoreFoundation/CFUUID.h"
#include "RandomUuid.h"
#include "StringObject.h"

using namespace corefoundation;

namespace {

constexpr std::array<size_t, 4> kHyphens = {8, 13, 18, 23};
constexpr size_t kTextLength = 36;

bool IsHyphen(size_t position) {
    return std::find(kHyphens.begin(), kHyphens.end(), position) != kHyphens.end();
}

std::string FormatUuid(const UuidBytes& bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    for (const UInt8 byte : bytes) {
        text += IsHyphen(text.size()) ? "-" : "";
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

int DigitValue(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool ParseUuid(std::string_view text, UuidBytes& bytes) {
    if (text.size() != kTextLength)
        return false;
    size_t digitCount = 0;
    for (size_t i = 0; i < kTextLength; ++i) {
        if (IsHyphen(i) && text[i] == '-')
            continue;
        const int value = IsHyphen(i) ? -1 : DigitValue(text[i]);
        if (value < 0)
            return false;
        UInt8& byte = bytes[digitCount++ / 2];
        byte = static_cast<UInt8>(byte << 4 | value);
    }
    return true;
}

}  // namespace

struct CFUUID final : TypedObject<CFUUID, kUuidType> {
    explicit CFUUID(const UuidBytes& bytes) : mBytes(bytes) {}

    bool Equals(const Object& other) const override {
        return mBytes == static_cast<const CFUUID&>(other).mBytes;
    }
    CFHashCode Hash() const override {
        return std::hash<std::string_view>()({reinterpret_cast<const char*>(mBytes.data()), mBytes.size()});
    }
    std::string Describe() const override { return FormatUuid(mBytes); }

    const UuidBytes mBytes;
};

CFTypeID CFUUIDGetTypeID(void) {
    return kUuidType;
}

CFUUIDRef CFUUIDCreate(CFAllocatorRef) {
    return Create<CFUUID>(MakeRandomUuid());
}

CFUUIDRef CFUUIDCreateFromUUIDBytes(CFAllocatorRef, CFUUIDBytes bytes) {
    return Create<CFUUID>(std::bit_cast<UuidBytes>(bytes));
}

CFUUIDRef CFUUIDCreateFromString(CFAllocatorRef, CFStringRef string) {
    const CFString* checked = Check<CFString>(string);
    UuidBytes bytes{};
    return checked != nullptr && ParseUuid(checked->Utf8(), bytes) ? Create<CFUUID>(bytes) : nullptr;
}

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef uuid) {
    return Check<CFUUID>(uuid) != nullptr ? CFCopyDescription(uuid) : nullptr;
}

CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef uuid) {
    const CFUUID* checked = Check<CFUUID>(uuid);
    return checked != nullptr ? std::bit_cast<CFUUIDBytes>(checked->mBytes) : CFUUIDBytes{};
}
