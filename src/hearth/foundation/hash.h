// The 32-bit hash functions of names.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ht {

/// A hash over `length` units; the kind of function that a dictionary keeps for its whole life.
using THtStringHashFunc = std::uint32_t (*)(const char16_t* src, std::int32_t length);

namespace detail {

inline constexpr std::uint32_t kShaFactor = 1041204193U;
inline constexpr std::uint32_t kShaAddend = 1507220783U;
inline constexpr std::uint32_t kShaFinish = 0x90C03487U;

/// Nothing is hashed for a length below 1.
constexpr std::size_t HashedLength(std::int32_t length) noexcept
{
    return length < 1 ? 0 : static_cast<std::size_t>(length);
}

/// Four steps of h * factor + c + addend at once: the four products do not wait for each other.
template <class Unit> inline std::uint32_t ShaHash(const Unit* src, std::size_t length) noexcept
{
    constexpr std::uint32_t kFactor2 = kShaFactor * kShaFactor;
    constexpr std::uint32_t kFactor3 = kFactor2 * kShaFactor;
    constexpr std::uint32_t kFactor4 = kFactor2 * kFactor2;
    constexpr std::uint32_t kAddend4 = kShaAddend * (kFactor3 + kFactor2 + kShaFactor + 1);
    std::uint32_t h = 0;
    for (; length >= 4; length -= 4, src += 4) {
        const std::uint32_t four = std::uint32_t{src[0]} * kFactor3 + std::uint32_t{src[1]} * kFactor2
            + std::uint32_t{src[2]} * kShaFactor + src[3] + kAddend4;
        h = h * kFactor4 + four;
    }
    for (; length > 0; --length, ++src)
        h = h * kShaFactor + *src + kShaAddend;
    return h * kShaFinish;
}

}

/// The default hash of the dictionaries; 0 for a length below 1.
inline std::uint32_t ShaPerfectHash(const char16_t* src, std::int32_t length) noexcept
{
    return detail::ShaHash(src, detail::HashedLength(length));
}
inline std::uint32_t ShaPerfectHash(std::u16string_view text) noexcept
{
    return detail::ShaHash(text.data(), text.size());
}

/// The same function under the name that the pointer dictionaries use.
inline std::uint32_t ShaPerfectHashAsm(const char16_t* src, std::int32_t length) noexcept
{
    return detail::ShaHash(src, detail::HashedLength(length));
}

/// ShaPerfectHash over bytes.
inline std::uint32_t ShaPerfectHashANSI(const char* src, std::int32_t length) noexcept
{
    return detail::ShaHash(reinterpret_cast<const unsigned char*>(src), detail::HashedLength(length));
}
inline std::uint32_t ShaPerfectHashANSI(std::string_view bytes) noexcept
{
    return detail::ShaHash(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

/// One-at-a-time hash; 0 for a length below 1.
HT_API std::uint32_t JenkinsHash(const char16_t* src, std::int32_t length) noexcept;
HT_API std::uint32_t JenkinsHash(std::u16string_view text) noexcept;
HT_API std::uint32_t JenkinsHashANSI(const char* src, std::int32_t length) noexcept;
HT_API std::uint32_t JenkinsHashANSI(std::string_view bytes) noexcept;

/// The hash of tag, class and entity names; 0 for a length below 1.
HT_API std::uint32_t RSHash(const char16_t* src, std::int32_t length) noexcept;
HT_API std::uint32_t RSHash(std::u16string_view text) noexcept;
/// RSHash of the text with A to Z folded to lower case.
HT_API std::uint32_t RSHashLower(std::u16string_view text) noexcept;

/// RSHash unit by unit, for a reader that hashes a name while it scans it.
class RSHasher {
public:
    void Add(char16_t unit) noexcept
    {
        FHash = FHash * FFactor + unit;
        FFactor *= kFactorStep;
    }
    std::uint32_t Value() const noexcept { return FHash; }

    static constexpr std::uint32_t kFirstFactor = 63689U;
    static constexpr std::uint32_t kFactorStep = 378551U;

private:
    std::uint32_t FHash = 0;
    std::uint32_t FFactor = kFirstFactor;
};

}
