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

bool IsPlain(std::u16string_view name)
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
    , Order(OrderOf(name))
    , FIsPlain(IsPlain(name))
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

bool THtJSONParser::NextName()
{
    if (!FTokenizer)
        return false;
    std::u16string_view text;
    if (!FTokenizer->ReadStringView(text))
        return FTokenizer->NextNSToken();
    FFoundName = &Intern(text);
    FTokenizer->FToken.Name = FFoundName->Name;
    return true;
}

bool THtJSONParser::NextGuess(THtMemberName* guess, THtJSONTokenType& type)
{
    if (!FTokenizer || !guess || !guess->FIsPlain)
        return false;
    const auto read = FTokenizer->ReadPlainMember(guess->Name);
    if (read == THtJSONTokenizer::pmNone)
        return false;
    FName = guess;
    type = read == THtJSONTokenizer::pmString ? jtIdent : ReadValue();
    return true;
}

THtJSONTokenType THtJSONParser::NextNameValue()
{
    if (!FTokenizer)
        RaiseNameExpected();
    FName = &TokenName();
    if (!FTokenizer->PassColon() && (!FTokenizer->NextNSToken() || FTokenizer->Type() != jtColon))
        RaiseNameExpected();
    return ReadValue();
}

/// Reads the first token behind a ":".
THtJSONTokenType THtJSONParser::ReadValue()
{
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
    // The entry keeps its text, so the units of no other token can be the same.
    if (FFoundName && FFoundName->Name.IsSame(token.Name))
        return *FFoundName;
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
