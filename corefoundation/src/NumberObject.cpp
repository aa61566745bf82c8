#include "NumberObject.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <functional>
#include <type_traits>

using namespace corefoundation;

namespace {

constinit const CFBoolean gTrue(true);
constinit const CFBoolean gFalse(false);

constexpr double kTwoTo63 = 9223372036854775808.0;

template <class Integer>
constexpr CFNumberType FixedIntegerType() {
    switch (sizeof(Integer)) {
        case 1:
            return kCFNumberSInt8Type;
        case 2:
            return kCFNumberSInt16Type;
        case 4:
            return kCFNumberSInt32Type;
        default:
            return kCFNumberSInt64Type;
    }
}

// Calls visit with a value of the C type that type stands for; answers fallback for an unknown type.
template <class Result, class Visitor>
Result VisitType(CFNumberType type, Result fallback, Visitor&& visit) {
    switch (type) {
        case kCFNumberSInt8Type:
        case kCFNumberCharType:
            return visit(SInt8{});
        case kCFNumberSInt16Type:
            return visit(SInt16{});
        case kCFNumberSInt32Type:
            return visit(SInt32{});
        case kCFNumberSInt64Type:
            return visit(SInt64{});
        case kCFNumberShortType:
            return visit(short{});
        case kCFNumberIntType:
            return visit(int{});
        case kCFNumberLongType:
            return visit(long{});
        case kCFNumberLongLongType:
            return visit(static_cast<long long>(0));
        case kCFNumberCFIndexType:
        case kCFNumberNSIntegerType:
            return visit(CFIndex{});
        case kCFNumberFloat32Type:
        case kCFNumberFloatType:
            return visit(float{});
        case kCFNumberFloat64Type:
        case kCFNumberDoubleType:
        case kCFNumberCGFloatType:
            return visit(double{});
    }
    (void)Require(false, "the number type is unknown");
    return fallback;
}

// The nearest value of the target type; exact says whether it is the same number.
template <class Target>
struct Converted {
    Target value;
    bool exact;
};

template <class Target>
Converted<Target> Convert(SInt64 value) {
    if constexpr (std::is_floating_point_v<Target>) {
        const auto target = static_cast<Target>(value);
        // 2 to the 63rd is what large values round up to; it is not an SInt64.
        return {target, target < static_cast<Target>(kTwoTo63) && static_cast<SInt64>(target) == value};
    } else {
        using Limits = std::numeric_limits<Target>;
        if (value < Limits::min())
            return {Limits::min(), false};
        if (value > Limits::max())
            return {Limits::max(), false};
        return {static_cast<Target>(value), true};
    }
}

template <class Target>
Converted<Target> Convert(double value) {
    using Limits = std::numeric_limits<Target>;
    if constexpr (std::is_same_v<Target, double>) {
        return {value, true};
    } else if constexpr (std::is_same_v<Target, float>) {
        if (std::isfinite(value) && std::abs(value) > Limits::max())
            return {std::copysign(Limits::max(), static_cast<float>(value > 0 ? 1 : -1)), false};
        const auto target = static_cast<float>(value);
        return {target, std::isnan(value) || static_cast<double>(target) == value};
    } else {
        if (std::isnan(value))
            return {0, false};
        if (std::trunc(value) < static_cast<double>(Limits::min()))
            return {Limits::min(), false};
        // Either exact, or rounded up to the power of two that is one above the largest value.
        if (value >= static_cast<double>(Limits::max()) + 1)
            return {Limits::max(), false};
        return {static_cast<Target>(value), std::trunc(value) == value};
    }
}

template <class Value>
int Order(Value left, Value right) {
    return left < right ? -1 : static_cast<int>(left > right);
}

// The order of two floating-point values, with not-a-number below all else.
int OrderFloats(double left, double right) {
    if (std::isnan(left) || std::isnan(right))
        return static_cast<int>(std::isnan(right)) - static_cast<int>(std::isnan(left));
    return Order(left, right);
}

int OrderMixed(SInt64 left, double right) {
    if (std::isnan(right) || right < -kTwoTo63)
        return 1;
    if (right >= kTwoTo63)
        return -1;
    const int whole = Order(left, static_cast<SInt64>(right));
    return whole != 0 ? whole : Order(0.0, right - std::trunc(right));
}

int OrderNumbers(const CFNumber& left, const CFNumber& right) {
    if (left.IsFloat()) {
        return right.IsFloat() ? OrderFloats(left.mFloat, right.mFloat)
                               : -OrderMixed(right.mInteger, left.mFloat);
    }
    return right.IsFloat() ? OrderMixed(left.mInteger, right.mFloat) : Order(left.mInteger, right.mInteger);
}

}  // namespace

const CFBooleanRef kCFBooleanTrue = &gTrue;
const CFBooleanRef kCFBooleanFalse = &gFalse;

namespace corefoundation {

std::string FormatReal(double value) {
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    return {text, result.ptr};
}

}  // namespace corefoundation

bool CFNumber::Equals(const Object& other) const {
    return OrderNumbers(*this, static_cast<const CFNumber&>(other)) == 0;
}

CFHashCode CFNumber::Hash() const {
    // Numbers that compare equal hash alike, whatever their types.
    const Converted<SInt64> whole = IsFloat() ? Convert<SInt64>(mFloat) : Converted<SInt64>{mInteger, true};
    if (whole.exact)
        return std::hash<SInt64>()(whole.value);
    return std::isnan(mFloat) ? 0 : std::hash<double>()(mFloat);
}

std::string CFNumber::Describe() const {
    return IsFloat() ? FormatReal(mFloat) : std::to_string(mInteger);
}

CFTypeID CFBooleanGetTypeID(void) {
    return kBooleanType;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    const CFBoolean* checked = Check<CFBoolean>(boolean);
    return checked != nullptr && checked->mValue;
}

CFTypeID CFNumberGetTypeID(void) {
    return kNumberType;
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
    if (!Require(value != nullptr, "a number needs its value"))
        return nullptr;
    return VisitType<CFNumberRef>(type, nullptr, [&](auto typed) {
        std::memcpy(&typed, value, sizeof typed);
        if constexpr (std::is_floating_point_v<decltype(typed)>) {
            const auto stored = sizeof typed == sizeof(float) ? kCFNumberFloat32Type : kCFNumberFloat64Type;
            return Create<CFNumber>(stored, static_cast<double>(typed));
        } else {
            return Create<CFNumber>(FixedIntegerType<decltype(typed)>(), static_cast<SInt64>(typed));
        }
    });
}

CFNumberType CFNumberGetType(CFNumberRef number) {
    const CFNumber* checked = Check<CFNumber>(number);
    return checked != nullptr ? checked->mType : CFNumberType{};
}

CFIndex CFNumberGetByteSize(CFNumberRef number) {
    const CFNumber* checked = Check<CFNumber>(number);
    if (checked == nullptr)
        return 0;
    return VisitType<CFIndex>(checked->mType, 0,
                              [](auto typed) { return static_cast<CFIndex>(sizeof typed); });
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    const CFNumber* checked = Check<CFNumber>(number);
    return checked != nullptr && checked->IsFloat();
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    const CFNumber* checked = Check<CFNumber>(number);
    if (checked == nullptr || !Require(value != nullptr, "the number needs a place to go"))
        return FALSE;
    return VisitType(type, false, [&](auto typed) {
        using Target = decltype(typed);
        const auto converted =
            checked->IsFloat() ? Convert<Target>(checked->mFloat) : Convert<Target>(checked->mInteger);
        std::memcpy(value, &converted.value, sizeof converted.value);
        return converted.exact;
    });
}
