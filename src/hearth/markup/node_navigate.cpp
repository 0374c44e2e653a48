// Ways through the tree. None of them recurses: trees may be very deep.
// SPDX-License-Identifier: MIT
#include <hearth/markup/node.h>

#include <algorithm>
#include <string>

namespace ht {

namespace {

template <class Test> std::int32_t CountIf(std::span<THtNode* const> nodes, Test test)
{
    return static_cast<std::int32_t>(std::count_if(nodes.begin(), nodes.end(), test));
}

template <class Test> THtNode* FirstOf(std::span<THtNode* const> nodes, Test test)
{
    const auto found = std::find_if(nodes.begin(), nodes.end(), test);
    return found == nodes.end() ? nullptr : *found;
}

/// First descendant of `top` in document order that passes.
template <class Test> THtNode* FirstBelow(const THtNode* top, Test test)
{
    THtNode* node = top->FirstChild();
    while (node && !test(node))
        node = node->NextNodeIn(top);
    return node;
}

auto TagIs(std::u16string_view tag)
{
    return [tag](const THtNode* node) { return node->Tag() == tag; };
}

/// Nothing for a node that is no child of its parent.
std::span<THtNode* const> EarlierSiblings(const THtNode& node)
{
    const std::int32_t index = node.NodeIndex();
    return index > 0 ? node.Parent()->Children().first(static_cast<std::size_t>(index))
                     : std::span<THtNode* const>();
}

bool IsTagged(const THtNode* node)
{
    return !node->Tag().IsEmpty();
}

}

THtNode* THtNode::PreviousSibling() const noexcept
{
    const std::int32_t index = NodeIndex();
    return index > 0 ? (*FParent->FNodes)[index - 1] : nullptr;
}

THtNode* THtNode::NextNode() const noexcept
{
    return NextNodeIn(nullptr);
}

THtNode* THtNode::NextNodeIn(const THtNode* Top) const noexcept
{
    if (THtNode* child = FirstChild())
        return child;
    const THtNode* node = this;
    while (node != Top && !node->FNextSibling) {
        node = node->FParent;
        if (!node)
            return nullptr;
    }
    return node == Top ? nullptr : node->FNextSibling;
}

THtNode* THtNode::PreviousNode() const noexcept
{
    const THtNode* previous = PreviousSibling();
    return previous ? previous->Last() : FParent;
}

THtNode* THtNode::Last() const noexcept
{
    auto* node = const_cast<THtNode*>(this);
    while (THtNode* child = node->LastChild())
        node = child;
    return node;
}

THtNode* THtNode::FirstChildTag() const noexcept
{
    return FirstOf(Children(), [](const THtNode* node) { return IsTagged(node) && node->Tag() != u"!"; });
}

THtNode* THtNode::LastChildTag() const noexcept
{
    const auto nodes = Children();
    const auto found = std::find_if(nodes.rbegin(), nodes.rend(), IsTagged);
    return found == nodes.rend() ? nullptr : *found;
}

std::int32_t THtNode::ChildIndex() const noexcept
{
    return CountIf(EarlierSiblings(*this), IsTagged);
}

std::int32_t THtNode::TagIndex() const noexcept
{
    return CountIf(EarlierSiblings(*this), TagIs(FTag));
}

std::int32_t THtNode::NodeIndex() const noexcept
{
    return FParent && FParent->FNodes ? FParent->FNodes->IndexOf(this) : -1;
}

std::int32_t THtNode::Countof(std::u16string_view ATag) const noexcept
{
    return CountIf(Children(), TagIs(ATag));
}

bool THtNode::HasAsParent(const THtNode* E) const noexcept
{
    const THtNode* node = FParent;
    while (node && node != E)
        node = node->FParent;
    return node && E;
}

THtNode* THtNode::UpTo(std::u16string_view ATag) const noexcept
{
    return UpTo({ATag});
}

THtNode* THtNode::UpTo(std::initializer_list<std::u16string_view> ATags) const noexcept
{
    THtNode* node = FParent;
    while (node && std::find(ATags.begin(), ATags.end(), node->FTag.View()) == ATags.end())
        node = node->FParent;
    return node;
}

THtNode* THtNode::Root() noexcept
{
    THtNode* node = this;
    while (node->FParent)
        node = node->FParent;
    return node;
}

String THtNode::Path() const
{
    std::u16string path(FTag.View());
    for (const THtNode* node = FParent; node; node = node->FParent)
        path.append(1, u'/').append(node->FTag.View());
    return String(path);
}

THtNode* THtNode::NodebyName(std::u16string_view NodeName) const noexcept
{
    const THtNode* node = this;
    for (;;) {
        const std::size_t slash = NodeName.find(u'/');
        THtNode* found = FirstOf(node->Children(), TagIs(NodeName.substr(0, slash)));
        if (!found || slash == std::u16string_view::npos)
            return found;
        NodeName.remove_prefix(slash + 1);
        node = found;
    }
}

THtNode* THtNode::FindNode(std::u16string_view NodeName) const noexcept
{
    return FirstBelow(this, TagIs(NodeName));
}

THtNode* THtNode::NodebyAttr(std::u16string_view AttrName, std::u16string_view AttrValue) const
{
    return FirstOf(
        Children(), [&](const THtNode* node) { return node->GetAttribute(AttrName) == AttrValue; });
}

THtNode* THtNode::NodebyNameAttr(
    std::u16string_view NodeName, std::u16string_view AttrName, std::u16string_view AttrValue) const
{
    return FirstOf(Children(), [&](const THtNode* node) {
        return node->FTag == NodeName && node->GetAttribute(AttrName) == AttrValue;
    });
}

THtNode* THtNode::FindNodebyAttr(
    std::u16string_view NodeName, std::u16string_view AttrName, std::u16string_view AttrValue) const
{
    return FirstBelow(this, [&](const THtNode* node) {
        return (NodeName.empty() || node->FTag == NodeName) && node->GetAttribute(AttrName) == AttrValue;
    });
}

THtNode* THtNode::NodebyNameIndex(std::u16string_view AName, std::int32_t Index) const noexcept
{
    std::int32_t seen = 0;
    return FirstOf(Children(), [&](const THtNode* node) { return node->FTag == AName && seen++ == Index; });
}

}
