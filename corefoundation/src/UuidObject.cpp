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

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef uuid) {
    return Check<CFUUID>(uuid) != nullptr ? CFCopyDescription(uuid) : nullptr;
}
