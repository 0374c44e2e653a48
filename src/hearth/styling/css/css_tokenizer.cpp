// Words, strings, addresses and comments of style sheets.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/css_tokenizer.h>

#include <hearth/foundation/hash_table.h>
#include <hearth/runtime/text_case.h>

#include <array>

namespace ht {

namespace {

/// What a single unit says as a token's name, without memory for each.
template <std::size_t... Units> consteval auto MakeUnitNames(std::index_sequence<Units...>)
{
    const auto nameOf = [](std::size_t unit) {
        detail::StaticName name(u"?");
        name.units[0] = static_cast<char16_t>(unit);
        return name;
    };
    return std::array{nameOf(Units)...};
}
constexpr auto kUnitNames = MakeUnitNames(std::make_index_sequence<256>{});

/// Beyond the last character there is nothing to put together: the low bits stand for themselves, as halves
/// of pairs do.
void AppendCode(String& name, std::int32_t code)
{
    constexpr std::int32_t kLastCode = 0x10FFFF;
    if (code > 0xFFFF && code <= kLastCode) {
        const std::int32_t rest = code - 0x10000;
        name += static_cast<char16_t>(0xD800 + (rest >> 10));
        name += static_cast<char16_t>(0xDC00 + (rest & 0x3FF));
        return;
    }
    name += static_cast<char16_t>(code & 0xFFFF);
}

/// Gathers a name out of runs of plain units and escapes. A name without escapes costs one copy.
class NameBuilder {
public:
    NameBuilder(TCSSTokenizer& tokenizer, TStringParser& reader, String& name)
        : FTokenizer(tokenizer)
        , FReader(reader)
        , FName(name)
        , FStart(reader.p)
    {
    }

    void Flush()
    {
        const std::u16string_view run(FStart, static_cast<std::size_t>(FReader.p - FStart));
        if (FName.IsEmpty())
            FName = String(run);
        else
            FName += run;
    }
    /// At a backslash. False when the text ends behind it.
    bool TakeEscape()
    {
        Flush();
        ++FReader.p;
        const bool goesOn = !FReader.Empty();
        if (goesOn)
            TakeEscaped();
        FStart = FReader.p;
        return goesOn;
    }

private:
    void TakeEscaped()
    {
        const char16_t unit = *FReader.p;
        if (unit == u' ' || unit == u'"' || unit == u':') {
            FName += unit;
            ++FReader.p;
        } else if (unit == u'\r') {
            // A line that goes on; LF alone is no line end here.
            if (FReader.Next() == u'\n')
                FReader.Next();
        } else {
            AppendCode(FName, FTokenizer.Escape());
        }
    }

    TCSSTokenizer& FTokenizer;
    TStringParser& FReader;
    String& FName;
    const char16_t* FStart;
};

}

/// The names that were read last. Sheets say the same few words over and over: what is here costs no memory.
class TCSSTokenizer::TNameCache {
public:
    const String& NameOf(std::u16string_view text)
    {
        String& name = FNames[SlotOf(text)];
        if (name.size() != text.size() || !detail::SameUnits(name.data(), text.data(), text.size()))
            name = String(text);
        return name;
    }

private:
    static constexpr unsigned kSlotBits = 9;

    /// Looks at the ends and at the middle alone.
    static std::size_t SlotOf(std::u16string_view text) noexcept
    {
        const std::size_t size = text.size();
        if (size == 0)
            return 0;
        std::uint32_t hash = static_cast<std::uint32_t>(size);
        hash = hash * 31 + text[0];
        hash = hash * 31 + text[size / 2];
        hash = hash * 31 + text[size - 1];
        hash = hash * 31 + text[size - 1 - size / 4];
        constexpr std::uint32_t kGolden = 0x9E3779B9;
        return hash * kGolden >> (32 - kSlotBits);
    }

    std::array<String, std::size_t{1} << kSlotBits> FNames;
};

TCSSTokenizer::TCSSTokenizer(const String& Text, bool ReadNumbers)
    : FReader(Text)
    , FReadNumbers(ReadNumbers)
{
    constexpr std::int32_t kLongText = 2048; // units that pay for the making of a cache
    if (Text.Length() >= kLongText)
        FNames = std::make_unique<TNameCache>();
    FReader.SkipBlanks();
}

TCSSTokenizer::~TCSSTokenizer() = default;

String TCSSTokenizer::NameFrom(const char16_t* start)
{
    const std::u16string_view text(start, static_cast<std::size_t>(FReader.p - start));
    return FNames ? FNames->NameOf(text) : String(text);
}

void TCSSTokenizer::Next(TCSSTokenType type)
{
    const char16_t unit = FReader.GetCurrent();
    Token.CType = type;
    Token.Name =
        unit < kUnitNames.size() ? String::OfStatic(kUnitNames[unit]) : String(std::u16string_view(&unit, 1));
    FReader.Next();
}

bool TCSSTokenizer::NextToken()
{
    if (FReader.Empty()) {
        Eof = true;
        return false;
    }
    Token.StartPos = FReader.Pos();
    Token.Flags = 0;
    Token.Color = 0;
    Token.MUnit = muNone;
    if (FReadNumbers)
        Token.AsFloat = 0;
    const bool goesOn = ReadToken();
    Token.EndPos = FReader.Offset();
    return goesOn;
}

/// One case a first unit.
bool TCSSTokenizer::ReadToken()
{
    const char16_t unit = *FReader.p;
    switch (unit) {
    case u'\t':
    case u'\n':
    case u'\r':
    case u' ':
        return ReadSpace();
    case u'"':
    case u'\'':
        ReadString();
        break;
    case u'#':
        ReadHash();
        break;
    case u'@':
        ReadAt();
        break;
    case u'(':
        Next(ctOpenPar);
        break;
    case u')':
        Next(ctClosePar);
        break;
    case u',':
        Next(ctComma);
        break;
    case u':':
        Next(ctColon);
        break;
    case u';':
        Next(ctSemicolon);
        break;
    case u'[':
        Next(ctOpenBr);
        break;
    case u']':
        Next(ctCloseBr);
        break;
    case u'{':
        Next(ctBlockStart);
        break;
    case u'}':
        Next(ctBlockEnd);
        break;
    case u'-':
        if (IsAsciiDigit(FReader.p[1]) || FReader.p[1] == u'.')
            ReadNumber();
        else
            ReadIdent();
        break;
    case u'.':
        if (IsAsciiDigit(FReader.p[1]))
            ReadNumber();
        else
            Next(ctDelimiter);
        break;
    case u'/':
        if (FReader.p[1] == u'*')
            ReadComment();
        else
            Next(ctSlash);
        break;
    default:
        if (IsAsciiDigit(unit))
            ReadNumber();
        else if (IsCSSNameUnit(unit) || unit == u'\\')
            ReadIdent();
        else
            Next(ctDelimiter);
    }
    return true;
}

bool TCSSTokenizer::ReadSpace()
{
    const char16_t* start = FReader.p;
    FReader.SkipBlanks();
    const std::u16string_view run(start, static_cast<std::size_t>(FReader.p - start));
    // Lines are indented alike, so the last run is most often this one too.
    if (FLastSpace.View() != run)
        FLastSpace = String(run);
    Token.CType = ctSpace;
    Token.Name = FLastSpace;
    return !FReader.Empty();
}

void TCSSTokenizer::ReadIdent()
{
    Token.AsFloat = 0;
    Token.Color = 0;
    const char16_t* start = FReader.p;
    const char16_t* end = start;
    while (IsCSSNameUnit(*end)) // the text ends in U+0000, which is none
        ++end;
    if (*end == u'\\') {
        ReadEscapedIdent();
    } else {
        FReader.p = end;
        Token.Name = NameFrom(start);
    }
    Token.CType = Token.Name.IsEmpty() ? ctSpace : ctIdent;
    if (*FReader.p == u'(')
        ReadFunction();
}

void TCSSTokenizer::ReadEscapedIdent()
{
    Token.Name = String();
    NameBuilder name(*this, FReader, Token.Name);
    bool goesOn = true;
    while (goesOn && !FReader.Empty()) {
        if (IsCSSNameUnit(*FReader.p))
            ++FReader.p;
        else if (*FReader.p == u'\\')
            goesOn = name.TakeEscape();
        else
            break;
    }
    name.Flush();
}

/// Behind a name, at "(".
void TCSSTokenizer::ReadFunction()
{
    if (!SameText(Token.Name, u"url")) {
        Token.CType = ctFunction;
        Token.Name = Token.Name.ToLowerAscii();
        return;
    }
    FReader.Next();
    FReader.SkipBlanks();
    if (*FReader.p == u'"' || *FReader.p == u'\'') {
        ReadURI();
        FReader.Skipto(u')');
        FReader.Next();
    } else if (*FReader.p != u')') {
        const char16_t* start = FReader.p;
        FReader.Skipto(u')');
        Token.Name = String(TrimView({start, static_cast<std::size_t>(FReader.p - start)}));
        FReader.Next();
    }
    Token.CType = ctURI;
}

void TCSSTokenizer::ReadString()
{
    const char16_t quote = *FReader.p;
    FReader.Next();
    Token.CType = ctString;
    Token.Name = String();
    NameBuilder name(*this, FReader, Token.Name);
    bool goesOn = true;
    while (goesOn && !FReader.Empty() && *FReader.p != quote && *FReader.p != u'\r') {
        if (*FReader.p == u'\\')
            goesOn = name.TakeEscape();
        else
            ++FReader.p;
    }
    name.Flush();
    FReader.Next();
}

void TCSSTokenizer::ReadURI()
{
    const char16_t quote = *FReader.p;
    FReader.Next();
    const char16_t* start = FReader.p;
    FReader.Skipto(quote);
    Token.CType = ctString;
    Token.Name = String({start, static_cast<std::size_t>(FReader.p - start)});
    FReader.Next();
}

void TCSSTokenizer::ReadHash()
{
    FReader.Next();
    ReadIdent();
    Token.CType = ctHash;
}

void TCSSTokenizer::ReadAt()
{
    FReader.Next();
    ReadIdent();
    Token.CType = ctAtKeyword;
    Token.Name = u"@" + Token.Name;
}

void TCSSTokenizer::ReadComment()
{
    FReader.Skip(2);
    const std::u16string_view rest = FReader.Rest();
    const std::size_t end = rest.find(u"*/");
    const bool closed = end != std::u16string_view::npos;
    Token.CType = ctComment;
    // A comment that nobody closes loses its last unit.
    Token.Name = String(closed ? rest.substr(0, end) : rest.substr(0, rest.empty() ? 0 : rest.size() - 1));
    FReader.p = closed ? FReader.p + end + 2 : FReader.pend;
}

std::int32_t TCSSTokenizer::Escape()
{
    constexpr int kMostDigits = 6;
    std::int32_t code = 0;
    int digits = 0;
    for (int value = 0; digits < kMostDigits && (value = HexDigitValue(*FReader.p)) >= 0; ++digits) {
        code = code * 16 + value;
        ++FReader.p;
    }
    if (digits > 0) {
        if (*FReader.p == u' ')
            FReader.Next();
        return code;
    }
    const char16_t unit = *FReader.p;
    FReader.Next();
    return unit;
}

}
