// Colour arithmetic at its edges, and blurs that keep what is even.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/color_math.h>
#include <hearth/foundation/geometry_helpers.h>
#include <hearth/foundation/kernels.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

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

TEST(kernels, weights)
{
    TKernel kernel;
    MakeGaussianKernel(kernel, 1, 255, 3);
    EXPECT_EQ(kernel.Size, 8);
    const float* const middle = &kernel.Weights[TKernel::kMaxSize];
    EXPECT_NEAR(std::accumulate(middle - 8, middle + 9, 0.0), 1, 1e-6);
    EXPECT_NEAR(middle[3] / middle[0], std::exp(-0.5), 1e-6);
    EXPECT_EQ(kernel.IWeights[TKernel::kMaxSize - 9], 0);
    EXPECT_EQ(kernel.IWeights[TKernel::kMaxSize],
        static_cast<std::int32_t>(std::ceil(double{middle[0]} * 16777215)));
    // As much as 255 wholes may lie beyond, so only the least size is left.
    MakeGaussianKernel(kernel, 255, 1, 3);
    EXPECT_EQ(kernel.Size, 1);
    MakeGaussianKernel(kernel, 1, 255, 999);
    EXPECT_EQ(kernel.Size, 29);
    MakeGaussianKernel(kernel, 0, 255, 1);
    EXPECT_EQ(kernel.Size, 30);
    for (const double radius : {0.0, 1e-6, -3.0, 1000.0, std::nan("")})
        EXPECT_THROW(MakeGaussianKernel(kernel, 1, 255, radius), EAssertionFailed) << radius;
}

TEST(kernels, even_pixels_stay_and_others_mix)
{
    static constexpr TRGBTriple kEven{255, 1, 128, 0};
    for (const double radius : {0.00001, 0.5, 3.0, 999.0}) {
        std::vector<TRGBTriple> pixels(35, kEven);
        FastBlur(pixels, 7, 5, radius);
        EXPECT_TRUE(std::all_of(pixels.begin(), pixels.end(), [](auto pixel) { return pixel == kEven; }))
            << radius;
    }
    std::vector<TRGBTriple> dot(81);
    dot[40] = {255, 255, 255, 255};
    FastBlur(dot, 9, 9, 1);
    for (std::size_t i = 0; i < dot.size(); ++i) {
        EXPECT_EQ(dot[i], dot[80 - i]);
        EXPECT_EQ(dot[i], dot[i % 9 * 9 + i / 9]);
    }
    EXPECT_EQ(dot[40].g, 41); // 255 / 2 pi
    EXPECT_GT(dot[41].a, dot[42].a);
    FastBlur(dot, 0, 9, 1);
    EXPECT_THROW(FastBlur(dot, 9, 10, 1), ERangeError);
    EXPECT_THROW(FastBlur(dot, -9, -9, 1), ERangeError);
    TKernel wide;
    wide.Size = 31;
    TArray<TRGBTriple> work;
    EXPECT_THROW(BlurRow(dot, wide, work), ERangeError);
}

TEST(geometry_helpers, rectangles)
{
    TRect rect{10, 10, 20, 30};
    RSetLocation(rect, 1, 2);
    EXPECT_EQ(rect, (TRect{1, 2, 11, 22}));
    RInflate(rect, 1, -2);
    ROffset(rect, 0, 1);
    EXPECT_EQ(rect, (TRect{0, 5, 12, 21}));
    EXPECT_TRUE(RContains(rect, 0, 5));
    EXPECT_FALSE(RContains(rect, TPoint{12, 5}));
    EXPECT_TRUE(RectInside(rect, rect));
    EXPECT_FALSE(RectInside(TRect{0, 5, 13, 21}, rect));
    EXPECT_FALSE(RectIntersects(rect, TRect{12, 5, 13, 21}));
    EXPECT_EQ(RIntersect(R2F(rect), TRectF{11.5F, 0, 99, 5.5F}), (TRectF{11.5F, 5, 12, 5.5F}));
    EXPECT_EQ(R2R({-0.5F, 0.4F, 1.5F, 2.5F}), (TRect{-1, 0, 2, 3}));
    EXPECT_THROW(P2P({3e9F, 0}), ERangeError);
    TRect edge{0, 0, 2, 2};
    EXPECT_THROW(RSetLocation(edge, std::numeric_limits<std::int32_t>::max(), 0), EIntOverflow);
    EXPECT_EQ(edge.Left, 0);
    EXPECT_TRUE(Between(1.0F, 1.0F, 1.0F));
    EXPECT_FALSE(Between(std::nanf(""), 0.0F, 1.0F));
    EXPECT_FALSE(Between(2, 3, 1));
}

}
}
