// The rare paths of the dictionaries' table: copies, growth, shifts over the end, the list of crowded names.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/hash_table.h>

#include <exception>

namespace ht::detail {

template <class V>
HashTable<V>::HashTable(const HashTable& other)
    : FSlots(static_cast<Slot*>(memory::Allocate(std::size_t{other.SlotCount()} * sizeof(Slot))))
    , FMask(other.FMask)
    , FCount(other.FCount)
    , FGrowLimit(other.FGrowLimit)
{
    assert(!other.FSeededName);
    std::memcpy(static_cast<void*>(FSlots), other.FSlots, std::size_t{SlotCount()} * sizeof(Slot));
}

template <class V> HashTable<V>& HashTable<V>::operator=(const HashTable& other)
{
    assert(!FSeededName);
    HashTable copy(other);
    std::swap(FSlots, copy.FSlots);
    FMask = other.FMask;
    FCount = other.FCount;
    FGrowLimit = other.FGrowLimit;
    return *this;
}

template <class V> void HashTable<V>::SetCapacity(std::int32_t capacity)
{
    const std::uint32_t size = HashTableSize(capacity, FCount);
    const std::int32_t limit = GrowLimitFor(size, FCount);
    if (FSlots && size == SlotCount()) {
        // Only the share that may be filled has changed, which saves asking again at every addition.
        FGrowLimit = std::max(FGrowLimit, limit);
        return;
    }
    if (FSlots && size < SlotCount() && FCount > 0)
        return;
    Slot* old = std::exchange(FSlots, NewSlots(size));
    const std::uint32_t oldMask = std::exchange(FMask, size - 1);
    FGrowLimit = limit;
    if (FIndex)
        std::copy_n(old, FCount, FSlots);
    else if (FCount > 0)
        Reinsert(old, oldMask);
    memory::Free(old);
}

template <class V> bool HashTable<V>::Grow()
{
    const std::uint32_t before = FMask;
    SetCapacity(0);
    // One slot always stays empty: searches end there.
    if (Unsigned(FCount) >= FMask)
        throw EOutOfMemory();
    return FMask != before;
}

/// Goes once around the old table from behind an empty slot: the homes come in rising order, so every entry
/// goes to the first empty slot from its home on and the runs are sorted. All slots from the home of the
/// entry before to its place are taken, so the search skips them; the homes of a doubled table come in two
/// streams, so two such entries are remembered.
template <class V> void HashTable<V>::Reinsert(const Slot* old, std::uint32_t oldMask) noexcept
{
    struct Placed {
        std::uint32_t Home = 0;
        std::uint32_t Place = 0;
    };
    Placed before[2];
    Slot* const slots = FSlots;
    const std::uint32_t mask = FMask;
    std::uint32_t empty = oldMask;
    while (old[empty].Key != empty)
        --empty;
    for (std::uint32_t step = 1; step <= oldMask; ++step) {
        const std::uint32_t from = (empty + step) & oldMask;
        const Slot entry = old[from];
        if (entry.Key == from)
            continue;
        const std::uint32_t home = (entry.Key + 1) & mask;
        Placed& last = before[home > oldMask ? 1 : 0];
        std::uint32_t to = home;
        if (slots[to].Key != to) {
            if (((home - last.Home) & mask) <= ((last.Place - last.Home) & mask))
                to = last.Place;
            do
                to = (to + 1) & mask;
            while (slots[to].Key != to);
        }
        slots[to] = entry;
        last = {home, to};
    }
}

/// Moves the entries from `slot` up to the next empty one by a slot; returns how many.
template <class V> std::uint32_t HashTable<V>::ShiftUp(std::uint32_t slot) noexcept
{
    std::uint32_t empty = slot;
    while (FSlots[empty].Key != empty)
        empty = (empty + 1) & FMask;
    const std::uint32_t moved = (empty - slot) & FMask;
    if (empty < slot) {
        std::memmove(static_cast<void*>(FSlots + 1), FSlots, empty * sizeof(Slot));
        FSlots[0] = FSlots[FMask];
        empty = FMask;
    }
    std::memmove(static_cast<void*>(FSlots + slot + 1), FSlots + slot, (empty - slot) * sizeof(Slot));
    return moved;
}

template <class V> template <class Drop> void HashTable<V>::Clear(std::int32_t capacity, Drop drop)
{
    const std::uint32_t size = HashTableSize(capacity, 0);
    const std::uint32_t listed = std::exchange(FIndex, nullptr) ? Unsigned(FCount) : 0;
    if (std::exchange(FCount, 0) > 0) {
        for (std::uint32_t i = 0; i <= FMask; ++i) {
            if (FSlots[i].Key == i && i >= listed)
                continue;
            const V value = FSlots[i].Value;
            FSlots[i] = {i, V{}};
            drop(value);
        }
    }
    if (size != SlotCount())
        SetCapacity(capacity);
    else
        FGrowLimit = GrowLimitFor(size, 0);
}

/// After an insertion at `slot` that has moved `moved` entries up: whether the group of its home has become
/// long, or an entry far from its home. From one slot to the next the distance grows by one at most, so of
/// the entries moved a few samples tell; none stands further away than one step more than a long probe.
template <class V> bool HashTable<V>::IsCrowded(std::uint32_t slot, std::uint32_t moved) const noexcept
{
    constexpr std::uint32_t kStep = kLongProbe / 4;
    const std::uint32_t distance = DistanceAt(slot);
    // All slots from the home on are taken and sorted, and the new entry is the last one of its group.
    if (distance > kLongGroup && Home(FSlots[(slot - kLongGroup) & FMask].Key) == Home(FSlots[slot].Key))
        return true;
    for (std::uint32_t offset = 0; offset <= moved; offset += kStep) {
        if (DistanceAt((slot + offset) & FMask) > kLongProbe)
            return true;
    }
    return false;
}

/// Moves the entries together at the front and notes them in an index. Returns where the entry of `slot` went
/// to. Without memory for the index the table stays as it is and its runs are walked.
template <class V> std::int32_t HashTable<V>::BecomeList(std::int32_t slot) noexcept
{
    std::unique_ptr<Index> index;
    try {
        index = std::make_unique<Index>(FCount); // grows no more below
    } catch (const std::exception&) {
        return slot;
    }
    std::uint32_t end = 0;
    std::uint32_t place = 0;
    for (std::uint32_t from = 0; from <= FMask; ++from) {
        if (FSlots[from].Key == from)
            continue;
        if (from == Unsigned(slot))
            place = end;
        const Slot entry = std::exchange(FSlots[from], Slot{from, V{}});
        FSlots[end] = entry;
        const std::uint32_t seeded = FSeededName(FNameContext, entry.Value);
        index->InsertAt(~index->Find(seeded, NeverSame{}), seeded, end);
        ++end;
    }
    FIndex = std::move(index);
    return static_cast<std::int32_t>(place);
}

/// The matcher of an entry in the index: `is(slot)` tells whether it is the one looked for.
template <class Is> class ListedMatch {
public:
    explicit ListedMatch(const Is& is)
        : FIs(is)
    {
    }
    bool Same(std::uint32_t slot) const { return FIs(slot); }

private:
    const Is& FIs;
};

template <class V>
template <class Match>
std::int32_t HashTable<V>::FindListed(std::uint32_t key, const Match& match) const
{
    const auto isHit = [&](std::uint32_t slot) {
        return FSlots[slot].Key == key && match.Same(FSlots[slot].Value);
    };
    if constexpr (requires { match.Seeded(); }) {
        const std::int32_t found = FIndex->Find(match.Seeded(), ListedMatch(isHit));
        return found >= 0 ? static_cast<std::int32_t>(FIndex->ValueAt(found)) : ~FCount;
    } else {
        for (std::int32_t slot = 0; slot < FCount; ++slot) {
            if (isHit(Unsigned(slot)))
                return slot;
        }
        return ~FCount;
    }
}

template <class V>
template <class Match>
std::int32_t HashTable<V>::AppendListed(std::uint32_t key, V value, const Match& match)
{
    FIndex->GrowIfFull();
    std::uint32_t seeded = 0;
    if constexpr (requires { match.Seeded(); })
        seeded = match.Seeded();
    else
        seeded = FSeededName(FNameContext, value);
    FIndex->InsertAt(~FIndex->Find(seeded, NeverSame{}), seeded, Unsigned(FCount));
    FSlots[FCount] = {key, value};
    return FCount++;
}

/// The last entry takes the place of the one that leaves.
template <class V> void HashTable<V>::RemoveListed(std::uint32_t slot)
{
    const std::uint32_t last = Unsigned(FCount) - 1;
    FIndex->RemoveAt(IndexOf(slot));
    if (slot != last) {
        FIndex->ValueAt(IndexOf(last)) = slot;
        FSlots[slot] = FSlots[last];
    }
    FSlots[last] = {last, V{}};
    --FCount;
}

/// Where the index holds the entry of a slot.
template <class V> std::int32_t HashTable<V>::IndexOf(std::uint32_t slot) const
{
    const auto isIt = [slot](std::uint32_t other) { return other == slot; };
    return FIndex->Find(FSeededName(FNameContext, FSlots[slot].Value), ListedMatch(isIt));
}

}
