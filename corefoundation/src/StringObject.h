// The string object.
#pragma once

#include <string>
#include <string_view>

#include "CoreFoundation/CFString.h"
#include "Runtime.h"

struct CFString final : corefoundation::TypedObject<CFString, corefoundation::kStringType> {
public:
    // utf8 must be valid.
    explicit CFString(std::string utf8);

    const std::string& Utf8() const noexcept { return mUtf8; }
    bool IsAscii() const noexcept { return mUtf16.empty(); }
    CFIndex Length() const noexcept { return static_cast<CFIndex>(IsAscii() ? mUtf8.size() : mUtf16.size()); }
    char16_t At(CFIndex index) const noexcept {
        const auto position = static_cast<size_t>(index);
        return IsAscii() ? static_cast<char16_t>(mUtf8[position]) : mUtf16[position];
    }

    bool Equals(const Object& other) const override {
        return mUtf8 == static_cast<const CFString&>(other).mUtf8;
    }
    CFHashCode Hash() const override { return mHash; }
    std::string Describe() const override { return mUtf8; }

private:
    std::string mUtf8;
    std::u16string mUtf16;  // empty when the text is ASCII, where both have the same units
    CFHashCode mHash;       // strings are the usual dictionary keys
};
