// The kinds of HTML tokens, which are the kinds of nodes too.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/sets.h>
#include <hearth/runtime/text.h>

#include <cstdint>

namespace ht {

enum THTMLTokenType : std::uint8_t {
    htUnknown, // nothing yet; a node without a tag that no parser made
    htIdent, // a name or an unquoted value; as a node an element
    htSpace, // blanks in a tag
    htString, // a text or a quoted value; as a node a text
    htTagStart, // "<" of a tag
    htTagEnd, // ">"
    htTagClose, // "/"
    htEq, // "=" in a tag
    htScript, // the body of a script; as a node the script with its body
    htStyle, // the body of a style sheet; as a node the style sheet with its body
    htComment, // a comment, as a node too
    htDirective, // "<?...?>", as a node too
    htCData, // a CDATA section, as a node too
    htCustom, // "<!...>", never a node
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
