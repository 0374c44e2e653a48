// The pages without blocks and the heaps without threads, for all threads.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/memory_heap_p.h>

#include <cstddef>
#include <mutex>

namespace ht::memory {

/// A block that is too large for pages stands alone in a stretch.
struct alignas(64) LargeBlock {
    /// The least size of such a block.
    static constexpr std::size_t kSmallest = std::size_t{1} << 20U;

    static LargeBlock& Of(void* block) noexcept { return static_cast<LargeBlock*>(block)[-1]; }
    void* Block() noexcept { return this + 1; }
    /// Bytes of the block.
    std::size_t Room() const noexcept { return Whole.Bytes - sizeof(LargeBlock); }

    Page Record; // lies where a chunk has that of its first page
    PagePool* Pool;
    Stretch Whole;
};

/// Where heaps get their pages from. All of it may be used by several threads at once; FMutex guards every
/// field.
class PagePool {
public:
    static constexpr std::size_t kKeptBytes = std::size_t{32} << 20U;
    static constexpr std::size_t kSpareBytes = std::size_t{128} << 20U;

    /// Free chunks become spare while `keptBytes` are free besides them, and so do large blocks that are
    /// freed. Spare memory goes back to the system when it is more than `spareBytes`, and what nobody took
    /// for two seconds as soon as a page, a chunk or a large block is taken or freed by then.
    constexpr explicit PagePool(
        std::size_t keptBytes = kKeptBytes, std::size_t spareBytes = kSpareBytes) noexcept
        : FKeptPages(keptBytes / kPageBytes)
        , FSpare(spareBytes)
    {
    }
    /// Ends all heaps and blocks.
    ~PagePool();
    PagePool(const PagePool&) = delete;
    PagePool& operator=(const PagePool&) = delete;

    /// The free page that came back last, null when there is none.
    Page* TakeFree() noexcept;
    /// A page, if need be of a new chunk; null when the system has no memory.
    Page* TakeNew() noexcept;
    void GiveBack(Page& page) noexcept;

    /// A block of at least that size, null when there is no memory.
    void* TakeLarge(std::size_t size) noexcept;
    void GiveBack(LargeBlock& block) noexcept;
    /// Gives all spare memory back to the system; false if there was none.
    bool DropSpare() noexcept;

    /// An idle heap or a new one, for the calling thread alone; null when there is no memory.
    PageHeap* TakeHeap() noexcept;
    /// Makes a heap idle. Its blocks stay valid.
    void Park(PageHeap& heap) noexcept;
    /// All idle heaps, linked by NextIdle, for the calling thread alone. It parks each of them again.
    PageHeap* BorrowIdle() noexcept;

    /// Gives every free chunk and what is spare back to the system, after having collected the idle heaps.
    void Collect() noexcept;

    /// Chunks that it holds now.
    std::size_t ChunkCount() noexcept;

    /// For a process that forks: no other thread is inside when the copy is made.
    void Lock() noexcept { FMutex.lock(); }
    void Unlock() noexcept { FMutex.unlock(); }

private:
    Page* Pop() noexcept;
    Stretch Map(std::size_t bytes) noexcept;
    Stretch TakeStretch(std::size_t bytes) noexcept;
    bool AddChunk() noexcept;
    void Keep(const Stretch& stretch) noexcept;
    Stretch OldSpare() noexcept;
    bool IsSpare(const Chunk& chunk, std::size_t keptPages) const noexcept;
    void Detach(Chunk& chunk) noexcept;

    std::mutex FMutex;
    PageList FFree;
    std::size_t FFreePages = 0;
    const std::size_t FKeptPages;
    Chunk* FChunks = nullptr;
    std::size_t FChunkCount = 0;
    SpareStretches FSpare;
    bool FHugePagesPay = true;
    PageHeap* FHeaps = nullptr;
    PageHeap* FIdle = nullptr;
};

}
