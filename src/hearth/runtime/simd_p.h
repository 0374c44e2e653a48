// Wide scans over UTF-16 units: SSE2 or NEON, with a plain form elsewhere.
// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace ht::simd {

/// Eight UTF-16 units in one register.
struct Units8 {
#if defined(__SSE2__)
    __m128i value;

    static Units8 Load(const char16_t* p) noexcept
    {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))};
    }
    static Units8 Fill(char16_t c) noexcept
    {
        return {_mm_set1_epi16(static_cast<short>(c))};
    }
    Units8 Equal(Units8 other) const noexcept
    {
        return {_mm_cmpeq_epi16(value, other.value)};
    }
    Units8 Or(Units8 other) const noexcept
    {
        return {_mm_or_si128(value, other.value)};
    }
    /// As Equal, for the units from `first` to `last`.
    Units8 InRange(char16_t first, char16_t last) const noexcept
    {
        const __m128i above = _mm_sub_epi16(value, Fill(first).value);
        const __m128i beyond = _mm_subs_epu16(above, Fill(static_cast<char16_t>(last - first)).value);
        return {_mm_cmpeq_epi16(beyond, _mm_setzero_si128())};
    }
    /// Two bits a unit of a comparison's result, lowest unit first; 0 when nothing was found.
    std::uint64_t Mask() const noexcept
    {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(value));
    }
    /// The units as bytes, lowest first; they have to be below U+0080.
    std::uint64_t Bytes() const noexcept
    {
        std::uint64_t bytes = 0;
        const __m128i packed = _mm_packus_epi16(value, value);
        std::memcpy(&bytes, &packed, sizeof bytes);
        return bytes;
    }
    /// Writes eight bytes, one a unit; the units have to be below U+0080.
    void StoreBytes(char* to) const noexcept
    {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(value, value));
    }
    static constexpr int kMaskBitsPerUnit = 2;
    /// The masks of two results in a row, kPairBitsPerUnit bits a unit.
    static std::uint64_t PairMask(Units8 first, Units8 second) noexcept
    {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(first.value, second.value)));
    }
    static constexpr int kPairBitsPerUnit = 1;
#elif defined(__aarch64__)
    uint16x8_t value;

    static Units8 Load(const char16_t* p) noexcept
    {
        return {vld1q_u16(reinterpret_cast<const std::uint16_t*>(p))};
    }
    static Units8 Fill(char16_t c) noexcept
    {
        return {vdupq_n_u16(c)};
    }
    Units8 Equal(Units8 other) const noexcept
    {
        return {vceqq_u16(value, other.value)};
    }
    Units8 Or(Units8 other) const noexcept
    {
        return {vorrq_u16(value, other.value)};
    }
    Units8 InRange(char16_t first, char16_t last) const noexcept
    {
        const uint16x8_t above = vsubq_u16(value, vdupq_n_u16(first));
        return {vcleq_u16(above, vdupq_n_u16(static_cast<std::uint16_t>(last - first)))};
    }
    std::uint64_t Mask() const noexcept
    {
        return vget_lane_u64(vreinterpret_u64_u8(vmovn_u16(value)), 0);
    }
    std::uint64_t Bytes() const noexcept
    {
        return vget_lane_u64(vreinterpret_u64_u8(vmovn_u16(value)), 0);
    }
    void StoreBytes(char* to) const noexcept
    {
        vst1_u8(reinterpret_cast<std::uint8_t*>(to), vmovn_u16(value));
    }
    static constexpr int kMaskBitsPerUnit = 8;
    static std::uint64_t PairMask(Units8 first, Units8 second) noexcept
    {
        const uint8x16_t both = vcombine_u8(vmovn_u16(first.value), vmovn_u16(second.value));
        return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(both), 4)), 0);
    }
    static constexpr int kPairBitsPerUnit = 4;
#else
    char16_t value[8];

    static Units8 Load(const char16_t* p) noexcept
    {
        Units8 units;
        for (int i = 0; i < 8; ++i)
            units.value[i] = p[i];
        return units;
    }
    static Units8 Fill(char16_t c) noexcept
    {
        Units8 units;
        for (char16_t& unit : units.value)
            unit = c;
        return units;
    }
    Units8 Equal(Units8 other) const noexcept
    {
        Units8 result;
        for (int i = 0; i < 8; ++i)
            result.value[i] = value[i] == other.value[i] ? 0xFFFF : 0;
        return result;
    }
    Units8 Or(Units8 other) const noexcept
    {
        Units8 result;
        for (int i = 0; i < 8; ++i)
            result.value[i] = value[i] | other.value[i];
        return result;
    }
    Units8 InRange(char16_t first, char16_t last) const noexcept
    {
        Units8 result;
        for (int i = 0; i < 8; ++i)
            result.value[i] = value[i] >= first && value[i] <= last ? 0xFFFF : 0;
        return result;
    }
    std::uint64_t Mask() const noexcept
    {
        std::uint64_t mask = 0;
        for (int i = 0; i < 8; ++i)
            mask |= value[i] ? std::uint64_t{1} << i : 0;
        return mask;
    }
    std::uint64_t Bytes() const noexcept
    {
        std::uint64_t bytes = 0;
        for (int i = 7; i >= 0; --i)
            bytes = bytes << 8U | (value[i] & 0xFFU);
        return bytes;
    }
    void StoreBytes(char* to) const noexcept
    {
        for (int i = 0; i < 8; ++i)
            to[i] = static_cast<char>(value[i]);
    }
    static constexpr int kMaskBitsPerUnit = 1;
    static std::uint64_t PairMask(Units8 first, Units8 second) noexcept
    {
        return first.Mask() | second.Mask() << kCount;
    }
    static constexpr int kPairBitsPerUnit = 1;
#endif
    static constexpr std::ptrdiff_t kCount = 8;

    /// True when no unit has one of the bits.
    bool LacksBits(char16_t bits) const noexcept;
    bool IsAscii() const noexcept
    {
        return LacksBits(0xFF80);
    }
    /// Index of the first unit in a mask that is not 0.
    static int FirstOf(std::uint64_t mask) noexcept
    {
        return std::countr_zero(mask) / kMaskBitsPerUnit;
    }
};

inline bool Units8::LacksBits(char16_t bits) const noexcept
{
#if defined(__SSE2__)
    const __m128i found = _mm_and_si128(value, Fill(bits).value);
    return _mm_movemask_epi8(_mm_cmpeq_epi16(found, _mm_setzero_si128())) == 0xFFFF;
#elif defined(__aarch64__)
    return vmaxvq_u16(vandq_u16(value, vdupq_n_u16(bits))) == 0;
#else
    char16_t all = 0;
    for (char16_t unit : value)
        all |= unit;
    return (all & bits) == 0;
#endif
}

/// Sixteen bytes in one register, as UTF-8 and Latin readers need them.
struct Bytes16 {
    static constexpr std::ptrdiff_t kCount = 16;
    static constexpr std::ptrdiff_t kPairCount = 8;
#if defined(__SSE2__)
    __m128i value;

    static Bytes16 Load(const char* p) noexcept
    {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))};
    }
    void Store(char* p) const noexcept
    {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), value);
    }
    Bytes16 Or(Bytes16 other) const noexcept
    {
        return {_mm_or_si128(value, other.value)};
    }
    bool IsAscii() const noexcept
    {
        return _mm_movemask_epi8(value) == 0;
    }
    /// Number of ASCII bytes in front of the first other one.
    int AsciiStart() const noexcept
    {
        return std::countr_zero(static_cast<std::uint32_t>(_mm_movemask_epi8(value)) | 0x10000U);
    }
    /// Writes sixteen units, one a byte.
    void StoreWide(char16_t* to) const noexcept
    {
        auto* out = reinterpret_cast<__m128i*>(to);
        _mm_storeu_si128(out, _mm_unpacklo_epi8(value, _mm_setzero_si128()));
        _mm_storeu_si128(out + 1, _mm_unpackhi_epi8(value, _mm_setzero_si128()));
    }
    /// Reads the bytes as eight two-byte UTF-8 sequences, writes eight units, and returns how many of them
    /// from the first on were well-formed.
    int DecodePairs(char16_t* to) const noexcept
    {
        const __m128i form = _mm_cmpeq_epi16(_mm_and_si128(value, Same16(0xC0E0)), Same16(0x80C0));
        const __m128i overlong = _mm_cmpeq_epi16(_mm_and_si128(value, Same16(0x001E)), _mm_setzero_si128());
        const __m128i high = _mm_slli_epi16(_mm_and_si128(value, Same16(0x001F)), 6);
        const __m128i low = _mm_and_si128(_mm_srli_epi16(value, 8), Same16(0x003F));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_or_si128(high, low));
        const auto good = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_andnot_si128(overlong, form)));
        return std::countr_one(good) / 2;
    }
    /// The low bytes of sixteen units, each below 256.
    static Bytes16 Narrow(Units8 first, Units8 second) noexcept
    {
        return {_mm_packus_epi16(first.value, second.value)};
    }

private:
    static __m128i Same16(std::uint16_t word) noexcept
    {
        return _mm_set1_epi16(static_cast<short>(word));
    }
#elif defined(__aarch64__)
    uint8x16_t value;

    static Bytes16 Load(const char* p) noexcept
    {
        return {vld1q_u8(reinterpret_cast<const std::uint8_t*>(p))};
    }
    void Store(char* p) const noexcept
    {
        vst1q_u8(reinterpret_cast<std::uint8_t*>(p), value);
    }
    Bytes16 Or(Bytes16 other) const noexcept
    {
        return {vorrq_u8(value, other.value)};
    }
    bool IsAscii() const noexcept
    {
        return vmaxvq_u8(value) < 0x80;
    }
    int AsciiStart() const noexcept
    {
        const uint8x16_t other = vcgeq_u8(value, vdupq_n_u8(0x80));
        // Four bits a byte: the narrowing shift is this machine's way to a mask.
        const uint8x8_t nibbles = vshrn_n_u16(vreinterpretq_u16_u8(other), 4);
        return std::countr_zero(vget_lane_u64(vreinterpret_u64_u8(nibbles), 0)) / 4;
    }
    void StoreWide(char16_t* to) const noexcept
    {
        auto* out = reinterpret_cast<std::uint16_t*>(to);
        vst1q_u16(out, vmovl_u8(vget_low_u8(value)));
        vst1q_u16(out + 8, vmovl_high_u8(value));
    }
    int DecodePairs(char16_t* to) const noexcept
    {
        const uint16x8_t words = vreinterpretq_u16_u8(value);
        const uint16x8_t form = vceqq_u16(vandq_u16(words, vdupq_n_u16(0xC0E0)), vdupq_n_u16(0x80C0));
        const uint16x8_t longEnough = vtstq_u16(words, vdupq_n_u16(0x001E));
        const uint16x8_t high = vshlq_n_u16(vandq_u16(words, vdupq_n_u16(0x001F)), 6);
        const uint16x8_t low = vandq_u16(vshrq_n_u16(words, 8), vdupq_n_u16(0x003F));
        vst1q_u16(reinterpret_cast<std::uint16_t*>(to), vorrq_u16(high, low));
        return GoodStart(vandq_u16(form, longEnough));
    }
    static Bytes16 Narrow(Units8 first, Units8 second) noexcept
    {
        return {vcombine_u8(vmovn_u16(first.value), vmovn_u16(second.value))};
    }

private:
    /// Number of words in front of the first that is not all ones.
    static int GoodStart(uint16x8_t good) noexcept
    {
        return std::countr_one(vget_lane_u64(vreinterpret_u64_u8(vmovn_u16(good)), 0)) / 8;
    }
#else
    char value[16];

    static Bytes16 Load(const char* p) noexcept
    {
        Bytes16 bytes;
        std::memcpy(bytes.value, p, sizeof bytes.value);
        return bytes;
    }
    void Store(char* p) const noexcept
    {
        std::memcpy(p, value, sizeof value);
    }
    Bytes16 Or(Bytes16 other) const noexcept
    {
        Bytes16 result;
        for (std::size_t i = 0; i < sizeof value; ++i)
            result.value[i] = static_cast<char>(value[i] | other.value[i]);
        return result;
    }
    bool IsAscii() const noexcept
    {
        return AsciiStart() == kCount;
    }
    int AsciiStart() const noexcept
    {
        int count = 0;
        while (count < kCount && static_cast<unsigned char>(value[count]) < 0x80)
            ++count;
        return count;
    }
    void StoreWide(char16_t* to) const noexcept
    {
        for (std::size_t i = 0; i < sizeof value; ++i)
            to[i] = static_cast<unsigned char>(value[i]);
    }
    int DecodePairs(char16_t* to) const noexcept
    {
        for (int i = 0; i < kPairCount; ++i) {
            const auto lead = static_cast<unsigned char>(value[2 * i]);
            const auto tail = static_cast<unsigned char>(value[2 * i + 1]);
            if (lead < 0xC2 || lead > 0xDF || (tail & 0xC0) != 0x80)
                return i;
            to[i] = static_cast<char16_t>((lead & 0x1F) << 6 | (tail & 0x3F));
        }
        return kPairCount;
    }
    static Bytes16 Narrow(Units8 first, Units8 second) noexcept
    {
        char16_t units[2 * Units8::kCount];
        std::memcpy(units, &first.value, sizeof first.value);
        std::memcpy(units + Units8::kCount, &second.value, sizeof second.value);
        Bytes16 bytes;
        for (std::size_t i = 0; i < sizeof bytes.value; ++i)
            bytes.value[i] = static_cast<char>(units[i]);
        return bytes;
    }
#endif
};

/// First position in [p, end) that equals one of `wanted`, or `end`.
template <class... Wanted>
const char16_t* FindAny(const char16_t* p, const char16_t* end, Wanted... wanted) noexcept
{
    const auto matches = [&](const char16_t* at) {
        const Units8 units = Units8::Load(at);
        Units8 found = Units8::Fill(0);
        ((found = found.Or(units.Equal(Units8::Fill(wanted)))), ...);
        return found;
    };
    // Most stretches of a page are shorter than this step, so that the loop seldom surprises the processor.
    for (constexpr std::ptrdiff_t kStep = 2 * Units8::kCount; end - p >= kStep; p += kStep) {
        const std::uint64_t mask = Units8::PairMask(matches(p), matches(p + Units8::kCount));
        if (mask != 0)
            return p + std::countr_zero(mask) / Units8::kPairBitsPerUnit;
    }
    while (p < end && ((*p != wanted) && ...))
        ++p;
    return p;
}

}
