// Looking up the values of an enumeration by name.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/enum_names.h>

#include <hearth/runtime/checked.h>

#include <bit>

namespace ht {

namespace {

/// Of the name without its case. Keywords of style sheets are looked up by the thousand.
std::uint32_t HashOf(std::u16string_view name) noexcept
{
    std::uint32_t hash = 0;
    for (const char16_t unit : name)
        hash = hash * 33 + FoldAscii(unit);
    return hash ^ hash >> 15;
}

}

TEnumInfo::TEnumInfo(
    std::u16string_view name, std::int32_t count, const char16_t* units, const std::uint16_t* ends)
    : FName(name)
    , FCount(count)
    , FUnits(units)
    , FEnds(ends)
    , FMask(std::bit_ceil(2U * CheckedCast<std::uint16_t>(count) + 1) - 1)
    , FSlots(std::make_unique<std::uint16_t[]>(FMask + 1))
{
    for (std::uint16_t ordinal = 0; ordinal < count; ++ordinal) {
        std::uint32_t slot = HashOf(ValueName(ordinal)) & FMask;
        while (FSlots[slot] != 0)
            slot = (slot + 1) & FMask;
        FSlots[slot] = static_cast<std::uint16_t>(ordinal + 1);
    }
}

std::u16string_view TEnumInfo::ValueName(std::int32_t ordinal) const noexcept
{
    if (ordinal < 0 || ordinal >= FCount)
        return {};
    return {FUnits + FEnds[ordinal], static_cast<std::size_t>(FEnds[ordinal + 1] - FEnds[ordinal])};
}

std::int32_t TEnumInfo::Find(std::u16string_view valueName) const noexcept
{
    for (std::uint32_t slot = HashOf(valueName) & FMask; FSlots[slot] != 0; slot = (slot + 1) & FMask) {
        const std::int32_t ordinal = FSlots[slot] - 1;
        if (SameText(ValueName(ordinal), valueName))
            return ordinal;
    }
    return -1;
}

}
