// How stretches of memory come from the system, are kept, and go back.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/memory_spare_p.h>

#include <hearth/runtime/memory_chunk_p.h>

#include <algorithm>

#if defined(__unix__) || defined(__APPLE__)
#include <sys/mman.h>
#endif

namespace ht::memory {

namespace {

#if defined(__unix__) || defined(__APPLE__)
std::size_t OverhangOf(const void* memory)
{
    return reinterpret_cast<std::uintptr_t>(memory) % kChunkBytes;
}

char* MapBytes(std::size_t size)
{
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : static_cast<char*>(memory);
}

/// Mappings mostly follow each other, so the first try is mostly aligned; otherwise what hangs over is cut
/// off.
char* MapAligned(std::size_t size)
{
    char* memory = MapBytes(size);
    if (!memory || OverhangOf(memory) == 0)
        return memory;
    munmap(memory, size);
    memory = MapBytes(size + kChunkBytes);
    if (!memory)
        return nullptr;
    const std::size_t before = kChunkBytes - OverhangOf(memory);
    munmap(memory, before);
    if (before != kChunkBytes)
        munmap(memory + before + size, kChunkBytes - before);
    return memory + before;
}

void UnmapBytes(void* memory, std::size_t size)
{
    munmap(memory, size);
}
#else
char* MapAligned(std::size_t)
{
    return nullptr;
}

void UnmapBytes(void*, std::size_t) { }
#endif

}

Stretch Stretch::Map(std::size_t bytes, TPageKind kind) noexcept
{
    const Stretch made{MapAligned(bytes), bytes, kind};
    if (!made)
        return {};
    // The table of chunks ends somewhere.
    if (reinterpret_cast<std::uintptr_t>(made.Memory) / kChunkBytes >= kChunkPlaces) {
        made.Unmap();
        return {};
    }
#if defined(MADV_HUGEPAGE)
    if (kind == pkHuge)
        madvise(made.Memory, bytes, MADV_HUGEPAGE); // a wish; the system may have none
#endif
    return made;
}

void Stretch::Unmap() const noexcept
{
    UnmapBytes(Memory, Bytes);
}

void Stretch::BecomePlain() noexcept
{
    Kind = pkPlain;
#if defined(MADV_NOHUGEPAGE)
    madvise(Memory, Bytes, MADV_NOHUGEPAGE);
#endif
}

void Stretch::OfferPages() const noexcept
{
#if defined(MADV_FREE)
    // Of small pages there are so many that this would cost a quarter of what new ones cost.
    if (Kind == pkHuge)
        madvise(Memory, Bytes, MADV_FREE);
#endif
}

Stretch SpareStretches::TakeAt(std::size_t index) noexcept
{
    const auto at = FKept.begin() + static_cast<std::ptrdiff_t>(index);
    const Stretch taken = at->What;
    std::move(at + 1, FKept.begin() + static_cast<std::ptrdiff_t>(FCount), at);
    --FCount;
    FBytes -= taken.Bytes;
    return taken;
}

Stretch SpareStretches::Take(std::size_t bytes) noexcept
{
    std::size_t best = FCount;
    for (std::size_t i = 0; i < FCount; ++i) {
        const std::size_t kept = FKept[i].What.Bytes;
        const bool fits = kept >= bytes && kept - bytes <= bytes / 8;
        if (fits && (best == FCount || kept < FKept[best].What.Bytes))
            best = i;
    }
    return best == FCount ? Stretch{} : TakeAt(best);
}

Stretch SpareStretches::Put(const Stretch& stretch, Time now) noexcept
{
    const Stretch oldest = FCount == FKept.size() ? TakeAt(0) : Stretch{};
    FKept[FCount++] = {stretch, now};
    FBytes += stretch.Bytes;
    return oldest;
}

Stretch SpareStretches::TakeOld(Time now) noexcept
{
    const bool isOld = FCount > 0 && now - FKept.front().Since > kLongest;
    return isOld || FBytes > FMostBytes ? TakeAt(0) : Stretch{};
}

}
