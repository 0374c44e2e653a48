// Lengths with a unit, which become pixels when somebody asks.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/sets.h>
#include <hearth/styling/css/css_token.h>

#include <optional>

namespace ht {

class TBaseElementStyle;
struct TCSSTokenSequence;

enum TMeasureFlag : std::uint8_t {
    mfNotAuto, // has a value; without it the measure is auto or unset
    mfInherit,
    mfInitial,
    mfLeft, // written as that word
    mfRight,
    mfCenter,
    mfTop,
    mfBottom,
    mfChanged, // free for the owner
    mfZero, // exactly 0
};

template <> struct TEnumTraits<TMeasureFlag> {
    static constexpr int kCount = 10;
    static constexpr const char16_t* kName = u"TMeasureFlag";
};

using TMeasureFlags = TSet<TMeasureFlag>;

/// A length by value. It owns nothing of what it points at. measure.cpp decodes and converts,
/// measure_calc.cpp evaluates calc().
struct HT_API TMeasure {
    /// 0 without a unit, auto, with this style.
    void Init(TBaseElementStyle* AStyle) noexcept;
    /// Takes over all but the style.
    void Assign(const TMeasure& Source) noexcept;
    /// Takes the value of the token at the cursor, which stays there.
    void Decode(const TCSSTokenSequence& Seq);
    /// Takes the value of a text: a number with a unit, "auto" or "inherit". All else leaves the measure.
    void Parse(std::u16string_view s);
    /// Evaluates Calc into FValue, in pixels. Operands are turned into pixels one by one; a division by 0
    /// leaves the left side. Throws Exception on a stack that runs empty, which no text makes it do.
    void DecodeCalc();
    /// Decimal with up to three places and the unit; "auto", "0".
    String AsString() const;

    /// True where the pixels can change with the layout: percentages, auto and calc().
    bool Relative() const noexcept
    {
        return FMUnit == muPercent || !Flags.Contains(mfNotAuto) || Calc != nullptr;
    }
    float Value() const noexcept { return FValue; }
    /// An equal value changes nothing, so that 0 leaves a fresh measure auto.
    void SetValue(float AValue) noexcept;
    bool Auto() const noexcept { return !Flags.Contains(mfNotAuto); }
    void SetAuto(bool AValue);
    /// Pixels at 96 to the inch. The integer form applies the style's zoom, rounds half to even and throws
    /// ERangeError beyond 32 bits; the float form knows no zoom.
    std::int32_t GetPixels();
    float GetFPixels();
    std::int32_t Pixels() { return GetPixels(); }
    float FPixels() { return GetFPixels(); }
    void SetPixels(std::int32_t AValue);
    void SetFPixels(float AValue);

    float FValue = 0;
    TMeasureFlags Flags;
    TMeasureUnit FMUnit = muPX;
    TBaseElementStyle* Style = nullptr; // for em, rem, viewport units and zoom; may be null
    const float* Parent = nullptr; // what percentages and bare factors refer to
    PCSSTokens Calc = nullptr; // the value that holds a calc(); null for a plain length
    std::int32_t CalcStart = 0; // index of "calc" in it

private:
    void DecodeWord(std::u16string_view word);
    void ParseUnit(std::u16string_view text);
    bool PrepareForPixels();
    std::optional<double> PixelsPerUnit() const;
};

struct TMeasure2 {
    TMeasure Value1;
    TMeasure Value2;
};

}
