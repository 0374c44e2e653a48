// The memory door: small and large blocks from pages of our own, others from the allocator behind.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/memory.h>

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/memory_behind_p.h>
#include <hearth/runtime/memory_heap_p.h>
#include <hearth/runtime/memory_pool_p.h>

#include <algorithm>
#include <cstring>
#include <utility>

#if defined(HEARTH_OWN_PAGES)
#include <pthread.h>
#endif

namespace ht::memory {

#if defined(HEARTH_OWN_PAGES)

namespace {

/// Never destroyed: threads and static objects free their blocks until the very end of the process.
union EverlastingPool {
    constexpr EverlastingPool() noexcept
        : Pool()
    {
    }
    ~EverlastingPool() { }

    PagePool Pool;
};

constinit EverlastingPool gPool;

/// The child of a fork has one thread, and finds the pool as no thread was changing it. Made before main, so
/// that no thread can be at it while another forks.
[[maybe_unused]] const int gForkHandlers =
    pthread_atfork([] { gPool.Pool.Lock(); }, [] { gPool.Pool.Unlock(); }, [] { gPool.Pool.Unlock(); });

/// What a thread works with that has no heap, yet or any more: no block is in it, and none is its own.
constinit PageHeap gNoHeap;

#if defined(__ELF__)
// One load in a shared library too, not a call.
constinit thread_local PageHeap* tHeap [[gnu::tls_model("initial-exec")]] = &gNoHeap;
#else
constinit thread_local PageHeap* tHeap = &gNoHeap;
#endif

/// Parks the heap when its thread ends. What the thread allocates even later comes from the allocator behind.
struct HeapHolder {
    ~HeapHolder()
    {
        Ended = true;
        PageHeap& heap = *std::exchange(tHeap, &gNoHeap);
        heap.Collect();
        gPool.Pool.Park(heap);
    }
    static thread_local bool Ended;
};

constinit thread_local bool HeapHolder::Ended = false;

/// The heap of the thread; null when it can have none.
PageHeap* OpenHeap()
{
    if (tHeap != &gNoHeap)
        return tHeap;
    PageHeap* heap = HeapHolder::Ended ? nullptr : gPool.Pool.TakeHeap();
    if (heap) {
        tHeap = heap;
        [[maybe_unused]] static thread_local HeapHolder holder;
    }
    return heap;
}

/// Before giving up, what is kept for later goes back.
void* AllocateOthers(std::size_t size)
{
    if (size >= LargeBlock::kSmallest) {
        if (void* block = gPool.Pool.TakeLarge(size))
            return block;
    }
    try {
        return AllocateBehind(size);
    } catch (const EOutOfMemory&) {
        if (!gPool.Pool.DropSpare())
            throw;
    }
    return AllocateBehind(size);
}

[[gnu::noinline]] void* AllocateSlowly(std::size_t size)
{
    if (size <= PageHeap::kLargest) {
        PageHeap* heap = OpenHeap();
        void* block = heap ? heap->AllocateSlowly(size) : nullptr;
        if (block)
            return block;
    }
    return AllocateOthers(size);
}

/// Whether the block may stay where it is: it has room, and not much too much.
bool Fits(std::size_t room, std::size_t size)
{
    if (room > PageHeap::kLargest)
        return size <= room && size >= room / 2;
    return size <= PageHeap::kLargest && PageHeap::RoundUp(size) == room;
}

[[gnu::noinline]] void* ReallocatePaged(void* block, std::size_t size)
{
    const bool isLarge = PageHeap::IsLarge(Page::Of(block));
    const std::size_t room = isLarge ? LargeBlock::Of(block).Room() : PageHeap::BlockBytes(block);
    if (Fits(room, size))
        return block;
    void* moved = Allocate(size);
    std::memcpy(moved, block, std::min(size, room));
    Free(block);
    return moved;
}

}

void* Allocate(std::size_t size)
{
    if (size <= PageHeap::kLargest) [[likely]] {
        if (void* block = tHeap->AllocateAtOnce(size)) [[likely]]
            return block;
    }
    return AllocateSlowly(size);
}

void* Reallocate(void* block, std::size_t size)
{
    return Chunk::Holds(block) ? ReallocatePaged(block, size) : ReallocateBehind(block, size);
}

void Free(void* block) noexcept
{
    if (!Chunk::Holds(block)) [[unlikely]]
        return FreeBehind(block);
    tHeap->Free(block);
}

const char* AllocatorName() noexcept
{
    return IsMimallocBehind() ? "pages over mimalloc" : "pages over malloc";
}

void Collect() noexcept
{
    if (tHeap != &gNoHeap)
        tHeap->Collect();
    gPool.Pool.Collect();
    CollectBehind();
}

#else

void* Allocate(std::size_t size)
{
    return AllocateBehind(size);
}

void* Reallocate(void* block, std::size_t size)
{
    return ReallocateBehind(block, size);
}

void Free(void* block) noexcept
{
    FreeBehind(block);
}

const char* AllocatorName() noexcept
{
    return IsMimallocBehind() ? "mimalloc" : "malloc";
}

void Collect() noexcept
{
    CollectBehind();
}

#endif

}
