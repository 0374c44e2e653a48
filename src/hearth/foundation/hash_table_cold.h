// The rare paths of the dictionaries' table: growth, shifts over the end, long groups of one home.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/hash_table.h>

namespace ht::detail {

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
    if (FCount > 0)
        Reinsert(old, oldMask);
    memory::Free(old);
    if (FIndex)
        RebuildIndex(oldMask);
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

template <class V> void HashTable<V>::ShiftUp(std::uint32_t slot) noexcept
{
    std::uint32_t empty = slot;
    while (FSlots[empty].Key != empty)
        empty = (empty + 1) & FMask;
    if (empty < slot) {
        std::memmove(static_cast<void*>(FSlots + 1), FSlots, empty * sizeof(Slot));
        FSlots[0] = FSlots[FMask];
        empty = FMask;
    }
    std::memmove(static_cast<void*>(FSlots + slot + 1), FSlots + slot, (empty - slot) * sizeof(Slot));
}

template <class V> template <class Drop> void HashTable<V>::Clear(std::int32_t capacity, Drop drop)
{
    const std::uint32_t size = HashTableSize(capacity, 0);
    FIndex.reset();
    if (std::exchange(FCount, 0) > 0) {
        for (std::uint32_t i = 0; i <= FMask; ++i) {
            if (FSlots[i].Key == i)
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

// Seen from home slot h, the entries of earlier homes come first (their distance is greater than the probe
// count), then the group of h (equal), then everything else (less). So both ends of a group are found by
// bisection.

/// The first probe count for which `reached(count)` holds, where it holds for all counts behind it.
template <class V> template <class Reached> std::uint32_t HashTable<V>::FirstProbe(Reached reached) const
{
    std::uint32_t low = 0;
    std::uint32_t high = 1;
    while (high <= FMask && !reached(high)) {
        low = high;
        high *= 2;
    }
    while (high - low > 1) {
        const std::uint32_t middle = low + (high - low) / 2;
        (reached(middle) ? high : low) = middle;
    }
    return high;
}

template <class V> bool HashTable<V>::IsGroupStart(std::uint32_t home, std::uint32_t count) const noexcept
{
    return DistanceAtProbe(home, count) <= count
        && (count == 1 || DistanceAtProbe(home, count - 1) > count - 1);
}

template <class V> bool HashTable<V>::IsGroupStop(std::uint32_t home, std::uint32_t count) const noexcept
{
    return DistanceAtProbe(home, count) < count
        && (count == 1 || DistanceAtProbe(home, count - 1) >= count - 1);
}

template <class V> std::uint32_t HashTable<V>::GroupStart(std::uint32_t home) const noexcept
{
    return FirstProbe([&](std::uint32_t count) { return DistanceAtProbe(home, count) <= count; });
}

template <class V> std::uint32_t HashTable<V>::GroupStop(std::uint32_t home) const noexcept
{
    return FirstProbe([&](std::uint32_t count) { return DistanceAtProbe(home, count) < count; });
}

template <class V> CollisionGroup* HashTable<V>::IndexOf(std::uint32_t home) const
{
    if (!FIndex)
        return nullptr;
    const auto found = FIndex->find(home);
    return found != FIndex->end() ? &found->second : nullptr;
}

template <class V> auto HashTable<V>::GroupOf(std::uint32_t home) const -> Group
{
    const CollisionGroup* index = IndexOf(home);
    if (index && IsGroupStart(home, index->FirstProbe())
        && IsGroupStop(home, index->FirstProbe() + index->Count()))
        return {index->FirstProbe(), index->FirstProbe() + index->Count(), index};
    const std::uint32_t start = GroupStart(home);
    const std::uint32_t stop = GroupStop(home);
    return {start, stop, index && index->Count() == stop - start ? index : nullptr};
}

template <class V>
template <class Match>
std::int32_t HashTable<V>::FindFar(std::uint32_t key, const Match& match) const
{
    const std::uint32_t home = Home(key);
    const Group group = GroupOf(home);
    const std::uint32_t first = home + group.Start - 1;
    const auto isHit = [&](std::uint32_t offset) {
        const Slot& slot = FSlots[(first + offset) & FMask];
        return slot.Key == key && match.Same(slot.Value);
    };
    std::int32_t hit = -1;
    bool searched = false;
    if constexpr (requires { match.Seeded(); }) {
        searched = group.Index != nullptr;
        if (searched)
            hit = group.Index->Find(match.Seeded(), isHit);
    }
    for (std::uint32_t offset = 0; !searched && hit < 0 && offset < group.Stop - group.Start; ++offset)
        hit = isHit(offset) ? static_cast<std::int32_t>(offset) : -1;
    if (hit < 0)
        return ~static_cast<std::int32_t>((home + group.Stop - 1) & FMask);
    return static_cast<std::int32_t>((first + Unsigned(hit)) & FMask);
}

/// After an insertion, which always stands at the end of its group, at `lastProbe`.
template <class V>
template <class Match>
void HashTable<V>::UpdateIndex(
    std::uint32_t home, std::uint32_t lastProbe, V value, const Match& match) noexcept
{
    if (!FSeededName)
        return;
    CollisionGroup* const index = IndexOf(home);
    const bool inPlace =
        index && lastProbe - index->FirstProbe() == index->Count() && IsGroupStart(home, index->FirstProbe());
    if (!inPlace) {
        const std::uint32_t start = GroupStart(home);
        CatchUp(home, start, lastProbe + 1 - start);
        return;
    }
    try {
        if constexpr (requires { match.Seeded(); })
            index->Append(match.Seeded());
        else
            index->Append(FSeededName(FNameContext, value));
    } catch (...) {
        FIndex->erase(home);
    }
}

/// Notes what the index of a group lacks, always entries at its end. Without memory for it the group is
/// walked.
template <class V>
void HashTable<V>::CatchUp(std::uint32_t home, std::uint32_t start, std::uint32_t size) noexcept
{
    if (size <= kLongProbe)
        return;
    try {
        if (!FIndex)
            FIndex = std::make_unique<CollisionIndex>();
        CollisionGroup& index = (*FIndex)[home];
        index.SetFirstProbe(start);
        while (index.Count() < size) {
            const Slot& slot = FSlots[(home + start - 1 + index.Count()) & FMask];
            index.Append(FSeededName(FNameContext, slot.Value));
        }
    } catch (...) {
        if (FIndex)
            FIndex->erase(home);
    }
}

template <class V> void HashTable<V>::ForgetInIndex(std::uint32_t slot) noexcept
{
    const std::uint32_t home = Home(FSlots[slot].Key);
    CollisionGroup* index = IndexOf(home);
    if (!index)
        return;
    const bool inPlace = IsGroupStart(home, index->FirstProbe());
    const std::uint32_t start = inPlace ? index->FirstProbe() : GroupStart(home);
    const std::uint32_t first = (home + start - 1) & FMask;
    index->Remove((slot - first) & FMask);
    if (index->Count() == 0)
        FIndex->erase(home);
}

/// A group splits when the table grows: its entries go to the old home or to it plus a multiple of the old
/// size. One that stays whole keeps its index.
template <class V> void HashTable<V>::RebuildIndex(std::uint32_t oldMask) noexcept
{
    const std::unique_ptr<CollisionIndex> old = std::exchange(FIndex, nullptr);
    for (auto& [oldHome, index] : *old) {
        const std::uint32_t covered = index.Count();
        for (std::uint32_t home = oldHome; home <= FMask; home += oldMask + 1) {
            const std::uint32_t start = GroupStart(home);
            const std::uint32_t size = GroupStop(home) - start;
            if (size == covered && size > kLongProbe) {
                Adopt(home, std::move(index));
                CatchUp(home, start, size);
                break; // the other homes got nothing of it
            }
            CatchUp(home, start, size);
        }
    }
}

template <class V> void HashTable<V>::Adopt(std::uint32_t home, CollisionGroup&& index) noexcept
{
    try {
        if (!FIndex)
            FIndex = std::make_unique<CollisionIndex>();
        FIndex->insert_or_assign(home, std::move(index));
    } catch (...) {
        FIndex.reset();
    }
}

}
