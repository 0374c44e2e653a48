// Colour arithmetic at its edges.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/color_math.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ht {
namespace {

TEST(color_math, lighter_and_darker)
{
    for (const std::uint32_t color : {0x80FF7F01U, 0x00000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(Darker(color, 0), color);
        EXPECT_EQ(Lighter(color, 0), color);
        EXPECT_EQ(Lighter(color, 100), color | 0xFFFFFF);
        EXPECT_EQ(Darker(color, 100), color & 0xFF000000);
        EXPECT_EQ(Lighter(color, 255), color | 0xFFFFFF);
        EXPECT_EQ(Darker(color, 255), color & 0xFF000000);
    }
    // Halves of a percent go up.
    EXPECT_EQ(Lighter(0x80FF9B00, 50), 0x80FFCD80U);
    EXPECT_EQ(Darker(0x80FF9B01, 50), 0x807F4D00U);
}

TEST(color_math, opacity)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    struct Row {
        std::uint32_t color;
        float opacity;
        std::uint32_t result;
    };
    const Row rows[] = {{0x80123456, 1, 0x80123456}, {0xFF123456, 0.5F, 0x80123456}, {0x01000000, 0.5F, 0},
        {0x03000000, 0.5F, 0x02000000}, {0x80000000, 3, 0xFF000000}, {0x80000000, -1, 0},
        {0x80000000, std::nanf(""), 0}, {0x80000000, kInfinity, 0xFF000000}, {0, kInfinity, 0}};
    for (const Row& row : rows)
        EXPECT_EQ(AddOpacity(row.color, row.opacity), row.result) << row.opacity;
}

TEST(color_math, hue_saturation_brightness)
{
    struct Row {
        std::uint32_t color;
        THSBColor hsb;
    };
    const Row rows[] = {{0xFFFF0000, {0, 100, 100}}, {0xFFFFFF00, {60, 100, 100}},
        {0xFF00FF00, {120, 100, 100}}, {0xFF00FFFF, {180, 100, 100}}, {0xFF0000FF, {240, 100, 100}},
        {0xFFFF00FF, {300, 100, 100}}, {0xFF800000, {0, 100, 128 / 2.55}}, {0xFFFF8080, {0, 127 / 2.55, 100}},
        {0xFF808080, {-60, 0, 128 / 2.55}}, {0xFF000000, {-60, 0, 0}}};
    for (const Row& row : rows) {
        const THSBColor hsb = RGBToHSB(ColorToRGBA(row.color));
        EXPECT_DOUBLE_EQ(hsb.Hue, row.hsb.Hue);
        EXPECT_DOUBLE_EQ(hsb.Saturation, row.hsb.Saturation);
        EXPECT_DOUBLE_EQ(hsb.Brightness, row.hsb.Brightness);
    }
    for (std::uint32_t color = 0xFF000000; color != 0; color = color > 0xFFFFFFFF - 4711 ? 0 : color + 4711) {
        const THSBColor hsb = RGBToHSB(ColorToRGBA(color));
        ASSERT_EQ(HSBtoRGBColor(hsb.Hue, hsb.Saturation, hsb.Brightness), color);
        const double turned = hsb.Saturation > 0 ? hsb.Hue - 360 : hsb.Hue;
        ASSERT_EQ(HSBtoRGBColor(turned, hsb.Saturation, hsb.Brightness), color);
    }
    EXPECT_EQ(HSBtoRGBColor(360, 100, 100), 0xFFFF0000U);
    // The next sextant has begun, and its numbers stay within a byte.
    EXPECT_EQ(HSBtoRGBColor(59.95, 100, 100), 0xFFFFFF00U);
    EXPECT_EQ(HSBtoRGBColor(0, 200, -3), 0xFF000000U);
    EXPECT_EQ(HSBtoRGBColor(0, std::nan(""), 200), 0xFFFFFFFFU);
    EXPECT_THROW(HSBtoRGBColor(std::nan(""), 1, 1), ERangeError);
    EXPECT_THROW(HSBtoRGBColor(1e300, 1, 1), ERangeError);
}

TEST(color_math, one_color)
{
    const std::uint32_t pixels[] = {1, 1, 2};
    EXPECT_TRUE(OneColor(pixels, 1, 2));
    EXPECT_FALSE(OneColor(pixels, 1, 3));
    EXPECT_FALSE(OneColor(pixels, 1, 0));
    EXPECT_FALSE(OneColor(nullptr, 1, 3));
}

}
}
