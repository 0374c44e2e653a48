// The chain of chunks under the fast strings: text that is never moved once it is written.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/checked.h>
#include <hearth/runtime/object.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ht {

/// One chunk of a chain.
struct TFSNode {
    void* Data = nullptr; // null while the node has no storage
    std::int32_t Size = 0; // capacity in units; 0 while the node has no storage
    std::int32_t Len = 0; // units in use
    TFSNode* Next = nullptr;
    TFSNode* Previous = nullptr; // null for the head
};

using PFSNode = TFSNode*;

namespace detail {

/// A singly linked chain whose last chunk alone is appended to. The text is what all chunks hold from the
/// head on; a closed chunk may be shorter than its capacity. A new chain owns no storage.
template <class Unit> class HT_API ChunkChain : public TObject {
public:
    using View = std::basic_string_view<Unit>;

    ChunkChain(const ChunkChain&) = delete;
    ChunkChain& operator=(const ChunkChain&) = delete;

    /// Length of the text, in constant time.
    std::int32_t GetTotalLen() const noexcept { return FBefore + FCurrent->Len; }
    /// Frees all storage; the buffer is as it was made.
    void Clear() noexcept;
    /// True when the text starts with `s`, by exact value; false for an empty `s`.
    bool StartsWith(View s) const noexcept;
    /// Position of `s`, from 1, or 0. Finds what lies in one chunk or in two neighbours, not what spans
    /// three.
    std::int32_t PosOf(View s) const;

protected:
    explicit ChunkChain(std::int32_t delta) noexcept
        : FDelta(delta)
    {
    }
    ~ChunkChain() override { Clear(); }

    /// Room for `n` units behind the text; Commit makes them part of it. Throws EIntOverflow, EOutOfMemory.
    Unit* Reserve(std::int32_t n)
    {
        if (n > FCurrent->Size - FCurrent->Len) [[unlikely]]
            return AddSpace(n);
        return static_cast<Unit*>(FCurrent->Data) + FCurrent->Len;
    }
    void Commit(std::int32_t n) noexcept { FCurrent->Len += n; }

    /// Opens a new chunk of at least `n` units, or gives the current one storage where it has none; returns
    /// the storage.
    Unit* AddSpace(std::int32_t n);

    /// Appends with direct stores up to four units: most pieces of markup are that short.
    void Append(const Unit* src, std::size_t n)
    {
        TFSNode& node = *FCurrent;
        // One question for both: is the piece empty, and does it not fit?
        if (n - 1 >= static_cast<std::size_t>(node.Size - node.Len)) [[unlikely]] {
            AppendElsewhere(src, n);
            return;
        }
        Unit* const to = static_cast<Unit*>(node.Data) + node.Len;
        if (n > 4) {
            std::char_traits<Unit>::copy(to, src, n);
        } else {
            // For each length from 1 to 4 these are all its units, some of them twice.
            to[0] = src[0];
            to[n >> 2U] = src[n >> 2U];
            to[n >> 1U] = src[n >> 1U];
            to[n - 1] = src[n - 1];
        }
        node.Len += static_cast<std::int32_t>(n);
    }
    void Append(View s) { Append(s.data(), s.size()); }
    void AppendOne(Unit c)
    {
        *Reserve(1) = c;
        Commit(1);
    }
    void AppendTwo(Unit c1, Unit c2)
    {
        Unit* const to = Reserve(2);
        to[0] = c1;
        to[1] = c2;
        Commit(2);
    }
    void AppendSpaces(std::int32_t count);
    /// Appends in a new chunk; nothing for a length of 0.
    void AppendElsewhere(const Unit* src, std::size_t n);

    static View TextOf(const TFSNode& node) noexcept
    {
        return {static_cast<const Unit*>(node.Data), static_cast<std::size_t>(node.Len)};
    }
    /// Copies `count` units from position `start` (from 0) on; both lie inside the text.
    void CopyTo(Unit* to, std::int32_t start, std::int32_t count) const noexcept;
    /// Frees every chunk behind the head and makes the head current, as it stands.
    void FreeBehindHead() noexcept;
    /// Frees the current chunk, which is not the head; the one before it is appended to again.
    void DropCurrent() noexcept;
    /// The head takes `storage`, full with `length` units, and what it held moves into a node behind it.
    void PutInFront(View s);
    /// Takes over the chunks of `source`, which is left empty.
    void TakeChunks(ChunkChain& source);

    TFSNode FHead;
    PFSNode FCurrent = &FHead;
    std::int32_t FBefore = 0; // units in front of the current chunk
    std::int32_t FDelta;

private:
    static Unit* NewStorage(std::int32_t size);
    static PFSNode NewNodeOfHead(const TFSNode& head, PFSNode previous);
    static void FreeStorage(TFSNode& node) noexcept;
};

extern template class ChunkChain<char16_t>;
extern template class ChunkChain<char>;

}

}
