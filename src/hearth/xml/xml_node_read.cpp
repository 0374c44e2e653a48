// Reading XML: the strict descent over items, documents, files.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_node.h>

#include "xml_reading_p.h"

#include <hearth/runtime/encoding.h>
#include <hearth/runtime/streams.h>

#include <algorithm>
#include <typeinfo>
#include <utility>

namespace ht {

namespace {

/// What texts have for a tag.
constexpr THtTagName kNoTag;

bool IsText(const THtmlParser& HP)
{
    return HP.Tag.IsEmpty() && (HP.TagType == htString || HP.TagType == htIdent || HP.TagType == htSpace);
}

/// What stands for `name` in a processing instruction that is written like a tag.
String InstructionAttribute(std::u16string_view instruction, std::u16string_view name)
{
    THtmlParser parser(Concat({u"<", instruction, u"/>"}));
    parser.SetCaseSensitive(true);
    parser.IgnoreMetaEncoding = true;
    if (!parser.NextItem() || !parser.Attributes())
        return String();
    return parser.Attributes()->GetAttribute(name);
}

/// The code page that the XML declaration at the start of the bytes names; 0 for none, for an unknown one,
/// and for one that these bytes, which tell their declaration as ASCII, cannot be in.
std::uint32_t DeclaredCodePage(std::string_view bytes)
{
    if (!bytes.starts_with("<?xml"))
        return 0;
    const String declaration = String::FromLatin1(bytes.substr(2, bytes.find("?>") - 2));
    const std::uint32_t page = CodePageOfCharset(InstructionAttribute(declaration, u"encoding"));
    const bool isWide = page == kUtf16LittleEndianCodePage || page == kUtf16BigEndianCodePage;
    return isWide || !IsKnownCodePage(page) ? 0 : page;
}

/// True when decoding found nothing to replace.
bool WasUtf8(std::string_view bytes, const String& decoded)
{
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    std::ptrdiff_t expected = 0;
    for (std::size_t at = bytes.find(kReplacement); at != std::string_view::npos;
         at = bytes.find(kReplacement, at + kReplacement.size()))
        ++expected;
    return std::count(decoded.begin(), decoded.end(), u'\uFFFD') == expected;
}

String DecodeUnmarked(std::string_view bytes)
{
    if (bytes.starts_with(std::string_view("<\0", 2)))
        return DecodeUtf16LittleEndian(bytes);
    if (bytes.starts_with(std::string_view("\0<", 2)))
        return DecodeUtf16BigEndian(bytes);
    const std::uint32_t page = DeclaredCodePage(bytes);
    if (page != 0 && page != kUtf8CodePage)
        return DecodeBytes(bytes, page);
    const String text = String::FromUtf8(bytes);
    return page != 0 || WasUtf8(bytes, text) ? text : DecodeBytes(bytes, SystemCodePage());
}

}

/// Reads one element with a loop over its items. An element inside it is a level of the loop, unless it is of
/// a descendant's class.
class THtXMLNode::TReader {
public:
    TReader(THtXMLNode& top, THtmlParser& parser)
        : FTop(top)
        , FParser(parser)
        , FIsPlain(typeid(top) == typeid(THtXMLNode))
    {
    }

    void Run()
    {
        if (!Open(FTop))
            return;
        while (!FOpened.IsEmpty() && ReadPart()) { }
        // The end of the text ends all elements.
        while (!FOpened.IsEmpty())
            Close();
    }

private:
    /// An open element.
    struct TOpened {
        std::size_t Blanks; // where its blanks begin
        const THtXMLNode* Last; // the last element in it
    };

    /// Reads an item of the innermost open element; false at the end of the text.
    bool ReadPart()
    {
        if (FParser.SkipCloseTag(FNode->FTag)) {
            Close();
            return true;
        }
        String text;
        if (!FNode->FPreserveSpace && AddBlanks(FParser.NextBlanks()))
            return true;
        if (FParser.NextText(text)) {
            AddText(std::move(text));
            return true;
        }
        // Elements of one name come in rows. No class of a program's own sees them in between.
        const THtXMLNode* last = FOpened.Last().Last;
        const auto next = last && FIsPlain ? FParser.NextLike(*last) : THtmlParser::nlOther;
        if (next == THtmlParser::nlEnd || (next == THtmlParser::nlOther && !FParser.NextItem()))
            return false;
        if (FParser.IsCloseTag) {
            CheckCloseTag();
            Close();
        } else if (IsText(FParser)) {
            AddText(FParser.Value);
        } else {
            AddChild();
        }
        return true;
    }

    /// Makes `node` the element of the current item. False when it is complete with that.
    bool Open(THtXMLNode& node)
    {
        const std::int32_t limit = FParser.Limits.XmlDepth;
        if (limit != 0 && FParser.FStackLevel >= limit)
            RaiseTooDeep();
        node.SetTag(FParser.Tag);
        node.TagType = FParser.TagType;
        if (FParser.Attributes())
            TakeAttributes(node);
        if (FParser.TagClosed)
            return false;
        ++FParser.FStackLevel;
        FOpened.Add({FBlanks.size(), nullptr});
        FNode = &node;
        return true;
    }

    void TakeAttributes(THtXMLNode& node)
    {
        constexpr std::u16string_view kSpace = u"xml:space";
        node.ReplaceAttributes(FParser.TakeAttributes());
        // Most names are in front of this one, so the last one tells that it is not there.
        if (node.FAttributes->List().back().Name.View() >= kSpace)
            node.FPreserveSpace = node.HasAttributeValue(kSpace, u"preserve");
    }

    void Close()
    {
        const std::size_t from = FOpened.Last().Blanks;
        if (FBlanks.size() > from) {
            const std::u16string_view blanks = std::u16string_view(FBlanks).substr(from);
            FNode->FContent = FNode->FContent.IsEmpty() ? String(blanks) : FNode->FContent + blanks;
            FBlanks.resize(from);
        }
        FOpened.Delete(FOpened.Length() - 1);
        --FParser.FStackLevel;
        FNode = FNode->GetParent();
    }

    void CheckCloseTag() const
    {
        if (FNode->HasTag(FParser.Tag))
            return;
        RaiseTagOrder(FNode->FTag, FParser.Tag.Name);
    }

    /// Blanks between tags are gathered while the element is open; false for no blanks.
    bool AddBlanks(std::u16string_view blanks)
    {
        FBlanks += blanks;
        return !blanks.empty();
    }

    void AddText(String text)
    {
        if (!FNode->FPreserveSpace && *text.data() <= u' ' && IsBlankText(text)) {
            AddBlanks(text);
            return;
        }
        const bool isFirst =
            FNode->GetCount() == 0 && FNode->FContent.IsEmpty() && FBlanks.size() == FOpened.Last().Blanks;
        THtXMLNode& node = isFirst ? *FNode : NewChild(kNoTag);
        if (!isFirst)
            node.TagType = htString;
        node.FContent = std::move(text);
    }

    THtXMLNode& NewChild(const THtTagName& tag) { return FIsPlain ? AddPlain(*FNode) : FNode->NewChild(tag); }

    void AddChild()
    {
        THtXMLNode& child = NewChild(FParser.Tag);
        child.TagType = FParser.TagType;
        if (FParser.TagType == htDirective && DeclaresUtf8(FParser.Value))
            FParser.ChangeEncoding(heUTF8, 0);
        if (FParser.Tag.IsEmpty()) {
            child.FContent = FParser.Value;
            return;
        }
        FOpened.Last().Last = &child;
        if (FIsPlain || typeid(child) == typeid(THtXMLNode))
            Open(child);
        else
            ParseDescendant(child);
    }

    /// Asks a class that may have a Parse of its own.
    void ParseDescendant(THtXMLNode& child)
    {
        if (FParser.FStackLevel >= kMaxRecursion)
            RaiseTooDeep();
        child.Parse(FParser);
    }

    THtXMLNode& FTop;
    THtmlParser& FParser;
    bool FIsPlain; // no class of this tree overrides anything
    THtXMLNode* FNode = nullptr; // the innermost open element
    TArray<TOpened> FOpened;
    std::u16string FBlanks; // of all open elements, the outermost first
};

void THtXMLNode::Parse(THtmlParser& HP)
{
    TReader(*this, HP).Run();
}

void THtXMLNode::SetXML(const String& s, THtXMLStrictness Strictness)
{
    if (Strictness == xsWellFormed)
        CheckWellFormed(s);
    Reset();
    THtmlParser parser(s, true);
    parser.SetCaseSensitive(true);
    parser.Tokenizer().SetExactXML(Strictness == xsWellFormed);
    ReadDocument(parser);
}

void THtXMLNode::ReadDocument(THtmlParser& HP)
{
    while (HP.NextItem()) {
        if (HP.TagType == htDirective)
            ProcessingInstructions().Add(HP.Value);
        if (HP.TagType == htIdent)
            return Parse(HP);
    }
}

std::unique_ptr<THtXMLNode> THtXMLNode::CreateFromStream(TStream& Stream, THtXMLStrictness Strictness)
{
    return std::make_unique<THtXMLNode>(StreamtoText(Stream), Strictness);
}

std::unique_ptr<THtXMLNode> THtXMLNode::CreateFromFile(const String& FileName, THtXMLStrictness Strictness)
{
    TFileStream file(FileName, fmOpenRead | fmShareDenyWrite);
    return CreateFromStream(file, Strictness);
}

String THtXMLNode::StreamtoText(TStream& Stream)
{
    const std::string bytes = Stream.ReadRest();
    if (bytes.empty())
        throw EHtXML(u"Cannot load empty stream"_s);
    const THtByteOrderMarkMatch mark = DetectByteOrderMark(bytes);
    if (mark.Mark != bomNone)
        return DecodeBytes(std::string_view(bytes).substr(mark.Size), CodePageOf(mark.Mark));
    return DecodeUnmarked(bytes);
}

String THtXMLNode::GetPIAttribute(std::u16string_view PIName, std::u16string_view AttrName) const
{
    for (std::int32_t i = 0; FInstructions && i < FInstructions->Count(); ++i) {
        const String instruction = FInstructions->Strings(i);
        const auto isBlank = [](char16_t c) { return c <= u' '; };
        const char16_t* const end = std::find_if(instruction.begin(), instruction.end(), isBlank);
        if (std::u16string_view(instruction.begin(), end) == PIName)
            return InstructionAttribute(instruction, AttrName);
    }
    return String();
}

}
