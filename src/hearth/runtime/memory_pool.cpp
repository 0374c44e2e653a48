// How pages and heaps pass between threads, and chunks to and from the system.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/memory_pool_p.h>

#include <chrono>
#include <new>
#include <utility>

namespace ht::memory {

PagePool::~PagePool()
{
    while (Chunk* chunk = FChunks) {
        FChunks = chunk->Next;
        chunk->End().Unmap();
    }
    DropSpare();
    while (PageHeap* heap = FHeaps) {
        FHeaps = heap->NextHeap;
        delete heap;
    }
}

Page* PagePool::TakeFree() noexcept
{
    const std::lock_guard lock(FMutex);
    return Pop();
}

Page* PagePool::TakeNew() noexcept
{
    Page* page = nullptr;
    Stretch old;
    {
        const std::lock_guard lock(FMutex);
        old = OldSpare();
        if (FFreePages > 0 || AddChunk())
            page = Pop();
    }
    if (old)
        old.Unmap();
    if (!page && DropSpare())
        return TakeNew();
    return page;
}

Page* PagePool::Pop() noexcept
{
    Page* page = FFree.Pop();
    if (page) {
        --FFreePages;
        --Chunk::Of(page).FreePages;
    }
    return page;
}

/// A small program has one chunk and pays for what it touches; who needs more gets it in huge pages, which
/// mostly come five times as fast. A virtual machine that gave its free memory back to the host waits for
/// them much longer than for small ones: then the first is the last.
Stretch PagePool::Map(std::size_t bytes) noexcept
{
    if (FChunkCount == 0 || !FHugePagesPay)
        return Stretch::Map(bytes, pkPlain);
    constexpr auto kLongest = std::chrono::milliseconds(1); // 512 small pages take as long
    Stretch made = Stretch::Map(bytes, pkHuge);
    if (!made)
        return made;
    const auto start = std::chrono::steady_clock::now();
    *static_cast<volatile char*>(made.Memory) = 0;
    FHugePagesPay = std::chrono::steady_clock::now() - start < kLongest;
    if (!FHugePagesPay)
        made.BecomePlain();
    return made;
}

Stretch PagePool::TakeStretch(std::size_t bytes) noexcept
{
    const Stretch spare = FSpare.Take(bytes);
    return spare ? spare : Map(bytes);
}

bool PagePool::AddChunk() noexcept
{
    const Stretch stretch = TakeStretch(kChunkBytes);
    if (!stretch)
        return false;
    Chunk* chunk = Chunk::Make(stretch);
    chunk->Previous = nullptr;
    chunk->Next = FChunks;
    if (FChunks)
        FChunks->Previous = chunk;
    FChunks = chunk;
    ++FChunkCount;
    // The first page comes to lie on top.
    for (std::size_t i = kPagesPerChunk; i-- > 0;)
        FFree.Push(chunk->Pages[i]);
    chunk->FreePages = kPagesPerChunk;
    FFreePages += kPagesPerChunk;
    return true;
}

void PagePool::GiveBack(Page& page) noexcept
{
    Chunk& chunk = Chunk::Of(&page);
    page.Owner.store(0, std::memory_order_relaxed);
    Stretch old;
    bool isSpare = false;
    {
        const std::lock_guard lock(FMutex);
        FFree.Push(page);
        ++FFreePages;
        ++chunk.FreePages;
        isSpare = IsSpare(chunk, FKeptPages);
        if (isSpare)
            Detach(chunk);
        old = OldSpare();
    }
    if (old)
        old.Unmap();
    if (isSpare)
        Keep(chunk.End());
}

void* PagePool::TakeLarge(std::size_t size) noexcept
{
    constexpr std::size_t kMost = SIZE_MAX / 4;
    if (size > kMost)
        return nullptr;
    const std::size_t bytes = (size + sizeof(LargeBlock) + kPageBytes - 1) / kPageBytes * kPageBytes;
    Stretch stretch;
    {
        const std::lock_guard lock(FMutex);
        stretch = TakeStretch(bytes);
    }
    if (!stretch)
        return DropSpare() ? TakeLarge(size) : nullptr;
    auto* made = new (stretch.Memory) LargeBlock;
    made->Record.Owner.store(Page::kLarge, std::memory_order_relaxed);
    made->Pool = this;
    made->Whole = stretch;
    Chunk::Mark(made, true);
    return made->Block();
}

void PagePool::GiveBack(LargeBlock& block) noexcept
{
    Chunk::Mark(&block, false);
    Keep(block.Whole);
}

void PagePool::Keep(const Stretch& stretch) noexcept
{
    stretch.OfferPages();
    Stretch old;
    {
        const std::lock_guard lock(FMutex);
        old = FSpare.Put(stretch, std::chrono::steady_clock::now());
    }
    do {
        if (old)
            old.Unmap();
        const std::lock_guard lock(FMutex);
        old = OldSpare();
    } while (old);
}

/// What is to go, mostly nothing.
Stretch PagePool::OldSpare() noexcept
{
    return FSpare.IsEmpty() ? Stretch{} : FSpare.TakeOld(std::chrono::steady_clock::now());
}

bool PagePool::DropSpare() noexcept
{
    for (bool any = false;; any = true) {
        Stretch spare;
        {
            const std::lock_guard lock(FMutex);
            spare = FSpare.TakeAny();
        }
        if (!spare)
            return any;
        spare.Unmap();
    }
}

bool PagePool::IsSpare(const Chunk& chunk, std::size_t keptPages) const noexcept
{
    return chunk.FreePages == kPagesPerChunk && FFreePages - kPagesPerChunk >= keptPages;
}

void PagePool::Detach(Chunk& chunk) noexcept
{
    for (Page& page : chunk.Pages)
        FFree.Remove(page);
    FFreePages -= kPagesPerChunk;
    (chunk.Previous ? chunk.Previous->Next : FChunks) = chunk.Next;
    if (chunk.Next)
        chunk.Next->Previous = chunk.Previous;
    --FChunkCount;
}

PageHeap* PagePool::TakeHeap() noexcept
{
    const std::lock_guard lock(FMutex);
    if (FIdle)
        return std::exchange(FIdle, FIdle->NextIdle);
    auto* heap = new (std::nothrow) PageHeap(*this);
    if (heap)
        heap->NextHeap = std::exchange(FHeaps, heap);
    return heap;
}

void PagePool::Park(PageHeap& heap) noexcept
{
    const std::lock_guard lock(FMutex);
    heap.NextIdle = std::exchange(FIdle, &heap);
}

PageHeap* PagePool::BorrowIdle() noexcept
{
    const std::lock_guard lock(FMutex);
    return std::exchange(FIdle, nullptr);
}

void PagePool::Collect() noexcept
{
    PageHeap* idle = BorrowIdle();
    while (idle) {
        PageHeap* next = idle->NextIdle;
        idle->Collect();
        Park(*idle);
        idle = next;
    }
    DropSpare();
    const std::lock_guard lock(FMutex);
    Chunk* chunk = FChunks;
    while (chunk) {
        Chunk* next = chunk->Next;
        if (IsSpare(*chunk, 0)) {
            Detach(*chunk);
            chunk->End().Unmap();
        }
        chunk = next;
    }
}

std::size_t PagePool::ChunkCount() noexcept
{
    const std::lock_guard lock(FMutex);
    return FChunkCount;
}

}
