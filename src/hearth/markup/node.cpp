// Building and taking apart: children, parents, tags.
// SPDX-License-Identifier: MIT
#include <hearth/markup/node.h>

#include <hearth/runtime/exceptions.h>

#include <string>

namespace ht {

namespace {

[[noreturn]] void RaiseNotFound()
{
    throw Exception(u"Child node not found"_s);
}

[[noreturn, gnu::noinline]] void RaiseNoClass()
{
    throw EAssertionFailed(u"No class for a new node"_s);
}

std::unique_ptr<THtNode> NewNode(const THtNodeClass& nodeClass)
{
    if (!nodeClass) [[unlikely]]
        RaiseNoClass();
    return nodeClass.Create();
}

}

THtNode::~THtNode()
{
    delete FNodes;
    delete FAttributes;
}

THtNodeClass THtNode::NodeClass() const
{
    return THtNodeClass::Of<THtNode>();
}

THtNodeList& THtNode::GetNodes()
{
    if (!FNodes)
        FNodes = new THtNodeList(*this);
    return *FNodes;
}

void THtNode::CallScriptFunction(const String& /*Name*/) { }

std::int32_t THtNode::ScriptCompare(const TObject* /*Other*/) const
{
    return 0;
}

THtNodeClass THtNode::GetElementClass(const THtTagName& ATag, const THtNode* ARoot) const
{
    if (ARoot)
        return ARoot->GetElementClass(ATag, nullptr);
    return FParent ? Root()->GetElementClass(ATag, nullptr) : NodeClass();
}

THtNode* THtNode::InternalAddChild(const THtNodeClass& AClass)
{
    std::unique_ptr<THtNode> child = NewNode(AClass);
    child->FParent = this;
    GetNodes().Add(child.get());
    return child.release();
}

std::unique_ptr<THtAttributes> THtNode::CreateAttributes() const
{
    return std::make_unique<THtAttributes>();
}

THtNode* THtNode::AddChild(const THtNodeClass& AClass)
{
    std::unique_ptr<THtNode> child = NewNode(AClass);
    child->SetParent(this);
    child->FParent = this; // whatever a descendant made of it: the list relies on it
    GetNodes().Add(child.get());
    return child.release();
}

void THtNode::DeleteChild(THtNode* E)
{
    ExtractChild(E);
}

void THtNode::DeleteAllChildren()
{
    if (FNodes)
        FNodes->Clear();
}

std::unique_ptr<THtNodeList> THtNode::GetJQueryList(const String& /*Query*/, bool /*FirstOnly*/)
{
    return nullptr;
}

String THtNode::TextContent() const
{
    // A node without a tag adds its own content only.
    std::u16string text(FContent.View());
    const THtNode* node = FirstChild();
    while (node) {
        text += node->FContent.View();
        node = node->FTag.IsEmpty() && node->FNodes ? node->Last()->NextNodeIn(this) : node->NextNodeIn(this);
    }
    return String(text);
}

THtNode* THtNode::AddNode(std::unique_ptr<THtNode>&& Node)
{
    if (!Node || Node->FParent)
        throw Exception(u"Only a node without a parent can be added"_s);
    if (Node.get() == this || HasAsParent(Node.get()))
        throw Exception(u"A node cannot be added to its own subtree"_s);
    GetNodes().Add(Node.get());
    Node->FParent = this;
    return Node.release();
}

std::unique_ptr<THtNode> THtNode::ExtractChild(THtNode* E)
{
    if (!FNodes || FNodes->RemoveItem(E) < 0)
        RaiseNotFound();
    E->FParent = nullptr;
    return std::unique_ptr<THtNode>(E);
}

void THtNode::Exchange(THtNode* Node1, THtNode* Node2)
{
    const std::int32_t index1 = FNodes ? FNodes->IndexOf(Node1) : -1;
    const std::int32_t index2 = FNodes ? FNodes->IndexOf(Node2) : -1;
    if (index1 < 0 || index2 < 0)
        RaiseNotFound();
    FNodes->Exchange(index1, index2);
}

THtNode* THtNode::GetNode(std::int32_t Index) const
{
    return FNodes && FNodes->Count() > 0 ? (*FNodes)[Index] : nullptr;
}

std::span<THtNode* const> THtNode::Children() const noexcept
{
    return FNodes ? std::span<THtNode* const>(FNodes->begin(), FNodes->end()) : std::span<THtNode* const>();
}

void THtNode::SetTag(const THtTagName& ATag)
{
    FTag = ATag.Name;
    FTagHash = ATag.Hash;
    FTagId = ATag.Id;
}

void THtNode::DropNodes() noexcept
{
    delete FNodes;
    FNodes = nullptr;
}

}
