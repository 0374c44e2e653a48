// Reading JSON into XML nodes, and printing nodes as JSON.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_node.h>

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/node_walk_p.h>
#include <hearth/xml/json_plain_p.h>
#include <hearth/xml/member_order_p.h>
#include <hearth/xml/xml_encode.h>

#include <span>
#include <typeinfo>
#include <utility>

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

/// Whether nodes tell their kinds and plain members are nodes too.
enum TJsonDetail : std::uint8_t { jdTexts, jdLossless };

THtJSONKind KindOf(const TJsonValue& value)
{
    switch (value.Type) {
    case jtObjectStart:
        return jkObject;
    case jtArrayStart:
        return jkArray;
    case jtInt:
    case jtFloat:
        return jkNumber;
    case jtValue:
        return value.Text == u"null" ? jkNull : jkBoolean;
    default:
        return jkString;
    }
}

bool IsScalar(THtJSONTokenType type)
{
    return type == jtString || type == jtValue || type == jtInt || type == jtFloat;
}

}

/// Reads one value with a loop: a container inside it is a level of the loop.
class THtXMLNode::TJsonReader {
public:
    TJsonReader(THtXMLNode& top, THtJSONParser& parser, TJsonDetail detail)
        : FParser(parser)
        , FTokens(*parser.Tokenizer())
        , FPlain(FTokens.Parser())
        , FNode(&top)
        , FDetail(detail)
        , FIsOfThisClass(typeid(top) == typeid(THtXMLNode))
    {
    }

    void Run()
    {
        TJsonValue value = TokenValue();
        if (!OpensContainer(value.Type))
            return SetOnly(value);
        Open(*FNode, value, nullptr);
        while (!FOuter.IsEmpty()) {
            if (FNode->FIsArray)
                ReadElement();
            else
                ReadMember();
        }
    }

private:
    /// An open container.
    struct TLevel {
        std::int32_t Members; // where its members begin
        THtMemberName* Owner; // the innermost name around it
        THtMemberName* Last; // the name of its last member
    };

    static char16_t EndOf(const THtXMLNode& node) { return node.FIsArray ? u']' : u'}'; }

    TJsonValue TokenValue() { return {FTokens.Type(), FTokens.TakeName()}; }

    /// Makes the node one value that is no container.
    void SetOnly(TJsonValue& value)
    {
        if (!IsScalar(value.Type) && value.Type != jtIdent)
            RaiseTokenExpected();
        FNode->FIsArray = false;
        if (FDetail == jdLossless) {
            FNode->SetTag(ValueTag());
            FNode->TagType = htIdent;
        }
        if (FNode->FTag.IsEmpty())
            FNode->TagType = htString;
        SetScalar(*FNode, value);
    }

    void SetScalar(THtXMLNode& node, TJsonValue& value)
    {
        if (FDetail == jdLossless)
            node.FJSONKind = KindOf(value);
        node.SetValue(value.Text);
    }

    /// Makes `node` the container that has begun. One that ends at once is complete then.
    void Open(THtXMLNode& node, const TJsonValue& value, THtMemberName* owner)
    {
        node.FIsArray = value.Type == jtArrayStart;
        if (FDetail == jdLossless)
            node.FJSONKind = KindOf(value);
        const char16_t next = FTokens.PassBlanks();
        if (next == 0 && FTokens.Parser().Empty())
            RaiseTokenExpected();
        const std::int32_t limit = FParser.Limits.JsonDepth;
        if (limit != 0 && FOuter.Length() >= limit)
            throw EHtJSONParserException(u"JSON contains too many nested nodes"_s);
        if (node.FTag.IsEmpty() && (FDetail == jdTexts || FOuter.IsEmpty()))
            node.SetTag(node.FIsArray ? ArrayTag() : ObjectTag());
        node.TagType = htIdent;
        FNode = &node;
        FOuter.Add(std::exchange(FLevel, {FMembers.Length(), owner, nullptr}));
        if (next == EndOf(node))
            EndPart();
    }

    /// Reads what stands behind an element, a member or an opening mark: the ends of containers, and a comma
    /// unless all are complete.
    void EndPart()
    {
        const char16_t*& p = FTokens.Parser().p;
        if (p[0] == u',' && p[1] == u'"') { // as most parts are written
            ++p;
            return;
        }
        for (char16_t next = FTokens.PassBlanks(); next == EndOf(*FNode); next = FTokens.PassBlanks()) {
            ++p;
            Close();
            if (FOuter.IsEmpty())
                return;
        }
        if (*p != u',')
            RaiseNoComma();
        ++p;
        const char16_t next = FTokens.PassBlanks();
        if (next != EndOf(*FNode) && (next != 0 || !FTokens.Parser().Empty()))
            return;
        if (FNode->FIsArray)
            RaiseTokenExpected();
        throw EHtJSONParserException(u"Name/Value expected after comma"_s);
    }

    /// A token that is none comes first.
    [[noreturn]] void RaiseNoComma()
    {
        FTokens.NextNSToken();
        RaiseTokenExpected();
    }

    void ReadElement()
    {
        TJsonValue value;
        if (!FPlain.Read(value)) {
            FTokens.NextNSToken();
            value = TokenValue();
        }
        if (OpensContainer(value.Type)) {
            const THtTagName& tag = value.Type == jtArrayStart ? ArrayTag() : ObjectTag();
            return Open(AddElement(tag), value, FLevel.Owner);
        }
        if (!IsScalar(value.Type))
            RaiseTokenExpected();
        SetScalar(AddElement(ValueTag()), value);
        EndPart();
    }

    void ReadMember()
    {
        TJsonValue value;
        THtMemberName& name = ReadNameValue(value);
        if (OpensContainer(value.Type))
            return Open(AddElement(name.Tag()), value, &name);
        if (FDetail == jdLossless) {
            SetScalar(AddElement(name.Tag()), value);
            return EndPart();
        }
        if (name.Name.IsEmpty())
            RaiseTokenExpected();
        // A first empty value is not stored, as with every attribute that is set.
        const bool isFirst = FMembers.Length() == FLevel.Members && !FNode->FAttributes;
        if (!isFirst || !value.Text.IsEmpty())
            FMembers.Add({&name, std::move(value.Text)});
        EndPart();
    }

    /// Reads a name and what NextNameValue reads behind it. Objects of one kind come in rows, so the name
    /// that stood in this place last time is tried first.
    THtMemberName& ReadNameValue(TJsonValue& value)
    {
        THtMemberName*& guess = FLevel.Last ? FLevel.Last->Behind
            : FLevel.Owner                  ? FLevel.Owner->Inside
                                            : FFirst;
        THtMemberName* name = guess;
        bool isQuoted = true;
        if (name && name->IsPlain && FPlain.PassName(name->Name)) {
            FParser.TakeName(*name);
        } else {
            isQuoted = FParser.NextQuotedName();
            if (!isQuoted) {
                FTokens.NextNSToken();
                FParser.NextNameValue();
                value = TokenValue();
            }
            guess = name = FParser.Member();
        }
        if (isQuoted && !FPlain.Read(value)) {
            FParser.NextValue();
            value = TokenValue();
        }
        FLevel.Last = name;
        return *name;
    }

    THtXMLNode& AddElement(const THtTagName& tag)
    {
        THtXMLNode& child = FIsOfThisClass ? AddPlain(*FNode) : FNode->NewChild(tag);
        child.SetTag(tag);
        child.TagType = htIdent;
        return child;
    }

    void Close()
    {
        const std::int32_t from = FLevel.Members;
        if (FMembers.Length() > from) {
            StoreMembers(std::span<TJsonMember>(FMembers.data() + from, FMembers.data() + FMembers.Length()));
            FMembers.Delete(from, FMembers.Length() - from);
        }
        FLevel = FOuter.Last();
        FOuter.Delete(FOuter.Length() - 1);
        FNode = FNode->GetParent();
    }

    void StoreMembers(std::span<TJsonMember> members)
    {
        if (FNode->FAttributes) {
            for (const TJsonMember& member : members)
                FNode->SetAttr(member.Name->Name, member.Value);
            return;
        }
        const std::span<const std::uint32_t> places = FOrder.Of(members);
        const auto take = [members, places](std::size_t i) {
            TJsonMember& member = members[places[i]];
            return THtAttribute{member.Name->Name, std::move(member.Value)};
        };
        FNode->ReplaceAttributes(THtAttributes::OfSorted(places.size(), true, take));
    }

    THtJSONParser& FParser;
    THtJSONTokenizer& FTokens;
    TJsonPlainReader FPlain;
    THtXMLNode* FNode; // the innermost open container
    TJsonDetail FDetail;
    bool FIsOfThisClass; // no class that overrides anything makes the nodes
    THtMemberName* FFirst = nullptr; // the first name in an object without a name around it
    TLevel FLevel{}; // of the innermost open container
    TArray<TLevel> FOuter; // those around it, and in front of them one that is none
    TArray<TJsonMember> FMembers; // of all open containers, the outermost first
    TMemberOrder FOrder;
};

void THtXMLNode::ParseJSON(THtJSONParser& P)
{
    if (!P.Tokenizer())
        RaiseTokenExpected();
    TJsonReader(*this, P, jdTexts).Run();
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

std::unique_ptr<THtXMLNode> THtXMLNode::CreateFromLosslessJSON(const String& JSON, const THtLimits& Limits)
{
    THtJSONParser parser(JSON);
    parser.Limits = Limits;
    if (!parser.Tokenizer() || !parser.Tokenizer()->NextNSToken())
        throw EHtJSONParserException(u"JSON is empty"_s);
    auto document = std::make_unique<THtXMLNode>();
    TJsonReader(*document, parser, jdLossless).Run();
    if (parser.Tokenizer()->NextNSToken())
        RaiseNotTerminated();
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
