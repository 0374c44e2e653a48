// The units of lengths, angles and times.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/enum_names.h>

namespace ht {

enum TMeasureUnit : std::uint8_t {
    muPX,
    muPercent,
    muIN,
    muMM,
    muPt,
    muCM,
    muEM,
    muEX,
    muPC,
    muMS,
    muS,
    muREM,
    muVW,
    muVH,
    muDeg,
    muNone, // a bare number
};

template <> struct TEnumTraits<TMeasureUnit> {
    static constexpr int kCount = 16;
    static constexpr const char16_t* kName = u"TMeasureUnit";
};

}
