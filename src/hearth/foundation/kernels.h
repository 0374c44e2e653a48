// Blurring of pixels by Gaussian kernels.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/color_math.h>
#include <hearth/runtime/array.h>

#include <array>
#include <cstdint>
#include <span>

namespace ht {

/// What a pixel takes from its neighbours up to `Size` places away. The weights of the offsets -30 to 30
/// stand at 0 to 60; beyond Size the weights mean nothing, and those in integers are 0.
struct TKernel {
    static constexpr std::int32_t kMaxSize = 30;
    using TWeights = std::array<float, 2 * kMaxSize + 1>;

    std::int32_t Size = 0;
    TWeights Weights{};
    std::array<std::int32_t, 2 * kMaxSize + 1> IWeights{}; // the same in parts of 2^24
};

/// Makes a kernel of the normal distribution, whose deviation is `Radius` places. Of the 61 places the
/// outermost are left out, pair by pair, until they make up MaxData / (2 * DataGranularity) of the whole or
/// the size is 1; the weights that stay add up to 1. Throws EAssertionFailed for a radius that is not above a
/// millionth and below 1000.
HT_API void MakeGaussianKernel(TKernel& K, double MaxData, double DataGranularity, double Radius);

/// Blurs all four bytes of the pixels of a row, beyond whose ends the last pixel goes on. `work` is room that
/// the call needs and keeps. Throws ERangeError for a kernel whose size is not within 0 to 30.
HT_API void BlurRow(std::span<TRGBTriple> row, const TKernel& K, TArray<TRGBTriple>& work);

/// Blurs a block of pixels, rows first; nothing happens for a radius of a millionth and less. A blur reaches
/// 30 pixels far, so from a radius of about 12 on it stays behind what the radius asks for. Throws
/// ERangeError for negative sizes and for fewer than width times height pixels, EAssertionFailed from a
/// radius of 1000 on.
HT_API void FastBlur(std::span<TRGBTriple> pixels, std::int32_t width, std::int32_t height, double radius);

}
