// Chunks of memory from the system, the pages they are cut into, and the lists that pages stand in.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/memory_spare_p.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ht::memory {

class PageHeap;

inline constexpr std::size_t kChunkBytes = std::size_t{4} << 20U;
inline constexpr std::size_t kPageBytes = std::size_t{64} << 10U;
inline constexpr std::size_t kPagesPerChunk = kChunkBytes / kPageBytes;

/// What a block is while nobody uses it.
struct FreeBlock {
    FreeBlock* Next;
};

/// What is known of a page, whose memory gives blocks of one size. Only the thread of the owning heap touches
/// it, except for Owner and BlockBytes.
struct alignas(64) Page {
    /// A block that came back, or else the next one that was never used since the page began; null when full.
    void* Take() noexcept;
    void Put(FreeBlock* block) noexcept;
    bool HasRoom() const noexcept { return Free || Bump <= Limit; }

    /// Makes the page one of the heap, for blocks of that size, all of them free.
    void Begin(PageHeap& heap, std::size_t blockBytes) noexcept;
    /// Forgets the blocks that came back: the next ones are neighbours again, and are written without being
    /// read.
    void Restart() noexcept;

    /// The record of the page in which a block lies.
    static Page& Of(void* block) noexcept;

    /// The heap, with kFull added while the page is full and thus in none of the heap's lists. Read by every
    /// thread that frees a block; stored with release order, since the reader may see the heap here for the
    /// first time.
    std::atomic<std::uintptr_t> Owner;
    FreeBlock* Free;
    std::uintptr_t Bump;
    std::uintptr_t Limit; // the last place where a block may begin
    std::uint32_t Used;
    std::uint32_t BlockBytes;
    Page* Previous;
    Page* Next;
    std::uintptr_t Start;

    static constexpr std::uintptr_t kFull = 1;
    /// Stands for an owner where the block is a large one.
    static constexpr std::uintptr_t kLarge = 2;
};

static_assert(sizeof(Page) <= 64, "a record is one cache line");

/// Pages in a row. A page stands in one list at most.
class PageList {
public:
    void Push(Page& page) noexcept; // to the front, where Pop takes it
    void Append(Page& page) noexcept;
    void Remove(Page& page) noexcept;
    Page* Pop() noexcept;

private:
    Page* FFirst = nullptr;
    Page* FLast = nullptr;
};

/// A stretch of memory that begins at a multiple of its size. The records of its pages stand together at its
/// front: inside their pages, 64 KiB apart, they would compete for the same few lines of every cache.
struct Chunk {
    /// Makes a chunk of a stretch of kChunkBytes, whatever was in it.
    static Chunk* Make(const Stretch& stretch) noexcept;
    /// Ends the chunk; its stretch is the caller's again.
    Stretch End() noexcept;
    static Chunk& Of(const void* block) noexcept;
    /// Whether an address, of whatever allocator, lies in some chunk.
    static bool Holds(const void* block) noexcept;
    /// Says for Holds whose the kChunkBytes are that begin here.
    static void Mark(const void* place, bool ours) noexcept;

    void SetBounds(std::size_t index) noexcept;

    std::array<Page, kPagesPerChunk> Pages;
    Chunk* Previous;
    Chunk* Next;
    std::size_t FreePages;
    TPageKind Kind;
};

/// One bit for each place where a chunk may lie; the parts that nobody sets cost nothing.
inline constexpr unsigned kAddressBits = sizeof(void*) == 8 ? 48 : 32;
inline constexpr std::size_t kChunkPlaces = (std::uintmax_t{1} << kAddressBits) / kChunkBytes;
extern std::array<std::uint64_t, kChunkPlaces / 64> gChunkTable;

inline std::atomic_ref<std::uint64_t> ChunkBits(std::uintptr_t place) noexcept
{
    return std::atomic_ref(gChunkTable.data()[place / 64]);
}

inline bool Chunk::Holds(const void* block) noexcept
{
    const std::uintptr_t place = reinterpret_cast<std::uintptr_t>(block) / kChunkBytes;
    return place < kChunkPlaces && (ChunkBits(place).load(std::memory_order_relaxed) >> place % 64 & 1U);
}

inline Chunk& Chunk::Of(const void* block) noexcept
{
    return *reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(block) & ~(kChunkBytes - 1));
}

inline Page& Page::Of(void* block) noexcept
{
    const std::size_t index = reinterpret_cast<std::uintptr_t>(block) / kPageBytes % kPagesPerChunk;
    return Chunk::Of(block).Pages.data()[index];
}

inline void* Page::Take() noexcept
{
    if (FreeBlock* block = Free) {
        Free = block->Next;
        __builtin_prefetch(Free); // the next one may have lain idle for long
        ++Used;
        return block;
    }
    const std::uintptr_t block = Bump;
    if (block > Limit)
        return nullptr;
    Bump = block + BlockBytes;
    ++Used;
    return reinterpret_cast<void*>(block);
}

inline void Page::Put(FreeBlock* block) noexcept
{
    block->Next = Free;
    Free = block;
    --Used;
}

}
