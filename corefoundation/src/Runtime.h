// What all objects are made of: the shared base class with its owners' count, checked access, safe creation.
#pragma once

#include <atomic>
#include <exception>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "CoreFoundation/CFBase.h"

namespace corefoundation {

// The values of the public type identifiers. 0 is never one.
enum : CFTypeID {
    kNullType = 1,
    kStringType,
    kArrayType,
    kDictionaryType,
    kBooleanType,
    kNumberType,
    kDataType,
    kUuidType
};

enum class Mutability { kImmutable, kMutable };

class Object {
public:
    static constexpr CFIndex kImmortal = std::numeric_limits<CFIndex>::max();

    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    void Retain() const noexcept;
    void Release() const noexcept;
    CFIndex RetainCount() const noexcept { return mRetainCount.load(std::memory_order_relaxed); }
    // To be called before a second thread sees the object.
    void MakeImmortal() const noexcept { mRetainCount.store(kImmortal, std::memory_order_relaxed); }

    virtual CFTypeID Type() const noexcept = 0;
    // other is of the same type.
    virtual bool Equals(const Object& other) const { return this == &other; }
    virtual CFHashCode Hash() const { return reinterpret_cast<CFHashCode>(this); }
    virtual std::string Describe() const = 0;

protected:
    constexpr explicit Object(CFIndex retainCount) : mRetainCount(retainCount) {}
    ~Object() = default;
    virtual void Destroy() const noexcept = 0;

private:
    mutable std::atomic<CFIndex> mRetainCount;
};

template <class Derived, CFTypeID kIdentifier>
class TypedObject : public Object {
public:
    static constexpr CFTypeID kType = kIdentifier;
    CFTypeID Type() const noexcept final { return kIdentifier; }

protected:
    constexpr explicit TypedObject(CFIndex retainCount = 1) : Object(retainCount) {}
    ~TypedObject() = default;
    void Destroy() const noexcept final {
        std::default_delete<const Derived>()(static_cast<const Derived*>(this));
    }
};

// Reports a programming error: says so and aborts in debug builds, does nothing in release builds.
void ReportMisuse(const char* rule) noexcept;

// True when the caller kept the rule.
[[nodiscard]] inline bool Require(bool kept, const char* rule) noexcept {
    if (!kept)
        ReportMisuse(rule);
    return kept;
}

inline const Object* AsObject(CFTypeRef ref) noexcept {
    (void)Require(ref != nullptr, "an object is expected, not NULL");
    return static_cast<const Object*>(ref);
}

// What containers of objects keep theirs with.
const void* RetainObject(CFAllocatorRef, const void* value);
void ReleaseObject(CFAllocatorRef, const void* value);

// The object behind ref, or null when it is of another type.
template <class T>
const T* Check(CFTypeRef ref) noexcept {
    const Object* object = AsObject(ref);
    const bool matches = object != nullptr && object->Type() == T::kType;
    return Require(matches, "the object is of another type") ? static_cast<const T*>(object) : nullptr;
}

// The same, for changes: null when the object is immutable.
template <class T>
T* CheckMutable(T* ref) noexcept {
    const T* object = Check<T>(ref);
    const bool matches = object != nullptr && object->mMutability == Mutability::kMutable;
    return Require(matches, "the object cannot be changed") ? ref : nullptr;
}

[[nodiscard]] inline bool RequireRange(CFRange range, CFIndex count) noexcept {
    const bool inside = range.location >= 0 && range.length >= 0 && range.location <= count &&
                        range.length <= count - range.location;
    return Require(inside, "the range must lie inside");
}

[[nodiscard]] inline bool RequireIndex(CFIndex index, CFIndex count) noexcept {
    return Require(index >= 0 && index < count, "the index must lie inside");
}

// Runs work; answers fallback when memory runs out in it, since no exception may reach a C caller.
template <class Result, class Work>
Result Guarded(Result fallback, Work&& work) noexcept {
    try {
        return work();
    } catch (const std::exception&) {
        return fallback;
    }
}

template <class Work>
void Guarded(Work&& work) noexcept {
    try {
        work();
    } catch (const std::exception&) {
        // The change did not take place.
    }
}

// A new object with one owner, the caller of the public function; null when memory runs out.
template <class T, class... Arguments>
T* Create(Arguments&&... arguments) noexcept {
    return Guarded<T*>(nullptr,
                       [&] { return std::make_unique<T>(std::forward<Arguments>(arguments)...).release(); });
}

// Takes over a reference that the caller owns, for the time of a scope.
struct Releaser {
    void operator()(const void* object) const noexcept { CFRelease(object); }
};
template <class T>
using Owned = std::unique_ptr<T, Releaser>;

std::string DescribePointer(const void* pointer);
// With a collection's copyDescription callback, which may be null.
std::string DescribeValue(CFStringRef (*copyDescription)(const void*), const void* value);

}  // namespace corefoundation
