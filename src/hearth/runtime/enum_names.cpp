// Looking up the values of an enumeration by name.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/enum_names.h>

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <numeric>

namespace ht {

TEnumInfo::TEnumInfo(
    std::u16string_view name, std::int32_t count, const char16_t* units, const std::uint16_t* ends)
    : FName(name)
    , FCount(count)
    , FUnits(units)
    , FEnds(ends)
    , FSorted(std::make_unique<std::uint16_t[]>(CheckedCast<std::uint16_t>(count)))
{
    std::uint16_t* const sorted = FSorted.get();
    std::iota(sorted, sorted + count, std::uint16_t{0});
    std::sort(sorted, sorted + count,
        [this](std::uint16_t a, std::uint16_t b) { return CompareText(ValueName(a), ValueName(b)) < 0; });
}

std::u16string_view TEnumInfo::ValueName(std::int32_t ordinal) const noexcept
{
    if (ordinal < 0 || ordinal >= FCount)
        return {};
    return {FUnits + FEnds[ordinal], static_cast<std::size_t>(FEnds[ordinal + 1] - FEnds[ordinal])};
}

std::int32_t TEnumInfo::Find(std::u16string_view valueName) const noexcept
{
    const std::uint16_t* const sorted = FSorted.get();
    const std::uint16_t* const end = sorted + FCount;
    const std::uint16_t* const found =
        std::lower_bound(sorted, end, valueName, [this](std::uint16_t ordinal, std::u16string_view name) {
            return CompareText(ValueName(ordinal), name) < 0;
        });
    return found != end && SameText(ValueName(*found), valueName) ? *found : -1;
}

}
