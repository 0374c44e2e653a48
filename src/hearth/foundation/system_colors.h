// The colours of the desktop, and the order of bytes that its platform uses.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <cstdint>

namespace ht {

/// The colour of a part of the desktop in the platform's order, 0x00BBGGRR; 0 for an index that has none.
/// There are 0 to 30 and 130. They have the usual values of a light desktop until the host sets others.
HT_API std::uint32_t GetSysColor(std::int32_t index) noexcept;
/// Sets one in the same order. Threads: while no other thread reads colours. Throws ERangeError for an index
/// that has none.
HT_API void SetSysColor(std::int32_t index, std::uint32_t color);

/// The colour in the platform's order, without its alpha.
constexpr std::int32_t Color2Win(std::uint32_t color) noexcept
{
    return static_cast<std::int32_t>((color & 0xFFU) << 16 | (color & 0xFF00U) | (color >> 16 & 0xFFU));
}
/// An opaque colour from one in the platform's order. The low byte of a negative number is the index of a
/// system colour.
HT_API std::uint32_t Win2Color(std::int32_t color) noexcept;

/// The system colour of a name such as "ButtonFace", A to Z folded; 0 for an unknown name.
HT_API std::uint32_t HtStringtoSysColor(std::u16string_view s) noexcept;

}
