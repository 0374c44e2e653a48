// The set of integers with a second word a key.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/hash_table.h>

namespace ht {

/// Integers with a word each; with `scramble` sequential keys are spread over the table. A plain value: a
/// copy has slots of its own, and what was moved from is still whole.
class HT_API TShaIntegerBox {
public:
    /// Throws EOutOfMemory for a capacity above 2^30.
    explicit TShaIntegerBox(std::int32_t capacity = 0, bool scramble = false);

    std::int32_t Count() const noexcept { return FTable.Count(); }
    std::int32_t SlotCount() const noexcept { return static_cast<std::int32_t>(FTable.SlotCount()); }
    void Clear(std::int32_t capacity = 0);
    void SetCapacity(std::int32_t capacity) { FTable.SetCapacity(capacity); }

    /// The slot of a hit, or the complement of the slot where the key would go.
    std::int32_t InternalFind(std::uint32_t key) const { return FTable.Find(Stored(key), detail::KeyOnly{}); }
    /// False and 0 for an absent key.
    bool Find(std::uint32_t key, std::uint32_t& value) const;
    /// The new slot, whose word is 0; for a present key the complement of its slot.
    std::int32_t Add(std::uint32_t key);
    void Remove(std::uint32_t key);
    /// The word of a slot that Add or InternalFind returned. Throws ERangeError.
    std::uint32_t& ValueAt(std::int32_t slot);

    /// Walks the keys in slot order: start with index 0; false at the end.
    bool GetNext(std::int32_t& index, std::uint32_t& key) const;

private:
    std::uint32_t Stored(std::uint32_t key) const noexcept { return FScramble ? Scrambled(key) : key; }
    static std::uint32_t Scrambled(std::uint32_t key) noexcept
    {
        const std::uint32_t a = key * 0x560CED27U;
        const std::uint32_t b = a ^ (a >> 16);
        const std::uint32_t c = b ^ (b >> 8);
        return c * 0x90C03487U;
    }

    detail::HashTable<std::uint32_t> FTable;
    bool FScramble;
};

}
