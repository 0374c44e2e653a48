// Values as text, as the library shows them.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/css_value.h>

#include <hearth/foundation/checksums.h>
#include <hearth/styling/css/token_text_p.h>

#include <algorithm>

namespace ht {

namespace {

constexpr std::int32_t kTextStep = 128; // units by which the text of a value grows

void WritePlainToken(TFastString& text, const TCSSToken& token, bool isFirst)
{
    if (token.CType == ctHash)
        text.Add(u" #").Add(token.Name);
    else if (token.CType == ctURI)
        text.Add(u"url('").Add(token.Name).Add(u"')");
    else if (token.CType == ctSpace)
        text.AddChar(u' ');
    else if (isFirst || detail::StandsClose(token.CType))
        text.Add(token.Name);
    else
        text.AddChar(u' ').Add(token.Name);
}

/// A blank inside of a word puts quotes around the whole, addresses excepted.
bool NeedsQuotes(const TCSSTokens& tokens)
{
    return !tokens.IsEmpty() && tokens[0].CType != ctURI
        && std::any_of(tokens.begin(), tokens.end(), [](const TCSSToken& token) {
               return token.CType == ctSpace || token.Name.View().find(u' ') != std::u16string_view::npos;
           });
}

void WritePlainValue(TFastString& text, const TCSSValue& value)
{
    const bool quoted = NeedsQuotes(value.Tokens);
    text.Add(value.NameToken.Name).AddChar(u':');
    if (quoted)
        text.AddChar(u'\'');
    for (const TCSSToken& token : value.Tokens.Span())
        WritePlainToken(text, token, &token == value.Tokens.begin());
    if (quoted)
        text.AddChar(u'\'');
    if (value.Important)
        text.Add(u"!important");
    else
        text.TrimTrailingBlanks();
    text.AddChar(u';');
}

}

void detail::WriteValue(TFastString& text, const TCSSValue& value, TCSSPrinting printing)
{
    if (printing == cpExact)
        WriteExactValue(text, value);
    else
        WritePlainValue(text, value);
}

String CSSValuetoString(const TCSSValue& Value, TCSSPrinting printing)
{
    TFastString text(kTextStep);
    detail::WriteValue(text, Value, printing);
    return text.GetAsString();
}

std::uint32_t TCSSValue::Hash() const
{
    std::uint32_t hash = 0;
    for (const TCSSToken& token : Tokens.Span())
        hash ^= CalcStrCRC32(token.Name);
    return hash;
}

}
