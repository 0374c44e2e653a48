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
        Chunk::Unmap(chunk);
    }
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
    const std::lock_guard lock(FMutex);
    if (FFreePages == 0)
        AddChunk();
    return Pop();
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

/// A small program has one chunk and pays for what it touches; who needs another gets it in huge pages, which
/// mostly come five times as fast. A virtual machine that gave its free memory back to the host waits for
/// them much longer than for small ones: then the first is the last.
Chunk* PagePool::MapChunk() noexcept
{
    if (FChunkCount == 0 || !FHugePagesPay)
        return Chunk::Map(pkPlain);
    constexpr auto kLongest = std::chrono::milliseconds(1); // 512 small pages take as long
    const auto start = std::chrono::steady_clock::now();
    Chunk* chunk = Chunk::Map(pkHuge);
    FHugePagesPay = std::chrono::steady_clock::now() - start < kLongest;
    return chunk;
}

void PagePool::AddChunk() noexcept
{
    Chunk* chunk = MapChunk();
    if (!chunk)
        return;
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
}

void PagePool::GiveBack(Page& page) noexcept
{
    Chunk& chunk = Chunk::Of(&page);
    page.Owner.store(0, std::memory_order_relaxed);
    {
        const std::lock_guard lock(FMutex);
        FFree.Push(page);
        ++FFreePages;
        ++chunk.FreePages;
        if (!IsSpare(chunk, FKeptPages))
            return;
        Detach(chunk);
    }
    Chunk::Unmap(&chunk);
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
    const std::lock_guard lock(FMutex);
    Chunk* chunk = FChunks;
    while (chunk) {
        Chunk* next = chunk->Next;
        if (IsSpare(*chunk, 0)) {
            Detach(*chunk);
            Chunk::Unmap(chunk);
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
