#include "DictionaryObject.h"

using namespace corefoundation;

namespace {

template <class CallBacks>
const void* RetainedBy(const CallBacks& callBacks, const void* value) {
    return callBacks.retain != nullptr ? callBacks.retain(kCFAllocatorDefault, value) : value;
}

template <class CallBacks>
void ReleaseBy(const CallBacks& callBacks, const void* value) {
    if (callBacks.release != nullptr)
        callBacks.release(kCFAllocatorDefault, value);
}

CFDictionary* CreateCopy(Mutability mutability, const CFDictionary& source) {
    return Guarded<CFDictionary*>(nullptr, [&] {
        auto copy =
            std::make_unique<CFDictionary>(mutability, &source.KeyCallBacks(), &source.ValueCallBacks());
        source.ForEach([&](const auto& entry) { copy->Set(entry.key, entry.value); });
        return copy.release();
    });
}

}  // namespace

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {
    0, RetainObject, ReleaseObject, CFCopyDescription, CFEqual, CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, RetainObject, ReleaseObject,
                                                                    CFCopyDescription, CFEqual};

CFDictionary::CFDictionary(Mutability mutability, const CFDictionaryKeyCallBacks* keyCallBacks,
                           const CFDictionaryValueCallBacks* valueCallBacks)
    : mMutability(mutability),
      mKeyCallBacks(keyCallBacks != nullptr ? *keyCallBacks : CFDictionaryKeyCallBacks{}),
      mValueCallBacks(valueCallBacks != nullptr ? *valueCallBacks : CFDictionaryValueCallBacks{}) {}

bool CFDictionary::AreEqualValues(const void* value1, const void* value2) const {
    return value1 == value2 || (mValueCallBacks.equal != nullptr && mValueCallBacks.equal(value1, value2));
}

CFHashCode CFDictionary::HashOf(const void* key) const {
    return mKeyCallBacks.hash != nullptr ? mKeyCallBacks.hash(key) : reinterpret_cast<CFHashCode>(key);
}

CFDictionary::Entry* CFDictionary::Find(const void* key) {
    return mTable.Find(HashOf(key), [&](const void* own) {
        return own == key || (mKeyCallBacks.equal != nullptr && mKeyCallBacks.equal(own, key));
    });
}

void CFDictionary::Set(const void* key, const void* value) {
    if (Entry* entry = Find(key)) {
        ReleaseBy(mValueCallBacks, std::exchange(entry->value, RetainedBy(mValueCallBacks, value)));
    } else {
        // Room first, so that what is retained is sure to be stored.
        mTable.Reserve(1);
        mTable.Add(RetainedBy(mKeyCallBacks, key), RetainedBy(mValueCallBacks, value), HashOf(key));
    }
}

void CFDictionary::Release(const Entry& entry) const {
    ReleaseBy(mKeyCallBacks, entry.key);
    ReleaseBy(mValueCallBacks, entry.value);
}

void CFDictionary::Remove(const void* key) {
    if (Entry* entry = Find(key)) {
        const Entry removed = *entry;
        mTable.Remove(*entry);
        Release(removed);
    }
}

void CFDictionary::Clear() noexcept {
    const OrderedTable removed = std::exchange(mTable, {});
    removed.ForEach([this](const Entry& entry) { Release(entry); });
}

bool CFDictionary::Equals(const Object& other) const {
    const auto& otherDictionary = static_cast<const CFDictionary&>(other);
    bool isEqual = Count() == otherDictionary.Count();
    ForEach([&](const Entry& entry) {
        const Entry* counterpart = isEqual ? otherDictionary.Find(entry.key) : nullptr;
        isEqual = counterpart != nullptr && AreEqualValues(entry.value, counterpart->value);
    });
    return isEqual;
}

std::string CFDictionary::Describe() const {
    std::string text = "{";
    ForEach([&](const Entry& entry) {
        text += text.size() > 1 ? ", " : "";
        text += DescribeValue(mKeyCallBacks.copyDescription, entry.key) + " = " +
                DescribeValue(mValueCallBacks.copyDescription, entry.value);
    });
    return text + "}";
}

CFTypeID CFDictionaryGetTypeID(void) {
    return kDictionaryType;
}

CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef, CFDictionaryRef dictionary) {
    const CFDictionary* checked = Check<CFDictionary>(dictionary);
    if (checked == nullptr)
        return nullptr;
    if (checked->mMutability == Mutability::kImmutable)
        return static_cast<CFDictionaryRef>(CFRetain(dictionary));
    return CreateCopy(Mutability::kImmutable, *checked);
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    return Create<CFDictionary>(Mutability::kMutable, keyCallBacks, valueCallBacks);
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex, CFDictionaryRef dictionary) {
    const CFDictionary* checked = Check<CFDictionary>(dictionary);
    return checked != nullptr ? CreateCopy(Mutability::kMutable, *checked) : nullptr;
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    const CFDictionary* checked = Check<CFDictionary>(dictionary);
    return checked != nullptr ? checked->Count() : 0;
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    const CFDictionary* checked = Check<CFDictionary>(dictionary);
    const auto* entry = checked != nullptr ? checked->Find(key) : nullptr;
    return entry != nullptr ? entry->value : nullptr;
}

Boolean CFDictionaryContainsValue(CFDictionaryRef dictionary, const void* value) {
    const CFDictionary* checked = Check<CFDictionary>(dictionary);
    bool contains = false;
    if (checked != nullptr)
        checked->ForEach([&](const auto& entry) { contains |= checked->AreEqualValues(entry.value, value); });
    return contains;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys, const void** values) {
    const CFDictionary* checked = Check<CFDictionary>(dictionary);
    if (checked == nullptr)
        return;
    size_t index = 0;
    checked->ForEach([&](const auto& entry) {
        if (keys != nullptr)
            keys[index] = entry.key;
        if (values != nullptr)
            values[index] = entry.value;
        ++index;
    });
}

void CFDictionaryApplyFunction(CFDictionaryRef dictionary, CFDictionaryApplierFunction applier,
                               void* context) {
    if (const CFDictionary* checked = Check<CFDictionary>(dictionary))
        checked->ForEach([&](const auto& entry) { applier(entry.key, entry.value, context); });
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    if (CFDictionary* checked = CheckMutable(dictionary))
        Guarded([&] { checked->Set(key, value); });
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
    if (CFDictionary* checked = CheckMutable(dictionary))
        checked->Remove(key);
}

void CFDictionaryRemoveAllValues(CFMutableDictionaryRef dictionary) {
    if (CFDictionary* checked = CheckMutable(dictionary))
        checked->Clear();
}
