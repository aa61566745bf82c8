#include "DataObject.h"

#include <algorithm>
#include <string_view>

using namespace corefoundation;

namespace {

bool RequireBytes(const UInt8* bytes, CFIndex length) {
    return Require(length == 0 || (length > 0 && bytes != nullptr), "data needs its bytes");
}

}  // namespace

CFHashCode CFData::Hash() const {
    const auto* text = reinterpret_cast<const char*>(mBytes.data());
    return std::hash<std::string_view>()({text, mBytes.size()});
}

std::string CFData::Describe() const {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text = "<";
    for (const UInt8 byte : mBytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text + ">";
}

CFTypeID CFDataGetTypeID(void) {
    return kDataType;
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
    if (!RequireBytes(bytes, length))
        return nullptr;
    return Guarded<CFDataRef>(nullptr, [&] {
        return Create<CFData>(Mutability::kImmutable, std::vector<UInt8>(bytes, bytes + length));
    });
}

CFDataRef CFDataCreateCopy(CFAllocatorRef allocator, CFDataRef data) {
    const CFData* checked = Check<CFData>(data);
    if (checked == nullptr)
        return nullptr;
    if (checked->mMutability == Mutability::kImmutable)
        return static_cast<CFDataRef>(CFRetain(data));
    return CFDataCreate(allocator, CFDataGetBytePtr(data), CFDataGetLength(data));
}

CFMutableDataRef CFDataCreateMutable(CFAllocatorRef, CFIndex) {
    return Create<CFData>(Mutability::kMutable);
}

CFMutableDataRef CFDataCreateMutableCopy(CFAllocatorRef, CFIndex, CFDataRef data) {
    const CFData* checked = Check<CFData>(data);
    if (checked == nullptr)
        return nullptr;
    return Guarded<CFMutableDataRef>(
        nullptr, [&] { return Create<CFData>(Mutability::kMutable, std::vector<UInt8>(checked->mBytes)); });
}

CFIndex CFDataGetLength(CFDataRef data) {
    const CFData* checked = Check<CFData>(data);
    return checked != nullptr ? static_cast<CFIndex>(checked->mBytes.size()) : 0;
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
    const CFData* checked = Check<CFData>(data);
    return checked != nullptr ? checked->mBytes.data() : nullptr;
}

void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer) {
    const CFData* checked = Check<CFData>(data);
    if (checked != nullptr && RequireRange(range, static_cast<CFIndex>(checked->mBytes.size())))
        std::copy_n(checked->mBytes.begin() + range.location, range.length, buffer);
}

void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length) {
    CFData* checked = CheckMutable(data);
    if (checked != nullptr && RequireBytes(bytes, length))
        Guarded([&] { checked->mBytes.insert(checked->mBytes.end(), bytes, bytes + length); });
}
