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
    return Guarded<CFDataRef>(nullptr,
                              [&] { return Create<CFData>(std::vector<UInt8>(bytes, bytes + length)); });
}

CFIndex CFDataGetLength(CFDataRef data) {
    const CFData* checked = Check<CFData>(data);
    return checked != nullptr ? static_cast<CFIndex>(checked->mBytes.size()) : 0;
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
    const CFData* checked = Check<CFData>(data);
    return checked != nullptr ? checked->mBytes.data() : nullptr;
}
