// Character classes and the choice of the reader for the next token.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_tokenizer.h>

#include <hearth/markup/html_chars_p.h>
#include <hearth/markup/html_error.h>
#include <hearth/runtime/simd_p.h>
#include <hearth/runtime/text_format.h>

namespace ht {

THTMLTokenizer::THTMLTokenizer(const String& s, bool XMLMode)
    : FParser(s)
    , FCaseSensitive(XMLMode)
    , FXMLMode(XMLMode)
{
    FParser.SkipBlanks();
}

void THTMLTokenizer::SetNameTables(THtNameTable* tagNames, THtNameTable* attributeNames) noexcept
{
    FTagNames = tagNames;
    FAttributeNames = attributeNames;
    FGuesses.fill(nullptr);
}

void THTMLTokenizer::Restart(const String& text)
{
    ReadLeftText(); // it stands in the old text
    FParser.Init(text);
}

bool THTMLTokenizer::NextToken(bool AllowString)
{
    if (FParser.Empty()) {
        FEof = true;
        return false;
    }
    ReadLeftText();
    FToken.StartPos = FParser.Offset();
    bool more = true;
    if (FToken.CType == htTagEnd && *FParser.p != u'<') {
        ReadText();
    } else {
        // Stray quotes between attributes disappear here.
        if (!AllowString && FInTag) {
            while (*FParser.p == u'"' || *FParser.p == u'\'')
                ++FParser.p;
        }
        more = ReadClass(FInTag ? ClassInTag(*FParser.p) : *FParser.p == u'<' ? ccTagStart : ccOther);
    }
    FToken.EndPos = FParser.Offset();
    return more;
}

bool THTMLTokenizer::ReadClass(unsigned charClass)
{
    switch (charClass) {
    case ccIdentifier:
        if (FToken.CType == htTagStart)
            ReadTag();
        else
            ReadIdent();
        return true;
    case ccSpace:
        return ReadSpace();
    case ccQuote:
        ReadString();
        return true;
    case ccTagStart:
        ReadLess();
        return true;
    case ccTagEnd:
        ReadTagEnd();
        return true;
    case ccTagClose:
        ReadTagClose();
        return true;
    case ccEquals:
        // The name keeps the text of the token before: an unquoted value with "=" in it repeats that piece.
        FToken.CType = htEq;
        FParser.Next();
        return true;
    default:
        if (!FInTag) {
            ReadText();
        } else if (FParser.Empty()) {
            FEof = true; // only quotes stood in front of the end
            return false;
        } else {
            ReadIdent();
        }
        return true;
    }
}

bool THTMLTokenizer::ReadSpace()
{
    const char16_t* from = FParser.p;
    FParser.SkipBlanks();
    FToken.CType = htSpace;
    if (FParser.p - from > 1)
        FToken.Name = String(std::u16string_view(from, static_cast<std::size_t>(FParser.p - from)));
    FEof = FParser.Empty();
    return !FEof;
}

void THTMLTokenizer::ReadTagClose()
{
    FToken.CType = htTagClose;
    FParser.Next();
    // Neither a closing tag nor a self-closed one opens a script or style body.
    FRawBody = rbNone;
}

void THTMLTokenizer::ReadTagEnd()
{
    FToken.CType = htTagEnd;
    FParser.Next();
    FInTag = false;
    if (FXMLMode)
        return;
    if (FRawBody == rbScript)
        ReadScript();
    else if (FRawBody == rbStyle)
        ReadStyle();
}

void THTMLTokenizer::ReadLess()
{
    const char16_t next = FParser.p[1];
    if (OpensTag(next))
        return ReadTagStart();
    if (next == u'!')
        return ReadMarked();
    if (next == u'?')
        return ReadDirective();
    if (FXMLMode)
        RaiseInvalidTagName();
    // No tag: the "<" is the first character of a text.
    FParser.Next();
    FToken.Name = ReadResolved(simd::FindAny(FParser.p, FParser.pend, u'<'), u"<");
    FToken.CType = htString;
}

void THTMLTokenizer::ReadMarked()
{
    const std::u16string_view rest = FParser.Rest();
    if (rest.starts_with(u"<!-"))
        ReadComment();
    else if (rest.starts_with(u"<![CDA"))
        ReadCData();
    else
        ReadCustom();
}

void THTMLTokenizer::ReadTagStart()
{
    FToken.CType = htTagStart;
    FParser.Next();
    FInTag = true;
}

void THTMLTokenizer::RaiseInvalidTagName() const
{
    const std::u16string_view name(FParser.p + 1, FParser.p + 1 < FParser.pend ? 1 : 0);
    throw EHtmlParserException(
        Format(u"Invalid tag name %s. Line %d position %d", {name, FParser.Line(), FParser.Offset() + 1}));
}

void THTMLTokenizer::SetToken(THTMLTokenType type, const char16_t* from, const char16_t* to)
{
    FToken.CType = type;
    FToken.Name =
        to > from ? String(std::u16string_view(from, static_cast<std::size_t>(to - from))) : String();
}

}
