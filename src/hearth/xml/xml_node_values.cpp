// Texts and names of XML nodes, searches by local name, and changes to whole trees.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_node.h>

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/xpath.h>

#include <algorithm>
#include <vector>

namespace ht {

namespace {

constexpr std::int32_t kValueDelta = 256;

std::u16string_view LocalPart(std::u16string_view name)
{
    const std::size_t colon = name.find(u':');
    return colon == std::u16string_view::npos ? name : name.substr(colon + 1);
}

/// "xmlns" and all with that prefix.
bool DeclaresNamespace(std::u16string_view name)
{
    return name == u"xmlns" || name.starts_with(u"xmlns:");
}

/// A prefix with a name behind it. The prefix "xml" is never declared and has a meaning of its own.
bool HasForeignPrefix(std::u16string_view name)
{
    return !name.starts_with(u"xml:") && LocalPart(name).size() < name.size() && !LocalPart(name).empty();
}

/// The attributes under their local names.
std::unique_ptr<THtAttributes> WithoutNamespaces(const THtAttributes& attributes)
{
    auto plain = std::make_unique<THtAttributes>(attributes.CaseSensitive);
    for (const THtAttribute& attribute : attributes) {
        if (!DeclaresNamespace(attribute.Name) && !HasForeignPrefix(attribute.Name))
            plain->AddNew(attribute.Name, attribute.Value);
    }
    for (const THtAttribute& attribute : attributes) {
        if (!DeclaresNamespace(attribute.Name) && HasForeignPrefix(attribute.Name))
            plain->AddNew(String(LocalPart(attribute.Name)), attribute.Value);
    }
    return plain;
}

/// True for a step that names a part of the elements in front of it.
bool NamesPart(const TXPathNode& step)
{
    const bool isText = step.Kind == xkTag && step.Tag.IsEmpty() && !step.All && step.Conditions.IsEmpty();
    return step.Kind == xkAttr || isText;
}

bool NamesNamespace(const THtAttribute& attribute)
{
    return DeclaresNamespace(attribute.Name) || HasForeignPrefix(attribute.Name);
}

}

String THtXMLNode::GetValue() const
{
    const auto isText = [](const THtNode* child) { return child->Tag().IsEmpty(); };
    const auto children = Children();
    if (FTag.IsEmpty() || std::none_of(children.begin(), children.end(), isText))
        return FContent;
    TFastString value(kValueDelta);
    value.Add(FContent);
    for (const THtNode* child : children) {
        if (isText(child))
            value.Add(child->Content());
    }
    return value.GetAsString();
}

void THtXMLNode::SetValue(const String& s)
{
    if (!FTag.IsEmpty() && FContent.IsEmpty()) {
        for (THtNode* child : Children()) {
            if (child->Tag().IsEmpty())
                return child->SetContent(s);
        }
    }
    SetContent(s);
}

String THtXMLNode::GetLocalName() const
{
    const std::u16string_view name = LocalPart(FTag);
    return name.size() == FTag.size() ? FTag : String(name);
}

String THtXMLNode::GetPrefix() const
{
    const std::size_t colon = FTag.View().find(u':');
    return colon == std::u16string_view::npos ? String() : String(FTag.View().substr(0, colon));
}

THtXMLNode* THtXMLNode::NodebyNameNS(std::u16string_view NodeName) const noexcept
{
    const THtNode* node = this;
    for (;;) {
        const std::size_t slash = NodeName.find(u'/');
        const std::u16string_view step = NodeName.substr(0, slash);
        const auto matches = [step](const THtNode* child) { return LocalPart(child->Tag()) == step; };
        const auto children = node->Children();
        const auto found = std::find_if(children.begin(), children.end(), matches);
        if (found == children.end())
            return nullptr;
        if (slash == std::u16string_view::npos)
            return static_cast<THtXMLNode*>(*found);
        node = *found;
        NodeName.remove_prefix(slash + 1);
    }
}

std::int32_t THtXMLNode::XPathSet(std::u16string_view path, const String& Value, bool FirstOnly)
{
    TXPathProcessor processor(path);
    const std::int32_t steps = processor.Nodes.Length();
    if (steps == 0)
        return 0;
    processor.Current = this;
    const TXPathNode& last = processor.Nodes.Last();
    const bool namesPart = NamesPart(last);
    THtNodeList matches;
    if (namesPart && steps == 1)
        matches.Add(this);
    else {
        if (namesPart)
            processor.Nodes[steps - 2].Next = nullptr;
        InternalXPath(processor.Nodes[0], &matches, FirstOnly);
    }
    for (THtNode* match : matches) {
        if (last.Kind == xkAttr)
            Typed(*match).NeedAttributes().SetAttribute(last.Tag, Value);
        else
            Typed(*match).SetValue(Value);
    }
    return matches.Count();
}

void THtXMLNode::RemoveNamespaces()
{
    for (THtNode* node = this; node; node = node->NextNodeIn(this)) {
        THtXMLNode& xmlNode = Typed(*node);
        if (HasForeignPrefix(xmlNode.FTag))
            xmlNode.SetTag(xmlNode.GetLocalName());
        const THtAttributes* attributes = xmlNode.FAttributes;
        if (attributes && std::any_of(attributes->begin(), attributes->end(), NamesNamespace))
            xmlNode.ReplaceAttributes(WithoutNamespaces(*attributes));
    }
}

void THtXMLNode::SortbyAttr(std::u16string_view AttrName)
{
    if (GetCount() < 2)
        return;
    struct TKeyed {
        String Key;
        THtNode* Node;
    };
    std::vector<TKeyed> keyed;
    for (THtNode* child : Children())
        keyed.push_back({child->GetAttribute(AttrName), child});
    std::stable_sort(
        keyed.begin(), keyed.end(), [](const TKeyed& a, const TKeyed& b) { return a.Key < b.Key; });
    std::vector<THtNode*> nodes;
    for (const TKeyed& child : keyed)
        nodes.push_back(child.Node);
    FNodes->ReleaseAll();
    FNodes->InsertRange(0, nodes);
}

}
