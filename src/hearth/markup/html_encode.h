// Escaping of text and attribute values for HTML and XML.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>
#include <hearth/runtime/text.h>

#include <cstdint>
#include <string_view>

namespace ht {

class TFastString;

/// The text with "&", "<", ">", U+0000 to U+0008, U+00A0, surrogate pairs and the characters that have a name
/// (outside the scripts that texts are written in) as references; a double quote stays. The unit behind a
/// high surrogate is taken as its partner unseen, U+0000 at the end of the text. All encoders return `s`
/// itself when nothing needs escaping. `Overhead`, the number of units that the result is longer, is accepted
/// and not needed: a wrong number does no harm. Throw EIntOverflow when the result would be longer than a
/// string can be.
HT_API String HtmlEncode(const String& s, std::int32_t Overhead = -1);
/// The text with double quotes, "&", "<", ">", U+0000 to U+0009 and U+00A0 as references, for the value of an
/// attribute.
HT_API String HtmlEncodeAttr(const String& s, std::int32_t Overhead = -1);
/// The same for XML, which has no name for U+00A0.
HT_API String HtmlEncodeXmlAttr(const String& s, std::int32_t Overhead = -1);
/// The number of units that HtmlEncode adds.
HT_API std::int32_t HtmlEncodeNodeOverhead(std::u16string_view s);

/// The encoders straight into a buffer.
HT_API void HtmlEncodeTo(TFastString& FS, std::u16string_view s);
HT_API void HtmlEncodeAttrTo(TFastString& FS, std::u16string_view s);
HT_API void HtmlEncodeXmlAttrTo(TFastString& FS, std::u16string_view s);

}
