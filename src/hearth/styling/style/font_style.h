// The traits of a font, for sheets, fonts and canvases.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/sets.h>

namespace ht {

enum THtFontStyle : std::uint8_t {
    hfsBold,
    hfsItalic,
    hfsUnderline,
    hfsStrikeOut,
    hfsLight,
    hfsUltraLight,
    hfsBlack,
    hfsSemibold,
};

template <> struct TEnumTraits<THtFontStyle> {
    static constexpr int kCount = 8;
    static constexpr const char16_t* kName = u"THtFontStyle";
};

using THtFontStyles = TSet<THtFontStyle>;

/// How a page lies.
enum TCSSOrientation : std::uint8_t { coDefault, coPortrait, coLandscape };

template <> struct TEnumTraits<TCSSOrientation> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSOrientation";
};

}
