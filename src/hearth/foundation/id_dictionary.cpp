// The set of integers.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/id_dictionary.h>

#include <hearth/runtime/checked.h>

namespace ht {

TShaIntegerBox::TShaIntegerBox(std::int32_t capacity, bool scramble)
    : FTable(capacity)
    , FScramble(scramble)
{
}

void TShaIntegerBox::Clear(std::int32_t capacity)
{
    FTable.Clear(capacity, [](std::uint32_t) {});
}

bool TShaIntegerBox::Find(std::uint32_t key, std::uint32_t& value) const
{
    const std::int32_t slot = InternalFind(key);
    value = slot >= 0 ? FTable.ValueAt(slot) : 0;
    return slot >= 0;
}

std::int32_t TShaIntegerBox::Add(std::uint32_t key)
{
    FTable.GrowIfFull();
    const std::int32_t slot = InternalFind(key);
    return slot >= 0 ? ~slot : FTable.InsertAt(~slot, Stored(key), 0);
}

void TShaIntegerBox::Remove(std::uint32_t key)
{
    const std::int32_t slot = InternalFind(key);
    if (slot >= 0)
        FTable.RemoveAt(slot);
}

std::uint32_t& TShaIntegerBox::ValueAt(std::int32_t slot)
{
    if (static_cast<std::uint32_t>(slot) >= FTable.SlotCount())
        RaiseRangeError();
    return FTable.ValueAt(slot);
}

bool TShaIntegerBox::GetNext(std::int32_t& index, std::uint32_t& key) const
{
    const std::int32_t slot = FTable.NextSlot(index);
    if (slot < 0)
        return false;
    key = FTable.KeyAt(slot);
    if (FScramble) {
        const std::uint32_t x = key * 0xB4BA5137U;
        const std::uint32_t y = x ^ (x >> 8);
        key = y * 0x258DB297U;
    }
    return true;
}

}
