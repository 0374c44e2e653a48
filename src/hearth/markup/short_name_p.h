// Short names read as one number: most tags and attributes have one.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/tag_names.h>
#include <hearth/runtime/simd_p.h>
#include <hearth/runtime/text.h>

#include <array>
#include <cstdint>
#include <string_view>

namespace ht {

/// Up to seven lower-case letters and digits as the bytes of a number, lowest first.
struct TShortName {
    std::uint64_t Key = 0;
    std::int32_t Length = 0; // 0 when the name is longer, or begins with something else
};

/// The units that a reader of short names looks at.
inline constexpr std::ptrdiff_t kShortNameUnits = simd::Units8::kCount;

/// Reads the name at `p`, where kShortNameUnits units have to be readable. It ends at the first unit that is
/// no lower-case letter or digit; whether a longer name ends there is the caller's question.
inline TShortName ReadShortName(const char16_t* p) noexcept
{
    const simd::Units8 units = simd::Units8::Load(p);
    const std::uint64_t mask = units.InRange(u'a', u'z').Or(units.InRange(u'0', u'9')).Mask();
    const int length = std::countr_one(mask) / simd::Units8::kMaskBitsPerUnit;
    if (length >= kShortNameUnits)
        return {};
    const std::uint64_t inName = (std::uint64_t{1} << (8 * length)) - 1;
    return {units.Bytes() & inName, length};
}

/// The same for a whole name; one that is no short name has the length 0.
constexpr TShortName ShortNameOf(std::u16string_view name) noexcept
{
    if (name.size() >= static_cast<std::size_t>(kShortNameUnits))
        return {};
    TShortName result;
    for (const char16_t c : name) {
        if (!IsAsciiLower(c) && !IsAsciiDigit(c))
            return {};
        result.Key |= std::uint64_t{c} << (8 * result.Length++);
    }
    return result;
}

namespace detail {

/// By id, for the tags at whose ">" nothing more happens.
inline constexpr auto kShortTags = [] {
    std::array<TShortName, std::size(kKnownTags) + 1> names{};
    for (TTagId id = 1; id < names.size(); ++id) {
        if (!ActsAtEnd(id))
            names[id] = ShortNameOf(kKnownTags[id - 1].Text.View());
    }
    return names;
}();

}

/// True when the short name stands at `p`, whatever follows; kShortNameUnits units have to be readable.
inline bool StandsAt(const TShortName& name, const char16_t* p) noexcept
{
    const std::uint64_t behind = ~std::uint64_t{0} << (8 * name.Length);
    return (simd::Units8::Load(p).Bytes() & ~behind) == name.Key;
}

}
