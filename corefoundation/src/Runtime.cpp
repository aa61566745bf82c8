#include "Runtime.h"

#include <cstdio>
#include <cstdlib>

#include "StringObject.h"

using namespace corefoundation;

struct CFNull final : TypedObject<CFNull, kNullType> {
    constexpr CFNull() : TypedObject(kImmortal) {}
    std::string Describe() const override { return "<null>"; }
};

namespace {
constinit const CFNull gNull;
}

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFNullRef kCFNull = &gNull;

namespace corefoundation {

void Object::Retain() const noexcept {
    if (RetainCount() != kImmortal)
        mRetainCount.fetch_add(1, std::memory_order_relaxed);
}

void Object::Release() const noexcept {
    if (RetainCount() == kImmortal)
        return;
    // What other owners did to the object happens before its end.
    if (mRetainCount.fetch_sub(1, std::memory_order_acq_rel) == 1)
        Destroy();
}

void ReportMisuse([[maybe_unused]] const char* rule) noexcept {
#ifndef NDEBUG
    std::fprintf(stderr, "CoreFoundation: %s\n", rule);
    std::abort();
#endif
}

std::string DescribePointer(const void* pointer) {
    char text[32];
    std::snprintf(text, sizeof text, "<%p>", pointer);
    return text;
}

std::string DescribeValue(CFStringRef (*copyDescription)(const void*), const void* value) {
    if (copyDescription == nullptr || value == nullptr)
        return DescribePointer(value);
    const Owned<const CFString> description(copyDescription(value));
    return description ? description->Utf8() : DescribePointer(value);
}

const void* RetainObject(CFAllocatorRef, const void* value) {
    return CFRetain(value);
}

void ReleaseObject(CFAllocatorRef, const void* value) {
    CFRelease(value);
}

}  // namespace corefoundation

CFTypeID CFNullGetTypeID(void) {
    return kNullType;
}

CFTypeRef CFRetain(CFTypeRef object) {
    if (const Object* checked = AsObject(object))
        checked->Retain();
    return object;
}

void CFRelease(CFTypeRef object) {
    if (const Object* checked = AsObject(object))
        checked->Release();
}

CFIndex CFGetRetainCount(CFTypeRef object) {
    const Object* checked = AsObject(object);
    return checked != nullptr ? checked->RetainCount() : 0;
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    const Object* checked = AsObject(object);
    return checked != nullptr ? checked->Type() : 0;
}

Boolean CFEqual(CFTypeRef object1, CFTypeRef object2) {
    const Object* left = AsObject(object1);
    const Object* right = AsObject(object2);
    if (left == nullptr || right == nullptr)
        return FALSE;
    return left == right || (left->Type() == right->Type() && left->Equals(*right));
}

CFHashCode CFHash(CFTypeRef object) {
    const Object* checked = AsObject(object);
    return checked != nullptr ? checked->Hash() : 0;
}

CFStringRef CFCopyDescription(CFTypeRef object) {
    const Object* checked = AsObject(object);
    if (checked == nullptr)
        return nullptr;
    return Guarded<CFStringRef>(nullptr, [&] { return Create<CFString>(checked->Describe()); });
}
