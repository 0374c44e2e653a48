// UTF-8 in and out of text, in wide steps where the text allows it.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/text.h>

#include <hearth/runtime/simd_p.h>

#include <cstring>

namespace ht {

namespace {

using simd::Bytes16;
using simd::Units8;

constexpr char16_t kReplacement = 0xFFFD;
constexpr std::ptrdiff_t kWideStep = 4 * Bytes16::kCount;

constexpr bool IsTail(unsigned byte) noexcept
{
    return (byte & 0xC0) == 0x80;
}

unsigned ByteAt(const char* p) noexcept
{
    return static_cast<unsigned char>(*p);
}

/// ASCII that has to follow on ASCII before the wide steps pay: accents come in short gaps.
constexpr int kPlainRun = 12;

/// Widens ASCII from `p` on and stops at the first other byte. There must be room for a unit a byte left.
const char* DecodeAscii(const char* p, const char* end, char16_t*& out) noexcept
{
    char16_t* to = out;
    while (end - p >= Bytes16::kCount) {
        const Bytes16 bytes = Bytes16::Load(p);
        const int count = bytes.AsciiStart();
        bytes.StoreWide(to);
        p += count;
        to += count;
        if (count < Bytes16::kCount) {
            out = to;
            return p;
        }
        for (; end - p >= kWideStep; p += kWideStep, to += kWideStep) {
            const Bytes16 a = Bytes16::Load(p);
            const Bytes16 b = Bytes16::Load(p + 16);
            const Bytes16 c = Bytes16::Load(p + 32);
            const Bytes16 d = Bytes16::Load(p + 48);
            if (!a.Or(b).Or(c.Or(d)).IsAscii())
                break;
            a.StoreWide(to);
            b.StoreWide(to + 16);
            c.StoreWide(to + 32);
            d.StoreWide(to + 48);
        }
    }
    while (p < end && ByteAt(p) < 0x80)
        *to++ = static_cast<char16_t>(*p++);
    out = to;
    return p;
}

/// The tail bytes that a lead byte may have first; 0 for bytes that lead nothing.
struct LeadRule {
    int tails;
    unsigned lowest;
    unsigned highest;
};

LeadRule RuleOf(unsigned lead) noexcept
{
    if (lead < 0xC2 || lead > 0xF4)
        return {0, 0, 0};
    if (lead < 0xE0)
        return {1, 0x80, 0xBF};
    if (lead < 0xF0)
        return {2, lead == 0xE0 ? 0xA0U : 0x80U, lead == 0xED ? 0x9FU : 0xBFU};
    return {3, lead == 0xF0 ? 0x90U : 0x80U, lead == 0xF4 ? 0x8FU : 0xBFU};
}

/// One sequence with all checks; a maximal part of an ill-formed one becomes U+FFFD.
const char* DecodeSequence(const char* p, const char* end, char16_t*& out) noexcept
{
    const unsigned lead = ByteAt(p++);
    LeadRule rule = RuleOf(lead);
    if (rule.tails == 0) {
        *out++ = kReplacement;
        return p;
    }
    char32_t code = lead & (0x3FU >> rule.tails);
    for (; rule.tails > 0; --rule.tails, ++p) {
        if (p == end || ByteAt(p) < rule.lowest || ByteAt(p) > rule.highest) {
            *out++ = kReplacement;
            return p;
        }
        code = code << 6 | (ByteAt(p) & 0x3F);
        rule.lowest = 0x80;
        rule.highest = 0xBF;
    }
    if (code < 0x10000) {
        *out++ = static_cast<char16_t>(code);
    } else {
        *out++ = static_cast<char16_t>(0xD7C0 + (code >> 10));
        *out++ = static_cast<char16_t>(0xDC00 | (code & 0x3FF));
    }
    return p;
}

/// Two-byte sequences in a row: alphabets other than the Latin one.
const char* DecodePairs(const char* p, const char* end, char16_t*& out) noexcept
{
    int count = Bytes16::kPairCount;
    while (count == Bytes16::kPairCount && end - p >= Bytes16::kCount) {
        count = Bytes16::Load(p).DecodePairs(out);
        p += 2 * count;
        out += count;
    }
    return p;
}

/// Three-byte sequences in a row, the bulk of East Asian text; stops at what is not well-formed.
const char* DecodeTriples(const char* p, const char* end, char16_t*& out) noexcept
{
    char16_t* to = out;
    for (; end - p >= 3; p += 3) {
        const unsigned lead = ByteAt(p);
        const unsigned first = ByteAt(p + 1);
        const unsigned second = ByteAt(p + 2);
        const unsigned unit = (lead & 0x0F) << 12 | (first & 0x3F) << 6 | (second & 0x3F);
        const bool wellFormed = (lead & 0xF0) == 0xE0 && IsTail(first) && IsTail(second) && unit >= 0x800
            && (unit & 0xF800) != 0xD800;
        if (!wellFormed)
            break;
        *to++ = static_cast<char16_t>(unit);
    }
    out = to;
    return p;
}

/// Sequences of all lengths, until a run of ASCII or the end.
const char* DecodeMixed(const char* p, const char* end, char16_t*& out) noexcept
{
    char16_t* to = out;
    for (int asciiRun = 0; p < end && asciiRun < kPlainRun;) {
        const unsigned lead = ByteAt(p);
        if (lead < 0x80) {
            *to++ = static_cast<char16_t>(lead);
            ++p;
            ++asciiRun;
            continue;
        }
        asciiRun = 0;
        if (end - p >= 4) {
            const unsigned first = ByteAt(p + 1);
            if ((lead & 0xE0) == 0xC0 && lead >= 0xC2 && IsTail(first)) {
                *to++ = static_cast<char16_t>((lead & 0x1F) << 6 | (first & 0x3F));
                p += 2;
                if (ByteAt(p) >= 0xC2 && ByteAt(p) < 0xE0)
                    p = DecodePairs(p, end, to);
                continue;
            }
            const char* const after = (lead & 0xF0) == 0xE0 ? DecodeTriples(p, end, to) : p;
            if (after != p) {
                p = after;
                continue;
            }
        }
        p = DecodeSequence(p, end, to);
    }
    out = to;
    return p;
}

/// Bytes that the units take as UTF-8. `p[-1]` and `*end` are not looked at: pieces must not split a pair.
std::size_t EncodedSizeOfPiece(const char16_t* p, std::size_t count) noexcept
{
    std::uint16_t wide = 0;
    std::uint16_t wider = 0;
    std::uint16_t pairs = 0;
    for (std::size_t i = 0; i < count; ++i) {
        wide = static_cast<std::uint16_t>(wide + (p[i] >= 0x80));
        wider = static_cast<std::uint16_t>(wider + (p[i] >= 0x800));
    }
    for (std::size_t i = 1; i < count; ++i) {
        const int pair = int{(p[i - 1] & 0xFC00) == 0xD800} & int{(p[i] & 0xFC00) == 0xDC00};
        pairs = static_cast<std::uint16_t>(pairs + pair);
    }
    // A pair counts three bytes for each half and gives two back.
    return count + wide + wider - std::size_t{2} * pairs;
}

std::size_t EncodedSize(const char16_t* p, const char16_t* end) noexcept
{
    constexpr std::ptrdiff_t kPiece = 0x4000; // keeps the counts of a piece within 16 bits
    std::size_t size = 0;
    while (p < end) {
        const char16_t* stop = end - p > kPiece ? p + kPiece : end;
        if (stop < end && IsHighSurrogate(stop[-1]))
            --stop;
        size += EncodedSizeOfPiece(p, static_cast<std::size_t>(stop - p));
        p = stop;
    }
    return size;
}

const char16_t* SkipAscii(const char16_t* p, const char16_t* end) noexcept
{
    constexpr std::ptrdiff_t kStep = 4 * Units8::kCount;
    for (; end - p >= kStep; p += kStep) {
        const Units8 first = Units8::Load(p).Or(Units8::Load(p + 8));
        const Units8 second = Units8::Load(p + 16).Or(Units8::Load(p + 24));
        if (!first.Or(second).IsAscii())
            break;
    }
    while (p < end && *p < 0x80)
        ++p;
    return p;
}

/// Narrows ASCII until the first other unit.
const char16_t* EncodeAscii(const char16_t* p, const char16_t* end, char*& out) noexcept
{
    char* to = out;
    for (; end - p >= Bytes16::kCount; p += Bytes16::kCount, to += Bytes16::kCount) {
        const Units8 first = Units8::Load(p);
        const Units8 second = Units8::Load(p + Units8::kCount);
        if (!first.Or(second).IsAscii())
            break;
        Bytes16::Narrow(first, second).Store(to);
    }
    while (p < end && *p < 0x80)
        *to++ = static_cast<char>(*p++);
    out = to;
    return p;
}

char Tail(char32_t code, int shift) noexcept
{
    return static_cast<char>(0x80 | ((code >> shift) & 0x3F));
}

/// One code point from U+0800 on.
const char16_t* EncodeLong(const char16_t* p, const char16_t* end, char*& out) noexcept
{
    char* to = out;
    char32_t code = *p++;
    if ((code & 0xFC00) == 0xD800 && p < end && IsLowSurrogate(*p)) {
        code = 0x10000 + ((code & 0x3FF) << 10 | (*p++ & 0x3FFU));
        *to++ = static_cast<char>(0xF0 | code >> 18);
        *to++ = Tail(code, 12);
    } else {
        if ((code & 0xF800) == 0xD800)
            code = kReplacement;
        *to++ = static_cast<char>(0xE0 | code >> 12);
    }
    to[0] = Tail(code, 6);
    to[1] = Tail(code, 0);
    out = to + 2;
    return p;
}

/// Units U+0080 to U+07FF in a row, as long as whole registers fit behind `out`.
const char16_t* EncodePairs(const char16_t* p, const char16_t* end, char*& out, const char* outEnd) noexcept
{
    char* to = out;
    int count = Bytes16::kPairCount;
    while (count == Bytes16::kPairCount && end - p >= Units8::kCount && outEnd - to >= Bytes16::kCount) {
        count = Bytes16::EncodePairs(Units8::Load(p), to);
        p += count;
        to += 2 * count;
    }
    out = to;
    return p;
}

/// Units of all kinds, until a run of ASCII or the end.
const char16_t* EncodeMixed(const char16_t* p, const char16_t* end, char*& out, const char* outEnd) noexcept
{
    char* to = out;
    for (int asciiRun = 0; p < end && asciiRun < kPlainRun;) {
        const char16_t unit = *p;
        if (unit < 0x80) {
            *to++ = static_cast<char>(unit);
            ++p;
            ++asciiRun;
            continue;
        }
        asciiRun = 0;
        if (unit >= 0x800) {
            p = EncodeLong(p, end, to);
            continue;
        }
        to[0] = static_cast<char>(0xC0 | unit >> 6);
        to[1] = Tail(unit, 0);
        to += 2;
        ++p;
        if (p < end && *p >= 0x80 && *p < 0x800)
            p = EncodePairs(p, end, to, outEnd);
    }
    out = to;
    return p;
}

}

String String::FromUtf8(std::string_view bytes)
{
    // No sequence gives more units than it has bytes, so this is room enough, and for ASCII just right.
    char16_t* units = nullptr;
    String result = Uninitialized(bytes.size(), units);
    const char* p = bytes.data();
    const char* const end = p + bytes.size();
    char16_t* out = units;
    while (p < end) {
        p = DecodeAscii(p, end, out);
        p = DecodeMixed(p, end, out);
    }
    const auto length = static_cast<std::size_t>(out - units);
    if (length == bytes.size())
        return result;
    // Text that will be kept should not carry more than an eighth of unused room.
    if (bytes.size() - length > length / 8)
        return String(std::u16string_view(units, length));
    units[length] = 0;
    result.Header().length = static_cast<std::int32_t>(length);
    return result;
}

std::string String::ToUtf8() const
{
    const char16_t* const afterAscii = SkipAscii(begin(), end());
    const auto asciiSize = static_cast<std::size_t>(afterAscii - begin());
    std::string bytes(asciiSize + EncodedSize(afterAscii, end()), '\0');
    char* out = bytes.data();
    for (const char16_t* p = begin(); p < end();) {
        p = EncodeAscii(p, end(), out);
        p = EncodeMixed(p, end(), out, bytes.data() + bytes.size());
    }
    return bytes;
}

}
