// The array object.
#pragma once

#include <vector>

#include "CoreFoundation/CFArray.h"
#include "Runtime.h"

struct CFArray final : corefoundation::TypedObject<CFArray, corefoundation::kArrayType> {
public:
    CFArray(corefoundation::Mutability mutability, const CFArrayCallBacks* callBacks)
        : mMutability(mutability), mCallBacks(callBacks != nullptr ? *callBacks : CFArrayCallBacks{}) {}
    ~CFArray() { Clear(); }

    const CFArrayCallBacks& CallBacks() const noexcept { return mCallBacks; }
    CFIndex Count() const noexcept { return static_cast<CFIndex>(mValues.size()); }
    const void* At(CFIndex index) const { return mValues[static_cast<size_t>(index)]; }

    void Append(const void* const* values, CFIndex count);
    void Replace(CFIndex index, const void* value);
    void Remove(CFIndex index);
    void Clear() noexcept;

    const void* const* Values() const noexcept { return mValues.data(); }

    bool Equals(const Object& other) const override;
    CFHashCode Hash() const override { return mValues.size(); }
    std::string Describe() const override;

    corefoundation::Mutability mMutability;

private:
    const void* Retained(const void* value) const;
    void ReleaseValue(const void* value) const;
    bool AreEqual(const void* value1, const void* value2) const;

    const CFArrayCallBacks mCallBacks;
    std::vector<const void*> mValues;
};
