// Names of colours as the tables of colours hold them.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <algorithm>
#include <array>

namespace ht::detail {

/// A name with A to Z folded, in place: colours are looked up for many declarations.
class ColorName {
public:
    constexpr explicit ColorName(std::u16string_view name) noexcept
        : FLength(name.size())
    {
        if (IsKnowable())
            std::transform(name.begin(), name.end(), FUnits.begin(), FoldAscii);
    }

    /// False for a name that is longer than all of the tables.
    constexpr bool IsKnowable() const noexcept { return FLength <= FUnits.size(); }
    constexpr std::u16string_view View() const noexcept { return {FUnits.data(), FLength}; }

private:
    std::array<char16_t, 23> FUnits{};
    std::size_t FLength;
};

}
