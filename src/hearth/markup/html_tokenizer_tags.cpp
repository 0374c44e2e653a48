// Names inside tags, and the bodies that are one token: comments, directives, scripts, styles.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_tokenizer.h>

#include <hearth/markup/html_chars_p.h>
#include <hearth/markup/style_comments_p.h>
#include <hearth/runtime/simd_p.h>

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
    const char16_t* p = from;
    bool quoted = false;
    bool bracketed = false;
    if (p < FParser.pend)
        ++p;
    for (; p < FParser.pend && (*p != u'>' || bracketed); ++p) {
        if (*p == u'"')
            quoted = !quoted;
        else if (!quoted && (*p == u'[' || *p == u']'))
            bracketed = *p == u'[';
    }
    if (p > from)
        SetToken(htCustom, from, p);
    FParser.p = p;
    FParser.Next();
}

void THTMLTokenizer::ReadDirective()
{
    FParser.Skip(2);
    const char16_t* from = FParser.p;
    const char16_t* p = from;
    while (p < FParser.pend && *p != 0 && *p != u'>' && !(*p == u'?' && p[1] == u'>'))
        ++p;
    SetToken(htDirective, from, p);
    FParser.p = p;
    FParser.Skip(*p == u'?' ? 2 : 1);
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
