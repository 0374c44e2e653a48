// What the application of a value needs, worked out once.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/value_prepare_p.h>

#include <hearth/foundation/colors.h>
#include <hearth/foundation/text_words.h>
#include <hearth/styling/css/css_section.h>
#include <hearth/styling/css/token_sequence.h>
#include <hearth/styling/style/font_style.h>

#include <algorithm>
#include <array>

namespace ht {

namespace {

/// The colour of the digits behind a "#"; kNoColor where they are none.
std::uint32_t ColorOfDigits(const String& digits)
{
    std::array<char16_t, 16> text;
    if (digits.size() >= text.size())
        return htmlHextoColor(u"#" + digits);
    text[0] = u'#';
    std::copy(digits.begin(), digits.end(), text.begin() + 1);
    return htmlHextoColor({text.data(), digits.size() + 1});
}

void CacheHashColors(const TCSSTokens& tokens)
{
    for (TCSSToken& token : tokens.Span()) {
        if (token.CType != ctHash || token.Color != 0)
            continue;
        const std::uint32_t color = ColorOfDigits(token.Name);
        if (color != kNoColor)
            token.Color = color;
    }
}

/// The lines that "text-decoration" names. Only a string holds two of them in one token.
THtFontStyles LinesOf(std::u16string_view words)
{
    if (words == u"underline")
        return {hfsUnderline};
    if (words == u"line-through")
        return {hfsStrikeOut};
    if (words == u"underline line-through" || words == u"line-through underline ")
        return {hfsUnderline, hfsStrikeOut};
    return {};
}

bool PrepareColor(const TCSSValue& value)
{
    TCSSTokenSequence sequence;
    sequence.Init(&value.Tokens);
    TCSSToken& first = value.Tokens[0];
    std::uint32_t color = first.Color; // stays for var(), which tells none
    const bool isColor = sequence.ReadColor(color);
    if (isColor)
        first.Color = color;
    return isColor;
}

bool PrepareKeyword(const TCSSValue& value)
{
    TCSSToken& first = value.Tokens[0];
    std::int32_t ordinal = 0;
    const bool isKnown = !value.PropRec->EnumType || detail::FindKeyword(*value.PropRec, first.Name, ordinal);
    first.Color = isKnown ? static_cast<std::uint32_t>(ordinal) : kUnknownKeywordMark;
    // Numbers that are no keywords are weights too.
    return isKnown || value.PropRec->Prop == cspFontWeight;
}

/// Decodes at the cursor. The tokens of a calc() are kept by the section, since those of the value move.
void DecodeLength(
    TMeasure& measure, TCSSTokenSequence& sequence, const TCSSValue& value, TCSSSection& section)
{
    if (sequence.T && detail::IsCalc(*sequence.T)) {
        const std::int32_t index = sequence.Index;
        sequence.Init(section.KeepCalcTokens(value.Tokens));
        sequence.Next(index);
    }
    measure.Decode(sequence);
}

void PrepareLength(TCSSValue& value, TCSSSection& section)
{
    constexpr float kMediumFontSize = 18;
    TMeasure& first = value.Measure.Value1;
    TCSSTokenSequence sequence;
    sequence.Init(&value.Tokens);
    DecodeLength(first, sequence, value, section);
    if (sequence.T->Name == u"/") {
        sequence.Next();
        DecodeLength(value.Measure.Value2, sequence, value, section);
    } else {
        value.Measure.Value2.Flags = {mfInitial};
    }
    const TCSSToken& token = value.Tokens[0];
    if (value.PropRec->Prop == cspLineHeight && token.CType != ctPercentage && token.CType != ctDimension)
        first.FMUnit = muNone; // a multiplier
    if (value.PropRec->Prop == cspFontSize && SameText(token.Name, u"medium")) {
        first.FMUnit = muPX;
        first.SetValue(kMediumFontSize);
    }
}

}

bool detail::FindKeyword(const TCSSPropRec& property, std::u16string_view word, std::int32_t& ordinal)
{
    return property.EnumType && IsEnum2(property.EnumPrefix, word, *property.EnumType, ordinal);
}

std::size_t detail::IndexBehindFunction(std::span<const TCSSToken> tokens, std::size_t index)
{
    ++index;
    if (index >= tokens.size() || tokens[index].CType != ctOpenPar)
        return index;
    for (std::size_t depth = 0; index < tokens.size(); ++index) {
        if (tokens[index].CType == ctOpenPar)
            ++depth;
        else if (tokens[index].CType == ctClosePar && --depth == 0)
            return index + 1;
    }
    return index;
}

bool detail::PrepareValueOf(const TCSSPropRec& property, TCSSValue& value, TCSSSection& section)
{
    value.PropRec = &property;
    value.Vendor = value.Name.View().starts_with(u'-');
    value.ApplyProc = property.ApplyProc;
    value.Measure = TMeasure2();
    CacheHashColors(value.Tokens);
    TCSSToken& first = value.Tokens[0];
    if (property.Prop == cspTextDecoration || property.Prop == cspTextDecorationLine)
        first.Color = static_cast<std::uint32_t>(LinesOf(first.Name).Bits());
    value.Inherit = first.Name == u"inherit";
    if (value.Inherit) {
        first.Color = kInheritMark;
        return true;
    }
    switch (property.PropType) {
    case cptColor:
        return PrepareColor(value);
    case cptEnum:
        return PrepareKeyword(value);
    case cptLength:
        PrepareLength(value, section);
        return true;
    default:
        return true;
    }
}

bool PrepareValue(TCSSValue& Value, TCSSSection& Section)
{
    String& written = Value.NameToken.Name;
    Value.ApplyProc = vpNone;
    const TCSSPropRec* property = &CSSPropRec(written);
    if (property->Prop != cspUnknown) {
        // The table's own text serves all values.
        written = property->Name;
        Value.Name = property->Name;
    } else {
        Value.Name = written.ToLowerAscii();
        if (!Value.Name.IsSame(written))
            property = &CSSPropRec(Value.Name);
    }
    Value.PropRec = property;
    return Value.Tokens.IsEmpty() || detail::PrepareValueOf(*property, Value, Section);
}

}
