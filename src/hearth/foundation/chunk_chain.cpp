// Growing, reading and joining chains of chunks.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/chunk_chain.h>

#include <hearth/runtime/memory.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <utility>

namespace ht::detail {

namespace {

constexpr std::int32_t kMostUnits = std::numeric_limits<std::int32_t>::max();

/// A node that was made for appending has its storage behind it in one block.
void* StorageBehind(TFSNode* node) noexcept
{
    return node + 1;
}

}

template <class Unit> Unit* ChunkChain<Unit>::NewStorage(std::int32_t size)
{
    const std::size_t bytes = CheckedMul(static_cast<std::size_t>(size), sizeof(Unit));
    return static_cast<Unit*>(memory::Allocate(bytes));
}

template <class Unit> void ChunkChain<Unit>::FreeStorage(TFSNode& node) noexcept
{
    if (node.Data != StorageBehind(&node))
        memory::Free(node.Data);
}

template <class Unit> void ChunkChain<Unit>::FreeBehindHead() noexcept
{
    for (PFSNode node = std::exchange(FHead.Next, nullptr); node;) {
        const PFSNode next = node->Next;
        FreeStorage(*node);
        memory::Free(node);
        node = next;
    }
    FCurrent = &FHead;
    FBefore = 0;
}

template <class Unit> void ChunkChain<Unit>::DropCurrent() noexcept
{
    const PFSNode dropped = FCurrent;
    FCurrent = dropped->Previous;
    FCurrent->Next = nullptr;
    FBefore -= FCurrent->Len;
    // More may stand in front of this chunk now than when it was made.
    FCurrent->Size = std::min(FCurrent->Size, kMostUnits - FBefore);
    FreeStorage(*dropped);
    memory::Free(dropped);
}

template <class Unit> void ChunkChain<Unit>::Clear() noexcept
{
    FreeBehindHead();
    FreeStorage(FHead);
    FHead = {};
}

template <class Unit> Unit* ChunkChain<Unit>::AddSpace(std::int32_t n)
{
    const std::int32_t before = CheckedAdd(FBefore, FCurrent->Len);
    // The whole chunk has to count in 32 bits, so that appending inside it needs no check.
    const std::int32_t most = kMostUnits - before;
    if (n > most)
        RaiseIntOverflow();
    const std::int32_t size = std::max(n, std::min(FDelta, most));
    if (FCurrent->Size == 0) {
        FCurrent->Data = NewStorage(size);
        FCurrent->Size = size;
        FCurrent->Len = 0;
        return static_cast<Unit*>(FCurrent->Data);
    }
    const std::size_t bytes = CheckedMul(static_cast<std::size_t>(size), sizeof(Unit));
    auto* node = static_cast<PFSNode>(memory::Allocate(CheckedAdd(sizeof(TFSNode), bytes)));
    *node = {StorageBehind(node), size, 0, nullptr, FCurrent};
    FCurrent->Next = node;
    FCurrent = node;
    FBefore = before;
    return static_cast<Unit*>(node->Data);
}

template <class Unit> void ChunkChain<Unit>::AppendElsewhere(const Unit* src, std::size_t n)
{
    if (n == 0)
        return;
    const std::int32_t length = CheckedLength(n);
    std::memcpy(AddSpace(length), src, n * sizeof(Unit));
    Commit(length);
}

template <class Unit> void ChunkChain<Unit>::AppendSpaces(std::int32_t count)
{
    Unit* const to = Reserve(count);
    if (count < 1)
        return;
    std::fill_n(to, count, static_cast<Unit>(' '));
    Commit(count);
}

template <class Unit>
void ChunkChain<Unit>::CopyTo(Unit* to, std::int32_t start, std::int32_t count) const noexcept
{
    for (const TFSNode* node = &FHead; node && count > 0; node = node->Next) {
        const std::int32_t skipped = std::min(start, node->Len);
        start -= skipped;
        const std::int32_t taken = std::min(count, node->Len - skipped);
        if (taken == 0)
            continue;
        std::memcpy(to, static_cast<const Unit*>(node->Data) + skipped,
            static_cast<std::size_t>(taken) * sizeof(Unit));
        to += taken;
        count -= taken;
    }
}

template <class Unit> bool ChunkChain<Unit>::StartsWith(View s) const noexcept
{
    if (s.empty())
        return false;
    for (const TFSNode* node = &FHead; node && !s.empty(); node = node->Next) {
        const View text = TextOf(*node).substr(0, s.size());
        if (!s.starts_with(text))
            return false;
        s.remove_prefix(text.size());
    }
    return s.empty();
}

template <class Unit> std::int32_t ChunkChain<Unit>::PosOf(View s) const
{
    if (s.empty() || s.size() > static_cast<std::size_t>(GetTotalLen()))
        return 0;
    std::basic_string<Unit> border;
    View previous;
    std::size_t before = 0; // units in front of this chunk
    for (const TFSNode* node = &FHead; node; node = node->Next) {
        const View text = TextOf(*node);
        const View tail = previous.substr(previous.size() - std::min(previous.size(), s.size() - 1));
        border.assign(tail).append(text.substr(0, s.size() - 1));
        std::size_t found = border.find(s);
        if (found != View::npos)
            return static_cast<std::int32_t>(before - tail.size() + found + 1);
        found = text.find(s);
        if (found != View::npos)
            return static_cast<std::int32_t>(before + found + 1);
        before += text.size();
        previous = text;
    }
    return 0;
}

/// A node with the four fields of a head, whose storage stays where it is. The byte behind the node keeps
/// foreign storage from starting right there.
template <class Unit> PFSNode ChunkChain<Unit>::NewNodeOfHead(const TFSNode& head, PFSNode previous)
{
    const PFSNode node = new (memory::Allocate(sizeof(TFSNode) + 1)) TFSNode(head);
    node->Previous = previous;
    if (node->Next)
        node->Next->Previous = node;
    return node;
}

template <class Unit> void ChunkChain<Unit>::PutInFront(View s)
{
    const std::int32_t length = CheckedLength(s.size());
    CheckedAdd(CheckedAdd(FBefore, FCurrent->Size), length);
    Unit* const storage = NewStorage(length);
    PFSNode node = nullptr;
    try {
        node = NewNodeOfHead(FHead, &FHead);
    } catch (...) {
        memory::Free(storage);
        throw;
    }
    std::memcpy(storage, s.data(), s.size() * sizeof(Unit));
    FHead = {storage, length, length, node};
    if (FCurrent == &FHead)
        FCurrent = node;
    FBefore += length;
}

/// The source's head keeps no capacity either: without storage it must not look as if there were room.
template <class Unit> void ChunkChain<Unit>::TakeChunks(ChunkChain& source)
{
    const std::int32_t before = CheckedAdd(CheckedAdd(FBefore, FCurrent->Len), source.FBefore);
    CheckedAdd(before, source.FCurrent->Size);
    const PFSNode node = NewNodeOfHead(source.FHead, FCurrent);
    FCurrent->Next = node;
    FCurrent = source.FCurrent == &source.FHead ? node : source.FCurrent;
    FBefore = before;
    source.FHead = {};
    source.FCurrent = &source.FHead;
    source.FBefore = 0;
}

template class ChunkChain<char16_t>;
template class ChunkChain<char>;

}
