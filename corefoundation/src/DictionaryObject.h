// The dictionary object.
#pragma once

#include "CoreFoundation/CFDictionary.h"
#include "OrderedTable.h"
#include "Runtime.h"

struct CFDictionary final : corefoundation::TypedObject<CFDictionary, corefoundation::kDictionaryType> {
public:
    using Entry = corefoundation::OrderedTable::Entry;

    CFDictionary(corefoundation::Mutability mutability, const CFDictionaryKeyCallBacks* keyCallBacks,
                 const CFDictionaryValueCallBacks* valueCallBacks);
    ~CFDictionary() { Clear(); }

    const CFDictionaryKeyCallBacks& KeyCallBacks() const noexcept { return mKeyCallBacks; }
    const CFDictionaryValueCallBacks& ValueCallBacks() const noexcept { return mValueCallBacks; }
    CFIndex Count() const noexcept { return static_cast<CFIndex>(mTable.Size()); }
    const Entry* Find(const void* key) const { return const_cast<CFDictionary*>(this)->Find(key); }
    template <class Visitor>
    void ForEach(Visitor&& visit) const {
        mTable.ForEach(visit);
    }
    bool AreEqualValues(const void* value1, const void* value2) const;

    void Set(const void* key, const void* value);
    void Remove(const void* key);
    void Clear() noexcept;

    bool Equals(const Object& other) const override;
    CFHashCode Hash() const override { return mTable.Size(); }
    std::string Describe() const override;

    corefoundation::Mutability mMutability;

private:
    Entry* Find(const void* key);
    CFHashCode HashOf(const void* key) const;
    void Release(const Entry& entry) const;

    const CFDictionaryKeyCallBacks mKeyCallBacks;
    const CFDictionaryValueCallBacks mValueCallBacks;
    corefoundation::OrderedTable mTable;
};
