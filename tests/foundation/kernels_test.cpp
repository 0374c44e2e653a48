// Kernels and their sizes, and blurs that keep what is even.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/kernels.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace ht {
namespace {

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
    // Either half of the pairs alone would leave another size.
    MakeGaussianKernel(kernel, 1, 255, 6);
    EXPECT_EQ(kernel.Size, 18);
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
    std::vector<TRGBTriple> row(20);
    std::fill(row.begin() + 10, row.end(), kEven);
    FastBlur(row, 20, 1, 1);
    EXPECT_EQ(row.front(), TRGBTriple());
    EXPECT_EQ(row.back(), kEven);
    FastBlur(dot, 0, 9, 1);
    EXPECT_THROW(FastBlur(dot, 9, 10, 1), ERangeError);
    EXPECT_THROW(FastBlur(dot, -9, -9, 1), ERangeError);
    TKernel wide;
    wide.Size = 31;
    TArray<TRGBTriple> work;
    EXPECT_THROW(BlurRow(dot, wide, work), ERangeError);
}

}
}
