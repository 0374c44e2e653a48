// The keywords of properties.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/enum_names.h>

namespace ht {

enum TCSSFontWeight : std::uint8_t {
    fwNormal,
    fwBold,
    fwLighter,
    fwBolder,
    fw100,
    fw200,
    fw300,
    fw400,
    fw500,
    fw600,
    fw700,
    fw800,
    fw900,
};

template <> struct TEnumTraits<TCSSFontWeight> {
    static constexpr int kCount = 13;
    static constexpr const char16_t* kName = u"TCSSFontWeight";
};

}
