// Bytes of text and of numbers.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/text.h>

#include <cstdint>
#include <string>
#include <utility>

namespace ht {

/// UTF-8; a lone surrogate becomes U+FFFD. A length below 1 gives nothing.
HT_API std::string HtUTF8Encode(std::u16string_view s);
HT_API std::string HtUTF8EncodePtr(const char16_t* p, std::int32_t length);
HT_API TBytes HtUTF8EncodetoBytes(std::u16string_view s);

/// The bytes in the other order.
constexpr std::uint16_t SwapWord(std::uint16_t value) noexcept
{
    return static_cast<std::uint16_t>(value >> 8 | value << 8);
}
constexpr std::int16_t SwapSmallInt(std::int16_t value) noexcept
{
    return static_cast<std::int16_t>(SwapWord(static_cast<std::uint16_t>(value)));
}
constexpr std::uint32_t SwapCardinal(std::uint32_t value) noexcept
{
    return std::uint32_t{SwapWord(static_cast<std::uint16_t>(value))} << 16
        | SwapWord(static_cast<std::uint16_t>(value >> 16));
}

/// Lets two numbers change places.
constexpr void ExchangeSingle(float& a, float& b) noexcept
{
    std::swap(a, b);
}

/// -1, 0 or 1, as sorting asks.
constexpr int CompCardinal(std::uint32_t a, std::uint32_t b) noexcept
{
    return int{a > b} - int{a < b};
}

/// Stores `count` times the same word, which need not be aligned. A count below 1 does nothing.
HT_API void HtFillLong(void* target, std::int32_t count, std::uint32_t value) noexcept;

}
