// The common forms of JSON names and values, each read in one step from the cursor.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/hash_table.h>
#include <hearth/foundation/string_parser.h>
#include <hearth/markup/json_token.h>
#include <hearth/runtime/simd_p.h>
#include <hearth/xml/short_texts_p.h>

#include <memory>
#include <string_view>

namespace ht {

/// What a token tells of a value: the type of its first token, and of what is no container the text.
struct TJsonValue {
    THtJSONTokenType Type = jtUnknown;
    String Text;
};

/// Reads what most documents consist of, as the tokenizer would but without making tokens. What it does not
/// know it leaves where it is, for the tokenizer to read or to refuse.
class TJsonPlainReader {
public:
    /// Lifetime: the cursor outlives the reader.
    explicit TJsonPlainReader(TStringParser& cursor)
        : FCursor(cursor)
    {
        // Where hardly anything comes twice it is not worth its memory.
        constexpr std::int32_t kLongText = 4096;
        if (cursor.s.Length() >= kLongText)
            FShortTexts = std::make_unique<TShortTexts>();
    }

    /// Passes over `name` in quotes and a ":"; in the name itself are no quotes and escapes. False, with
    /// nothing read, where something else stands.
    bool PassName(std::u16string_view name) noexcept
    {
        const char16_t* p = BehindBlanks(FCursor.p);
        const char16_t quote = *p;
        const auto length = static_cast<std::ptrdiff_t>(name.size());
        if (!IsQuote(quote) || FCursor.pend - p < length + 2 || p[length + 1] != quote
            || !detail::SameUnits(name.data(), p + 1, name.size()))
            return false;
        p = BehindBlanks(p + length + 2);
        if (*p != u':')
            return false;
        FCursor.p = p + 1;
        return true;
    }

    /// Reads a string without escapes, a keyword, a number without an exponent, or an opening mark. False,
    /// with nothing read, where something else stands.
    bool Read(TJsonValue& value)
    {
        const char16_t* const p = BehindBlanks(FCursor.p);
        switch (*p) {
        case u'"':
        case u'\'':
            return ReadString(value, p);
        case u'{':
            return Take(value, jtObjectStart, p + 1);
        case u'[':
            return Take(value, jtArrayStart, p + 1);
        case u't':
            return ReadWord(value, u"true"_s, p);
        case u'f':
            return ReadWord(value, u"false"_s, p);
        case u'n':
            return ReadWord(value, u"null"_s, p);
        default:
            return (IsAsciiDigit(*p) || *p == u'-') && ReadNumber(value, p);
        }
    }

private:
    static constexpr bool IsQuote(char16_t c) noexcept { return c == u'"' || c == u'\''; }

    /// The end of the blanks that begin at `p`, which may be none. Other control characters begin no blanks.
    const char16_t* BehindBlanks(const char16_t* p) const noexcept
    {
        if (*p > u' ') [[likely]]
            return p;
        if (*p == u' ' || *p == u'\n' || *p == u'\r' || *p == u'\t') {
            while (p < FCursor.pend && *p <= u' ')
                ++p;
        }
        return p;
    }

    bool Take(TJsonValue& value, THtJSONTokenType type, const char16_t* end) noexcept
    {
        value.Type = type;
        FCursor.p = end;
        return true;
    }

    bool ReadString(TJsonValue& value, const char16_t* p)
    {
        const char16_t quote = *p++;
        const char16_t* const stop = FindStop(p, quote);
        if (stop == FCursor.pend || *stop != quote)
            return false;
        value.Text = TextOf(p, stop);
        return Take(value, jtString, stop + 1);
    }

    /// The first quote, backslash or control character from `p` on, or the end of the text.
    const char16_t* FindStop(const char16_t* p, char16_t quote) const noexcept
    {
        using simd::Units8;
        const Units8 quotes = Units8::Fill(quote);
        const Units8 slashes = Units8::Fill(u'\\');
        for (; FCursor.pend - p >= Units8::kCount; p += Units8::kCount) {
            const Units8 units = Units8::Load(p);
            const std::uint64_t mask =
                units.Equal(quotes).Or(units.Equal(slashes)).Or(units.InRange(0, 0x1F)).Mask();
            if (mask != 0)
                return p + Units8::FirstOf(mask);
        }
        while (p < FCursor.pend && *p != quote && *p != u'\\' && *p >= u' ')
            ++p;
        return p;
    }

    bool ReadWord(TJsonValue& value, const String& word, const char16_t* p) noexcept
    {
        const auto length = static_cast<std::ptrdiff_t>(word.size());
        if (FCursor.pend - p < length || !detail::SameUnits(word.data(), p, word.size()))
            return false;
        const char16_t next = p[length];
        const bool goesOn = next > u' ' && next != u',' && next != u'}' && next != u']';
        if (goesOn) // for whatever it may become
            return false;
        value.Text = word;
        return Take(value, jtValue, p + length);
    }

    /// Up to 18 digits and up to 18 more behind a ".": they fit into every type.
    bool ReadNumber(TJsonValue& value, const char16_t* const from)
    {
        constexpr std::ptrdiff_t kMost = 18;
        const char16_t* const whole = from + (*from == u'-');
        const char16_t* p = BehindDigits(whole);
        if (p == whole || p - whole > kMost || (*whole == u'0' && p - whole > 1))
            return false;
        const bool hasFraction = *p == u'.';
        if (hasFraction) {
            const char16_t* const fraction = p + 1;
            p = BehindDigits(fraction);
            if (p == fraction || p - fraction > kMost)
                return false;
        }
        if (*p == u'.' || FoldAscii(*p) == u'e')
            return false;
        value.Text = TextOf(from, p);
        return Take(value, hasFraction ? jtFloat : jtInt, p);
    }

    static const char16_t* BehindDigits(const char16_t* p) noexcept
    {
        while (IsAsciiDigit(*p))
            ++p;
        return p;
    }

    /// Part of the text, without U+0000 in it.
    String TextOf(const char16_t* from, const char16_t* to)
    {
        const auto length = static_cast<std::size_t>(to - from);
        const bool isShort = length - 1 < static_cast<std::size_t>(TShortTexts::kUnits)
            && FCursor.pend - from >= TShortTexts::kUnits;
        return isShort && FShortTexts ? FShortTexts->Of(from, length) : String({from, length});
    }

    TStringParser& FCursor;
    std::unique_ptr<TShortTexts> FShortTexts;
};

}
