// Preparing a value whose property is known already.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/styling/css/css_value.h>

#include <span>

namespace ht::detail {

/// PrepareValue for a value of this property, under the property's own name.
bool PrepareValueOf(const TCSSPropRec& property, TCSSValue& value, TCSSSection& section);

/// Finds the ordinal of a keyword; false for a word that is none and for a property without keywords.
bool FindKeyword(const TCSSPropRec& property, std::u16string_view word, std::int32_t& ordinal);

inline bool IsCalc(const TCSSToken& token)
{
    return token.CType == ctFunction && token.Name == u"calc";
}

/// Index behind the argument list of the function at `index`: behind its own ")", or the end. Behind the
/// function itself where no "(" follows.
std::size_t IndexBehindFunction(std::span<const TCSSToken> tokens, std::size_t index);

}
