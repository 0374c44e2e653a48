// Reading JSON into XML nodes, and printing nodes as JSON.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_node.h>

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/node_walk_p.h>
#include <hearth/xml/xml_encode.h>

namespace ht {

namespace {

constexpr std::int32_t kDocumentDelta = 65500;

const THtTagName& ArrayTag()
{
    static const THtTagName name(u"array"_s);
    return name;
}

const THtTagName& ObjectTag()
{
    static const THtTagName name(u"object"_s);
    return name;
}

const THtTagName& ValueTag()
{
    static const THtTagName name(u"value"_s);
    return name;
}

[[noreturn]] void RaiseTokenExpected()
{
    throw EHtJSONParserException(u"Incorrect JSON, token expected."_s);
}

[[noreturn]] void RaiseNotTerminated()
{
    throw EHtJSONParserException(u"JSON is not terminated properly"_s);
}

bool OpensContainer(THtJSONTokenType type)
{
    return type == jtObjectStart || type == jtArrayStart;
}

bool IsScalar(THtJSONTokenType type)
{
    return type == jtString || type == jtValue || type == jtInt || type == jtFloat;
}

}

/// Reads one value with a loop: a container inside it is a level of the loop.
class THtXMLNode::TJsonReader {
public:
    TJsonReader(THtXMLNode& top, THtJSONParser& parser, THtJSONTokenizer& tokens)
        : FParser(parser)
        , FTokens(tokens)
        , FNode(&top)
    {
    }

    void Run()
    {
        if (!OpensContainer(FTokens.Type()))
            return ReadScalar();
        Open(*FNode);
        for (;;) {
            if (FTokens.Type() == EndOf(*FNode)) {
                Close();
                if (FLevels == 0)
                    return;
            } else if (FNode->FIsArray ? ReadElement() : ReadMember()) {
                continue;
            }
            NextPart();
        }
    }

private:
    static THtJSONTokenType EndOf(const THtXMLNode& node) { return node.FIsArray ? jtArrayEnd : jtObjectEnd; }

    void ReadScalar()
    {
        if (!IsScalar(FTokens.Type()) && FTokens.Type() != jtIdent)
            RaiseTokenExpected();
        FNode->FIsArray = false;
        if (FNode->FTag.IsEmpty())
            FNode->TagType = htString;
        FNode->SetValue(FTokens.Token().Name);
    }

    /// Makes `node` the container that the current token opens, and reads the token behind it.
    void Open(THtXMLNode& node)
    {
        FNode = &node;
        node.FIsArray = FTokens.Type() == jtArrayStart;
        if (!NextPlace())
            RaiseTokenExpected();
        const std::int32_t limit = FParser.Limits.JsonDepth;
        if (limit != 0 && FLevels >= limit)
            throw EHtJSONParserException(u"JSON contains too many nested nodes"_s);
        if (node.FTag.IsEmpty())
            node.SetTag(node.FIsArray ? ArrayTag() : ObjectTag());
        node.TagType = htIdent;
        if (FLevels == FMembers.Length())
            FMembers.Add(std::make_unique<THtAttributes>(true));
        ++FLevels;
    }

    void Close()
    {
        --FLevels;
        THtAttributes& members = *FMembers[FLevels];
        if (members.Count() > 0 && !FNode->FAttributes)
            FNode->ReplaceAttributes(THtAttributes::TakeFrom(members));
        if (FLevels > 0)
            FNode = FNode->GetParent();
    }

    /// The token in the place of an element, a member or the end of the container.
    bool NextPlace() { return FNode->FIsArray ? FTokens.NextNSToken() : FParser.NextName(); }

    /// Reads the comma behind an element or member and the token behind it, or the end of the container.
    void NextPart()
    {
        if (!FTokens.NextNSToken())
            RaiseTokenExpected();
        const THtJSONTokenType end = EndOf(*FNode);
        if (FTokens.Type() == end)
            return;
        if (FTokens.Type() != jtComma)
            RaiseTokenExpected();
        if (NextPlace() && FTokens.Type() != end)
            return;
        if (FNode->FIsArray)
            RaiseTokenExpected();
        throw EHtJSONParserException(u"Name/Value expected after comma"_s);
    }

    /// True when a container was opened.
    bool ReadElement()
    {
        const THtJSONTokenType type = FTokens.Type();
        if (OpensContainer(type)) {
            Open(AddElement(type == jtArrayStart ? ArrayTag() : ObjectTag()));
            return true;
        }
        if (!IsScalar(type))
            RaiseTokenExpected();
        AddElement(ValueTag()).SetValue(FTokens.Token().Name);
        return false;
    }

    bool ReadMember()
    {
        if (OpensContainer(FParser.NextNameValue())) {
            Open(AddElement(FParser.TagName()));
            return true;
        }
        if (FParser.Name.IsEmpty())
            RaiseTokenExpected();
        const String& value = FTokens.Token().Name;
        THtAttributes& members = *FMembers[FLevels - 1];
        if (FNode->FAttributes)
            FNode->SetAttr(FParser.Name, value);
        else if (members.Count() > 0 || !value.IsEmpty()) // else not stored, as SetAttr does
            members.SetAttribute(FParser.Name, value);
        return false;
    }

    THtXMLNode& AddElement(const THtTagName& tag)
    {
        THtXMLNode& child = FNode->NewChild(tag);
        child.SetTag(tag);
        child.TagType = htIdent;
        return child;
    }

    THtJSONParser& FParser;
    THtJSONTokenizer& FTokens;
    THtXMLNode* FNode; // the innermost open container
    std::int32_t FLevels = 0;
    /// Members of the open containers that are to become attributes; the stores serve all containers of their
    /// level.
    TArray<std::unique_ptr<THtAttributes>> FMembers;
};

void THtXMLNode::ParseJSON(THtJSONParser& P)
{
    if (!P.Tokenizer())
        RaiseTokenExpected();
    TJsonReader(*this, P, *P.Tokenizer()).Run();
}

std::unique_ptr<THtXMLNode> THtXMLNode::CreatefromJSON(const String& JSON, std::int32_t /*dummy*/)
{
    THtJSONParser parser(JSON);
    if (!parser.Tokenizer() || !parser.Tokenizer()->NextNSToken())
        throw EHtJSONParserException(u"JSON is empty"_s);
    auto document = std::make_unique<THtXMLNode>();
    document->ParseJSON(parser);
    document->ReadFurtherObjects(parser);
    return document;
}

/// What stands behind the first value: nothing, or more objects with commas between. Then this node becomes
/// the list of all of them, which does not print as an array.
void THtXMLNode::ReadFurtherObjects(THtJSONParser& P)
{
    THtJSONTokenizer& tokens = *P.Tokenizer();
    bool more = tokens.NextNSToken();
    if (more && tokens.Type() == jtComma) {
        auto first = std::make_unique<THtXMLNode>();
        MoveContentsTo(*first);
        SetTag(ArrayTag());
        TagType = htIdent;
        GetNodes().Add(first.get());
        first.release();
    }
    while (more && tokens.Type() == jtComma) {
        if (!tokens.NextNSToken())
            RaiseNotTerminated();
        if (tokens.Type() != jtObjectStart)
            RaiseTokenExpected();
        THtXMLNode& object = NewChild(ObjectTag());
        object.SetTag(ObjectTag());
        object.ParseJSON(P);
        more = tokens.NextNSToken();
    }
    if (more)
        RaiseNotTerminated();
}

namespace {

/// True for what is written at all.
bool IsJson(const THtNode& node)
{
    const bool isMarked = node.TagType == htComment || node.TagType == htDirective || node.TagType == htCData;
    return !isMarked && !node.Tag().IsEmpty();
}

bool PrintsAsArray(const THtNode& node)
{
    const auto* xmlNode = As<THtXMLNode>(&node);
    return xmlNode && xmlNode->IsArray();
}

class TJsonWriter {
public:
    explicit TJsonWriter(TFastString& buffer)
        : FBuffer(buffer)
    {
    }

    bool Enter(const THtNode& node)
    {
        if (!IsJson(node))
            return false;
        const bool isArray = PrintsAsArray(node);
        if (!FOpen.IsEmpty())
            BeginPart(node);
        FOpen.Add({isArray, false});
        FBuffer.Add(isArray ? u"[\r\n" : u"{\r\n");
        if (!isArray && node.Attributes())
            WriteMembers(*node.Attributes());
        return true;
    }

    void Leave(const THtNode& /*node*/)
    {
        FBuffer.Add(FOpen.Last().IsArray ? u"]\r\n" : u"}");
        FOpen.Delete(FOpen.Length() - 1);
    }

private:
    struct TOpen {
        bool IsArray;
        bool HasParts;
    };

    /// What stands between the part in front of `node` in its container and the node.
    void BeginPart(const THtNode& node)
    {
        TOpen& container = FOpen.Last();
        if (container.HasParts)
            FBuffer.Add(container.IsArray ? u",\r\n" : u",");
        container.HasParts = true;
        if (container.IsArray)
            return;
        FBuffer.AddChar(u'"');
        JSONEncodeTo(FBuffer, node.Tag());
        FBuffer.Add2Char(u'"', u':');
    }

    void WriteMembers(const THtAttributes& attributes)
    {
        for (const THtAttribute& attribute : attributes) {
            FBuffer.Add(FOpen.Last().HasParts ? u",\"" : u"\"");
            FOpen.Last().HasParts = true;
            JSONEncodeTo(FBuffer, attribute.Name);
            FBuffer.Add(u"\":\"");
            JSONEncodeTo(FBuffer, attribute.Value);
            FBuffer.AddChar(u'"');
        }
    }

    TFastString& FBuffer;
    TArray<TOpen> FOpen; // the containers around the current node
};

}

void THtXMLNode::FastJSON(TFastString& FS) const
{
    TJsonWriter writer(FS);
    WalkSubtree<THtNode>(*this, writer);
}

String THtXMLNode::JSON() const
{
    TFastString buffer(kDocumentDelta);
    FastJSON(buffer);
    return buffer.GetAsString();
}

}
