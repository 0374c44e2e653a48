// Names and values of members, and the names that were met.
// SPDX-License-Identifier: MIT
#include <hearth/markup/json_parser.h>

#include <memory>

namespace ht {

namespace {

constexpr std::int32_t kNamesCapacity = 256;

/// A name as a tag, the object that a name of the list carries.
class TMemberTag : public TObject {
public:
    explicit TMemberTag(const String& name)
        : Tag(name)
    {
    }

    THtTagName Tag;
};

[[noreturn]] void RaiseNameExpected()
{
    throw EHtJSONParserException(u"Name expected"_s);
}

[[noreturn]] void RaiseValueExpected()
{
    throw EHtJSONParserException(u"Value expected"_s);
}

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

THtJSONTokenType THtJSONParser::NextNameValue()
{
    if (!FTokenizer)
        RaiseNameExpected();
    THtJSONTokenizer& tokens = *FTokenizer;
    FName = &TokenName();
    Name = FName->Name;
    if (!tokens.PassColon() && (!tokens.NextNSToken() || tokens.Type() != jtColon))
        RaiseNameExpected();
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

const THtTagName& THtJSONParser::TagName()
{
    static const THtTagName none;
    if (!FName)
        return none;
    if (!FName->Object) {
        FName->Object = new TMemberTag(FName->Name);
        FName->OwnsObject = true;
    }
    return static_cast<const TMemberTag*>(FName->Object)->Tag;
}

/// The entry of the name at the current token.
THtNameObjectPair& THtJSONParser::TokenName()
{
    const THtJSONToken& token = FTokenizer->Token();
    if (token.CType != jtIdent && token.CType != jtString)
        RaiseNameExpected();
    // The entry keeps its text, so the units of no other token can be the same.
    if (FFoundName && FFoundName->Name.IsSame(token.Name))
        return *FFoundName;
    return Intern(token.Name);
}

THtNameObjectPair& THtJSONParser::Intern(std::u16string_view name)
{
    const std::uint32_t hash = FNames.HashOf(name);
    if (TObject* found = FNames.GetHashed(hash, name))
        return static_cast<THtNameObjectPair&>(*found);
    auto added = std::make_unique<THtNameObjectPair>(String(name), nullptr, false);
    FNames.AddHashed(hash, added->Name, added.get());
    return *added.release();
}

}
