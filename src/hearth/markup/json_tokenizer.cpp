// Character classes of JSON, and the readers of strings, words and numbers.
// SPDX-License-Identifier: MIT
#include <hearth/markup/json_tokenizer.h>

#include <hearth/runtime/simd_p.h>
#include <hearth/runtime/text_format.h>

#include <array>

namespace ht {

namespace {

using simd::Units8;

/// Quotes, blanks, numbers and the begin of words have a class of their own; a mark's class is its type.
enum TJSONClass : std::uint8_t {
    jcUnknown = jtUnknown,
    jcWord = jtIdent,
    jcString = jtString,
    jcSpace = jtSpace,
    jcNumber = jtInt,
};

constexpr std::array<std::uint8_t, 256> kClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    const auto set = [&classes](std::u16string_view characters, std::uint8_t charClass) {
        for (char16_t c : characters)
            classes[c] = charClass;
    };
    set(u"abcdefghijklmnopqrstuvwxyz_", jcWord);
    set(u"\"'", jcString);
    set(u"\t\n\r ", jcSpace);
    set(u"0123456789-.", jcNumber);
    set(u",", jtComma);
    set(u"{", jtObjectStart);
    set(u"}", jtObjectEnd);
    set(u"[", jtArrayStart);
    set(u"]", jtArrayEnd);
    set(u":", jtColon);
    return classes;
}();

constexpr std::uint8_t ClassOf(char16_t c) noexcept
{
    return c < kClasses.size() ? kClasses[c] : std::uint8_t{jcUnknown};
}

constexpr bool IsInWord(char16_t c) noexcept
{
    return c >= 0x100 || IsAsciiDigit(c) || IsAsciiLower(c) || IsAsciiUpper(c) || c == u'-' || c == u'_';
}

constexpr bool IsControl(char16_t c) noexcept
{
    return c < u' ';
}

std::u16string_view Slice(const char16_t* from, const char16_t* to)
{
    return {from, static_cast<std::size_t>(to - from)};
}

/// The first unit in [p, end) that is the quote, a backslash or a control character, or `end`.
const char16_t* FindStringStop(const char16_t* p, const char16_t* end, char16_t quote) noexcept
{
    const Units8 quotes = Units8::Fill(quote);
    const Units8 slashes = Units8::Fill(u'\\');
    for (; end - p >= Units8::kCount; p += Units8::kCount) {
        const Units8 units = Units8::Load(p);
        const std::uint64_t mask =
            units.Equal(quotes).Or(units.Equal(slashes)).Or(units.InRange(0, 0x1F)).Mask();
        if (mask != 0)
            return p + Units8::FirstOf(mask);
    }
    while (p < end && *p != quote && *p != u'\\' && !IsControl(*p))
        ++p;
    return p;
}

int HexDigit(char16_t c) noexcept
{
    if (IsAsciiDigit(c))
        return c - u'0';
    const char16_t lower = FoldAscii(c);
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

}

THtJSONTokenizer::THtJSONTokenizer(const String& s)
    : FParser(s)
{
    FParser.RaiseException = true;
    FParser.SkipBlanks();
}

bool THtJSONTokenizer::NextToken()
{
    if (ClassOf(*FParser.p) != jcSpace)
        return NextNSToken();
    const char16_t* const from = FParser.p;
    FParser.SkipBlanks();
    SetBlanks(from);
    return !FEof;
}

bool THtJSONTokenizer::NextNSToken()
{
    if (ClassOf(*FParser.p) == jcSpace) {
        const char16_t* const from = FParser.p;
        FParser.SkipBlanks();
        if (FParser.Empty())
            SetBlanks(from);
    }
    FEof = FParser.Empty();
    if (!FEof)
        ReadToken();
    return !FEof;
}

void THtJSONTokenizer::NextRequiredToken()
{
    if (!NextNSToken())
        throw EHtJSONParserException(u"Token expected"_s);
}

void THtJSONTokenizer::SetBlanks(const char16_t* from)
{
    const std::u16string_view blanks = Slice(from, FParser.p);
    FToken.CType = jtSpace;
    FToken.Name = String(blanks);
    FToken.EndPos = FParser.Offset();
    FToken.StartPos = FToken.EndPos - static_cast<std::int32_t>(blanks.size());
    FEof = FParser.Empty();
}

void THtJSONTokenizer::ReadToken()
{
    FToken.StartPos = FParser.Offset();
    switch (ClassOf(*FParser.p)) {
    case jcString:
        FToken.CType = jtString;
        FToken.Name = String(ReadQuoted());
        break;
    case jtComma:
        ReadMark(jtComma, u","_s);
        break;
    case jcNumber:
        ReadNumber();
        break;
    case jcWord:
        ReadIdent();
        break;
    case jtColon:
        ReadMark(jtColon, u":"_s);
        break;
    case jtObjectStart:
        ReadMark(jtObjectStart, u"{"_s);
        break;
    case jtObjectEnd:
        ReadMark(jtObjectEnd, u"}"_s);
        break;
    case jtArrayStart:
        ReadMark(jtArrayStart, u"["_s);
        break;
    case jtArrayEnd:
        ReadMark(jtArrayEnd, u"]"_s);
        break;
    default:
        FToken.Name = String(ReadWord());
        FToken.CType = jtUnknown;
        break;
    }
    FToken.EndPos = FParser.Offset();
}

void THtJSONTokenizer::ReadMark(THtJSONTokenType type, const String& mark)
{
    FToken.CType = type;
    FToken.Name = mark;
    ++FParser.p;
}

char16_t THtJSONTokenizer::PassRealBlanks() noexcept
{
    if (ClassOf(*FParser.p) == jcSpace)
        FParser.SkipBlanks();
    return *FParser.p;
}

bool THtJSONTokenizer::PassColon() noexcept
{
    if (PassBlanks() != u':')
        return false;
    ++FParser.p;
    return true;
}

void THtJSONTokenizer::ReadNumber()
{
    const char16_t* const from = FParser.p;
    const bool isInteger = FParser.ReadIntOrFloat(FToken.IntValue, FToken.FloatValue);
    FToken.CType = isInteger ? jtInt : jtFloat;
    FToken.Name = String(Slice(from, FParser.p));
}

/// The unit at the cursor, whatever it is, and what may go on a word.
std::u16string_view THtJSONTokenizer::ReadWord()
{
    const char16_t* const from = FParser.p++;
    while (IsInWord(*FParser.p))
        ++FParser.p;
    return Slice(from, FParser.p);
}

void THtJSONTokenizer::ReadIdent()
{
    const std::u16string_view word = ReadWord();
    FToken.CType = jtValue;
    if (word == u"true")
        FToken.Name = u"true"_s;
    else if (word == u"false")
        FToken.Name = u"false"_s;
    else if (word == u"null")
        FToken.Name = u"null"_s;
    else {
        FToken.CType = jtIdent;
        FToken.Name = String(word);
    }
}

bool THtJSONTokenizer::ReadStringView(std::u16string_view& text)
{
    if (ClassOf(PassBlanks()) != jcString)
        return false;
    FToken.CType = jtString;
    FToken.StartPos = FParser.Offset();
    text = ReadQuoted();
    FToken.EndPos = FParser.Offset();
    return true;
}

/// The text of a string. Lifetime: until the next string is read. Most strings hold no escape and are one
/// stretch of the text.
std::u16string_view THtJSONTokenizer::ReadQuoted()
{
    const char16_t* const opening = FParser.p;
    const char16_t* const stop = FindStringStop(opening + 1, FParser.pend, *opening);
    if (stop == FParser.pend || *stop != *opening)
        return ReadEscaped(opening, stop);
    FParser.p = stop + 1;
    return Slice(opening + 1, stop);
}

/// A string that does not end at its first stop.
std::u16string_view THtJSONTokenizer::ReadEscaped(const char16_t* opening, const char16_t* stop)
{
    FBuffer.clear();
    FParser.p = opening + 1;
    for (;;) {
        FBuffer.append(FParser.p, stop);
        FParser.p = stop;
        if (stop == FParser.pend)
            throw EHtJSONParserException(u"Unterminated string"_s);
        ++FParser.p;
        if (*stop == *opening)
            return FBuffer;
        if (*stop != u'\\') {
            throw EHtJSONParserException(
                Format(u"Unescaped control symbol #%d in %s", {std::int32_t{*stop}, Slice(opening, stop)}));
        }
        FBuffer.push_back(Escape());
        stop = FindStringStop(FParser.p, FParser.pend, *opening);
    }
}

/// The unit that stands behind a backslash, which the cursor has passed.
char16_t THtJSONTokenizer::Escape()
{
    constexpr std::u16string_view kMarks = u"nbfrt\\\"/";
    constexpr std::u16string_view kUnits = u"\n\b\f\r\t\\\"/";
    const char16_t mark = *FParser.p;
    const std::size_t found = kMarks.find(mark);
    if (found == std::u16string_view::npos)
        return NumberEscape(mark);
    ++FParser.p;
    return kUnits[found];
}

/// "x" and two units, which count as 0 where they are no digits; "u" and four digits.
char16_t THtJSONTokenizer::NumberEscape(char16_t mark)
{
    if (mark != u'x' && mark != u'u')
        RaiseEscape();
    FParser.Next();
    unsigned code = 0;
    for (int count = mark == u'x' ? 2 : 4; count > 0; --count) {
        const int digit = HexDigit(*FParser.p);
        if (digit < 0 && mark == u'u')
            RaiseEscape();
        code = code << 4U | static_cast<unsigned>(digit < 0 ? 0 : digit);
        FParser.Next();
    }
    return static_cast<char16_t>(code);
}

void THtJSONTokenizer::RaiseEscape() const
{
    throw EHtJSONParserException(Format(u"Incorrect unicode escape at line %d", {FParser.Line()}));
}

}
