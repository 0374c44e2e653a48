// The kinds of JSON tokens.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/sets.h>
#include <hearth/runtime/text.h>

#include <cstdint>

namespace ht {

enum THtJSONTokenType : std::uint8_t {
    jtUnknown, // what begins no token; a word that begins with a capital letter too
    jtIdent, // a word without quotes
    jtString, // a text in quotes
    jtValue, // false, null or true
    jtSpace,
    jtComma,
    jtObjectStart, // "{"
    jtObjectEnd, // "}"
    jtArrayStart, // "["
    jtArrayEnd, // "]"
    jtColon,
    jtInt,
    jtFloat,
    jtComment, // not read: there are no comments
};

template <> struct TEnumTraits<THtJSONTokenType> {
    static constexpr int kCount = 14;
    static constexpr const char16_t* kName = u"THtJSONTokenType";
};

/// Positions are offsets from the start of the text, from 0; the end is exclusive.
struct THtJSONToken {
    THtJSONTokenType CType = jtUnknown;
    String Name; // the text of the token; of a string without quotes and escapes
    std::int64_t IntValue = 0; // of a jtInt
    double FloatValue = 0; // of a jtFloat
    std::int32_t StartPos = 0;
    std::int32_t EndPos = 0;
};

/// Raised for what is no JSON. Lines in messages count from 0.
class HT_API EHtJSONParserException : public Exception {
public:
    using Exception::Exception;
    const char16_t* ClassName() const noexcept override { return u"EHtJSONParserException"; }
};

}
