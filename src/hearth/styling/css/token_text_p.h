// Tokens and values as text.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/fast_string.h>
#include <hearth/styling/css/css_value.h>

namespace ht::detail {

/// Marks that are printed without a blank in front.
bool StandsClose(TCSSTokenType type);
/// Appends one token so that it reads back, if what stands next to it lets it.
void WriteToken(TFastString& text, const TCSSToken& token);
/// Appends "name: value;" so that all tokens read back, the odd ones included that only "!" brings into a
/// value.
void WriteExactValue(TFastString& text, const TCSSValue& value);
/// Appends "name: value;".
void WriteValue(TFastString& text, const TCSSValue& value, TCSSPrinting printing);

}
