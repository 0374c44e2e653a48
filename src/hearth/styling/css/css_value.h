// One declaration of a rule.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/styling/css/properties.h>
#include <hearth/styling/style/measure.h>

namespace ht {

class TCSSSection;

/// A declaration with what its application needs worked out: the property, colours, keywords and lengths.
struct TCSSValue {
    String Name; // in lower case
    const TCSSPropRec* PropRec = nullptr; // of "unknown" for a name that the table lacks
    TCSSToken NameToken; // as written
    TCSSTokens Tokens; // without blanks and comments
    bool Important = false;
    bool Vendor = false; // Name starts with "-"
    bool Inherit = false; // the first token is "inherit"
    TCSSValueProc ApplyProc = vpNone;
    TMeasure2 Measure;
    TCSSSection* Section = nullptr; // where the value stands

    /// The checksums of all words joined, whatever their order; 0 without tokens.
    HT_API std::uint32_t Hash() const;
};

using PCSSValue = const TCSSValue*;
/// As written, at most one a name; they move when the array changes.
using TCSSValues = TArray<TCSSValue>;

/// How values are printed. Plain text may not read back as the same tokens: a string loses its quotes, and
/// what a blank is inside of moves into quotes as a whole.
enum TCSSPrinting : std::uint8_t { cpPlain, cpExact };

/// "name: value;". Exact text reads back as the same tokens.
HT_API String CSSValuetoString(const TCSSValue& Value, TCSSPrinting printing = cpPlain);

/// Works out what `Value` needs, from its name and tokens. False for a value that must be discarded: a colour
/// that is none, an unknown keyword. `Section` keeps the tokens that a calc() refers to.
HT_API bool PrepareValue(TCSSValue& Value, TCSSSection& Section);

}
