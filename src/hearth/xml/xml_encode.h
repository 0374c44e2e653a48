// Escaping of text for XML and for JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>
#include <hearth/runtime/text.h>

#include <cstdint>
#include <string_view>

namespace ht {

class TFastString;

/// The text with "&", "<", ">", double quotes, U+0000 to U+0008, U+00A0 and surrogate pairs as references. No
/// other character gets a name: XML knows none. The unit behind a high surrogate is taken as its partner
/// unseen, U+0000 at the end of the text. Both encoders return `s` itself when nothing needs escaping.
/// `Overhead`, the number of units that the result is longer, is accepted and not needed. Throw EIntOverflow
/// when the result would be longer than a string can be.
HT_API String XMLEncode(const String& s, std::int32_t Overhead = -1);
/// The text with U+0008, tabs, double quotes and backslashes escaped. A line feed becomes "\r" and a carriage
/// return "\n": the two are exchanged. Other control characters and "/" stay as they are.
HT_API String JSONEncode(const String& s);
/// The text as the standard wants it in a string of JSON: double quotes, backslashes and all control
/// characters escaped, and halves of surrogate pairs, so that any text comes back from any encoding.
HT_API String JSONEscape(const String& s);

/// The encoders straight into a buffer.
HT_API void XMLEncodeTo(TFastString& FS, std::u16string_view s);
HT_API void JSONEncodeTo(TFastString& FS, std::u16string_view s);
HT_API void JSONEscapeTo(TFastString& FS, std::u16string_view s);

}
