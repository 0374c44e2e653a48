// Addresses: joining, decoding and encoding.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

namespace ht {

/// The address that `url`, met on the page `base`, stands for. "//host/x" becomes "http://host/x", "/x"
/// replaces what stands behind the host, and all else what stands behind the last "/" of `base`, absolute
/// addresses too: whether `url` is one is for the caller to see. Throws EIntOverflow.
HT_API String CombineUrl(std::u16string_view base, std::u16string_view url);

/// Decodes "+" as a blank, "%%" as "%" and "%" with two hexadecimal digits as a byte; what comes out is
/// UTF-8. A "%" in front of anything else takes two units with it, one at the end of the text just goes.
HT_API String HTTPDecode(std::u16string_view s);

/// Writes UTF-8 as "%c3%a9", a blank as "+"; ASCII letters and digits and ! ( ) * - . \ _ ~ stay. Every unit
/// is encoded by itself, so a pair becomes two sequences of three bytes. Throws EIntOverflow.
HT_API String HtEncodeUrl(std::u16string_view s);

/// Takes "Name <address>" apart, without blanks and quotes around the name; the last "<" counts. Without one
/// all of it is the address.
HT_API void SplitEmailAdress(std::u16string_view s, String& Name, String& Address);

}
