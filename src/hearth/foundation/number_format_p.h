// Decimal text of numbers for the fast strings, two digits a step.
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

namespace ht::detail {

/// The pairs "00" to "99".
inline constexpr auto kDigitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

/// Decimal digits of `value` in front of `end`; returns the first. At most 20 units.
template <class Unit> Unit* WriteDigits(std::uint64_t value, Unit* end) noexcept
{
    const auto writePair = [&end](std::uint64_t pair) {
        *--end = static_cast<Unit>(kDigitPairs[2 * static_cast<std::size_t>(pair) + 1]);
        *--end = static_cast<Unit>(kDigitPairs[2 * static_cast<std::size_t>(pair)]);
    };
    for (; value >= 100; value /= 100)
        writePair(value % 100);
    if (value >= 10)
        writePair(value);
    else
        *--end = static_cast<Unit>('0' + value);
    return end;
}

}
