// Arithmetic on colours and pixels.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>

#include <cstdint>

namespace ht {

/// A colour by its bytes, in the order in which pixels stand in memory.
struct TRGBA {
    std::uint8_t b = 0;
    std::uint8_t g = 0;
    std::uint8_t r = 0;
    std::uint8_t a = 0;

    friend constexpr bool operator==(const TRGBA&, const TRGBA&) = default;
};

/// A pixel.
struct TRGBTriple {
    std::uint8_t b = 0;
    std::uint8_t g = 0;
    std::uint8_t r = 0;
    std::uint8_t a = 0;

    friend constexpr bool operator==(const TRGBTriple&, const TRGBTriple&) = default;
};

static_assert(sizeof(TRGBA) == sizeof(std::uint32_t) && sizeof(TRGBTriple) == sizeof(std::uint32_t));

/// A colour by hue in degrees, saturation and brightness in percent.
struct THSBColor {
    double Hue = 0;
    double Saturation = 0;
    double Brightness = 0;
};

constexpr TRGBA ColorToRGBA(std::uint32_t color) noexcept
{
    return {static_cast<std::uint8_t>(color), static_cast<std::uint8_t>(color >> 8),
        static_cast<std::uint8_t>(color >> 16), static_cast<std::uint8_t>(color >> 24)};
}
constexpr std::uint32_t RGBAToColor(const TRGBA& color) noexcept
{
    return std::uint32_t{color.a} << 24 | std::uint32_t{color.r} << 16 | std::uint32_t{color.g} << 8
        | color.b;
}

/// Nearer to white or to black by `amount` percent; above 100 it is white or black. The alpha stays.
HT_API std::uint32_t Lighter(std::uint32_t color, std::uint8_t amount) noexcept;
HT_API std::uint32_t Darker(std::uint32_t color, std::uint8_t amount) noexcept;

/// The alpha times `opacity`, 0 to 255; an opacity of 1 changes nothing, one that is no number gives 0.
HT_API std::uint32_t AddOpacity(std::uint32_t color, float opacity) noexcept;

/// The hue is from 0 up to 360; that of a grey is -60.
HT_API THSBColor RGBToHSB(const TRGBA& color) noexcept;
/// The opaque colour; saturation and brightness count from 0 to 100, and the hue goes round. Throws
/// ERangeError for a hue that is no finite number, or too great for 64 bits.
HT_API TRGBA HSVToRGB(const THSBColor& color);
HT_API std::uint32_t HSBtoRGBColor(double H, double S, double B);

/// True when all `count` pixels are `color`; false for null and for a count below 1.
HT_API bool OneColor(const std::uint32_t* p, std::uint32_t color, std::int32_t count) noexcept;

}
