// Blurring of pixels by Gaussian kernels.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/kernels.h>

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <cmath>

namespace ht {

namespace {

constexpr double kLeastRadius = 1e-6;
constexpr double kRadiusLimit = 1000;
constexpr double kWholeWeight = 16777215; // integer weights are parts of it
constexpr int kWeightBits = 24;

constexpr std::size_t PlaceOf(std::int32_t offset) noexcept
{
    return static_cast<std::size_t>(offset + TKernel::kMaxSize);
}

using ExactWeights = std::array<double, std::tuple_size_v<TKernel::TWeights>>;

double SumOf(const ExactWeights& weights, std::int32_t size) noexcept
{
    double sum = 0;
    for (std::int32_t i = -size; i <= size; ++i)
        sum += weights[PlaceOf(i)];
    return sum;
}

ExactWeights NormalDistribution(double radius) noexcept
{
    ExactWeights weights{};
    for (std::int32_t i = -TKernel::kMaxSize; i <= TKernel::kMaxSize; ++i)
        weights[PlaceOf(i)] = std::exp(-(i / radius) * (i / radius) / 2);
    const double sum = SumOf(weights, TKernel::kMaxSize);
    for (double& weight : weights)
        weight /= sum;
    return weights;
}

TRGBTriple Weighted(const TRGBTriple* pixels, std::span<const std::int32_t> weights) noexcept
{
    // The weights of a kernel add up to so little more than 2^24 that the sums never pass 32 bits.
    constexpr std::uint32_t kHalf = 1U << (kWeightBits - 1);
    std::uint32_t b = kHalf;
    std::uint32_t g = kHalf;
    std::uint32_t r = kHalf;
    std::uint32_t a = kHalf;
    for (const std::int32_t weight : weights) {
        const auto w = static_cast<std::uint32_t>(weight);
        b += w * pixels->b;
        g += w * pixels->g;
        r += w * pixels->r;
        a += w * pixels->a;
        ++pixels;
    }
    return {static_cast<std::uint8_t>(b >> kWeightBits), static_cast<std::uint8_t>(g >> kWeightBits),
        static_cast<std::uint8_t>(r >> kWeightBits), static_cast<std::uint8_t>(a >> kWeightBits)};
}

}

void MakeGaussianKernel(TKernel& K, double MaxData, double DataGranularity, double Radius)
{
    if (!(Radius > kLeastRadius && Radius < kRadiusLimit))
        throw EAssertionFailed(u"The radius of a kernel is out of range"_s);
    ExactWeights weights = NormalDistribution(Radius);
    const double bound = MaxData / (2 * DataGranularity);
    std::int32_t size = TKernel::kMaxSize;
    for (double beyond = 0; beyond < bound && size >= 2; --size)
        beyond += 2 * weights[PlaceOf(size)];
    const double sum = SumOf(weights, size);
    K = TKernel();
    K.Size = size;
    for (std::int32_t i = -size; i <= size; ++i) {
        double& weight = weights[PlaceOf(i)];
        weight /= sum;
        K.IWeights[PlaceOf(i)] = static_cast<std::int32_t>(std::ceil(weight * kWholeWeight));
    }
    std::transform(weights.begin(), weights.end(), K.Weights.begin(),
        [](double weight) { return static_cast<float>(weight); });
}

void BlurRow(std::span<TRGBTriple> row, const TKernel& K, TArray<TRGBTriple>& work)
{
    if (K.Size < 0 || K.Size > TKernel::kMaxSize)
        RaiseRangeError();
    if (row.empty())
        return;
    const auto size = static_cast<std::size_t>(K.Size);
    const std::int32_t needed = CheckedLength(row.size() + 2 * size);
    if (work.Length() < needed)
        work.SetLength(needed);
    TRGBTriple* const padded = work.data();
    std::fill_n(padded, size, row.front());
    std::copy(row.begin(), row.end(), padded + size);
    std::fill_n(padded + size + row.size(), size, row.back());
    const std::span<const std::int32_t> weights(&K.IWeights[PlaceOf(-K.Size)], 2 * size + 1);
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = Weighted(padded + i, weights);
}

void FastBlur(std::span<TRGBTriple> pixels, std::int32_t width, std::int32_t height, double radius)
{
    const auto columns = CheckedCast<std::size_t>(width);
    const auto rows = CheckedCast<std::size_t>(height);
    if (pixels.size() < CheckedMul(columns, rows))
        RaiseRangeError();
    if (!(radius > kLeastRadius) || columns == 0 || rows == 0)
        return;
    TKernel kernel;
    // What is left out makes up half of a step of a byte.
    MakeGaussianKernel(kernel, 1, 255, radius);
    TArray<TRGBTriple> work;
    for (std::size_t y = 0; y < rows; ++y)
        BlurRow(pixels.subspan(y * columns, columns), kernel, work);
    TArray<TRGBTriple> column(height);
    for (std::size_t x = 0; x < columns; ++x) {
        TRGBTriple* const place = column.data();
        for (std::size_t y = 0; y < rows; ++y)
            place[y] = pixels[y * columns + x];
        BlurRow({place, rows}, kernel, work);
        for (std::size_t y = 0; y < rows; ++y)
            pixels[y * columns + x] = place[y];
    }
}

}
