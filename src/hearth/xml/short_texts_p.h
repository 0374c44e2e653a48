// Short texts that come again and again, each kept once.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ht {

/// Remembers the short texts that were met last, so that equal ones share their units. A text costs a look at
/// one place then, and no memory.
class TShortTexts {
public:
    static constexpr std::ptrdiff_t kUnits = 8;

    /// The text of `length` units, 1 to kUnits, at `p`, where kUnits units have to be readable. There is no
    /// U+0000 in it. Lifetime: until the next call.
    const String& Of(const char16_t* p, std::size_t length)
    {
        std::uint64_t first = 0;
        std::uint64_t second = 0;
        std::memcpy(&first, p, sizeof first);
        std::memcpy(&second, p + kUnits / 2, sizeof second);
        first &= kMasks.data()[2 * length];
        second &= kMasks.data()[2 * length + 1];
        TPlace& place = FPlaces.data()[((first ^ second * 31) * 0x9E3779B97F4A7C15U) >> kShift];
        if (place.First != first || place.Second != second) {
            place.Text = String(std::u16string_view(p, length));
            place.First = first;
            place.Second = second;
        }
        return place.Text;
    }

private:
    static constexpr unsigned kBits = 9;
    static constexpr unsigned kShift = 64 - kBits;

    struct TPlace {
        std::uint64_t First = 0; // the units as numbers, with zeros behind
        std::uint64_t Second = 0;
        String Text;
    };

    /// For each length what leaves its units of the two numbers, in whatever order a number has them.
    static constexpr auto kMasks = [] {
        std::array<char16_t, kUnits*(kUnits + 1)> units{};
        for (std::ptrdiff_t length = 1; length <= kUnits; ++length)
            std::fill_n(units.begin() + length * kUnits, length, u'\xFFFF');
        return std::bit_cast<std::array<std::uint64_t, units.size() / 4>>(units);
    }();

    std::array<TPlace, std::size_t{1} << kBits> FPlaces;
};

}
