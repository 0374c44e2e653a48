// Tokens as text that reads back as the same tokens.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/token_text_p.h>

#include <hearth/runtime/text_number.h>
#include <hearth/styling/css/css_tokenizer.h>

namespace ht {

namespace {

/// A name of no units, as only a line that goes on makes one.
constexpr std::u16string_view kEmptyName = u"\\\r";

void WriteEscaped(TFastString& text, char16_t unit)
{
    text.AddChar(u'\\').Add(IntToHex(unit, 1).ToLowerAscii()).AddChar(u' ');
}

/// The units behind the first of a name, or all of one that "#" or "@" begins.
void WriteNameUnits(TFastString& text, std::u16string_view name)
{
    for (const char16_t unit : name) {
        if (IsCSSNameUnit(unit))
            text.AddChar(unit);
        else
            WriteEscaped(text, unit);
    }
}

bool StartsLikeNumber(std::u16string_view name)
{
    return IsAsciiDigit(name[0]) || (name[0] == u'-' && name.size() > 1 && IsAsciiDigit(name[1]));
}

void WriteName(TFastString& text, std::u16string_view name)
{
    if (name.empty()) {
        text.Add(kEmptyName);
        return;
    }
    const bool escapesFirst = StartsLikeNumber(name);
    if (escapesFirst)
        WriteEscaped(text, name[0]);
    WriteNameUnits(text, name.substr(escapesFirst ? 1 : 0));
}

/// A number with an unknown unit is a word as it stands.
bool IsWordByItself(const String& name)
{
    TCSSTokenizer tokenizer(name);
    tokenizer.NextToken();
    return tokenizer.Token.CType == ctIdent && tokenizer.Token.Name == name;
}

void WriteWord(TFastString& text, const String& name)
{
    if (!name.IsEmpty() && StartsLikeNumber(name) && IsWordByItself(name))
        text.Add(name);
    else
        WriteName(text, name);
}

void WriteString(TFastString& text, std::u16string_view content)
{
    const char16_t quote = content.find(u'"') == std::u16string_view::npos ? u'"' : u'\'';
    text.AddChar(quote);
    for (const char16_t unit : content) {
        if (unit == quote || unit == u'\r')
            WriteEscaped(text, unit);
        else if (unit == u'\\')
            text.Add(u"\\\\");
        else
            text.AddChar(unit);
    }
    text.AddChar(quote);
}

/// Addresses know no escapes. One that has both quotes was written without any.
void WriteAddress(TFastString& text, std::u16string_view address)
{
    const auto lacks = [address](char16_t quote) { return address.find(quote) == std::u16string_view::npos; };
    const std::u16string_view quote = lacks(u'\'') ? u"'" : lacks(u'"') ? u"\"" : u"";
    text.Add(u"url(").Add(quote).Add(address).Add(quote).AddChar(u')');
}

/// Control units, which a blank in front of them would swallow.
bool IsControl(const TCSSToken& token)
{
    return token.CType == ctDelimiter && token.Name.Length() == 1 && token.Name[0] < u' ';
}

bool IsMark(const TCSSToken& token, std::u16string_view mark)
{
    return token.CType == ctDelimiter && token.Name == mark;
}

/// Tokens that come into a value only behind a "!", which is lost.
bool NeedsBang(const TCSSToken& token)
{
    switch (token.CType) {
    case ctAtKeyword:
    case ctBlockStart:
    case ctBlockEnd:
    case ctCDO:
    case ctCDC:
    case ctComment:
    case ctSemicolon:
    case ctSpace:
        return true;
    default:
        return IsMark(token, u"!");
    }
}

/// True when a name or "(" right behind the token would belong to it.
bool RunsOn(const TCSSToken& token)
{
    switch (token.CType) {
    case ctIdent:
    case ctHash:
    case ctAtKeyword:
    case ctNumber:
    case ctPercentage:
    case ctDimension:
        return true;
    case ctSpace:
        return token.Name.IsEmpty();
    default:
        return false;
    }
}

/// What separates two tokens of a value.
std::u16string_view Between(const TCSSToken& former, const TCSSToken& token)
{
    const bool behindBlanks = former.CType == ctSpace && !former.Name.IsEmpty();
    if (IsControl(token))
        return former.CType == ctSpace ? u"/**/" : u"";
    if (behindBlanks || NeedsBang(token))
        return u"";
    if (token.CType == ctURI || token.CType == ctOpenPar)
        return RunsOn(former) ? u" " : u"";
    // One unit between a number and "%" counts for nothing.
    if (former.CType == ctNumber && IsMark(token, u"%"))
        return u"  ";
    return detail::StandsClose(token.CType) ? u"" : u" ";
}

}

bool detail::StandsClose(TCSSTokenType type)
{
    switch (type) {
    case ctBlockStart:
    case ctBlockEnd:
    case ctColon:
    case ctSemicolon:
    case ctComma:
    case ctOpenPar:
    case ctClosePar:
    case ctOpenBr:
    case ctCloseBr:
        return true;
    default:
        return false;
    }
}

void detail::WriteToken(TFastString& text, const TCSSToken& token)
{
    switch (token.CType) {
    case ctIdent:
        WriteWord(text, token.Name);
        break;
    case ctFunction:
        WriteName(text, token.Name);
        break;
    case ctHash:
        text.AddChar(u'#');
        WriteNameUnits(text, token.Name);
        break;
    case ctAtKeyword:
        text.AddChar(u'@');
        WriteNameUnits(text, token.Name.View().substr(1));
        break;
    case ctString:
        WriteString(text, token.Name);
        break;
    case ctURI:
        WriteAddress(text, token.Name);
        break;
    case ctComment:
        text.Add(u"/*").Add(token.Name).Add(u"*/");
        break;
    case ctSpace:
        text.Add(token.Name.IsEmpty() ? kEmptyName : token.Name.View());
        break;
    default:
        text.Add(token.Name);
    }
}

void detail::WriteExactValue(TFastString& text, const TCSSValue& value)
{
    WriteWord(text, value.NameToken.Name);
    text.AddChar(u':');
    const TCSSToken* former = nullptr;
    for (const TCSSToken& token : value.Tokens.Span()) {
        if (former)
            text.Add(Between(*former, token));
        else if (token.CType == ctHash)
            text.AddChar(u' ');
        if (NeedsBang(token))
            text.AddChar(u'!');
        WriteToken(text, token);
        former = &token;
    }
    text.Add(value.Important ? u"!important;" : u";");
}

}
