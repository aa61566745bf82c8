// A hash table of pointers that remembers the order in which its keys were added.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "CoreFoundation/CFBase.h"

namespace corefoundation {

// Entries stand in a vector in their order; a second vector, the slots, holds their positions by hash (linear
// probing). A removed entry stays behind as a gap until the slots are laid out again.
class OrderedTable {
public:
    struct Entry {
        const void* key;
        const void* value;
        CFHashCode hash;
        bool isRemoved;
    };

    size_t Size() const noexcept { return mEntries.size() - mRemovedCount; }

    // isEqual(key) is asked about the keys that have this hash.
    template <class IsEqual>
    Entry* Find(CFHashCode hash, IsEqual&& isEqual) {
        if (mSlots.empty())
            return nullptr;
        for (size_t slot = FirstSlot(hash); mSlots[slot] != kFree; slot = NextSlot(slot)) {
            Entry& entry = mEntries[mSlots[slot]];
            if (!entry.isRemoved && entry.hash == hash && isEqual(entry.key))
                return &entry;
        }
        return nullptr;
    }

    // After this, count calls of Add need no memory. May throw std::bad_alloc and then changes nothing.
    void Reserve(size_t count) {
        const size_t needed = mEntries.size() + count;
        if (mSlots.size() * 2 < needed * 3)
            LayOut(Size() + count);
        else if (mEntries.capacity() < needed)
            mEntries.reserve(std::max(needed, 2 * mEntries.capacity()));
    }

    // The key must be missing, and Reserve must have been called.
    void Add(const void* key, const void* value, CFHashCode hash) noexcept {
        mSlots[FreeSlot(mSlots, hash)] = static_cast<uint32_t>(mEntries.size());
        mEntries.push_back({key, value, hash, false});
    }

    void Remove(Entry& entry) noexcept {
        entry.isRemoved = true;
        ++mRemovedCount;
    }

    template <class Visitor>
    void ForEach(Visitor&& visit) const {
        for (const Entry& entry : mEntries)
            if (!entry.isRemoved)
                visit(entry);
    }

private:
    static constexpr uint32_t kFree = UINT32_MAX;
    static constexpr size_t kFewestSlots = 8;

    // Spreads codes whose low bits are alike, as those of addresses are.
    static size_t SlotOf(CFHashCode hash, size_t slotCount) noexcept {
        const uint64_t mixed = (hash ^ static_cast<uint64_t>(hash) >> 32) * 0x9E3779B97F4A7C15U;
        return static_cast<size_t>(mixed >> 32) & (slotCount - 1);
    }
    size_t FirstSlot(CFHashCode hash) const noexcept { return SlotOf(hash, mSlots.size()); }
    size_t NextSlot(size_t slot) const noexcept { return (slot + 1) & (mSlots.size() - 1); }

    static size_t FreeSlot(const std::vector<uint32_t>& slots, CFHashCode hash) noexcept {
        size_t slot = SlotOf(hash, slots.size());
        while (slots[slot] != kFree)
            slot = (slot + 1) & (slots.size() - 1);
        return slot;
    }

    // Closes the gaps and makes room for at least entryCount entries, which take half of the slots at most.
    void LayOut(size_t entryCount) {
        size_t slotCount = kFewestSlots;
        while (slotCount < entryCount * 2)
            slotCount *= 2;
        std::vector<uint32_t> slots(slotCount, kFree);
        std::vector<Entry> entries;
        entries.reserve(slotCount * 2 / 3 + 1);
        ForEach([&](const Entry& entry) {
            slots[FreeSlot(slots, entry.hash)] = static_cast<uint32_t>(entries.size());
            entries.push_back(entry);
        });
        mSlots.swap(slots);
        mEntries.swap(entries);
        mRemovedCount = 0;
    }

    std::vector<Entry> mEntries;
    std::vector<uint32_t> mSlots;  // a power of two of them, or none
    size_t mRemovedCount = 0;
};

}  // namespace corefoundation
