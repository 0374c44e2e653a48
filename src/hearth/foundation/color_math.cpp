// Arithmetic on colours and pixels.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/color_math.h>

#include <hearth/runtime/text_number.h>

#include <algorithm>

namespace ht {

namespace {

constexpr double kFull = 255;
constexpr double kPercent = 100;
constexpr double kSextant = 60; // degrees
constexpr std::int64_t kSextants = 6;

/// `part` percent of a byte, halves up.
constexpr std::uint32_t PercentOf(std::uint32_t byte, std::uint32_t part) noexcept
{
    return (byte * part + 50) / 100;
}

template <class Change> std::uint32_t ForEachChannel(std::uint32_t color, Change change) noexcept
{
    std::uint32_t result = color & 0xFF000000U;
    for (int shift = 0; shift < 24; shift += 8)
        result |= change(color >> shift & 0xFFU) << shift;
    return result;
}

std::uint8_t Channel(double value)
{
    return static_cast<std::uint8_t>(BankersRound(std::clamp(value, 0.0, kFull)));
}

/// Whole sextants in sixths of a degree, also below 0.
std::int64_t FloorOfSextants(std::int64_t sixths) noexcept
{
    constexpr std::int64_t kSixths = 360;
    return sixths / kSixths - (sixths % kSixths < 0 ? 1 : 0);
}

/// Not a number is 0.
double Fraction(double percent) noexcept
{
    return percent > 0 ? std::min(percent / kPercent, 1.0) : 0;
}

}

std::uint32_t Lighter(std::uint32_t color, std::uint8_t amount) noexcept
{
    return ForEachChannel(
        color, [amount](std::uint32_t c) { return std::min(255U, c + PercentOf(255 - c, amount)); });
}

std::uint32_t Darker(std::uint32_t color, std::uint8_t amount) noexcept
{
    return ForEachChannel(color, [amount](std::uint32_t c) { return c - std::min(c, PercentOf(c, amount)); });
}

std::uint32_t AddOpacity(std::uint32_t color, float opacity) noexcept
{
    if (opacity == 1)
        return color;
    const double alpha = (color >> 24) * double{opacity};
    const std::uint32_t byte = alpha > 0 ? Channel(alpha) : 0;
    return byte << 24 | (color & 0x00FFFFFFU);
}

THSBColor RGBToHSB(const TRGBA& color) noexcept
{
    const double r = color.r;
    const double g = color.g;
    const double b = color.b;
    const double max = std::max({r, g, b});
    const double delta = max - std::min({r, g, b});
    const double saturation = max == 0 ? 0 : kFull * delta / max;
    // A grey keeps this mark through what turns sextants into degrees.
    double hue = -1;
    if (saturation != 0)
        hue = max == r ? (g - b) / delta : max == g ? 2 + (b - r) / delta : 4 + (r - g) / delta;
    hue *= kSextant;
    if (saturation != 0 && hue < 0)
        hue += 360;
    return {hue, saturation * kPercent / kFull, max * kPercent / kFull};
}

TRGBA HSVToRGB(const THSBColor& color)
{
    const double value = Fraction(color.Brightness) * kFull;
    const double saturation = Fraction(color.Saturation);
    const std::uint8_t v = Channel(value);
    if (saturation == 0)
        return {v, v, v, 255};
    // Rounding begins a sextant a twelfth of a degree early, where the limits of a channel take effect.
    const std::int64_t sextant = FloorOfSextants(BankersRound(color.Hue * kSextants));
    const double part = color.Hue / kSextant - static_cast<double>(sextant);
    const std::uint8_t p = Channel(value * (1 - saturation));
    const std::uint8_t q = Channel(value * (1 - saturation * part));
    const std::uint8_t t = Channel(value * (1 - saturation * (1 - part)));
    switch ((sextant % kSextants + kSextants) % kSextants) {
    case 0:
        return {p, t, v, 255};
    case 1:
        return {p, v, q, 255};
    case 2:
        return {t, v, p, 255};
    case 3:
        return {v, q, p, 255};
    case 4:
        return {v, p, t, 255};
    default:
        return {q, p, v, 255};
    }
}

std::uint32_t HSBtoRGBColor(double H, double S, double B)
{
    return RGBAToColor(HSVToRGB({H, S, B}));
}

bool OneColor(const std::uint32_t* p, std::uint32_t color, std::int32_t count) noexcept
{
    if (!p || count < 1)
        return false;
    return std::all_of(p, p + count, [color](std::uint32_t pixel) { return pixel == color; });
}

}
