// Declarations of style sheets.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/css_parser.h>

#include <hearth/foundation/pointer_dictionary.h>
#include <hearth/styling/css/value_prepare_p.h>

#include <cstddef>
#include <span>

namespace ht {

namespace {

/// From so many declarations on a rule gets a dictionary of them.
constexpr std::int32_t kLongRule = 24;

constexpr std::int32_t kNameOffset = offsetof(TCSSValue, NameToken) + offsetof(TCSSToken, Name);

void Drop(TCSSValue& value)
{
    value.Tokens.Clear();
    value.NameToken.CType = ctUnknown;
}

bool IsDropped(const TCSSValue& value)
{
    return value.NameToken.CType == ctUnknown;
}

/// False when a calc() among them is longer than the limit.
bool CalcsFit(std::span<const TCSSToken> tokens, std::int32_t limit)
{
    const auto most = static_cast<std::size_t>(limit);
    if (limit == 0 || tokens.size() <= most)
        return true;
    for (std::size_t i = 0; i < tokens.size();) {
        const std::size_t end = detail::IsCalc(tokens[i]) ? detail::IndexBehindFunction(tokens, i) : i + 1;
        if (end - i > most)
            return false;
        i = end;
    }
    return true;
}

}

TCSSParser::TCSSParser(const String& Text, bool Numbers)
    : FTokenizer(Text, Numbers)
{
}

TCSSParser::~TCSSParser() = default;

TCSSTokens TCSSParser::ParseValue()
{
    TCSSTokens tokens = TCSSTokens::Taking({FList.data(), FList.size()});
    ClearList();
    return tokens;
}

void TCSSParser::SkipSpace()
{
    while (IsAt(ctSpace))
        NextToken();
}

void TCSSParser::SkipValue()
{
    while (!FTokenizer.Eof && Token().CType != ctBlockEnd && Token().CType != ctSemicolon)
        NextToken();
}

void TCSSParser::ReadSectionValues()
{
    ClearValues();
    for (TCSSValue& value : CurrentSection->Values)
        FValues.Add(std::move(value));
    NextToken();
    bool goesOn = true;
    while (goesOn && !FTokenizer.Eof) {
        switch (Token().CType) {
        case ctIdent:
            AddValue();
            break;
        case ctBlockEnd:
        case ctCDC:
            goesOn = false;
            break;
        case ctCDO:
        case ctComment:
        case ctSemicolon:
        case ctSlash:
        case ctSpace:
            NextToken();
            break;
        case ctDelimiter:
            // "*zoom: 1" was once for one browser alone.
            if (Token().Name == u"*")
                SkipValue();
            else
                NextToken();
            break;
        case ctUnknown:
            throw ECSSParserError(u"Unknown token type"_s);
        default:
            SkipValue();
        }
    }
    StoreValues();
}

void TCSSParser::AddValue()
{
    TCSSToken name = std::move(FTokenizer.Token);
    NextToken();
    SkipSpace();
    if (!IsAt(ctColon))
        return;
    bool important = false;
    ClearList();
    if (!ReadValueTokens(important) || FList.IsEmpty() || !CalcsFit({FList}, Limits.CalcTokens))
        return;
    TCSSValue& value = FValues.Emplace();
    value.NameToken = std::move(name);
    value.Important = important;
    value.Section = CurrentSection.get();
    value.Tokens = ParseValue();
    if (PrepareValue(value, *CurrentSection))
        ReplaceFormer(value);
    else
        FValues.DeleteLast();
}

/// From the colon to the ";" or "}", which stays. False for what no value can hold.
bool TCSSParser::ReadValueTokens(bool& important)
{
    for (NextToken(); !FTokenizer.Eof; NextToken()) {
        switch (Token().CType) {
        case ctBlockEnd:
        case ctCDO:
        case ctSemicolon:
            return true;
        case ctAtKeyword:
        case ctBlockStart:
        case ctCDC:
            SkipValue();
            return false;
        case ctSpace:
        case ctComment:
            break;
        case ctDelimiter:
            if (Token().Name == u"!") {
                NextToken();
                if (FTokenizer.Eof)
                    return true;
                if (SameText(Token().Name, u"important")) {
                    important = true;
                    break;
                }
            }
            AddToken();
            break;
        default:
            AddToken();
        }
    }
    return true;
}

void TCSSParser::ReplaceFormer(TCSSValue& value)
{
    if (!FNames && FValues.Length() == kLongRule) {
        FNames = std::make_unique<THtPointerDictionary>(2 * kLongRule, kNameOffset);
        for (TCSSValue& each : FValues) {
            if (!IsDropped(each) && &each != &value)
                FNames->AddPointer(&each);
        }
    }
    TCSSValue* former = FindFormer(value);
    if (FNames)
        FNames->AddPointer(&value);
    if (former)
        Drop(*former);
}

TCSSValue* TCSSParser::FindFormer(const TCSSValue& value) const
{
    const String& name = value.NameToken.Name;
    if (FNames)
        return static_cast<TCSSValue*>(FNames->Get(name));
    for (TCSSValue& each : FValues) {
        if (&each != &value && each.NameToken.Name == name && !IsDropped(each))
            return &each;
    }
    return nullptr;
}

void TCSSParser::ClearValues() noexcept
{
    FNames.reset();
    while (!FValues.IsEmpty())
        FValues.DeleteLast();
}

void TCSSParser::StoreValues()
{
    std::int32_t count = 0;
    for (const TCSSValue& value : FValues)
        count += IsDropped(value) ? 0 : 1;
    TCSSValues values;
    values.Reserve(count);
    for (TCSSValue& value : FValues) {
        if (!IsDropped(value))
            values.Emplace(std::move(value));
    }
    CurrentSection->Values = std::move(values);
    ClearValues();
}

}
