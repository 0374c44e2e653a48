// Longhands out of what most properties have in common.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/section_compile_p.h>

#include <hearth/foundation/colors.h>
#include <hearth/styling/css/value_prepare_p.h>

#include <array>

namespace ht {

namespace {

constexpr std::int32_t kSides = 4;
constexpr std::int32_t kAxes = 2;

/// The group that a side takes, by the number of groups: "1 2 3" leaves out what the right side has already.
/// ORDER top, right, bottom, left.
constexpr std::array<std::array<std::uint8_t, kSides>, kSides> kGroupOfSide = {{
    {0, 0, 0, 0},
    {0, 1, 0, 1},
    {0, 1, 2, 1},
    {0, 1, 2, 3},
}};

/// "1 / 2", which is one value for all sides.
bool IsRatio(const TCSSTokens& tokens)
{
    return tokens.Length() == 3 && (tokens[1].CType == ctDelimiter || tokens[1].CType == ctSlash);
}

/// True when a token can be the value of a longhand.
bool Fits(const TCSSToken& token, const TCSSPropRec& longhand)
{
    std::int32_t ordinal = 0;
    switch (token.CType) {
    case ctIdent:
        if (longhand.PropType == cptColor)
            return HtStringtoColor(token.Name) != 0 || HtStringtoSysColor(token.Name) != 0;
        return longhand.PropType == cptEnum && detail::FindKeyword(longhand, token.Name, ordinal);
    case ctHash:
        return longhand.PropType == cptColor;
    case ctNumber:
        return longhand.PropType == cptNumber;
    case ctPercentage:
    case ctDimension:
        return longhand.PropType == cptLength;
    default:
        return false;
    }
}

}

void TCSSSection::Compile()
{
    CompiledValues.Clear();
    CompiledValues.Reserve(Values.Length());
    FCompiledCalcs.reset();
    FCompiling = true;
    try {
        detail::SectionCompiler compiler(*this);
        for (const TCSSValue& value : Values)
            compiler.Compile(value);
    } catch (...) {
        FCompiling = false;
        throw;
    }
    FCompiling = false;
}

void detail::SectionCompiler::Compile(const TCSSValue& value)
{
    const TCSSPropRec* property = value.PropRec;
    if (value.Vendor || !property || property->Prop == cspUnknown || value.Tokens.IsEmpty())
        return;
    FValue = &value;
    if (property->PropType == cptComplex)
        CompileComplex();
    else if (property->PropType == cptNumber)
        Copy();
    else if (property->SubProps.Length() == kSides && !IsRatio(value.Tokens))
        CompileSides();
    else if (property->SubProps.Length() == kAxes)
        CompileAxes();
    else
        Copy();
}

void detail::SectionCompiler::CompileComplex()
{
    switch (FValue->PropRec->Prop) {
    case cspFont:
        return CompileFont();
    case cspBorder:
        return CompileBorder();
    case cspBackground:
        return CompileBackground();
    case cspTextDecoration:
        return CompileTextDecoration();
    default:
        return FValue->PropRec->SubProps.IsEmpty() ? Copy() : CompileInOrder();
    }
}

void detail::SectionCompiler::CompileSides()
{
    const std::span<const TCSSToken> tokens = FValue->Tokens.Span();
    std::array<TCSSTokens, kSides> groups;
    std::size_t count = 0;
    for (std::size_t i = 0; i < tokens.size() && count < groups.size(); ++count) {
        const std::size_t first = i;
        i = tokens[first].CType == ctFunction ? IndexBehindFunction(tokens, first) : first + 1;
        groups[count] = Slice(first, i);
    }
    std::int32_t side = 0;
    for (const std::uint8_t group : kGroupOfSide[count - 1])
        Emit(*FValue->PropRec->SubProps[side++], groups[group]);
}

void detail::SectionCompiler::CompileAxes()
{
    const TArray<const TCSSPropRec*>& axes = FValue->PropRec->SubProps;
    const TCSSTokens first = Slice(0, 1);
    Emit(*axes[0], first);
    Emit(*axes[1], FValue->Tokens.Length() > 1 ? Slice(1, 2) : first);
}

/// Each longhand takes the next token if it can.
void detail::SectionCompiler::CompileInOrder()
{
    const std::span<const TCSSToken> tokens = FValue->Tokens.Span();
    std::size_t i = 0;
    for (const TCSSPropRec* longhand : FValue->PropRec->SubProps) {
        if (i < tokens.size() && Fits(tokens[i], *longhand)) {
            Emit(*longhand, Slice(i, i + 1));
            ++i;
        }
    }
}

void detail::SectionCompiler::Copy()
{
    // What code set by hand was not prepared.
    const bool isUnknownKeyword = FValue->PropRec->PropType == cptEnum
        && FValue->Tokens[0].Color == kUnknownKeywordMark && FValue->PropRec->Prop != cspFontWeight;
    if (!isUnknownKeyword)
        FSection.CompiledValues.Emplace(*FValue);
}

void detail::SectionCompiler::Emit(const TCSSPropRec& property, const TCSSTokens& tokens)
{
    TCSSValue& value = FSection.CompiledValues.Emplace();
    value.Name = property.Name;
    value.NameToken = FValue->NameToken;
    value.NameToken.Name = property.Name;
    value.Tokens = tokens;
    value.Important = FValue->Important;
    value.Section = &FSection;
    if (!PrepareValueOf(property, value, FSection))
        FSection.CompiledValues.DeleteLast();
}

void detail::SectionCompiler::EmitWord(TCSSProperty property, const String& word)
{
    TCSSToken token = FValue->NameToken;
    token.CType = ctIdent;
    token.Name = word;
    token.Color = 0;
    Emit(property, token);
}

TCSSTokens detail::SectionCompiler::Slice(std::size_t first, std::size_t end) const
{
    const TCSSTokens& tokens = FValue->Tokens;
    // Keywords are numbered in their token, by each property on its own.
    const bool isShared = FValue->PropRec->PropType == cptLength || FValue->PropRec->PropType == cptColor;
    if (isShared && end - first == tokens.Span().size())
        return tokens;
    return TCSSTokens(tokens.Span().subspan(first, end - first));
}

}
