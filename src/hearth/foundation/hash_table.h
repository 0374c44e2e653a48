// The open-addressing table under every dictionary: one slot order, one search, one growth rule.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/seeded_hash.h>
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/memory.h>

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

namespace ht::detail {

inline constexpr std::uint32_t kMaxSlots = 0x40000000;
/// Entries above which a table is filled to seven eighths instead of three quarters.
inline constexpr std::int32_t kDenseCount = 100'000;
/// Entries of one home, and probes from an entry's home to its slot, above which a table of names becomes a
/// list. Names that nobody chose for it stay below: the runs of hashes that numbered names make reach groups
/// of 10 and, up to a hundred thousand of them, 340 probes.
inline constexpr std::uint32_t kLongGroup = 32;
inline constexpr std::uint32_t kLongProbe = 512;
/// Entries that an insertion moves one by one before it moves the rest as a block.
inline constexpr std::uint32_t kShortShift = 16;

constexpr std::uint32_t FillShift(std::int32_t count) noexcept
{
    return count <= kDenseCount ? 2 : 3;
}

/// Slots for `wanted` entries in a table that holds `count`. Throws EOutOfMemory above 2^30.
inline std::uint32_t HashTableSize(std::int32_t wanted, std::int32_t count)
{
    if (wanted > static_cast<std::int32_t>(kMaxSlots))
        throw EOutOfMemory();
    const auto entries = static_cast<std::uint32_t>(std::max(wanted, count));
    std::uint32_t size = 4;
    while (entries >= size - (size >> FillShift(count)) && size < kMaxSlots)
        size *= 2;
    return size;
}

/// Equality of names by value: four units a step, the last step overlaps the one before.
inline bool SameUnits(const char16_t* a, const char16_t* b, std::size_t length) noexcept
{
    if (length < 4) {
        if (length == 0)
            return true;
        return a[0] == b[0] && a[length / 2] == b[length / 2] && a[length - 1] == b[length - 1];
    }
    const auto differ = [a, b](std::size_t at) {
        std::uint64_t x = 0;
        std::uint64_t y = 0;
        std::memcpy(&x, a + at, sizeof x);
        std::memcpy(&y, b + at, sizeof y);
        return x != y;
    };
    for (std::size_t i = 0; i + 4 < length; i += 4) {
        if (differ(i))
            return false;
    }
    return !differ(length - 4);
}

/// The matcher of integer keys: an equal key is a hit.
struct KeyOnly {
    template <class Value> static constexpr bool Same(const Value&) noexcept { return true; }
};

/// The matcher of a search for the end of a group: no entry is a hit.
struct NeverSame {
    template <class Value> static constexpr bool Same(const Value&) noexcept { return false; }
};

/// Slots of a 32-bit key and a value. The home of key k is slot k + 1; an empty slot's key is its own index,
/// which no entry's key can be. The entries of a run are sorted by home, so a search for an absent key ends
/// at the first entry whose home lies behind. Searches change nothing: any number of threads may search a
/// table that nobody changes.
///
/// A table of names whose hashes crowd together becomes a list until it is cleared: its entries fill the
/// slots from 0 on, and an index by seeded hash tells where they stand. Sizes and growth are the same.
///
/// A matcher has `Same(value)` and, where names are compared, `Seeded()`: the SeededHash of the name looked
/// for.
template <class V> class HashTable {
    static_assert(std::is_trivially_copyable_v<V>);

public:
    /// SeededHash of the name of a value.
    using SeededNameFunc = std::uint32_t (*)(std::intptr_t context, V value);

    /// Throws EOutOfMemory for a capacity above 2^30.
    explicit HashTable(std::int32_t capacity) { SetCapacity(capacity); }
    /// Tables without names only. A moved one is copied too, so none is ever without slots.
    HashTable(const HashTable& other);
    HashTable& operator=(const HashTable& other);
    ~HashTable() { memory::Free(FSlots); }

    /// Tells how names are read. Without it runs are walked whatever their length.
    void SetNames(SeededNameFunc seededName, std::intptr_t context) noexcept
    {
        FSeededName = seededName;
        FNameContext = context;
    }

    std::int32_t Count() const noexcept { return FCount; }
    std::uint32_t SlotCount() const noexcept { return FMask + 1; }
    /// Slots of a valid index only: a hit, or below SlotCount().
    std::uint32_t KeyAt(std::int32_t slot) const noexcept { return FSlots[Unsigned(slot)].Key; }
    V& ValueAt(std::int32_t slot) noexcept { return FSlots[Unsigned(slot)].Value; }
    const V& ValueAt(std::int32_t slot) const noexcept { return FSlots[Unsigned(slot)].Value; }

    /// The next occupied slot from `index` on, which moves behind it; -1 at the end.
    std::int32_t NextSlot(std::int32_t& index) const noexcept
    {
        for (std::uint32_t i = index < 0 ? 0 : Unsigned(index); i <= FMask; ++i) {
            if (IsTaken(i)) {
                index = static_cast<std::int32_t>(i) + 1;
                return static_cast<std::int32_t>(i);
            }
        }
        index = static_cast<std::int32_t>(FMask) + 1;
        return -1;
    }

    /// The slot of a hit, or the complement of the slot where the entry would go.
    template <class Match> std::int32_t Find(std::uint32_t key, const Match& match) const
    {
        if (FIndex) [[unlikely]]
            return FindListed(key, match);
        const Slot* const slots = FSlots;
        const std::uint32_t mask = FMask;
        std::uint32_t i = key;
        for (std::uint32_t count = 1;; ++count) {
            i = (i + 1) & mask;
            const std::uint32_t found = slots[i].Key;
            // Once around a table of four slots, a search comes to the empty slot whose index is the key. No
            // entry stands there; any other slot with an equal key has the count as its distance.
            if (found == key && i != key) {
                if (match.Same(slots[i].Value)) [[likely]]
                    return static_cast<std::int32_t>(i);
            } else if (count > ((i - found) & mask)) {
                return ~static_cast<std::int32_t>(i);
            }
        }
    }

    /// Makes room for one more entry; true when slots moved. Throws EOutOfMemory.
    bool GrowIfFull() { return FCount >= FGrowLimit ? Grow() : false; }

    /// Puts an entry where a search of this table has missed (`slot` is not complemented); returns its slot.
    /// Throws EOutOfMemory.
    std::int32_t InsertAt(std::int32_t slot, std::uint32_t key, V value)
    {
        return InsertAt(slot, key, value, KeyOnly{});
    }
    /// The same with the matcher of the search, which may know the seeded hash already.
    template <class Match>
    std::int32_t InsertAt(std::int32_t slot, std::uint32_t key, V value, const Match& match)
    {
        if (FIndex) [[unlikely]]
            return AppendListed(key, value, match);
        const std::uint32_t i = Unsigned(slot);
        Slot carried{key, value};
        std::uint32_t at = i;
        std::uint32_t moved = 0;
        for (; FSlots[at].Key != at; at = (at + 1) & FMask) {
            if (++moved > kShortShift) [[unlikely]] {
                moved += ShiftUp(at);
                break;
            }
            std::swap(carried, FSlots[at]);
        }
        FSlots[at] = carried;
        ++FCount;
        if (moved > kShortShift || ((i - key) & FMask) > kLongGroup) [[unlikely]] {
            if (FSeededName && IsCrowded(i, moved))
                return BecomeList(slot);
        }
        return slot;
    }

    struct Stored {
        std::int32_t Slot;
        V Replaced; // the value that stood there, or a default one
    };

    /// Adds, or replaces the value of an equal key. Grows first, as an addition does.
    template <class Match> Stored Store(std::uint32_t key, const Match& match, V value)
    {
        GrowIfFull();
        const std::int32_t slot = Find(key, match);
        if (slot >= 0)
            return {slot, std::exchange(ValueAt(slot), value)};
        return {InsertAt(~slot, key, value, match), V{}};
    }

    /// Takes the entry of an occupied slot out and closes the gap.
    V RemoveAt(std::int32_t slot)
    {
        std::uint32_t i = Unsigned(slot);
        const V removed = FSlots[i].Value;
        if (FIndex) [[unlikely]] {
            RemoveListed(i);
            return removed;
        }
        std::uint32_t next = (i + 1) & FMask;
        while (((next - FSlots[next].Key) & FMask) >= 2) {
            FSlots[i] = FSlots[next];
            i = next;
            next = (next + 1) & FMask;
        }
        FSlots[i] = {i, V{}};
        --FCount;
        return removed;
    }

    /// Sizes the table for `capacity` entries. A filled table never shrinks. Throws EOutOfMemory above 2^30.
    void SetCapacity(std::int32_t capacity);

    /// Calls `drop(value)` for every entry, then leaves an empty table of the size for `capacity`. Throws
    /// EOutOfMemory above 2^30 and then changes nothing.
    template <class Drop> void Clear(std::int32_t capacity, Drop drop);

private:
    struct Slot {
        std::uint32_t Key;
        V Value;
    };

    static std::uint32_t Unsigned(std::int32_t slot) noexcept { return static_cast<std::uint32_t>(slot); }
    std::uint32_t Home(std::uint32_t key) const noexcept { return (key + 1) & FMask; }

    static Slot* NewSlots(std::uint32_t size)
    {
        auto* slots = static_cast<Slot*>(memory::Allocate(std::size_t{size} * sizeof(Slot)));
        MarkEmpty(slots, size);
        return slots;
    }
    static void MarkEmpty(Slot* slots, std::uint32_t size) noexcept
    {
        for (std::uint32_t i = 0; i < size; ++i)
            slots[i] = {i, V{}};
    }
    static std::int32_t GrowLimitFor(std::uint32_t size, std::int32_t count) noexcept
    {
        return static_cast<std::int32_t>(size == kMaxSlots ? size - 1 : size - (size >> FillShift(count)));
    }

    bool IsTaken(std::uint32_t slot) const noexcept
    {
        return FSlots[slot].Key != slot || (FIndex && slot < Unsigned(FCount));
    }
    std::uint32_t DistanceAt(std::uint32_t slot) const noexcept { return (slot - FSlots[slot].Key) & FMask; }

    bool Grow();
    std::uint32_t ShiftUp(std::uint32_t slot) noexcept;
    void Reinsert(const Slot* old, std::uint32_t oldMask) noexcept;

    /// Slots by seeded hash. Its own keys cannot be aimed at, so it never becomes a list.
    using Index = HashTable<std::uint32_t>;

    bool IsCrowded(std::uint32_t slot, std::uint32_t moved) const noexcept;
    std::int32_t BecomeList(std::int32_t slot) noexcept;
    template <class Match> std::int32_t FindListed(std::uint32_t key, const Match& match) const;
    template <class Match> std::int32_t AppendListed(std::uint32_t key, V value, const Match& match);
    void RemoveListed(std::uint32_t slot);
    std::int32_t IndexOf(std::uint32_t slot) const;

    Slot* FSlots = nullptr;
    std::uint32_t FMask = 0;
    std::int32_t FCount = 0;
    std::int32_t FGrowLimit = 0;
    SeededNameFunc FSeededName = nullptr;
    std::intptr_t FNameContext = 0;
    std::unique_ptr<Index> FIndex; // in a list only
};

}

#include <hearth/foundation/hash_table_cold.h>
