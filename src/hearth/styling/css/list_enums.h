// The keywords of lists.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/enum_names.h>

namespace ht {

enum TListStyleType : std::uint8_t {
    lstDisc,
    lstCircle,
    lstSquare,
    lstDecimal,
    lstDecimalLeadingZero,
    lstLowerRoman,
    lstUpperRoman,
    lstLowerAlpha,
    lstLowerLatin,
    lstUpperAlpha,
    lstUpperLatin,
    lstLowerGreek,
    lstNone,
    lstArabicIndic,
    lstArmenian,
    lstUpperArmenian,
    lstLowerArmenian,
    lstBengali,
    lstCambodian,
    lstKhmer,
    lstCjkDecimal,
    lstDevanagari,
    lstGeorgian,
    lstGujarati,
    lstGurmukhi,
    lstHebrew,
    lstKannada,
    lstLao,
    lstMalayalam,
    lstMongolian,
    lstMyanmar,
    lstOriya,
    lstPersian,
    lstTamil,
    lstTelugu,
    lstThai,
    lstTibetan,
    lstHiragana,
    lstHiraganaIroha,
    lstKatakana,
    lstKatakanaIroha,
    lstDisclosureOpen,
    lstDisclosureClosed,
    lstCjkEarthlyBranch,
    lstCjkHeavenlyStem,
    lstCjkIdeographic,
    lstJapaneseInformal,
    lstJapaneseFormal,
    lstKoreanHangulFormal,
    lstKoreanHanjaInformal,
    lstKoreanHanjaFormal,
    lstSimpChineseInformal,
    lstSimpChineseFormal,
    lstTradChineseInformal,
    lstTradChineseFormal,
    lstEthiopicNumeric,
};

template <> struct TEnumTraits<TListStyleType> {
    static constexpr int kCount = 56;
    static constexpr const char16_t* kName = u"TListStyleType";
};

enum TCSSListStylePosition : std::uint8_t {
    lspOutside,
    lspInside,
};

template <> struct TEnumTraits<TCSSListStylePosition> {
    static constexpr int kCount = 2;
    static constexpr const char16_t* kName = u"TCSSListStylePosition";
};

}
