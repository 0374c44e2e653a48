// Characters, names and quoted texts of XML.
// SPDX-License-Identifier: MIT
#include "xml_scanner_p.h"

#include <hearth/runtime/text_format.h>
#include <hearth/xml/xml_error.h>

#include <algorithm>
#include <iterator>

namespace ht {

namespace {

struct TCharRange {
    char32_t First;
    char32_t Last;
};

constexpr TCharRange kNameStart[] = {
    {U':', U':'},
    {U'A', U'Z'},
    {U'_', U'_'},
    {U'a', U'z'},
    {0xC0, 0xD6},
    {0xD8, 0xF6},
    {0xF8, 0x2FF},
    {0x370, 0x37D},
    {0x37F, 0x1FFF},
    {0x200C, 0x200D},
    {0x2070, 0x218F},
    {0x2C00, 0x2FEF},
    {0x3001, 0xD7FF},
    {0xF900, 0xFDCF},
    {0xFDF0, 0xFFFD},
    {0x10000, 0xEFFFF},
};

/// What a name may hold behind its first character.
constexpr TCharRange kNameFurther[] = {
    {U'-', U'.'},
    {U'0', U'9'},
    {0xB7, 0xB7},
    {0x300, 0x36F},
    {0x203F, 0x2040},
};

template <std::size_t N> bool IsIn(const TCharRange (&ranges)[N], char32_t c) noexcept
{
    return std::any_of(std::begin(ranges), std::end(ranges),
        [c](const TCharRange& range) { return c >= range.First && c <= range.Last; });
}

bool IsNameChar(char32_t c) noexcept
{
    return IsIn(kNameStart, c) || IsIn(kNameFurther, c);
}

bool IsXMLChar(char32_t c) noexcept
{
    return c == U'\t' || c == U'\n' || c == U'\r' || (c >= 0x20 && c <= 0xD7FF)
        || (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

bool IsXMLSpace(char16_t c) noexcept
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

/// The character at the start of a text, which is not empty; half of a pair stands for itself.
char32_t DecodeFirst(std::u16string_view text, std::size_t& length) noexcept
{
    length = 1;
    if (!IsHighSurrogate(text[0]) || text.size() < 2 || !IsLowSurrogate(text[1]))
        return text[0];
    length = 2;
    return 0x10000 + ((static_cast<char32_t>(text[0]) - 0xD800) << 10U) + (text[1] - 0xDC00U);
}

int HexValue(char16_t c) noexcept
{
    if (IsAsciiDigit(c))
        return c - u'0';
    const char16_t folded = FoldAscii(c);
    return folded >= u'a' && folded <= u'f' ? folded - u'a' + 10 : 16;
}

}

void TXMLScanner::Expect(std::u16string_view literal)
{
    if (!Accept(literal))
        Fail(u"%s expected", literal);
}

bool TXMLScanner::SkipSpace() noexcept
{
    const std::size_t start = FAt;
    while (!AtEnd() && IsXMLSpace(FText[FAt]))
        ++FAt;
    return FAt > start;
}

void TXMLScanner::RequireSpace()
{
    if (!SkipSpace())
        Fail(u"white space expected");
}

char32_t TXMLScanner::Char()
{
    if (AtEnd())
        Fail(u"character expected");
    std::size_t length = 0;
    const char32_t c = DecodeFirst(FText.substr(FAt), length);
    if (!IsXMLChar(c))
        Fail(u"character that XML does not allow");
    FAt += length;
    return c;
}

std::u16string_view TXMLScanner::Name()
{
    std::size_t length = 0;
    if (AtEnd() || !IsIn(kNameStart, DecodeFirst(FText.substr(FAt), length)))
        Fail(u"name expected");
    return Nmtoken();
}

std::u16string_view TXMLScanner::Nmtoken()
{
    const std::size_t start = FAt;
    std::size_t length = 0;
    while (!AtEnd() && IsNameChar(DecodeFirst(FText.substr(FAt), length)))
        FAt += length;
    if (FAt == start)
        Fail(u"name expected");
    return FText.substr(start, FAt - start);
}

std::u16string_view TXMLScanner::Until(std::u16string_view end, std::u16string_view what)
{
    const std::size_t start = FAt;
    while (!StartsWith(end)) {
        if (AtEnd())
            Fail(u"%s is not closed", what);
        Char();
    }
    const std::u16string_view text = FText.substr(start, FAt - start);
    FAt += end.size();
    return text;
}

std::u16string_view TXMLScanner::Quoted(std::u16string_view what)
{
    const char16_t quote = Peek();
    if (quote != u'"' && quote != u'\'')
        Fail(u"quotes expected around %s", what);
    ++FAt;
    return Until({&quote, 1}, what);
}

void TXMLScanner::CharData()
{
    for (char16_t c = Peek(); !AtEnd() && c != u'<' && c != u'&'; c = Peek()) {
        if (StartsWith(u"]]>"))
            Fail(u"]]> in text");
        Char();
    }
}

char32_t TXMLScanner::CharReference()
{
    const bool isHex = Accept(u"x");
    const char32_t base = isHex ? 16 : 10;
    char32_t value = 0;
    const std::size_t start = FAt;
    for (; !AtEnd() && static_cast<char32_t>(HexValue(Peek())) < base; ++FAt)
        value = std::min<char32_t>(value * base + static_cast<char32_t>(HexValue(Peek())), 0x110000);
    if (FAt == start)
        Fail(u"digits expected in a character reference");
    Expect(u";");
    if (!IsXMLChar(value))
        Fail(u"reference to a character that XML does not allow");
    return value;
}

void TXMLScanner::Fail(std::u16string_view reason) const
{
    const std::u16string_view read = FDocument.substr(0, Place());
    const auto line = static_cast<std::int32_t>(std::count(read.begin(), read.end(), u'\n')) + 1;
    const std::size_t lineStart = read.rfind(u'\n') + 1; // 0 on the first line
    throw EHtXML(Format(u"XML is not well-formed at line %d, column %d: %s",
        {line, static_cast<std::int32_t>(read.size() - lineStart) + 1, reason}));
}

void TXMLScanner::Fail(std::u16string_view reason, std::u16string_view name) const
{
    Fail(Format(reason, {name}));
}

}
