// Keeping links and places of children, and destroying trees without recursion.
// SPDX-License-Identifier: MIT
#include <hearth/markup/node_list.h>

#include <hearth/markup/node.h>
#include <hearth/runtime/checked.h>
#include <hearth/runtime/memory.h>

#include <algorithm>

namespace ht {

THtNodeList::~THtNodeList()
{
    if (FCount > 0)
        Clear();
    if (FItems != FInline)
        memory::Free(FItems);
}

std::int32_t THtNodeList::Checked(std::int32_t index) const
{
    if (static_cast<std::uint32_t>(index) >= static_cast<std::uint32_t>(FCount)) [[unlikely]]
        RaiseRangeError();
    return index;
}

std::int32_t THtNodeList::IndexOf(const THtNode* node) const noexcept
{
    if (!FOwner) {
        const auto found = std::find(begin(), end(), node);
        return found == end() ? -1 : static_cast<std::int32_t>(found - begin());
    }
    if (!node || node->FParent != FOwner)
        return -1;
    const auto isHere = [&] { return node->FIndex < FCount && FItems[node->FIndex] == node; };
    if (First() == node)
        return 0;
    if (!isHere()) {
        for (; FNumbered < FCount; ++FNumbered)
            FItems[FNumbered]->FIndex = FNumbered;
    }
    return isHere() ? node->FIndex : -1;
}

void THtNodeList::Grow(std::int32_t added)
{
    const std::int32_t needed = CheckedAdd(FCount, added);
    if (needed <= FCapacity)
        return;
    constexpr std::int32_t kFirstBlock = 4;
    const std::int32_t doubled = FCapacity > INT32_MAX / 2 ? INT32_MAX : FCapacity * 2;
    const std::int32_t capacity = std::max({needed, doubled, kFirstBlock});
    const std::size_t bytes = static_cast<std::size_t>(capacity) * sizeof(THtNode*);
    if (FItems == FInline) {
        auto* items = static_cast<THtNode**>(memory::Allocate(bytes));
        std::copy_n(FItems, FCount, items);
        FItems = items;
    } else {
        FItems = static_cast<THtNode**>(memory::Reallocate(FItems, bytes));
    }
    FCapacity = capacity;
}

/// Sets the sibling link of the entry at `index` and of the one in front of it.
void THtNodeList::Link(std::int32_t index) noexcept
{
    LinkRange(index, index);
}

/// Sets the sibling links that lead to and from the entries `from` to `to`.
void THtNodeList::LinkRange(std::int32_t from, std::int32_t to) noexcept
{
    if (!FOwner)
        return;
    FNumbered = std::min(FNumbered, from);
    for (std::int32_t i = std::max(0, from - 1); i <= std::min(to, FCount - 1); ++i)
        FItems[i]->FNextSibling = i + 1 < FCount ? FItems[i + 1] : nullptr;
}

void THtNodeList::Insert(std::int32_t index, THtNode* node)
{
    InsertRange(index, {&node, 1});
}

void THtNodeList::InsertRange(std::int32_t index, std::span<THtNode* const> nodes)
{
    if (index != FCount)
        Checked(index);
    if (nodes.empty())
        return;
    const std::int32_t added = CheckedLength(nodes.size());
    Grow(added);
    std::copy_backward(FItems + index, FItems + FCount, FItems + FCount + added);
    std::copy(nodes.begin(), nodes.end(), FItems + index);
    FCount += added;
    for (std::int32_t i = index; FOwner && i < index + added; ++i)
        FItems[i]->FParent = FOwner;
    LinkRange(index, index + added - 1);
}

/// Closes the gap of an entry; its node keeps no link into the list.
void THtNodeList::TakeOut(std::int32_t index) noexcept
{
    if (FOwner)
        FItems[index]->FNextSibling = nullptr;
    std::copy(FItems + index + 1, FItems + FCount, FItems + index);
    --FCount;
    Link(index);
}

void THtNodeList::Delete(std::int32_t index)
{
    const std::unique_ptr<THtNode> node(OwnsObjects() ? FItems[Checked(index)] : nullptr);
    TakeOut(Checked(index));
}

std::int32_t THtNodeList::RemoveItem(THtNode* node)
{
    const std::int32_t index = IndexOf(node);
    if (index < 0)
        return index;
    TakeOut(index);
    if (FOwner)
        node->FParent = nullptr;
    return index;
}

void THtNodeList::ReleaseAll() noexcept
{
    FCount = 0;
    FNumbered = 0;
}

void THtNodeList::Exchange(std::int32_t index1, std::int32_t index2)
{
    std::swap(FItems[Checked(index1)], FItems[Checked(index2)]);
    Link(index1);
    Link(index2);
}

void THtNodeList::Move(std::int32_t from, std::int32_t to)
{
    THtNode** const first = FItems + Checked(from);
    THtNode** const last = FItems + Checked(to);
    if (from < to)
        std::rotate(first, first + 1, last + 1);
    else
        std::rotate(last, first, first + 1);
    LinkRange(std::min(from, to), std::max(from, to));
}

void THtNodeList::Clear()
{
    if (OwnsObjects())
        DestroyNodes();
    ReleaseAll();
}

/// Destroys the subtrees from their leaves up. The way back leads through the parents, which are set anew on
/// the way down, so the native stack stays flat however deep the tree is.
void THtNodeList::DestroyNodes() noexcept
{
    THtNodeList* list = this;
    for (;;) {
        if (list->FCount == 0) {
            if (list == this)
                return;
            list = list->FOwner->FParent->FNodes;
            delete list->FItems[--list->FCount];
            continue;
        }
        THtNode* node = list->FItems[list->FCount - 1];
        if (node->FNodes && node->FNodes->FCount > 0) {
            node->FParent = list->FOwner;
            list = node->FNodes;
        } else {
            --list->FCount;
            // The node that goes next is on its way from memory while this one goes.
            if (list->FCount > 0)
                __builtin_prefetch(list->FItems[list->FCount - 1]);
            delete node;
        }
    }
}

}
