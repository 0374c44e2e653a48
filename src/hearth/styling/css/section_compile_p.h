// Turning what an author wrote into what the cascade applies.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/styling/css/css_section.h>

#include <span>

namespace ht::detail {

/// Appends the compiled form of values to a section. section_compile.cpp knows what most properties have in
/// common, section_shorthands.cpp the shorthands with rules of their own.
class SectionCompiler {
public:
    explicit SectionCompiler(TCSSSection& section) noexcept
        : FSection(section)
    {
    }

    void Compile(const TCSSValue& value);

private:
    void CompileComplex();
    void CompileSides();
    void CompileAxes();
    void CompileInOrder();
    void CompileFont();
    void CompileBorder();
    void CompileTextDecoration();
    void CompileBackground();

    /// Appends the value itself.
    void Copy();
    /// Appends a value of another property with these tokens, unless they are none for it.
    void Emit(const TCSSPropRec& property, const TCSSTokens& tokens);
    void Emit(TCSSProperty property, const TCSSTokens& tokens) { Emit(CSSPropRec(property), tokens); }
    void Emit(TCSSProperty property, const TCSSToken& token) { Emit(property, TCSSTokens({&token, 1})); }
    /// A word that the author left out.
    void EmitWord(TCSSProperty property, const String& word);
    /// Tokens of the value from `first` up to `end`; the value's own where these are all, and may serve its
    /// longhands too.
    TCSSTokens Slice(std::size_t first, std::size_t end) const;

    TCSSSection& FSection;
    const TCSSValue* FValue = nullptr; // the one that is being compiled
};

}
