// The kinds of HTML tokens, which are the kinds of nodes too.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/sets.h>
#include <hearth/runtime/text.h>

#include <cstdint>

namespace ht {

enum THTMLTokenType : std::uint8_t {
    htUnknown,
    htIdent,
    htSpace,
    htString,
    htTagStart,
    htTagEnd,
    htTagClose,
    htEq,
    htScript,
    htStyle,
    htComment,
    htDirective,
    htCData,
    htCustom,
};

template <> struct TEnumTraits<THTMLTokenType> {
    static constexpr int kCount = 14;
    static constexpr const char16_t* kName = u"THTMLTokenType";
};

/// Positions are offsets from the start of the text, from 0; the end is exclusive.
struct THTMLToken {
    THTMLTokenType CType = htUnknown;
    String Name;
    std::int32_t StartPos = 0;
    std::int32_t EndPos = 0;
};

}
