// How chunks begin and end, and the lists of pages.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/memory_chunk_p.h>

#include <new>

namespace ht::memory {

constinit std::array<std::uint64_t, kChunkPlaces / 64> gChunkTable{};

namespace {

std::uintptr_t Address(const void* memory)
{
    return reinterpret_cast<std::uintptr_t>(memory);
}

}

void Chunk::Mark(const void* place, bool ours) noexcept
{
    const std::uintptr_t index = Address(place) / kChunkBytes;
    const std::uint64_t bit = std::uint64_t{1} << index % 64;
    if (ours)
        ChunkBits(index).fetch_or(bit, std::memory_order_relaxed);
    else
        ChunkBits(index).fetch_and(~bit, std::memory_order_relaxed);
}

Chunk* Chunk::Make(const Stretch& stretch) noexcept
{
    auto* chunk = new (stretch.Memory) Chunk;
    for (std::size_t i = 0; i < kPagesPerChunk; ++i)
        chunk->SetBounds(i);
    chunk->FreePages = 0;
    chunk->Kind = stretch.Kind;
    Mark(chunk, true);
    return chunk;
}

Stretch Chunk::End() noexcept
{
    // First of all: the system may give the place to another allocator at once.
    Mark(this, false);
    return {this, kChunkBytes, Kind};
}

void Chunk::SetBounds(std::size_t index) noexcept
{
    Page& page = Pages.data()[index];
    page.Owner.store(0, std::memory_order_relaxed);
    page.Start = Address(this) + index * kPageBytes + (index == 0 ? sizeof(Chunk) : 0);
}

void Page::Begin(PageHeap& heap, std::size_t blockBytes) noexcept
{
    const std::uintptr_t end = (Start & ~(kPageBytes - 1)) + kPageBytes;
    Limit = end - blockBytes;
    BlockBytes = static_cast<std::uint32_t>(blockBytes);
    Used = 0;
    Restart();
    Owner.store(reinterpret_cast<std::uintptr_t>(&heap), std::memory_order_release);
}

void Page::Restart() noexcept
{
    Free = nullptr;
    Bump = Start;
}

void PageList::Push(Page& page) noexcept
{
    page.Previous = nullptr;
    page.Next = FFirst;
    if (FFirst)
        FFirst->Previous = &page;
    else
        FLast = &page;
    FFirst = &page;
}

void PageList::Append(Page& page) noexcept
{
    page.Previous = FLast;
    page.Next = nullptr;
    (FLast ? FLast->Next : FFirst) = &page;
    FLast = &page;
}

void PageList::Remove(Page& page) noexcept
{
    (page.Previous ? page.Previous->Next : FFirst) = page.Next;
    (page.Next ? page.Next->Previous : FLast) = page.Previous;
}

Page* PageList::Pop() noexcept
{
    Page* page = FFirst;
    if (page)
        Remove(*page);
    return page;
}

}
