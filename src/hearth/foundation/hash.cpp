// The hash functions of names that are not inline.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/hash.h>

#include <algorithm>
#include <array>

namespace ht {

namespace {

template <class Unit> std::uint32_t Jenkins(const Unit* src, std::size_t length) noexcept
{
    std::uint32_t h = 0;
    for (; length > 0; --length, ++src) {
        const std::uint32_t x = (h + *src) * 1025U;
        h = x ^ (x >> 6);
    }
    const std::uint32_t y = h * 9U;
    return (y ^ (y >> 11)) * 32769U;
}

constexpr std::size_t kWeights = 32;

constexpr std::uint32_t InverseOf(std::uint32_t odd)
{
    std::uint32_t inverse = odd; // right in the lowest three bits; each step doubles the bits that are right
    for (int step = 0; step < 4; ++step)
        inverse *= 2U - odd * inverse;
    return inverse;
}

/// RSHash of n units is Product[n] times the sum of unit[i] times Weight[i], where Product[n] multiplies the
/// first n factors and Weight[i] is the inverse of Product[i + 1] modulo 2^32 (all factors are odd). The
/// terms of the sum do not wait for each other, which the rule unit by unit does.
struct RSTable {
    std::array<std::uint32_t, kWeights + 1> Product{};
    std::array<std::uint32_t, kWeights> Weight{};
    std::uint32_t NextFactor = RSHasher::kFirstFactor;

    constexpr RSTable()
    {
        Product[0] = 1;
        for (std::size_t i = 0; i < kWeights; ++i) {
            Product[i + 1] = Product[i] * NextFactor;
            Weight[i] = InverseOf(Product[i + 1]);
            NextFactor *= RSHasher::kFactorStep;
        }
    }
};

constexpr RSTable kRSTable;

template <class Fold> std::uint32_t RSHashFolded(std::u16string_view text, Fold fold) noexcept
{
    const std::size_t head = std::min(text.size(), kWeights);
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < head; ++i)
        sum += std::uint32_t{fold(text[i])} * kRSTable.Weight[i];
    std::uint32_t h = sum * kRSTable.Product[head];
    std::uint32_t factor = kRSTable.NextFactor;
    for (std::size_t i = head; i < text.size(); ++i) {
        h = h * factor + fold(text[i]);
        factor *= RSHasher::kFactorStep;
    }
    return h;
}

constexpr char16_t KeepCase(char16_t c) noexcept
{
    return c;
}

}

std::uint32_t JenkinsHash(const char16_t* src, std::int32_t length) noexcept
{
    return Jenkins(src, detail::HashedLength(length));
}

std::uint32_t JenkinsHash(std::u16string_view text) noexcept
{
    return Jenkins(text.data(), text.size());
}

std::uint32_t JenkinsHashANSI(const char* src, std::int32_t length) noexcept
{
    return Jenkins(reinterpret_cast<const unsigned char*>(src), detail::HashedLength(length));
}

std::uint32_t JenkinsHashANSI(std::string_view bytes) noexcept
{
    return Jenkins(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

std::uint32_t RSHash(const char16_t* src, std::int32_t length) noexcept
{
    return RSHashFolded({src, detail::HashedLength(length)}, KeepCase);
}

std::uint32_t RSHash(std::u16string_view text) noexcept
{
    return RSHashFolded(text, KeepCase);
}

std::uint32_t RSHashLower(std::u16string_view text) noexcept
{
    return RSHashFolded(text, FoldAscii);
}

}
