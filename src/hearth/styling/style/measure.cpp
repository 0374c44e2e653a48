// Lengths read from tokens and text, and turned into pixels.
// SPDX-License-Identifier: MIT
#include <hearth/styling/style/measure.h>

#include <hearth/foundation/number_text.h>
#include <hearth/runtime/checked.h>
#include <hearth/runtime/text_number.h>
#include <hearth/styling/css/token_sequence.h>
#include <hearth/styling/style/element_style.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace ht {

namespace {

constexpr double kPixelsPerInch = 96;
constexpr double kPixelsPerEx = 11; // whatever the font

/// A word that stands for a length. What it does not name stays.
struct Keyword {
    std::u16string_view Word;
    std::optional<TMeasureUnit> Unit;
    std::optional<float> Value;
    TMeasureFlags Add;
    TMeasureFlags Remove;
};

const std::array kKeywords = {
    Keyword{u"auto", {}, 0, {}, {mfNotAuto}},
    Keyword{u"inherit", {}, {}, {mfInherit}, {}},
    Keyword{u"initial", {}, {}, {mfInitial}, {mfNotAuto}},
    Keyword{u"normal", muNone, 0, {mfNotAuto, mfInitial}, {mfZero}},
    Keyword{u"left", muPercent, 0, {mfLeft}, {}},
    Keyword{u"right", muPercent, 100, {mfRight}, {}},
    Keyword{u"center", muPercent, 50, {mfCenter}, {}},
    Keyword{u"top", muPercent, 0, {mfTop}, {}},
    Keyword{u"bottom", muPercent, 100, {mfBottom}, {}},
    Keyword{u"xx-small", muPX, 9, {}, {}},
    Keyword{u"x-small", muPX, 10, {}, {}},
    Keyword{u"small", muPX, 14, {}, {}},
    Keyword{u"medium", muPX, 2, {}, {}}, // the width of a border
    Keyword{u"large", muPX, 22, {}, {}},
    Keyword{u"x-large", muPX, 24, {}, {}},
    Keyword{u"xx-large", muPX, 26, {}, {}},
    Keyword{u"smaller", muPercent, 80, {}, {}},
    Keyword{u"larger", muPercent, 120, {}, {}},
    Keyword{u"thin", muPX, 1, {}, {}},
    Keyword{u"thick", muPX, 3, {}, {}},
};

/// ORDER TMeasureUnit.
constexpr std::array<std::u16string_view, TEnumTraits<TMeasureUnit>::kCount> kUnitTexts = {u"px", u"%", u"in",
    u"mm", u"pt", u"cm", u"em", u"ex", u"pc", u"ms", u"s", u"rem", u"vw", u"vh", u"deg", u""};

/// Units that Parse knows, some by their first letter alone.
struct UnitText {
    std::u16string_view Text;
    TMeasureUnit Unit;
};
constexpr std::array kParsedUnits = {
    UnitText{u"px", muPX},
    UnitText{u"pt", muPt},
    UnitText{u"pc", muPC},
    UnitText{u"r", muREM},
    UnitText{u"s", muS},
    UnitText{u"vw", muVW},
    UnitText{u"vh", muVH},
    UnitText{u"mm", muMM},
    UnitText{u"%", muPercent},
    UnitText{u"cm", muCM},
    UnitText{u"in", muIN},
    UnitText{u"em", muEM},
    UnitText{u"ex", muEX},
};

/// Stays at the ends of the type; nothing is known of a NaN, so it is 0.
float ToFloat(double value)
{
    constexpr double kMost = std::numeric_limits<float>::max();
    return std::isnan(value) ? 0 : static_cast<float>(std::clamp(value, -kMost, kMost));
}

bool IsDigitOrMinus(char16_t unit)
{
    return IsAsciiDigit(unit) || unit == u'-';
}

std::u16string_view WhileTrue(std::u16string_view text, bool (*test)(char16_t))
{
    return text.substr(
        0, static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), test) - text.begin()));
}

}

void TMeasure::Init(TBaseElementStyle* AStyle) noexcept
{
    *this = TMeasure();
    FMUnit = muNone;
    Style = AStyle;
}

void TMeasure::Assign(const TMeasure& Source) noexcept
{
    TBaseElementStyle* style = Style;
    *this = Source;
    Style = style;
}

void TMeasure::SetValue(float AValue) noexcept
{
    if (AValue == FValue)
        return;
    FValue = AValue;
    Flags += TMeasureFlags{mfNotAuto};
    Flags -= TMeasureFlags{mfInitial, mfZero};
    if (AValue == 0)
        Flags += TMeasureFlags{mfZero};
    Calc = nullptr;
}

void TMeasure::SetAuto(bool AValue)
{
    if (AValue) {
        Flags.Exclude(mfNotAuto);
        Calc = nullptr;
    } else {
        Flags.Include(mfNotAuto);
    }
}

void TMeasure::SetPixels(std::int32_t AValue)
{
    SetFPixels(static_cast<float>(AValue));
}

void TMeasure::SetFPixels(float AValue)
{
    SetValue(AValue);
    Flags.Include(mfNotAuto);
    FMUnit = muPX;
}

void TMeasure::Decode(const TCSSTokenSequence& Seq)
{
    Flags = {mfNotAuto};
    Calc = nullptr;
    if (!Seq.T)
        return;
    const TCSSToken& token = *Seq.T;
    switch (token.CType) {
    case ctIdent:
        DecodeWord(token.Name);
        break;
    case ctNumber:
        SetValue(token.AsFloat);
        FMUnit = muPX;
        break;
    case ctPercentage:
        SetValue(token.AsFloat);
        FMUnit = muPercent;
        break;
    case ctDimension:
        SetValue(token.AsFloat);
        FMUnit = token.MUnit;
        break;
    case ctFunction:
        Flags = {};
        if (SameText(token.Name, u"calc")) {
            Calc = Seq.FPTokens;
            CalcStart = Seq.Index;
            Flags = {mfNotAuto};
        }
        break;
    default:
        break;
    }
}

void TMeasure::DecodeWord(std::u16string_view word)
{
    if (word == u"none") {
        Flags = {};
        return;
    }
    for (const Keyword& keyword : kKeywords) {
        if (!SameText(word, keyword.Word))
            continue;
        if (keyword.Value)
            SetValue(*keyword.Value);
        FMUnit = keyword.Unit.value_or(FMUnit);
        Flags += keyword.Add;
        Flags -= keyword.Remove;
        return;
    }
}

void TMeasure::Parse(std::u16string_view s)
{
    if (s.empty())
        return;
    if (s == u"auto") {
        SetAuto(true);
        SetValue(0);
        return;
    }
    if (s == u"inherit") {
        SetAuto(false);
        Flags.Include(mfInherit);
        return;
    }
    Flags.Exclude(mfInherit);
    const std::u16string_view number =
        WhileTrue(s, [](char16_t unit) { return IsDigitOrMinus(unit) || unit == u'.'; });
    if (number.empty())
        return;
    SetAuto(false);
    FMUnit = muNone;
    SetValue(ToFloat(iStrtoFloat(number)));
    ParseUnit(s.substr(number.size()));
}

void TMeasure::ParseUnit(std::u16string_view text)
{
    for (const UnitText& unit : kParsedUnits) {
        if (text.starts_with(unit.Text)) {
            FMUnit = unit.Unit;
            return;
        }
    }
    if (text.size() < 2 || text[0] != u'e' || !IsDigitOrMinus(text[1]))
        return;
    std::int32_t exponent = 0;
    if (!TryStrToInt(WhileTrue(text.substr(1), IsDigitOrMinus), exponent))
        exponent = 0;
    SetValue(ToFloat(FValue * std::pow(10.0, exponent)));
}

String TMeasure::AsString() const
{
    if (Auto())
        return u"auto"_s;
    if (Flags.Contains(mfZero))
        return u"0"_s;
    return HtFormatFloat(u"0.###", double{FValue}) + kUnitTexts[FMUnit];
}

bool TMeasure::PrepareForPixels()
{
    if (Auto() || (Flags.Contains(mfZero) && !Calc))
        return false;
    if (Calc)
        DecodeCalc();
    return true;
}

/// Pixels of a value of 1 in the units that need no more than a factor; nothing for the others.
std::optional<double> TMeasure::PixelsPerUnit() const
{
    switch (FMUnit) {
    case muPX:
        return 1;
    case muIN:
        return kPixelsPerInch;
    case muMM:
        return kPixelsPerInch / 25.4;
    case muPt:
        return kPixelsPerInch / 72;
    case muCM:
        return kPixelsPerInch / 2.54;
    case muPC:
        return kPixelsPerInch / 6;
    case muEM:
        return Style ? double{Style->IntFontSize} : TBaseElementStyle::kRootFontSize;
    case muEX:
        return kPixelsPerEx;
    case muREM:
        return Style ? double{Style->RootFontSize()} : TBaseElementStyle::kRootFontSize;
    case muVW:
        return Style ? Style->ViewportWidth() / 100 : 0;
    case muVH:
        return Style ? Style->ViewportHeight() / 100 : 0;
    default:
        return {};
    }
}

float TMeasure::GetFPixels()
{
    if (!PrepareForPixels())
        return 0;
    if (FMUnit == muPercent)
        return Parent ? ToFloat(double{*Parent} * FValue / 100) : 0;
    if (const std::optional<double> factor = PixelsPerUnit())
        return ToFloat(FValue * *factor);
    return Parent ? ToFloat(double{FValue} * *Parent) : FValue;
}

std::int32_t TMeasure::GetPixels()
{
    if (!PrepareForPixels())
        return 0;
    const double zoom = Style ? double{Style->Zoom} : 1;
    if (FMUnit == muPercent)
        return Parent ? MathRound(double{*Parent} * FValue / 100) : 0;
    const std::optional<double> factor = PixelsPerUnit();
    if (factor && FMUnit == muEM)
        return CheckedCast<std::int32_t>(BankersRound(FValue * *factor * zoom));
    if (factor)
        return MathRound(FValue * *factor * zoom);
    // A bare factor refers to nothing once the page is zoomed.
    return MathRound(Parent && zoom == 1 ? double{FValue} * *Parent : double{FValue});
}

}
