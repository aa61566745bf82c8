// The byte buffer object.
#pragma once

#include <span>
#include <vector>

#include "CoreFoundation/CFData.h"
#include "Runtime.h"

struct CFData final : corefoundation::TypedObject<CFData, corefoundation::kDataType> {
    explicit CFData(std::vector<UInt8> bytes) : mBytes(std::move(bytes)) {}

    std::span<const UInt8> Bytes() const noexcept { return mBytes; }

    bool Equals(const Object& other) const override {
        return mBytes == static_cast<const CFData&>(other).mBytes;
    }
    CFHashCode Hash() const override;
    std::string Describe() const override;

    const std::vector<UInt8> mBytes;
};
