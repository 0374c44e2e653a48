// Names inside tags, and the bodies that are one token: comments, directives, scripts, styles.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_tokenizer.h>

#include <hearth/markup/html_chars_p.h>
#include <hearth/markup/style_comments_p.h>
#include <hearth/runtime/simd_p.h>

#include <algorithm>

namespace ht {

namespace {

std::u16string_view Slice(const char16_t* from, const char16_t* to)
{
    return {from, to > from ? static_cast<std::size_t>(to - from) : 0};
}

/// A "/" that does not close the tag is part of a name.
bool IsInnerSlash(const char16_t* p)
{
    return *p == u'/' && p[1] != u'>';
}

/// Removes the comment marks around a script that hides from very old browsers.
std::u16string_view WithoutHidingComment(std::u16string_view body)
{
    if (!body.starts_with(u"<!--"))
        return body;
    return body.substr(4, body.size() < 7 ? 0 : body.size() - 7);
}

/// The last unit of the first `mark` at or behind `from`; the end of the text without one.
std::size_t EndOfMark(std::u16string_view text, std::u16string_view mark, std::size_t from)
{
    const std::size_t found = text.find(mark, from);
    return found == std::u16string_view::npos ? text.size() : found + mark.size() - 1;
}

/// Up to the ">" of a "<!...>", which may stand in quotes but not in brackets. The first unit is not looked
/// at, and a "]" in double quotes closes no bracket.
std::size_t CustomLength(std::u16string_view text)
{
    bool quoted = false;
    bool bracketed = false;
    std::size_t i = text.empty() ? 0 : 1;
    for (; i < text.size() && (text[i] != u'>' || bracketed); ++i) {
        if (text[i] == u'"')
            quoted = !quoted;
        else if (!quoted && (text[i] == u'[' || text[i] == u']'))
            bracketed = text[i] == u'[';
    }
    return i;
}

/// Up to the ">" of a document type as XML ends it: outside of its subset, and of quotes, comments and
/// directives, which may hold anything.
std::size_t DocumentTypeLength(std::u16string_view text)
{
    bool bracketed = false;
    std::size_t i = 0;
    for (; i < text.size() && (text[i] != u'>' || bracketed); ++i) {
        const std::u16string_view rest = text.substr(i);
        if (text[i] == u'"' || text[i] == u'\'')
            i = EndOfMark(text, rest.substr(0, 1), i + 1);
        else if (rest.starts_with(u"<!--"))
            i = EndOfMark(text, u"-->", i + 4);
        else if (rest.starts_with(u"<?"))
            i = EndOfMark(text, u"?>", i + 2);
        else if (text[i] == u'[' || text[i] == u']')
            bracketed = text[i] == u'[';
    }
    return std::min(i, text.size());
}

}

THTMLTokenizer::TRawBody THTMLTokenizer::RawBodyOf(std::u16string_view tag)
{
    if (tag.size() == 6 && SameText(tag, u"script"))
        return rbScript;
    return tag.size() == 5 && SameText(tag, u"style") ? rbStyle : rbNone;
}

THTMLTokenizer::TRawBody THTMLTokenizer::RawBodyOf(TTagId tag)
{
    return tag == tags::kScript ? rbScript : tag == tags::kStyle ? rbStyle : rbNone;
}

/// What ReadTagHead does with a name that is long, unknown or written in capitals.
THTMLTokenizer::TTagHead THTMLTokenizer::ReadLongTagHead(const char16_t* name, bool closes)
{
    FParser.p = name;
    FLeftText = ltNothing;
    FToken.StartPos = FParser.Offset();
    if (closes) {
        FRawBody = rbNone;
        FToken.CType = htTagClose;
        ReadIdent();
    } else {
        ReadTag();
    }
    return thOpen;
}

void THTMLTokenizer::ReadTag()
{
    const char16_t* from = FParser.p;
    const char16_t* p = from;
    RSHasher hasher;
    bool hasUpper = false;
    do {
        const char16_t c = *p++;
        hasUpper |= IsAsciiUpper(c);
        hasher.Add(FoldAscii(c));
    } while (*p >= u'A' || ClassInTag(*p) == ccIdentifier || IsInnerSlash(p));
    FParser.p = p;
    const std::u16string_view name = Slice(from, p);
    FRawBody = RawBodyOf(name);
    FToken.CType = htIdent;
    if (!hasUpper)
        return SetName(hasher.Value(), name, FTagNames, naIntern);
    if (FCaseSensitive)
        return SetName(RSHash(name), name, FTagNames, naIntern);
    FBuffer.assign(name);
    for (char16_t& c : FBuffer)
        c = FoldAscii(c);
    SetName(hasher.Value(), FBuffer, FTagNames, naIntern);
}

void THTMLTokenizer::ReadIdent()
{
    const char16_t* from = FParser.p;
    const char16_t* p = from;
    RSHasher hasher;
    do {
        hasher.Add(*p++);
    } while ((*p != 0 && ClassInTag(*p) <= ccIdentifier) || IsInnerSlash(p));
    FParser.p = p;
    // Behind "=" stands a value; values are rarely the same, so no table is asked.
    THtNameTable* table = FToken.CType == htEq ? nullptr
        : FToken.CType == htTagClose           ? FTagNames
                                               : FAttributeNames;
    FToken.CType = htIdent;
    SetName(hasher.Value(), Slice(from, p), table, naFind);
}

void THTMLTokenizer::SetName(
    std::uint32_t hash, std::u16string_view name, THtNameTable* table, TNameAction action)
{
    FNameRecord = !table     ? nullptr
        : action == naIntern ? &table->Intern(hash, name)
                             : table->Find(hash, name);
    if (FNameRecord)
        FToken.Name = FNameRecord->Value;
    else
        FToken.Name = String(name);
}

void THTMLTokenizer::ReadComment()
{
    FParser.Skip(4);
    if (FExactXML)
        return ReadUpToMark(htComment, u"-->");
    const char16_t* from = FParser.p;
    const char16_t* stop = simd::FindAny(from, FParser.pend, u'>');
    // The two units in front of the first ">" may belong to the opening mark itself.
    while (stop < FParser.pend && !(stop[-1] == u'-' && stop[-2] == u'-'))
        stop = simd::FindAny(stop + 1, FParser.pend, u'>');
    SetToken(htComment, from, stop - 2);
    FParser.p = stop;
    FParser.Next();
}

void THTMLTokenizer::ReadCData()
{
    FParser.Skip(9);
    if (FExactXML)
        return ReadUpToMark(htCData, u"]]>");
    const char16_t* from = FParser.p;
    const char16_t* p = from;
    for (;;) {
        p = simd::FindAny(p, FParser.pend, u']');
        if (p == FParser.pend)
            break;
        ++p;
        if (*p == u']' && p[1] == u'>') {
            ++p;
            break;
        }
        // A second "]" is used up with the first, so "]]]>" does not end the section.
        if (*p == u']')
            ++p;
    }
    SetToken(htCData, from, p - 2);
    FParser.p = p;
    FParser.Next();
}

void THTMLTokenizer::ReadCustom()
{
    FParser.Skip(2);
    const char16_t* from = FParser.p;
    const std::u16string_view rest = FParser.Rest();
    const char16_t* end = from + (FExactXML ? DocumentTypeLength(rest) : CustomLength(rest));
    if (end > from)
        SetToken(htCustom, from, end);
    FParser.p = end;
    FParser.Next();
}

void THTMLTokenizer::ReadDirective()
{
    FParser.Skip(2);
    if (FExactXML)
        return ReadUpToMark(htDirective, u"?>");
    const char16_t* from = FParser.p;
    const char16_t* p = from;
    while (p < FParser.pend && *p != 0 && *p != u'>' && !(*p == u'?' && p[1] == u'>'))
        ++p;
    SetToken(htDirective, from, p);
    FParser.p = p;
    FParser.Skip(*p == u'?' ? 2 : 1);
}

/// All that stands in front of `mark`, which is passed over.
void THTMLTokenizer::ReadUpToMark(THTMLTokenType type, std::u16string_view mark)
{
    const std::u16string_view rest = FParser.Rest();
    const std::size_t length = std::min(rest.find(mark), rest.size());
    SetToken(type, FParser.p, FParser.p + length);
    FParser.Skip(static_cast<std::int32_t>(length));
    FParser.Skip(static_cast<std::int32_t>(mark.size()));
}

std::u16string_view THTMLTokenizer::ReadBody(std::u16string_view closingTag)
{
    const char16_t* from = FParser.p;
    for (;;) {
        FParser.Skipto(u'<');
        if (FParser.Empty() || (FParser.p[1] == u'/' && FParser.StartsWith(closingTag)))
            return Slice(from, FParser.p);
        FParser.Next();
    }
}

void THTMLTokenizer::ReadScript()
{
    FToken.Name = String(WithoutHidingComment(TrimView(ReadBody(u"</script>"))));
    FToken.CType = htScript;
}

void THTMLTokenizer::ReadStyle()
{
    FToken.Name = WithoutStyleComments(ReadBody(u"</style>"));
    FToken.CType = htStyle;
}

}
