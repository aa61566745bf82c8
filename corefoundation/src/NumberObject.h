// The number and truth value objects.
#pragma once

#include "CoreFoundation/CFNumber.h"
#include "Runtime.h"

struct CFBoolean final : corefoundation::TypedObject<CFBoolean, corefoundation::kBooleanType> {
    constexpr explicit CFBoolean(bool value) : TypedObject(kImmortal), mValue(value) {}
    std::string Describe() const override { return mValue ? "true" : "false"; }

    const bool mValue;
};

struct CFNumber final : corefoundation::TypedObject<CFNumber, corefoundation::kNumberType> {
    // type is one of the four integer types of fixed size.
    CFNumber(CFNumberType type, SInt64 value) : mType(type), mInteger(value) {}
    // type is one of the two floating-point types of fixed size.
    CFNumber(CFNumberType type, double value) : mType(type), mFloat(value) {}

    bool IsFloat() const noexcept { return mType == kCFNumberFloat32Type || mType == kCFNumberFloat64Type; }

    bool Equals(const Object& other) const override;
    CFHashCode Hash() const override;
    std::string Describe() const override;

    const CFNumberType mType;
    const SInt64 mInteger = 0;
    const double mFloat = 0;
};

namespace corefoundation {

// The shortest decimal text that reads back as the same number.
std::string FormatReal(double value);

}  // namespace corefoundation
