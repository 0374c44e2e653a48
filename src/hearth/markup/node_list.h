// The children of a node, or a result set of nodes.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/object.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace ht {

class THtNode;

/// An ordered list of nodes. A list made for an owner holds that node's children: it owns them, keeps their
/// parent and sibling links, and every node knows its place in it. A list made without one is a result set:
/// it owns nothing and never touches its nodes. Indexes count from 0; one outside the list raises
/// ERangeError.
class HT_API THtNodeList : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtNodeList", &TObject::kClassInfo};

    /// A result set.
    THtNodeList() noexcept = default;
    /// The children of `owner`.
    explicit THtNodeList(THtNode& owner) noexcept
        : FOwner(&owner)
    {
    }
    ~THtNodeList() override;
    THtNodeList(const THtNodeList&) = delete;
    THtNodeList& operator=(const THtNodeList&) = delete;

    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    std::int32_t Count() const noexcept { return FCount; }
    bool OwnsObjects() const noexcept { return FOwner != nullptr; }
    THtNode* operator[](std::int32_t index) const { return FItems[Checked(index)]; }
    THtNode* GetItem(std::int32_t index) const { return (*this)[index]; }
    THtNode* First() const noexcept { return FCount > 0 ? FItems[0] : nullptr; }
    THtNode* Last() const noexcept { return FCount > 0 ? FItems[FCount - 1] : nullptr; }
    THtNode* const* begin() const noexcept { return FItems; }
    THtNode* const* end() const noexcept { return FItems + FCount; }
    /// Place of a node, -1 if it is not here. Takes constant time in a list of children.
    std::int32_t IndexOf(const THtNode* node) const noexcept;

    /// Appends; an owning list takes the node over. Returns its index.
    std::int32_t Add(THtNode* node);
    /// Puts the node in front of `index`, which may be the count.
    void Insert(std::int32_t index, THtNode* node);
    /// Puts several nodes in front of `index`, in their order.
    void InsertRange(std::int32_t index, std::span<THtNode* const> nodes);
    /// Removes an entry; an owning list destroys the node.
    void Delete(std::int32_t index);
    /// Removes the entry of a node without destroying it; returns its former index, -1 if it was not here.
    std::int32_t RemoveItem(THtNode* node);
    /// Removes all entries without destroying the nodes.
    void ReleaseAll() noexcept;
    void Exchange(std::int32_t index1, std::int32_t index2);
    /// Takes the entry at `from` out and puts it in at `to`.
    void Move(std::int32_t from, std::int32_t to);
    /// Removes all entries; an owning list destroys the nodes, however deep they are nested, without
    /// recursion.
    void Clear();

private:
    friend class THtNode;

    std::int32_t Checked(std::int32_t index) const;
    void Grow(std::int32_t added);
    void TakeOut(std::int32_t index) noexcept;
    void Link(std::int32_t index) noexcept;
    void LinkRange(std::int32_t from, std::int32_t to) noexcept;
    void DestroyNodes() noexcept;

    /// One child is the most common number, so room for it comes with the list.
    static constexpr std::int32_t kInlineCapacity = 1;

    std::int32_t FCount = 0;
    std::int32_t FCapacity = kInlineCapacity;
    mutable std::int32_t FNumbered = 0; // nodes below this index know their place
    THtNode* FOwner = nullptr;
    THtNode** FItems = FInline;
    THtNode* FInline[kInlineCapacity]{};
};

/// A result set that everybody who holds it shares. Lifetime: the nodes are the tree's.
class HT_API IHtNodeList {
public:
    virtual ~IHtNodeList();
    virtual THtNodeList& List() noexcept = 0;

    std::int32_t Count() { return List().Count(); }
    THtNode* operator[](std::int32_t index) { return List()[index]; }
    THtNode* const* begin() { return List().begin(); }
    THtNode* const* end() { return List().end(); }
};

/// Called for each node that a query finds; setting `Stop` ends the calls.
using THtNodeProcRef = std::function<void(THtNode& Node, bool& Stop)>;

}
