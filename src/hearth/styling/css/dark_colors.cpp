// Style sheets: colours for a dark scheme.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/style_sheet.h>

#include <hearth/foundation/color_math.h>
#include <hearth/foundation/colors.h>

#include <algorithm>
#include <cmath>

namespace ht {

namespace {

/// Each from 0 to 1.
struct HSLColor {
    double Hue = 0;
    double Saturation = 0;
    double Lightness = 0;
};

constexpr double kByteMost = 255;

HSLColor ToHSL(const TRGBA& color)
{
    const double red = color.r / kByteMost;
    const double green = color.g / kByteMost;
    const double blue = color.b / kByteMost;
    const double most = std::max({red, green, blue});
    const double least = std::min({red, green, blue});
    const double range = most - least;
    HSLColor result{0, 0, (most + least) / 2};
    if (range == 0)
        return result;
    result.Saturation = range / (result.Lightness > 0.5 ? 2 - most - least : most + least);
    if (most == red)
        result.Hue = (green - blue) / range + (green < blue ? 6 : 0);
    else if (most == green)
        result.Hue = (blue - red) / range + 2;
    else
        result.Hue = (red - green) / range + 4;
    result.Hue /= 6;
    return result;
}

/// One channel: a ramp up, a plateau, a ramp down, each a sixth of the circle and a third apart.
std::uint8_t Channel(double low, double high, double hue)
{
    const double sixth = 6 * (hue - std::floor(hue));
    double value = low;
    if (sixth < 1)
        value = low + (high - low) * sixth;
    else if (sixth < 3)
        value = high;
    else if (sixth < 4)
        value = low + (high - low) * (4 - sixth);
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * kByteMost));
}

TRGBA FromHSL(const HSLColor& color, std::uint8_t alpha)
{
    const double light = color.Lightness;
    const double high =
        light < 0.5 ? light * (1 + color.Saturation) : light + color.Saturation - light * color.Saturation;
    const double low = 2 * light - high;
    constexpr double kThird = 1.0 / 3;
    return {Channel(low, high, color.Hue - kThird), Channel(low, high, color.Hue),
        Channel(low, high, color.Hue + kThird), alpha};
}

void SetColor(TCSSToken& token, const HSLColor& color, std::uint8_t alpha)
{
    token.CType = ctHash;
    token.Flags = 0;
    token.Color = RGBAToColor(FromHSL(color, alpha));
    token.Name = htmlColortoHex(token.Color);
}

void DarkenText(TCSSToken& token)
{
    const TRGBA old = ColorToRGBA(token.Color);
    HSLColor color = ToHSL(old);
    color.Lightness = std::min(std::clamp(1 - color.Lightness + 0.1, 0.6, 1.0), 0.95);
    color.Saturation = std::min(0.7, color.Saturation);
    SetColor(token, color, old.a);
}

void DarkenBackground(TCSSToken& token)
{
    const TRGBA old = ColorToRGBA(token.Color);
    HSLColor color = ToHSL(old);
    if (color.Lightness > 0.9) {
        token.CType = ctIdent;
        token.Name = u"transparent"_s;
        token.Color = 0;
        token.Flags = 0;
        return;
    }
    color.Lightness = std::max(1 - color.Lightness, 0.15);
    SetColor(token, color, old.a);
}

/// The value of a colour property. A function gives way to the one token that says what it said.
bool DarkenColor(TCSSValue& value, void (*darken)(TCSSToken&))
{
    TCSSToken& token = value.Tokens[0];
    const bool isFunction = token.CType == ctFunction;
    const bool isColor = token.CType == ctHash || token.CType == ctIdent
        || (isFunction && token.Name.View().starts_with(u"rgb"));
    if (!isColor || value.Inherit)
        return false;
    darken(token);
    if (isFunction)
        value.Tokens = TCSSTokens(value.Tokens.Span().first(1));
    return true;
}

/// A word gets its colour where it is one; "none", "transparent" and words of other meaning stay.
bool DarkenWord(TCSSToken& token)
{
    const std::uint32_t named = HtStringtoColor(token.Name);
    if (named == 0)
        return false;
    token.Color = named | 0xFF000000;
    DarkenBackground(token);
    return true;
}

bool DarkenLayers(TCSSValue& value)
{
    bool changed = false;
    for (TCSSToken& token : value.Tokens) {
        if (token.CType == ctIdent) {
            changed = DarkenWord(token) || changed;
        } else if (token.CType == ctHash) {
            DarkenBackground(token);
            changed = true;
        }
    }
    return changed;
}

bool Darken(TCSSValue& value)
{
    if (value.Tokens.IsEmpty() || !value.PropRec)
        return false;
    switch (value.PropRec->Prop) {
    case cspColor:
    case cspBorderColor:
    case cspBorderTopColor:
    case cspBorderRightColor:
    case cspBorderBottomColor:
    case cspBorderLeftColor:
        return DarkenColor(value, DarkenText);
    case cspBackgroundColor:
        return DarkenColor(value, DarkenBackground);
    case cspBackground:
        return DarkenLayers(value);
    default:
        return false;
    }
}

}

void TCSSStyleSheet::ConvertLighttoDark()
{
    for (std::int32_t i = 0; i < FSections.Count(); ++i) {
        auto& section = static_cast<TCSSSection&>(*FSections[i]);
        bool changed = false;
        for (TCSSValue& value : section.Values)
            changed = Darken(value) || changed;
        if (changed)
            section.Compile();
    }
}

String TCSSStyleSheet::LighttoDark(const String& s, TCSSPrinting printing)
{
    TCSSStyleSheet sheet;
    sheet.Parse(s);
    sheet.ConvertLighttoDark();
    return sheet.AsString(printing);
}

}
