// Letter case of all scripts; plain A to Z folding stands in text.h.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

namespace ht {

/// Lower and upper case by Unicode's full mappings, the same in every locale; the length may change. The same
/// string if nothing changes.
HT_API String AnsiLowerCase(const String& text);
HT_API String AnsiUpperCase(const String& text);

/// One unit in lower case, the same in every locale; half of a pair stays as it is.
HT_API char16_t AnsiCharLower(char16_t c) noexcept;

/// Equal, or ordered by code point, after full case folding ("ß" equals "SS"). Compare: negative, 0
/// or positive.
HT_API bool AnsiSameText(std::u16string_view a, std::u16string_view b);
HT_API int AnsiCompareText(std::u16string_view a, std::u16string_view b);

}
