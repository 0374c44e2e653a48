// Colours as text. A colour is 0xAARRGGBB; an alpha of 255 is opaque.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/system_colors.h>
#include <hearth/runtime/text.h>

#include <cstdint>

namespace ht {

/// What the readers give for a text that is no colour. It is a colour too, a fully transparent one that
/// nobody writes.
inline constexpr std::uint32_t kNoColor = 1;
/// Stands for "none": a mark and no colour.
inline constexpr std::uint32_t kNoneColor = 0x1FFFFFFF;

/// The named colour, A to Z folded and opaque; 0 for an unknown name, of which "indianred" and "indigo"
/// are two.
HT_API std::uint32_t HtStringtoColor(std::u16string_view s);

/// Reads a colour:
///   nothing                 opaque black
///   transparent, none       0x00FFFFFF, kNoneColor; only just these words
///   rgba(1, 2, 3, 0.5)      three numbers up to 255 and an alpha up to 1, 0 when it is missing
///   rgba(COLOUR, 0.5)       the red, green and blue of another colour, also those of kNoColor
///   a name                  of a named colour or, where there is none, of a system colour
///   #rgb, #argb             hexadecimal digits, each doubled; alpha first
///   #rrggbb, #aarrggbb      a seventh digit, and all behind the eighth, count for nothing
/// The "#" may be missing. All else is kNoColor. Throws ERangeError for an rgba whose numbers are out
/// of range.
HT_API std::uint32_t htmlHextoColor(std::u16string_view s);
/// The same; `IsSystem` becomes 1 when the text names a system colour, which may change, else 0.
HT_API std::uint32_t htmlHextoColorSys(std::u16string_view s, std::int32_t& IsSystem);

/// "rrggbb" in lower case.
HT_API String htmlColortoHex(std::uint32_t Color);
/// "#rrggbb", or "#rrggbbaa" where the colour is not opaque: with the alpha at the end, where style sheets
/// have it and htmlHextoColor does not.
HT_API String htmlColortoStr(std::uint32_t Color);

}
