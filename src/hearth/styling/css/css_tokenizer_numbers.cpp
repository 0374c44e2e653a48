// Numbers of style sheets and their units.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/css_tokenizer.h>

#include <cmath>

namespace ht {

namespace {

/// What stands behind the number does not fit a float from here on.
constexpr double kNumberLimit = 1e38;

constexpr bool IsLetter(char16_t unit)
{
    return IsAsciiLower(unit) || IsAsciiUpper(unit);
}

constexpr bool EndsUnit(char16_t unit)
{
    return !IsLetter(unit) && !IsAsciiDigit(unit);
}

/// A unit by its first two letters. Some look at a third, most take whatever follows.
TMeasureUnit UnitAt(const char16_t* text)
{
    const char16_t second = FoldAscii(text[1]);
    const auto third = [text] { return text[1] == u'\0' ? u'\0' : text[2]; };
    switch (FoldAscii(text[0])) {
    case u'c':
        return second == u'm' && EndsUnit(third()) ? muCM : muNone;
    case u'd':
        return second == u'e' && third() == u'g' ? muDeg : muNone;
    case u'e':
        if (second == u'm')
            return EndsUnit(third()) ? muEM : muNone;
        return second == u'x' ? muEX : muNone;
    case u'i':
        return second == u'n' && EndsUnit(third()) ? muIN : muNone;
    case u'm':
        return second == u'm' ? muMM : second == u's' ? muMS : muNone;
    case u'p':
        return second == u'c' ? muPC : second == u't' ? muPt : second == u'x' ? muPX : muNone;
    case u'r':
        return second == u'e' && third() == u'm' ? muREM : muNone;
    case u's':
        return muS;
    case u'v':
        return second == u'w' ? muVW : muVH;
    default:
        return muNone;
    }
}

}

void TCSSTokenizer::ReadNumber()
{
    const char16_t* start = FReader.p;
    Token.CType = ctNumber;
    if (FReadNumbers) {
        const double value = FReader.ReadNumEx();
        Token.AsFloat = std::fabs(value) < kNumberLimit ? static_cast<float>(value) : 0;
    } else {
        while (IsAsciiDigit(*FReader.p) || *FReader.p == u'+' || *FReader.p == u'-' || *FReader.p == u'.')
            FReader.Next();
    }
    ReadUnit();
    Token.Name = NameFrom(start);
}

void TCSSTokenizer::ReadUnit()
{
    // One unit between number and "%" counts for nothing.
    const bool isPercentage = *FReader.p == u'%' || (!FReader.Empty() && FReader.p[1] == u'%');
    if (isPercentage) {
        FReader.Skip(*FReader.p == u'%' ? 1 : 2);
        Token.CType = ctPercentage;
        Token.MUnit = muPercent;
        return;
    }
    if (!IsLetter(*FReader.p))
        return;
    Token.MUnit = UnitAt(FReader.p);
    if (Token.MUnit != muNone) {
        Token.CType = ctDimension;
        while (IsLetter(*FReader.p))
            ++FReader.p;
        return;
    }
    // No number then: a colour that lacks its "#", most likely.
    Token.CType = ctIdent;
    Token.AsFloat = 0;
    while (HexDigitValue(*FReader.p) >= 0)
        ++FReader.p;
}

}
