// The small blocks of one thread.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/memory_chunk_p.h>

#include <array>
#include <atomic>
#include <cstddef>

namespace ht::memory {

class PagePool;

/// Blocks of up to kLargest bytes, in pages of one size each. One thread at a time works with a heap; it may
/// free blocks of every heap of the pool. Heaps live as long as their pool.
class alignas(64) PageHeap {
public:
    static constexpr std::size_t kStep = 16;
    static constexpr std::size_t kLargest = 512;

    /// A heap without pool, which has no blocks and gets none.
    constexpr PageHeap() noexcept;
    explicit PageHeap(PagePool& pool) noexcept;

    /// A block of at least that size, at most kLargest, aligned to 16; null when there is no memory.
    void* Allocate(std::size_t size) noexcept;
    /// The part of Allocate that is done when the page in use has no block: null then.
    void* AllocateAtOnce(std::size_t size) noexcept;
    void* AllocateSlowly(std::size_t size) noexcept;

    /// Takes back a block of this heap or another one of the pool.
    void Free(void* block) noexcept;

    /// Size of what stands behind a block of a heap.
    static std::size_t BlockBytes(void* block) noexcept { return Page::Of(block).BlockBytes; }
    /// Whether the page is that of a large block, which no heap has; Free takes it nevertheless.
    static bool IsLarge(const Page& page) noexcept
    {
        return page.Owner.load(std::memory_order_relaxed) == Page::kLarge;
    }
    static constexpr std::size_t RoundUp(std::size_t size) { return (size + kStep - 1) / kStep * kStep; }

    /// Takes in what other threads freed, and gives pages without blocks back to the pool.
    void Collect() noexcept;
    /// Lets the other heap have all pages in which there is room. What is full stays, and counts as room in
    /// another call.
    void MoveTo(PageHeap& other) noexcept;

    /// Of the pool: the next heap in its lists.
    PageHeap* NextHeap = nullptr;
    PageHeap* NextIdle = nullptr;

private:
    static constexpr std::size_t kClasses = kLargest / kStep + 1;

    /// Stands where there is no page: full from the beginning, so that the short way needs no question more.
    static Page NoPage;

    static constexpr std::size_t ClassOf(std::size_t size) { return (size + kStep - 1) / kStep; }
    static PageHeap* OwnerOf(const Page& page) noexcept;

    void FreeElsewhere(Page& page, FreeBlock* block) noexcept;
    void PushForeign(FreeBlock* block) noexcept;
    void TakeForeign() noexcept;
    void Emptied(Page& page) noexcept;
    void Retire(std::size_t index) noexcept;
    Page* NextPage(std::size_t index) noexcept;
    bool TakeOverIdle() noexcept;
    void SetOwner(Page& page, std::uintptr_t mark) noexcept;
    bool IsMine(const Page& page) const noexcept;

    std::array<Page*, kClasses> FCurrent;
    std::array<PageList, kClasses> FWithRoom; // pages of which some blocks came back
    PagePool* FPool = nullptr;
    /// Blocks that other threads freed. In a line of its own: they write it while the owner reads what is
    /// above.
    alignas(64) std::atomic<FreeBlock*> FForeign = nullptr;
};

constexpr PageHeap::PageHeap() noexcept
{
    FCurrent.fill(&NoPage);
}

inline bool PageHeap::IsMine(const Page& page) const noexcept
{
    return page.Owner.load(std::memory_order_relaxed) == reinterpret_cast<std::uintptr_t>(this);
}

inline void* PageHeap::AllocateAtOnce(std::size_t size) noexcept
{
    return FCurrent.data()[ClassOf(size)]->Take();
}

inline void* PageHeap::Allocate(std::size_t size) noexcept
{
    void* block = AllocateAtOnce(size);
    return block ? block : AllocateSlowly(size);
}

inline void PageHeap::Free(void* block) noexcept
{
    Page& page = Page::Of(block);
    auto* free = static_cast<FreeBlock*>(block);
    if (!IsMine(page)) [[unlikely]]
        return FreeElsewhere(page, free);
    page.Put(free);
    if (page.Used == 0) [[unlikely]]
        Emptied(page);
}

}
