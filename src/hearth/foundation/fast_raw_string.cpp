// Numbers, UTF-8 and assembling of the byte buffer.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/fast_raw_string.h>

#include <hearth/foundation/number_format_p.h>
#include <hearth/runtime/storage.h>

#include <cstring>
#include <iterator>

namespace ht {

namespace {

/// Copies leading ASCII, eight units a step; returns how many units.
std::size_t CopyAscii(const char16_t* src, std::size_t length, char* to) noexcept
{
    constexpr std::uint64_t kNotAscii = 0xFF80FF80FF80FF80U;
    std::size_t done = 0;
    for (; length - done >= 8; done += 8) {
        std::uint64_t units[2];
        std::memcpy(units, src + done, sizeof units);
        if (((units[0] | units[1]) & kNotAscii) != 0)
            break;
        for (std::size_t i = 0; i < 8; ++i)
            to[done + i] = static_cast<char>(src[done + i]);
    }
    while (done < length && src[done] < 0x80) {
        to[done] = static_cast<char>(src[done]);
        ++done;
    }
    return done;
}

/// Two bytes and more; code points that no pair of real surrogates gives take up to six.
char* WriteCodePoint(std::uint32_t c, char* to) noexcept
{
    constexpr std::uint32_t kBounds[] = {0x800, 0x10000, 0x200000, 0x4000000};
    constexpr std::uint32_t kLeads[] = {0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
    std::uint32_t more = 0;
    while (more < 4 && c >= kBounds[more])
        ++more;
    std::uint32_t shift = 6 * (more + 1);
    *to++ = static_cast<char>(kLeads[more] | (c >> shift));
    while (shift > 0) {
        shift -= 6;
        *to++ = static_cast<char>(0x80 | ((c >> shift) & 0x3F));
    }
    return to;
}

/// The surrogate at `src` with the unit behind it, whatever that is.
std::uint32_t JoinPair(const char16_t* src) noexcept
{
    const bool highFirst = src[0] < 0xDC00;
    const std::uint32_t high = src[highFirst ? 0 : 1];
    const std::uint32_t low = src[highFirst ? 1 : 0];
    return ((high - 0xD7C0U) << 10) + (low ^ 0xDC00U);
}

}

TFastRawString::TFastRawString(std::int32_t delta)
    : ChunkChain(delta)
{
}

TFastRawString::~TFastRawString() = default;

TFastRawString& TFastRawString::AddUTF8(std::u16string_view s)
{
    if (s.empty())
        return *this;
    // A unit gives three bytes at most and a pair six, so the space always suffices.
    char* const start = Reserve(CheckedMul(CheckedLength(s.size()), 3));
    char* to = start;
    const char16_t* const end = s.data() + s.size();
    for (const char16_t* src = s.data(); src < end;) {
        const std::size_t ascii = CopyAscii(src, static_cast<std::size_t>(end - src), to);
        src += ascii;
        to += ascii;
        if (src == end)
            break;
        if ((*src & 0xF800) != 0xD800) {
            to = WriteCodePoint(*src++, to);
            continue;
        }
        if (end - src == 1)
            break;
        to = WriteCodePoint(JoinPair(src), to);
        src += 2;
    }
    Commit(static_cast<std::int32_t>(to - start));
    return *this;
}

TFastRawString& TFastRawString::AddInt(std::int32_t value)
{
    char scratch[11];
    char* const end = std::end(scratch);
    const std::int32_t magnitude = value < 0 ? CheckedNegate(value) : value;
    char* first = detail::WriteDigits(static_cast<std::uint64_t>(magnitude), end);
    if (value < 0)
        *--first = '-';
    return Add(first, static_cast<std::int32_t>(end - first));
}

std::string TFastRawString::GetAsString() const
{
    const auto length = static_cast<std::size_t>(GetTotalLen());
    std::string bytes = detail::WithStorage([length] { return std::string(length, '\0'); });
    CopyTo(bytes.data(), 0, GetTotalLen());
    return bytes;
}

TBytes TFastRawString::AsBytes() const
{
    TBytes bytes(GetTotalLen());
    CopyTo(reinterpret_cast<char*>(bytes.data()), 0, GetTotalLen());
    return bytes;
}

}
