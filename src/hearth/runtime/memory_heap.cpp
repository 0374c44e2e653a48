// What a heap does when its page in use is full or empty, and with blocks of other threads.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/memory_heap_p.h>

#include <hearth/runtime/memory_pool_p.h>

#include <algorithm>
#include <utility>

namespace ht::memory {

constinit Page PageHeap::NoPage{.Owner = 0,
    .Free = nullptr,
    .Bump = 1,
    .Limit = 0,
    .Used = 0,
    .BlockBytes = 0,
    .Previous = nullptr,
    .Next = nullptr,
    .Start = 0};

PageHeap::PageHeap(PagePool& pool) noexcept
    : PageHeap()
{
    FPool = &pool;
}

void* PageHeap::AllocateSlowly(std::size_t size) noexcept
{
    const std::size_t index = std::max<std::size_t>(ClassOf(size), 1);
    TakeForeign();
    if (!FCurrent[index]->HasRoom()) {
        Page* next = NextPage(index);
        if (!next)
            return nullptr;
        Retire(index);
        FCurrent[index] = next;
    }
    return FCurrent[index]->Take();
}

/// The page in use is put away: to the full ones, to those with room, or back to the pool.
void PageHeap::Retire(std::size_t index) noexcept
{
    Page* page = std::exchange(FCurrent[index], &NoPage);
    if (page == &NoPage)
        return;
    if (page->Used == 0)
        FPool->GiveBack(*page);
    else if (page->HasRoom())
        FWithRoom[index].Push(*page);
    else
        SetOwner(*page, Page::kFull);
}

Page* PageHeap::NextPage(std::size_t index) noexcept
{
    if (Page* page = FWithRoom[index].Pop())
        return page;
    Page* page = FPool->TakeFree();
    if (!page && TakeOverIdle()) {
        if (Page* taken = FWithRoom[index].Pop())
            return taken;
        page = FPool->TakeFree();
    }
    if (!page)
        page = FPool->TakeNew();
    if (page)
        page->Begin(*this, index * kStep);
    return page;
}

/// Before the pool grows: the pages that threads left behind when they ended.
bool PageHeap::TakeOverIdle() noexcept
{
    PageHeap* idle = FPool->BorrowIdle();
    if (!idle)
        return false;
    while (idle) {
        PageHeap* next = idle->NextIdle;
        idle->MoveTo(*this);
        FPool->Park(*idle);
        idle = next;
    }
    return true;
}

void PageHeap::MoveTo(PageHeap& other) noexcept
{
    Collect();
    for (std::size_t i = 1; i < kClasses; ++i) {
        Retire(i);
        while (Page* page = FWithRoom[i].Pop()) {
            other.SetOwner(*page, 0);
            other.FWithRoom[i].Push(*page);
        }
    }
}

void PageHeap::Collect() noexcept
{
    TakeForeign();
    for (std::size_t i = 1; i < kClasses; ++i) {
        if (FCurrent[i]->Used == 0)
            Retire(i);
    }
}

/// A page without blocks begins anew if it is the one in use, and otherwise belongs to everybody again.
void PageHeap::Emptied(Page& page) noexcept
{
    const std::size_t index = page.BlockBytes / kStep;
    if (FCurrent[index] == &page) {
        page.Restart();
        return;
    }
    FWithRoom[index].Remove(page);
    FPool->GiveBack(page);
}

/// The block lies in a full page, which has room now, or belongs to another heap, or is a large one.
void PageHeap::FreeElsewhere(Page& page, FreeBlock* block) noexcept
{
    if (IsLarge(page)) {
        LargeBlock& large = LargeBlock::Of(block);
        return large.Pool->GiveBack(large);
    }
    PageHeap* owner = OwnerOf(page);
    if (owner != this) {
        owner->PushForeign(block);
        return;
    }
    SetOwner(page, 0);
    page.Put(block);
    // Behind the others: the longer it waits, the more of its blocks come back before it is used again.
    FWithRoom[page.BlockBytes / kStep].Append(page);
}

void PageHeap::PushForeign(FreeBlock* block) noexcept
{
    block->Next = FForeign.load(std::memory_order_relaxed);
    while (!FForeign.compare_exchange_weak(
        block->Next, block, std::memory_order_release, std::memory_order_relaxed)) { }
}

/// A page may have changed hands after a block of it was put here; Free hands such a block on.
void PageHeap::TakeForeign() noexcept
{
    if (!FForeign.load(std::memory_order_relaxed))
        return;
    FreeBlock* block = FForeign.exchange(nullptr, std::memory_order_acquire);
    while (block) {
        FreeBlock* next = block->Next;
        Free(block);
        block = next;
    }
}

PageHeap* PageHeap::OwnerOf(const Page& page) noexcept
{
    return reinterpret_cast<PageHeap*>(page.Owner.load(std::memory_order_acquire) & ~Page::kFull);
}

void PageHeap::SetOwner(Page& page, std::uintptr_t mark) noexcept
{
    page.Owner.store(reinterpret_cast<std::uintptr_t>(this) | mark, std::memory_order_release);
}

}
