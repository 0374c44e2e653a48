// One rule: selectors and declarations.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/object_list.h>
#include <hearth/runtime/stable_array.h>
#include <hearth/styling/css/css_value.h>

#include <memory>

namespace ht {

class TCSSMediaSet;
class TCSSSelector;
class TCSSSelectors;

/// Keeps the tokens that the calc() of a measure points at.
class HT_API TCSSCalcValueObject : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSCalcValueObject", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    explicit TCSSCalcValueObject(const TCSSTokens& tokens)
        : Tokens(tokens)
    {
    }

    TCSSTokens Tokens;
};

/// A rule. Values is what the author wrote, CompiledValues what weight lists point at: longhands, ready to be
/// applied. css_section.cpp holds and prints, section_compile.cpp compiles, section_shorthands.cpp takes the
/// complex shorthands apart.
class HT_API TCSSSection : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSSection", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// The selectors are freed with the section if it owns them.
    explicit TCSSSection(bool AOwnsSelectors = true);
    TCSSSection(const TCSSSection&) = delete;
    TCSSSection& operator=(const TCSSSection&) = delete;
    ~TCSSSection() override;

    /// Makes CompiledValues anew; pointers to the old ones end.
    void Compile();
    /// Takes the selector over where the section owns them.
    void AddSelector(TCSSSelector* S);
    void AddValue(const TCSSValue& V);
    void DeleteValue(std::int32_t Index);

    /// The rule as text, lines ending in CR LF.
    String AsString(TCSSPrinting printing = cpPlain) const;
    /// The declarations alone, on one line.
    String AsInlineString(TCSSPrinting printing = cpPlain) const;
    /// Gathers four equal borders or paddings into one, in the names that are printed.
    void Minify();

    /// The tokens of the first value of that name in lower case, or of the first compiled one; empty when
    /// there is none.
    TCSSTokens ValuebyName(std::u16string_view Name) const;
    TCSSTokens CompiledValuebyName(std::u16string_view Name) const;
    /// Null when there is none. Lifetime: until the values change.
    TCSSValue* ItembyName(std::u16string_view Name);

    /// Keeps tokens alive as long as the section, or, while it compiles, as long as CompiledValues; returns
    /// where they stand.
    PCSSTokens KeepCalcTokens(const TCSSTokens& tokens);

    std::unique_ptr<THtObjectList> FCalcValues; // of TCSSCalcValueObject, for Values; made on first use
    std::unique_ptr<TCSSSelectors> Selectors;
    TCSSValues Values;
    TStableArray<TCSSValue> CompiledValues;
    std::int32_t BlockStartPos = 0; // of the first token of the rule, from 1
    std::int32_t BlockEndPos = 0; // of the last unit
    bool Custom = false; // the sheet was parsed so
    bool FontFace = false; // from "@font-face"
    TCSSMediaSet* MediaSet = nullptr; // not owned
    String URL; // of the sheet, for relative addresses

private:
    std::unique_ptr<THtObjectList> FCompiledCalcs; // the same for CompiledValues, made anew with them
    bool FCompiling = false;
};

}
