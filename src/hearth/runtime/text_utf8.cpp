// UTF-8 in and out of text, in wide steps where the text allows it.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/text.h>

#include <hearth/runtime/simd_p.h>
#include <hearth/runtime/storage.h>
#include <hearth/runtime/unicode_p.h>

#include <array>

namespace ht {

namespace {

using simd::Bytes16;
using simd::Units8;

/// Text may be kept for long, so of its room no more than an eighth stays unused.
constexpr std::size_t kMostUnused = 8;
constexpr std::ptrdiff_t kWideStep = 4 * Bytes16::kCount;

constexpr bool IsTail(unsigned byte) noexcept
{
    return (byte & 0xC0) == 0x80;
}

constexpr bool IsPairLead(unsigned byte) noexcept
{
    return byte >= 0xC2 && byte < 0xE0;
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

/// Four bytes that stand for a pair of units; nothing is written when they are not well-formed.
const char* DecodeQuad(const char* p, char16_t*& out) noexcept
{
    const unsigned first = ByteAt(p + 1);
    const unsigned second = ByteAt(p + 2);
    const unsigned third = ByteAt(p + 3);
    const char32_t code =
        (ByteAt(p) & 0x07) << 18 | (first & 0x3F) << 12 | (second & 0x3F) << 6 | (third & 0x3F);
    if (!IsTail(first) || !IsTail(second) || !IsTail(third) || code < 0x10000 || code > 0x10FFFF)
        return p;
    out[0] = static_cast<char16_t>(0xD7C0 + (code >> 10));
    out[1] = static_cast<char16_t>(0xDC00 | (code & 0x3FF));
    out += 2;
    return p + 4;
}

/// What is well-formed at `p`, where four bytes are left: a sequence, or a row of its kind.
const char* DecodeRow(const char* p, const char* end, char16_t*& out) noexcept
{
    const unsigned lead = ByteAt(p);
    if (lead >= 0xF0)
        return lead < 0xF8 ? DecodeQuad(p, out) : p;
    if (lead >= 0xE0)
        return DecodeTriples(p, end, out);
    if (!IsPairLead(lead) || !IsTail(ByteAt(p + 1)))
        return p;
    *out++ = static_cast<char16_t>((lead & 0x1F) << 6 | (ByteAt(p + 1) & 0x3F));
    p += 2;
    // Accents come alone or as two, for which a register does not pay.
    const bool isRow = end - p >= Bytes16::kCount && IsPairLead(ByteAt(p)) && IsPairLead(ByteAt(p + 2));
    return isRow ? DecodePairs(p, end, out) : p;
}

/// Sequences of all lengths, until a run of ASCII or the end.
const char* DecodeMixed(const char* p, const char* end, char16_t*& out) noexcept
{
    char16_t* to = out;
    for (;;) {
        while (p < end && ByteAt(p) >= 0x80) {
            const char* const after = end - p >= 4 ? DecodeRow(p, end, to) : p;
            p = after != p ? after : DecodeSequence(p, end, to);
        }
        const char* const plainEnd = end - p > kPlainRun ? p + kPlainRun : end;
        while (p < plainEnd && ByteAt(p) < 0x80)
            *to++ = static_cast<char16_t>(*p++);
        if (p == plainEnd)
            break;
    }
    out = to;
    return p;
}

/// Narrows ASCII until the first other unit.
const char16_t* EncodeAscii(const char16_t* p, const char16_t* end, char*& out) noexcept
{
    char* to = out;
    for (; end - p >= kWideStep; p += kWideStep, to += kWideStep) {
        Units8 units[8];
        for (int i = 0; i < 8; ++i)
            units[i] = Units8::Load(p + i * Units8::kCount);
        const Units8 first = units[0].Or(units[1]).Or(units[2].Or(units[3]));
        const Units8 second = units[4].Or(units[5]).Or(units[6].Or(units[7]));
        if (!first.Or(second).IsAscii())
            break;
        for (int i = 0; i < 4; ++i)
            Bytes16::Narrow(units[2 * i], units[2 * i + 1]).Store(to + i * Bytes16::kCount);
    }
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

char* WriteTriple(char32_t code, char* to) noexcept
{
    to[0] = static_cast<char>(0xE0 | code >> 12);
    to[1] = Tail(code, 6);
    to[2] = Tail(code, 0);
    return to + 3;
}

char* WriteQuad(char32_t code, char* to) noexcept
{
    to[0] = static_cast<char>(0xF0 | code >> 18);
    to[1] = Tail(code, 12);
    to[2] = Tail(code, 6);
    to[3] = Tail(code, 0);
    return to + 4;
}

/// One code point from U+0800 on.
const char16_t* EncodeLong(const char16_t* p, const char16_t* end, char*& out) noexcept
{
    const char16_t unit = *p++;
    if ((unit & 0xF800) != 0xD800) {
        out = WriteTriple(unit, out);
    } else if (IsHighSurrogate(unit) && p < end && IsLowSurrogate(*p)) {
        out = WriteQuad(0x10000 + ((unit & 0x3FFU) << 10 | (*p++ & 0x3FFU)), out);
    } else {
        out = WriteTriple(kReplacement, out);
    }
    return p;
}

/// A unit below U+0800. The second byte is written in any case, as asking costs more where letters and blanks
/// take turns; there must be room for it.
void EncodeShort(char16_t unit, char*& out) noexcept
{
    const bool isPair = unit >= 0x80;
    out[0] = static_cast<char>(isPair ? 0xC0 | unit >> 6 : unit);
    out[1] = Tail(unit, 0);
    out += isPair ? 2 : 1;
}

/// Units of any kind, until `stop` is reached or, by a pair, passed.
const char16_t* EncodeEach(const char16_t* p, const char16_t* stop, const char16_t* end, char*& out) noexcept
{
    while (p < stop) {
        if (*p < 0x800)
            EncodeShort(*p++, out);
        else
            p = EncodeLong(p, end, out);
    }
    return p;
}

/// Units of all kinds in blocks, until two blocks in a row are ASCII or the end.
const char16_t* EncodeMixed(const char16_t* p, const char16_t* end, char*& out) noexcept
{
    char* to = out;
    for (int plain = 0; p < end && plain < 2;) {
        const char16_t* stop = end;
        if (end - p >= Units8::kCount) {
            stop = p + Units8::kCount;
            const Units8 units = Units8::Load(p);
            if (units.IsAscii()) {
                units.StoreBytes(to);
                to += Units8::kCount;
                p = stop;
                ++plain;
                continue;
            }
            plain = 0;
            if (units.LacksBits(0xF800)) {
                for (; p < stop; ++p)
                    EncodeShort(*p, to);
                continue;
            }
        }
        p = EncodeEach(p, stop, end, to);
    }
    out = to;
    return p;
}

constexpr std::ptrdiff_t kPieceUnits = 2048;

/// The end of a piece, which splits no pair.
const char16_t* PieceEnd(const char16_t* p, const char16_t* end) noexcept
{
    if (end - p <= kPieceUnits)
        return end;
    const char16_t* const stop = p + kPieceUnits;
    return IsHighSurrogate(stop[-1]) ? stop - 1 : stop;
}

/// Room for the bytes of a piece: no unit takes more than three, and a pair takes four.
using PieceBytes = std::array<char, 3 * kPieceUnits>;

/// The bytes of a piece that `room` has taken. There is room behind them for whole registers: a unit that is
/// still to come has three bytes left.
std::string_view EncodePiece(const char16_t* p, const char16_t* end, PieceBytes& room) noexcept
{
    char* out = room.data();
    while (p < end) {
        p = EncodeAscii(p, end, out);
        p = EncodeMixed(p, end, out);
    }
    return {room.data(), static_cast<std::size_t>(out - room.data())};
}

/// A string that is made at its full size is filled with zeros first, so pieces are encoded where they stay
/// in the nearest cache, and appended.
std::string EncodeText(std::u16string_view text)
{
    PieceBytes room;
    const char16_t* const end = text.data() + text.size();
    const char16_t* p = PieceEnd(text.data(), end);
    const std::string_view first = EncodePiece(text.data(), p, room);
    if (p == end)
        return std::string(first);
    // Room as if all of the text were like its first piece, and a little more.
    const std::size_t expected = (text.size() / kPieceUnits + 1) * first.size();
    std::string bytes;
    bytes.reserve(expected + expected / 16);
    bytes = first;
    while (p < end) {
        const char16_t* const stop = PieceEnd(p, end);
        bytes += EncodePiece(p, stop, room);
        p = stop;
    }
    if (bytes.capacity() - bytes.size() > bytes.size() / kMostUnused)
        bytes.shrink_to_fit();
    return bytes;
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
    if (bytes.size() - length > length / kMostUnused)
        return String(std::u16string_view(units, length));
    units[length] = 0;
    result.Header().length = static_cast<std::int32_t>(length);
    return result;
}

std::string String::ToUtf8() const
{
    return EncodeUtf8(View());
}

std::string EncodeUtf8(std::u16string_view text)
{
    return detail::WithStorage([text] { return EncodeText(text); });
}

}
