// The attributes of a tag, and what a finished tag still brings along.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_parser.h>

#include <hearth/markup/html_tokenizer_plain_p.h>
#include <hearth/runtime/text_format.h>

#include <string>

namespace ht {

namespace {

/// Longer names are rarely repeated and stay out of the table.
constexpr std::int32_t kMaxInternedName = 15;

/// A run of "=" repeats the piece in front of it no more often than this, so that a value stays in
/// proportion to what was read.
constexpr int kMaxRepeatedPieces = 16;

bool IsPassedOver(THTMLTokenType type)
{
    return type == htSpace || type == htComment || type == htDirective;
}

/// Tokens that leave the text of the token in front of them standing.
bool KeepsTextBefore(THTMLTokenType type)
{
    return type == htEq || type == htTagStart || type == htCustom;
}

bool EndsUnquotedValue(THTMLTokenType type)
{
    return type == htSpace || type == htTagEnd || type == htScript || type == htStyle;
}

}

/// Takes the attributes that are written plainly, then reads the next token.
bool THtmlParser::NextInTag()
{
    while (!FTokenizer.ReadPlainTagEnd()) {
        const THtNameRec* name = IsCloseTag ? nullptr : FTokenizer.ReadPlainAttributeName();
        if (!name && FXMLMode && FTokenizer.ReadPlainEmptyEnd()) {
            TagClosed = true;
            return true;
        }
        if (!name)
            return FTokenizer.NextToken(false);
        FAttributes.AddNew(name->Value, FTokenizer.ReadPlainValue());
    }
    return true;
}

/// Reads to the end of the tag. False at the end of the text: a tag that is cut off is no item.
bool THtmlParser::ReadAttributes()
{
    if (FXMLMode)
        FTokenizer.StartAttributes(Tag.Hash);
    const bool more = NextInTag();
    if (!more || FTokenizer.Type() != htTagEnd || ActsAtEnd(Tag.Id)) [[unlikely]]
        return ReadOtherAttributes(more);
    StartPos = FTokenizer.StartPos();
    return true;
}

/// The rest of a tag that has more than plain attributes, from the current token on.
bool THtmlParser::ReadOtherAttributes(bool more)
{
    bool inTag = true;
    while (more && inTag) {
        switch (FTokenizer.Type()) {
        case htIdent:
            more = IsCloseTag ? FTokenizer.NextToken(false) : ReadAttribute();
            continue;
        case htTagStart:
            FTokenizer.StepBack(); // the new tag is the next item
            inTag = false;
            continue;
        case htTagEnd:
            inTag = false;
            continue;
        case htScript:
        case htStyle:
            if (!TagClosed) {
                Value = FTokenizer.Token().Name;
                TagType = FTokenizer.Type();
                inTag = false;
                continue;
            }
            break;
        case htTagClose:
            TagClosed = true;
            break;
        default:
            break;
        }
        more = FTokenizer.NextToken(false);
    }
    if (!more)
        return false;
    if (!FXMLMode) {
        const bool raw = Tag.Id == tags::kScript || Tag.Id == tags::kStyle;
        if (raw && !TagClosed && !IsCloseTag && !FinishRawElement())
            return false;
        if (Tag.Id == tags::kMeta && !IgnoreMetaEncoding)
            CheckMeta();
    }
    StartPos = FTokenizer.StartPos();
    return true;
}

/// Reads on to what stands behind a name; blanks, comments and directives are passed over.
bool THtmlParser::NextAttributePart()
{
    while (FTokenizer.NextToken(false)) {
        if (!IsPassedOver(FTokenizer.Type()))
            return true;
    }
    return false;
}

/// Reads on to what stands behind a "=".
bool THtmlParser::NextAttributeValue()
{
    while (FTokenizer.NextToken(true)) {
        if (FTokenizer.Type() != htSpace && FTokenizer.Type() != htComment)
            return true;
    }
    return false;
}

/// The name at the current token, folded and interned. Names with a "{" keep their case: they hold
/// placeholders of templates.
String THtmlParser::AttributeName()
{
    const String& name = FTokenizer.Token().Name;
    const THtNameRec* record = FTokenizer.NameRecord();
    if (record && (FCaseSensitive || record->IsLower))
        return name;
    const String folded = FAttributes.StoredName(name);
    if (folded.Length() > kMaxInternedName)
        return folded;
    return AttrList.Intern(RSHash(folded.View()), folded).Value;
}

/// Reads one attribute and the token behind it; false at the end of the text.
bool THtmlParser::ReadAttribute()
{
    const String name = AttributeName();
    if (!NextAttributePart())
        return false;
    if (FTokenizer.Type() == htEq)
        return ReadAttributeValue(name);
    StoreAttribute(name, name, daReplaces);
    return true;
}

bool THtmlParser::ReadAttributeValue(const String& name)
{
    if (!NextAttributeValue())
        return false;
    if (FXMLMode && FTokenizer.Type() != htString)
        RaiseValueExpected(name);
    String value;
    if (FTokenizer.Type() == htTagClose) {
        value = u"/"_s;
        if (!FTokenizer.NextToken(false))
            return false;
    } else {
        while (IsPassedOver(FTokenizer.Type())) {
            if (!FTokenizer.NextToken(true))
                return false;
        }
    }
    const bool quoted = FTokenizer.Type() == htString;
    if (!quoted && FTokenizer.Type() != htIdent)
        return true;
    value = value.IsEmpty() ? FTokenizer.Token().Name : value + FTokenizer.Token().Name;
    if (quoted) {
        StoreAttribute(name, value, daFirstStays);
        return NextInTag();
    }
    const bool more = ReadUnquotedValue(value);
    StoreAttribute(name, value, daFirstStays);
    return more;
}

/// Joins what follows to the first piece of an unquoted value. A "=" brings the piece in front of it once
/// more: its token has no text of its own, so `a=b` reads as "aab".
bool THtmlParser::ReadUnquotedValue(String& value)
{
    std::u16string joined;
    int repeats = 0;
    bool more = FTokenizer.NextToken(false);
    for (; more && !EndsUnquotedValue(FTokenizer.Type()); more = FTokenizer.NextToken(false)) {
        if (joined.empty())
            joined = value;
        if (FTokenizer.Type() == htTagClose) {
            joined += u'/';
            continue;
        }
        repeats = KeepsTextBefore(FTokenizer.Type()) ? repeats + 1 : 0;
        if (repeats <= kMaxRepeatedPieces)
            joined += FTokenizer.Token().Name.View();
    }
    if (!joined.empty())
        value = String(joined);
    return more;
}

void THtmlParser::StoreAttribute(const String& name, const String& value, TDuplicateAttribute duplicate)
{
    if (duplicate == daReplaces)
        FAttributes.SetAttribute(name, value);
    else
        FAttributes.AddNew(name, value);
}

void THtmlParser::RaiseValueExpected(const String& name)
{
    const TStringParser& cursor = FTokenizer.Parser();
    throw EHtmlParserException(Format(u"Attribute %s value expected but %s found. Line %d position %d",
        {name, FTokenizer.Token().Name, cursor.Line(), cursor.Pos()}));
}

}
