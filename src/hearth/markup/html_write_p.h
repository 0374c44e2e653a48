// What the printers and the readable text write alike.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/html_node.h>

#include <string_view>

namespace ht {

/// How lines end in what is printed.
inline constexpr std::u16string_view kLineEnd = u"\r\n";

void WriteComment(TFastString& FS, std::u16string_view content);
void WriteDirective(TFastString& FS, std::u16string_view content);
void WriteCData(TFastString& FS, std::u16string_view content);

/// How a node is written.
enum TNodeForm : std::uint8_t {
    nfTagless, // text, CDATA, or a root without a name
    nfRaw, // script or style, whose content is written as it stands
    nfMarkup, // comment or directive that has nothing but its content
    nfBare, // neither an attribute store nor a list of children
    nfElement,
};
TNodeForm FormOf(const THtmlNode& node);

/// "<tag" with the attributes of a script or style, and ">".
void WriteRawStartTag(TFastString& FS, const THtmlNode& node);
/// "<tag/>" or "<tag></tag>"; an "xbody" without anything in it keeps its name.
void WriteBareElement(TFastString& FS, const THtmlNode& node);

/// "<tag" with the attributes; the tag "xbody" is written as "body". A meta element that tells a content type
/// tells that of the output.
void WriteStartTag(TFastString& FS, const THtmlNode& node);
/// What ends a start tag without children behind it: "/>", or "></tag>".
void WriteEmptyEnd(TFastString& FS, const THtmlNode& node);
void WriteEndTag(TFastString& FS, const THtmlNode& node);

}
