// How chunks come from the system and go back to it.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/memory_chunk_p.h>

#include <new>

#if defined(__unix__) || defined(__APPLE__)
#include <sys/mman.h>
#endif

namespace ht::memory {

constinit std::array<std::uint64_t, kChunkPlaces / 64> gChunkTable{};

namespace {

std::uintptr_t Address(const void* memory)
{
    return reinterpret_cast<std::uintptr_t>(memory);
}

#if defined(__unix__) || defined(__APPLE__)
char* MapBytes(std::size_t size)
{
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : static_cast<char*>(memory);
}

/// Mappings mostly follow each other, so the first try is mostly aligned; otherwise what hangs over is cut
/// off.
char* MapAligned()
{
    char* memory = MapBytes(kChunkBytes);
    if (!memory || Address(memory) % kChunkBytes == 0)
        return memory;
    munmap(memory, kChunkBytes);
    memory = MapBytes(2 * kChunkBytes);
    if (!memory)
        return nullptr;
    const std::size_t before = kChunkBytes - Address(memory) % kChunkBytes;
    munmap(memory, before);
    if (before != kChunkBytes)
        munmap(memory + before + kChunkBytes, kChunkBytes - before);
    return memory + before;
}

void AskForHugePages([[maybe_unused]] char* memory)
{
#if defined(MADV_HUGEPAGE)
    madvise(memory, kChunkBytes, MADV_HUGEPAGE); // a wish; the system may have none
#endif
}

void UnmapBytes(void* memory)
{
    munmap(memory, kChunkBytes);
}
#else
char* MapAligned()
{
    return nullptr;
}

void AskForHugePages(char*) { }
void UnmapBytes(void*) { }
#endif

void Mark(const Chunk* chunk, bool ours)
{
    const std::uintptr_t place = Address(chunk) / kChunkBytes;
    const std::uint64_t bit = std::uint64_t{1} << place % 64;
    if (ours)
        ChunkBits(place).fetch_or(bit, std::memory_order_relaxed);
    else
        ChunkBits(place).fetch_and(~bit, std::memory_order_relaxed);
}

}

Chunk* Chunk::Map(TPageKind kind) noexcept
{
    char* memory = MapAligned();
    if (!memory)
        return nullptr;
    if (Address(memory) / kChunkBytes >= kChunkPlaces) {
        UnmapBytes(memory);
        return nullptr;
    }
    if (kind == pkHuge)
        AskForHugePages(memory);
    auto* chunk = new (memory) Chunk;
    for (std::size_t i = 0; i < kPagesPerChunk; ++i)
        chunk->SetBounds(i);
    chunk->FreePages = 0;
    Mark(chunk, true);
    return chunk;
}

void Chunk::Unmap(Chunk* chunk) noexcept
{
    // First of all: the system may give the place to another allocator at once.
    Mark(chunk, false);
    UnmapBytes(chunk);
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
