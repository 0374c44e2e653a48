// What all encoders share: a wide scan for what needs escaping, runs between escapes copied in one move.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/fast_string.h>
#include <hearth/runtime/simd_p.h>
#include <hearth/runtime/text.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ht::escapes {

/// How many units the escape of a character is longer than the character.
using OverheadTable = std::array<std::uint8_t, 256>;

consteval OverheadTable MakeOverheads(char16_t lastControl, std::uint8_t quote)
{
    OverheadTable table{};
    for (char16_t c = 0; c <= lastControl; ++c)
        table[c] = 3;
    table[u'"'] = quote;
    table[u'&'] = 4;
    table[u'<'] = 3;
    table[u'>'] = 3;
    table[0xA0] = 5;
    return table;
}

/// Room for the longest escape: a name of 31 letters between "&" and ";".
using EscapeBuffer = std::array<char16_t, 40>;

/// The escape of a character below U+0100 that needs one.
inline std::u16string_view LowEscape(char16_t c)
{
    static constexpr std::u16string_view kControls = u"&#0;&#1;&#2;&#3;&#4;&#5;&#6;&#7;&#8;&#9;";
    switch (c) {
    case u'"':
        return u"&quot;";
    case u'&':
        return u"&amp;";
    case u'<':
        return u"&lt;";
    case u'>':
        return u"&gt;";
    case u'\u00A0':
        return u"&nbsp;";
    default:
        return kControls.substr(std::size_t{c} * 4, 4);
    }
}

/// `low` may be any unit: the number is that of the formula, which never has more than six digits.
inline std::u16string_view PairEscape(char16_t high, char16_t low, EscapeBuffer& buffer)
{
    static constexpr std::u16string_view kFrame = u"&#x000000;";
    static constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
    std::uint32_t code = ((std::uint32_t{high} - 0xD800U) << 10U) + std::uint32_t{low} - 0xDC00U + 0x10000U;
    std::copy(kFrame.begin(), kFrame.end(), buffer.begin());
    for (std::size_t i = 8; i > 2; --i, code >>= 4U)
        buffer[i] = kDigits[code & 0xFU];
    return {buffer.data(), kFrame.size()};
}

// Rules tell which units are escaped and how: IsEscaped(unit); Candidates(units), a mask that leaves out none
// that is escaped and few others; Escape(p, end, buffer), the escape of the unit at `p`, which moves behind
// what it stands for.

template <class Rules> const char16_t* FindEscapeIn(const char16_t* p, const char16_t* end)
{
    while (p < end && !Rules::IsEscaped(*p))
        ++p;
    return p;
}

/// The first unit that needs an escape, or `end`.
template <class Rules> const char16_t* FindEscape(const char16_t* p, const char16_t* end)
{
    const char16_t* const start = p;
    for (; end - p >= simd::Units8::kCount; p += simd::Units8::kCount) {
        const std::uint64_t mask = Rules::Candidates(simd::Units8::Load(p));
        if (mask == 0)
            continue;
        const char16_t* const stop = p + simd::Units8::kCount;
        const char16_t* const found = FindEscapeIn<Rules>(p + simd::Units8::FirstOf(mask), stop);
        if (found < stop)
            return found;
    }
    // The last units are mostly free of escapes: one more step over the last eight tells.
    const bool hasStep = end - start >= simd::Units8::kCount;
    if (hasStep && Rules::Candidates(simd::Units8::Load(end - simd::Units8::kCount)) == 0)
        return end;
    return FindEscapeIn<Rules>(p, end);
}

/// Calls `sink` with the pieces of the encoded text in order.
template <class Rules, class Sink> void ForEachPiece(const char16_t* p, const char16_t* end, Sink&& sink)
{
    EscapeBuffer buffer;
    for (;;) {
        const char16_t* const escape = FindEscape<Rules>(p, end);
        if (escape > p)
            sink(std::u16string_view(p, static_cast<std::size_t>(escape - p)));
        if (escape == end)
            return;
        p = escape;
        sink(Rules::Escape(p, end, buffer));
    }
}

template <class Rules> std::size_t EncodedLength(const char16_t* p, const char16_t* end)
{
    std::size_t length = 0;
    ForEachPiece<Rules>(p, end, [&length](std::u16string_view piece) { length += piece.size(); });
    return length;
}

template <class Rules> String Encode(const String& s)
{
    const char16_t* const escape = FindEscape<Rules>(s.begin(), s.end());
    if (escape == s.end())
        return s;
    const auto plain = static_cast<std::size_t>(escape - s.begin());
    char16_t* to = nullptr;
    String result = String::Uninitialized(plain + EncodedLength<Rules>(escape, s.end()), to);
    to = std::copy_n(s.begin(), plain, to);
    ForEachPiece<Rules>(escape, s.end(),
        [&to](std::u16string_view piece) { to = std::copy_n(piece.data(), piece.size(), to); });
    return result;
}

template <class Rules> void EncodeTo(TFastString& FS, std::u16string_view s)
{
    ForEachPiece<Rules>(s.data(), s.data() + s.size(), [&FS](std::u16string_view piece) { FS.Add(piece); });
}

}
