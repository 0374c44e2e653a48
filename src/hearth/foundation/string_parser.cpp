// Moving the cursor and splitting text at separators.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/string_parser.h>

#include <hearth/runtime/simd_p.h>

#include <algorithm>

namespace ht {

namespace {

bool IsIdeographic(char16_t c)
{
    const unsigned high = c >> 8U;
    return high == 0x30 || (high >= 0x4E && high <= 0x9F) || high == 0xF9 || high == 0xFA;
}

/// Marks that must not begin a line.
bool IsClosingMark(char16_t c)
{
    static constexpr std::u16string_view kMarks = u"!),.:;?]}，、。—ˇЁ〃々～…’”〕〉》」』〗】";
    return c != 0 && kMarks.find(c) != std::u16string_view::npos;
}

bool EndsWordPiece(char16_t c)
{
    return c == u' ' || c == u'-' || c == u'/' || IsIdeographic(c);
}

bool EndsWord(char16_t c)
{
    static constexpr std::u16string_view kEnds = u" \r\n\t,()";
    return kEnds.find(c) != std::u16string_view::npos;
}

String TextBetween(const char16_t* from, const char16_t* to)
{
    return String(std::u16string_view(from, static_cast<std::size_t>(to - from)));
}

}

void TStringParser::Init(const String& A)
{
    s = A;
    FStart = s.IsEmpty() ? &fNull : s.data();
    p = FStart;
    pend = p + s.Length();
}

void TStringParser::Skip(std::int32_t n) noexcept
{
    p += std::clamp<std::ptrdiff_t>(n, Start() - p, pend - p);
}

void TStringParser::Skipto(char16_t c) noexcept
{
    p = simd::FindAny(p, pend, c);
}

void TStringParser::SkipEndBlanks()
{
    const char16_t* last = pend;
    while (last > Start() && (last[-1] == u'\n' || last[-1] == u'\r' || last[-1] == u' '))
        --last;
    if (last == pend)
        return;
    const std::int32_t offset = Offset();
    Init(TextBetween(Start(), last));
    Skip(offset);
}

std::int32_t TStringParser::Line() const noexcept
{
    return static_cast<std::int32_t>(std::count(Start(), p, u'\n'));
}

std::int32_t TStringParser::CharPos(char16_t c) const noexcept
{
    const char16_t* found = simd::FindAny(p, pend, c);
    return found == pend ? 0 : static_cast<std::int32_t>(found - p) + 1;
}

bool TStringParser::StartsWith(std::u16string_view text) const noexcept
{
    if (text.empty() || text.size() > static_cast<std::size_t>(pend - p))
        return false;
    return std::equal(text.begin(), text.end(), p, [](char16_t a, char16_t b) { return a == FoldAscii(b); });
}

void TStringParser::ReadWord(String& result, bool DoSkipBlanks)
{
    if (DoSkipBlanks)
        SkipBlanks();
    const char16_t* from = p;
    if (p < pend)
        p = std::find_if(p + 1, pend, EndsWord);
    result = TextBetween(from, p);
}

bool TStringParser::ReadParam(String& result)
{
    SkipBlanks();
    result = String();
    if (p >= pend)
        return false;
    const char16_t c = *p;
    if (c == u',' || c == u'(' || c == u')') {
        ++p;
        if (c == u')')
            return false;
    }
    const char16_t* from = p;
    p = simd::FindAny(p, pend, u',', u'(', u')');
    result = TextBetween(from, p);
    return true;
}

void TStringParser::ReadtoChar(char16_t c, String& result, bool DoSkipBlanks)
{
    if (DoSkipBlanks)
        SkipBlanks();
    result = String();
    if (p >= pend)
        return;
    const char16_t* from = p;
    while (p < pend && *p == c)
        ++p;
    p = simd::FindAny(p, pend, c);
    const char16_t* last = p;
    if (DoSkipBlanks) {
        while (last > from && last[-1] <= u' ')
            --last;
        Next();
    }
    result = TextBetween(from, last);
}

void TStringParser::ReadtoChars(const TByteChars& sc, String& result)
{
    SkipBlanks();
    const char16_t* from = p;
    p = std::find_if(p, pend, [&sc](char16_t c) { return c < 256 && sc[c]; });
    result = TextBetween(from, p);
}

void TStringParser::ReadtoWordBreak(String& result)
{
    const char16_t* from = p;
    if (p < pend && *p != u' ' && EndsWordPiece(*p))
        ++p;
    p = std::find_if(p, pend, [](char16_t c) { return c != u' '; });
    p = std::find_if(p, pend, EndsWordPiece);
    // The closing mark goes along with the ideograph in front of it, though some marks count as
    // ideographs themselves.
    if (pend - p > 1 && IsIdeographic(*p) && IsClosingMark(p[1]))
        p = std::find_if(p + 2, pend, EndsWordPiece);
    result = TextBetween(from, p);
}

void TStringParser::ReadLn(String& result)
{
    const char16_t* from = p;
    p = simd::FindAny(p, pend, u'\r', u'\n');
    result = TextBetween(from, p);
    if (p >= pend)
        return;
    const bool carriageReturn = *p == u'\r';
    ++p;
    if (carriageReturn && p < pend && *p == u'\n')
        ++p;
}

}
