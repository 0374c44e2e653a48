// Making, copying and emptying nodes of XML trees.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_node.h>

#include <hearth/runtime/text_format.h>

#include <typeinfo>
#include <utility>

namespace ht {

THtXMLNode::THtXMLNode(const String& XML, THtXMLStrictness Strictness)
{
    SetXML(XML, Strictness);
}

THtXMLNode::~THtXMLNode() = default;

THtNodeClass THtXMLNode::GetElementClass(const THtTagName& /*ATag*/, const THtNode* /*ARoot*/) const
{
    return THtNodeClass::Of<THtXMLNode>();
}

std::unique_ptr<THtAttributes> THtXMLNode::CreateAttributes() const
{
    return std::make_unique<THtAttributes>(true);
}

/// A node of a tree whose nodes are all of this class. Throws EAssertionFailed for any other: trees can be
/// built of anything.
THtXMLNode& THtXMLNode::Typed(THtNode& node)
{
    if (!node.ClassInfo().InheritsFrom(kClassInfo))
        throw EAssertionFailed(u"The nodes of an XML tree have to descend from THtXMLNode"_s);
    return static_cast<THtXMLNode&>(node);
}

/// A new last child of the class that this node wants for the tag, which it does not get yet.
THtXMLNode& THtXMLNode::NewChild(const THtTagName& tag)
{
    if (typeid(*this) == typeid(THtXMLNode))
        return AddPlain(*this);
    const THtNodeClass childClass = GetElementClass(tag, nullptr);
    if (childClass && !childClass.Info->InheritsFrom(kClassInfo))
        throw EAssertionFailed(u"The class of an XML element has to descend from THtXMLNode"_s);
    return static_cast<THtXMLNode&>(*InternalAddChild(childClass));
}

TStringList& THtXMLNode::ProcessingInstructions()
{
    if (!FInstructions)
        FInstructions = std::make_unique<TStringList>();
    return *FInstructions;
}

THtXMLNode* THtXMLNode::GetNode(std::int32_t Index) const
{
    if (Index < 0 || Index >= GetCount())
        throw EHtXML(Format(u"Node index %d out of range", {Index}));
    return &Typed(*THtNode::GetNode(Index));
}

/// Everything but the place in a tree goes.
void THtXMLNode::Reset()
{
    DeleteAllChildren();
    DropNodes();
    ReplaceAttributes(nullptr);
    SetTag(THtTagName());
    FContent = String();
    TagType = htUnknown;
    FInstructions.reset();
    FIsArray = false;
    FPreserveSpace = false;
    FJSONKind = jkNone;
}

/// A node of the same class with everything but children and place. Attributes go over one by one: their
/// values may be empty, and their store may be of another kind.
std::unique_ptr<THtXMLNode> THtXMLNode::NewCopy() const
{
    std::unique_ptr<THtNode> made = NodeClass().Create();
    THtXMLNode& copy = Typed(*made);
    copy.SetTag(TagName());
    copy.FContent = FContent;
    copy.TagType = TagType;
    copy.FIsArray = FIsArray;
    copy.FPreserveSpace = FPreserveSpace;
    copy.FJSONKind = FJSONKind;
    if (FAttributes) {
        copy.ReplaceAttributes(std::make_unique<THtAttributes>(FAttributes->CaseSensitive));
        for (const THtAttribute& attribute : *FAttributes)
            copy.FAttributes->Add(attribute.Name, attribute.Value);
    }
    if (FInstructions)
        copy.ProcessingInstructions().Assign(FInstructions.get());
    if (FNodes)
        copy.GetNodes(); // a list without children shows in print
    made.release();
    return std::unique_ptr<THtXMLNode>(&copy);
}

/// Everything but the place in a tree goes over to a node that is empty.
void THtXMLNode::MoveContentsTo(THtXMLNode& target)
{
    if (FNodes) {
        target.GetNodes().InsertRange(0, Children());
        FNodes->ReleaseAll();
    }
    target.ReplaceAttributes(std::unique_ptr<THtAttributes>(std::exchange(FAttributes, nullptr)));
    target.SetTag(TagName());
    target.FContent = std::exchange(FContent, String());
    target.TagType = TagType;
    target.FInstructions = std::move(FInstructions);
    target.FIsArray = std::exchange(FIsArray, false);
    target.FPreserveSpace = std::exchange(FPreserveSpace, false);
    target.FJSONKind = std::exchange(FJSONKind, jkNone);
}

std::unique_ptr<THtXMLNode> THtXMLNode::Clone() const
{
    std::unique_ptr<THtXMLNode> top = NewCopy();
    THtNode* copy = top.get();
    for (const THtNode* source = this;;) {
        const THtNode* next = source->FirstChild();
        if (!next) {
            for (; source != this && !source->NextSibling(); source = source->Parent())
                copy = copy->Parent();
            if (source == this)
                return top;
            next = source->NextSibling();
            copy = copy->Parent();
        }
        std::unique_ptr<THtXMLNode> child = Typed(*next).NewCopy();
        copy->GetNodes().Add(child.get());
        copy = child.release();
        source = next;
    }
}

void THtXMLNode::Assign(const THtXMLNode& Source)
{
    const std::unique_ptr<THtXMLNode> copy = Source.Clone();
    Reset();
    copy->MoveContentsTo(*this);
}

}
