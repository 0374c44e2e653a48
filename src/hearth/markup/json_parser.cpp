// Names and values of members, and the names that were met.
// SPDX-License-Identifier: MIT
#include <hearth/markup/json_parser.h>

#include <algorithm>
#include <memory>

namespace ht {

namespace {

constexpr std::int32_t kNamesCapacity = 256;

const String kNoName;

/// Units beyond the end count as 0, which is below all others.
std::uint64_t OrderOf(std::u16string_view name)
{
    std::uint64_t order = 0;
    for (std::size_t i = 0; i < 4; ++i)
        order = order << 16U | (i < name.size() ? name[i] : u'\0');
    return order;
}

bool IsPlainName(std::u16string_view name)
{
    return std::none_of(name.begin(), name.end(),
        [](char16_t c) { return c < u' ' || c == u'"' || c == u'\'' || c == u'\\'; });
}

[[noreturn]] void RaiseNameExpected()
{
    throw EHtJSONParserException(u"Name expected"_s);
}

[[noreturn]] void RaiseValueExpected()
{
    throw EHtJSONParserException(u"Value expected"_s);
}

}

THtMemberName::THtMemberName(const String& name)
    : THtNameObjectPair(name, nullptr, false)
    , IsPlain(IsPlainName(name))
    , Order(OrderOf(name))
{
}

const THtTagName& THtMemberName::Tag()
{
    return FTag ? *FTag : FTag.emplace(Name);
}

THtJSONParser::THtJSONParser(const String& s)
    : FNames(kNamesCapacity)
{
    if (!s.IsEmpty())
        FTokenizer.emplace(s);
}

THtJSONParser::~THtJSONParser() = default;

bool THtJSONParser::NextQuotedName()
{
    if (!FTokenizer)
        return false;
    TStringParser& cursor = FTokenizer->Parser();
    FTokenizer->PassBlanks();
    const char16_t* const from = cursor.p;
    std::u16string_view text;
    if (!FTokenizer->ReadStringView(text))
        return false;
    THtMemberName& name = Intern(text);
    if (!FTokenizer->PassColon()) {
        cursor.p = from;
        return false;
    }
    FName = &name;
    return true;
}

THtJSONTokenType THtJSONParser::NextNameValue()
{
    if (!FTokenizer)
        RaiseNameExpected();
    FName = &TokenName();
    if (!FTokenizer->PassColon() && (!FTokenizer->NextNSToken() || FTokenizer->Type() != jtColon))
        RaiseNameExpected();
    return NextValue();
}

THtJSONTokenType THtJSONParser::NextValue()
{
    if (!FTokenizer)
        RaiseValueExpected();
    THtJSONTokenizer& tokens = *FTokenizer;
    if (!tokens.NextNSToken())
        RaiseValueExpected();
    switch (tokens.Type()) {
    case jtIdent:
    case jtString:
    case jtValue:
        return jtIdent;
    case jtObjectStart:
    case jtArrayStart:
    case jtInt:
    case jtFloat:
        return tokens.Type();
    default:
        RaiseValueExpected();
    }
}

const String& THtJSONParser::Name() const noexcept
{
    return FName ? FName->Name : kNoName;
}

/// The entry of the name at the current token.
THtMemberName& THtJSONParser::TokenName()
{
    const THtJSONToken& token = FTokenizer->Token();
    if (token.CType != jtIdent && token.CType != jtString)
        RaiseNameExpected();
    return Intern(token.Name);
}

THtMemberName& THtJSONParser::Intern(std::u16string_view name)
{
    const std::uint32_t hash = FNames.HashOf(name);
    if (TObject* found = FNames.GetHashed(hash, name))
        return static_cast<THtMemberName&>(*found);
    auto added = std::make_unique<THtMemberName>(String(name));
    FNames.AddHashed(hash, added->Name, added.get());
    return *added.release();
}

}
