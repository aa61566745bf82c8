#include "ArrayObject.h"

#include <algorithm>
#include <iterator>

using namespace corefoundation;

namespace {

CFArray* CreateFilled(Mutability mutability, const CFArrayCallBacks* callBacks, const void* const* values,
                      CFIndex count) {
    return Guarded<CFArray*>(nullptr, [&] {
        auto array = std::make_unique<CFArray>(mutability, callBacks);
        array->Append(values, count);
        return array.release();
    });
}

}  // namespace

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, RetainObject, ReleaseObject, CFCopyDescription, CFEqual};

const void* CFArray::Retained(const void* value) const {
    return mCallBacks.retain != nullptr ? mCallBacks.retain(kCFAllocatorDefault, value) : value;
}

void CFArray::ReleaseValue(const void* value) const {
    if (mCallBacks.release != nullptr)
        mCallBacks.release(kCFAllocatorDefault, value);
}

bool CFArray::AreEqual(const void* value1, const void* value2) const {
    return value1 == value2 || (mCallBacks.equal != nullptr && mCallBacks.equal(value1, value2));
}

void CFArray::Append(const void* const* values, CFIndex count) {
    // Room first, so that what is retained is sure to be stored.
    if (mValues.capacity() - mValues.size() < static_cast<size_t>(count))
        mValues.reserve(std::max(mValues.size() + static_cast<size_t>(count), 2 * mValues.size()));
    std::transform(values, values + count, std::back_inserter(mValues),
                   [this](const void* value) { return Retained(value); });
}

void CFArray::Replace(CFIndex index, const void* value) {
    ReleaseValue(std::exchange(mValues[static_cast<size_t>(index)], Retained(value)));
}

void CFArray::Remove(CFIndex index) {
    const void* removed = At(index);
    mValues.erase(mValues.begin() + index);
    ReleaseValue(removed);
}

void CFArray::Clear() noexcept {
    const std::vector<const void*> removed = std::exchange(mValues, {});
    for (const void* value : removed)
        ReleaseValue(value);
}

bool CFArray::Equals(const Object& other) const {
    const auto& otherValues = static_cast<const CFArray&>(other).mValues;
    return std::equal(mValues.begin(), mValues.end(), otherValues.begin(), otherValues.end(),
                      [this](const void* value1, const void* value2) { return AreEqual(value1, value2); });
}

std::string CFArray::Describe() const {
    std::string text = "(";
    for (const void* value : mValues) {
        text += text.size() > 1 ? ", " : "";
        text += DescribeValue(mCallBacks.copyDescription, value);
    }
    return text + ")";
}

CFTypeID CFArrayGetTypeID(void) {
    return kArrayType;
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex count,
                         const CFArrayCallBacks* callBacks) {
    if (!Require(count == 0 || (count > 0 && values != nullptr), "an array needs its values"))
        return nullptr;
    return CreateFilled(Mutability::kImmutable, callBacks, values, count);
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks* callBacks) {
    return Create<CFArray>(Mutability::kMutable, callBacks);
}

CFIndex CFArrayGetCount(CFArrayRef array) {
    const CFArray* checked = Check<CFArray>(array);
    return checked != nullptr ? checked->Count() : 0;
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    const CFArray* checked = Check<CFArray>(array);
    return checked != nullptr && RequireIndex(index, checked->Count()) ? checked->At(index) : nullptr;
}

void CFArrayAppendValue(CFMutableArrayRef array, const void* value) {
    if (CFArray* checked = CheckMutable(array))
        Guarded([&] { checked->Append(&value, 1); });
}

void CFArrayAppendArray(CFMutableArrayRef array, CFArrayRef other, CFRange otherRange) {
    CFArray* checked = CheckMutable(array);
    const CFArray* source = Check<CFArray>(other);
    if (checked == nullptr || source == nullptr || !RequireRange(otherRange, source->Count()))
        return;
    Guarded([&] {
        const auto* first = source->Values() + otherRange.location;
        const std::vector<const void*> values(first, first + otherRange.length);  // both may be one array
        checked->Append(values.data(), otherRange.length);
    });
}

void CFArraySetValueAtIndex(CFMutableArrayRef array, CFIndex index, const void* value) {
    CFArray* checked = CheckMutable(array);
    if (checked == nullptr || !RequireIndex(index, checked->Count() + 1))
        return;
    if (index == checked->Count())
        CFArrayAppendValue(array, value);
    else
        checked->Replace(index, value);
}

void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index) {
    CFArray* checked = CheckMutable(array);
    if (checked != nullptr && RequireIndex(index, checked->Count()))
        checked->Remove(index);
}

void CFArrayRemoveAllValues(CFMutableArrayRef array) {
    if (CFArray* checked = CheckMutable(array))
        checked->Clear();
}
