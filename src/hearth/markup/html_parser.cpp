// Items: the tag, text or comment that comes next.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_parser.h>

#include <hearth/markup/html_node.h>
#include <hearth/markup/html_tokenizer_plain_p.h>

#include <string>

namespace ht {

namespace {

constexpr std::int32_t kTagListCapacity = 255;
constexpr std::int32_t kAttrListCapacity = 511;
/// A UTF-8 byte order mark that was decoded through code page 1251.
constexpr std::u16string_view kMisreadMark = u"\u043F\u00BB\u0457";
constexpr char16_t kByteOrderMark = 0xFEFF;

/// ORDER: all kinds from htScript on have a text for their body.
bool IsTextItem(THTMLTokenType type)
{
    return type == htString || type >= htScript;
}

}

THtmlParser::THtmlParser(const String& s, bool AXMLMode)
    : TagList(THtNameTable::ntTags, kTagListCapacity)
    , AttrList(THtNameTable::ntAttributes, kAttrListCapacity)
    , FTokenizer(s, AXMLMode)
    , FAttributes(false)
    , FXMLMode(AXMLMode)
    , FCaseSensitive(false)
{
    TStringParser& cursor = FTokenizer.Parser();
    if (s.Length() > 3 && cursor.Rest().starts_with(kMisreadMark)) {
        cursor.Skip(3);
        ChangeEncoding(heUTF8, 0);
    }
    if (cursor.Rest().size() > 1 && *cursor.p == kByteOrderMark)
        cursor.Skip(1);
    FTokenizer.SetNameTables(&TagList, &AttrList);
}

THtmlParser::~THtmlParser() = default;

void THtmlParser::SetCaseSensitive(bool value) noexcept
{
    FCaseSensitive = value;
    FTokenizer.SetCaseSensitive(value);
}

bool THtmlParser::NextItem()
{
    return RepeatCurrent ? Repeat() : ReadItem();
}

bool THtmlParser::SkipCloseTag(std::u16string_view tag) noexcept
{
    return !RepeatCurrent && FTokenizer.ReadPlainCloseTag(tag);
}

std::u16string_view THtmlParser::NextBlanks() noexcept
{
    return RepeatCurrent ? std::u16string_view() : FTokenizer.ReadPlainBlanks();
}

bool THtmlParser::NextText(String& text)
{
    return !RepeatCurrent && FTokenizer.ReadPlainText(text);
}

THtmlParser::TNextLike THtmlParser::NextLike(const THtNode& element)
{
    if (RepeatCurrent || !FTokenizer.ReadPlainOpenTag(element.Tag()))
        return nlOther;
    StartItem();
    TagType = htIdent;
    Tag.Assign(element.Tag(), element.TagHash(), element.TagId());
    return ReadAttributes() ? nlItem : nlEnd;
}

bool THtmlParser::ReadEndOf(const THtNode& element)
{
    if (RepeatCurrent || !FTokenizer.ReadEndTag(element.TagId()))
        return false;
    StartItem();
    IsCloseTag = true;
    TagType = htIdent;
    Tag.Assign(element.Tag(), element.TagHash(), element.TagId());
    StartPos = FTokenizer.StartPos();
    return true;
}

void THtmlParser::StartItem()
{
    FRepeats = 0;
    if (FAttributes.Count() > 0)
        FAttributes.Clear();
    FAttributes.CaseSensitive = FCaseSensitive;
    TagClosed = false;
    IsCloseTag = false;
}

bool THtmlParser::Repeat()
{
    RepeatCurrent = false;
    return ++FRepeats > kMaxRepeats ? ReadItem() : !FTokenizer.Eof();
}

inline void THtmlParser::SetTag()
{
    TagType = htIdent;
    const THtNameRec* record = FTokenizer.NameRecord();
    if (record && (FCaseSensitive || record->IsLower)) [[likely]]
        Tag.Assign(record->Value, record->LowerHash, record->Id);
    else
        SetFoldedTag(FTokenizer.Token().Name);
}

bool THtmlParser::ReadItem()
{
    StartItem();
    if (const auto head = FTokenizer.ReadTagHead(IsCloseTag); head != THTMLTokenizer::thNone) {
        SetTag();
        if (head == THTMLTokenizer::thOpen)
            return ReadAttributes();
        StartPos = FTokenizer.StartPos();
        return true;
    }
    Tag.Clear();
    return FTokenizer.ReadPlainText(Value) ? SetTextItem() : ReadOtherItem();
}

/// An item that is neither a plain tag name nor the text behind a tag.
bool THtmlParser::ReadOtherItem()
{
    bool more = FTokenizer.NextToken(true);
    while (more) {
        if (IsTextItem(FTokenizer.Type())) {
            Value = FTokenizer.Token().Name;
            return SetTextItem();
        }
        if (FTokenizer.Type() != htTagStart) {
            more = FTokenizer.NextToken(true);
            continue;
        }
        if (!ReadTagName())
            return false;
        if (!Tag.IsEmpty())
            return ReadAttributes();
        // What stood in the place of a name is looked at as it is.
        IsCloseTag = false;
    }
    return false;
}

bool THtmlParser::SetTextItem()
{
    TagType = FTokenizer.Type();
    TagClosed = true;
    StartPos = FTokenizer.StartPos();
    return true;
}

/// False at the end of the text; otherwise Tag is set if a name stood there.
bool THtmlParser::ReadTagName()
{
    if (!FTokenizer.NextToken(false))
        return false;
    if (FTokenizer.Type() == htTagClose) {
        IsCloseTag = true;
        if (!FTokenizer.NextToken(false))
            return false;
    }
    if (FTokenizer.Type() == htIdent)
        SetTag();
    return true;
}

void THtmlParser::SetFoldedTag(const String& name)
{
    Tag = THtTagName(FCaseSensitive ? name : name.ToLowerAscii());
}

void THtmlParser::AddRawBody(std::u16string_view body)
{
    // The type is still that of an element when the tokenizer took the body for text.
    if (TagType == htIdent) {
        TagType = Tag.Id == tags::kScript ? htScript : htStyle;
        Value = String();
    }
    Value += body;
}

/// A script or style whose body the tokenizer read, or which a lost "/" made it read as text: everything up
/// to the closing tag belongs to the item.
bool THtmlParser::FinishRawElement()
{
    TagClosed = true;
    std::u16string body;
    while (FTokenizer.NextToken(true)) {
        const THTMLToken& token = FTokenizer.Token();
        if (SameText(token.Name, Tag.Name)) {
            if (!body.empty())
                AddRawBody(body);
            while (FTokenizer.Type() != htTagEnd) {
                if (!FTokenizer.NextToken(true))
                    return false;
            }
            return true;
        }
        if (token.CType == htString || token.CType == htStyle || token.CType == htCData)
            body += token.Name.View();
    }
    return false;
}

}
