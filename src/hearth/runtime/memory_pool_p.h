// The pages without blocks and the heaps without threads, for all threads.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/memory_heap_p.h>

#include <cstddef>
#include <mutex>

namespace ht::memory {

/// Where heaps get their pages from. All of it may be used by several threads at once; FMutex guards every
/// field.
class PagePool {
public:
    static constexpr std::size_t kKeptBytes = std::size_t{32} << 20U;

    /// Free chunks are given back to the system while this much is free besides them.
    constexpr explicit PagePool(std::size_t keptBytes = kKeptBytes) noexcept
        : FKeptPages(keptBytes / kPageBytes)
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

    /// An idle heap or a new one, for the calling thread alone; null when there is no memory.
    PageHeap* TakeHeap() noexcept;
    /// Makes a heap idle. Its blocks stay valid.
    void Park(PageHeap& heap) noexcept;
    /// All idle heaps, linked by NextIdle, for the calling thread alone. It parks each of them again.
    PageHeap* BorrowIdle() noexcept;

    /// Gives every free chunk back to the system, after having collected the idle heaps.
    void Collect() noexcept;

    /// Chunks that it holds now.
    std::size_t ChunkCount() noexcept;

    /// For a process that forks: no other thread is inside when the copy is made.
    void Lock() noexcept { FMutex.lock(); }
    void Unlock() noexcept { FMutex.unlock(); }

private:
    Page* Pop() noexcept;
    Chunk* MapChunk() noexcept;
    void AddChunk() noexcept;
    bool IsSpare(const Chunk& chunk, std::size_t keptPages) const noexcept;
    void Detach(Chunk& chunk) noexcept;

    std::mutex FMutex;
    PageList FFree;
    std::size_t FFreePages = 0;
    const std::size_t FKeptPages;
    Chunk* FChunks = nullptr;
    std::size_t FChunkCount = 0;
    bool FHugePagesPay = true;
    PageHeap* FHeaps = nullptr;
    PageHeap* FIdle = nullptr;
};

}
