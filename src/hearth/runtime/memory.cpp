// The memory door: small blocks from pages of our own, others from mimalloc or malloc.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/memory.h>

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/memory_heap_p.h>
#include <hearth/runtime/memory_pool_p.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#if defined(HEARTH_MIMALLOC_SONAME)
#include <dlfcn.h>
#endif
#if defined(HEARTH_OWN_PAGES)
#include <pthread.h>
#endif

namespace ht::memory {

namespace {

struct Allocator {
    void* (*allocate)(std::size_t) = std::malloc;
    void* (*reallocate)(void*, std::size_t) = std::realloc;
    void (*free)(void*) = std::free;
    void (*collect)(bool) = nullptr;
};

void* AllocateFirst(std::size_t size);
void* ReallocateFirst(void* block, std::size_t size);

#if defined(HEARTH_MIMALLOC_SONAME)
template <class Function> bool Resolve(void* library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

/// The distributed mimalloc exports malloc and operator new, so linking it would replace the allocator of the
/// whole program. It is loaded privately instead: only this door uses it.
Allocator ChooseAllocator()
{
    Allocator chosen;
    void* library = dlopen(HEARTH_MIMALLOC_SONAME, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return chosen;
    Allocator loaded;
    const bool complete = Resolve(library, "mi_malloc", loaded.allocate)
        && Resolve(library, "mi_realloc", loaded.reallocate) && Resolve(library, "mi_free", loaded.free)
        && Resolve(library, "mi_collect", loaded.collect);
    return complete ? loaded : chosen;
}
#else
Allocator ChooseAllocator()
{
    return {};
}
#endif

/// Chosen once, before the first block is given: a block must go back where it came from.
const Allocator& Chosen()
{
    static const Allocator allocator = ChooseAllocator();
    return allocator;
}

/// The way every call takes. It begins at functions that choose, and then leads straight to the allocator; no
/// guard of a static variable is asked again.
constinit std::atomic<decltype(Allocator::allocate)> gAllocate = AllocateFirst;
constinit std::atomic<decltype(Allocator::reallocate)> gReallocate = ReallocateFirst;
constinit std::atomic<decltype(Allocator::free)> gFree = std::free;

void Open()
{
    const Allocator& allocator = Chosen();
    // Blocks given from now on are freed by what stands here first.
    gFree.store(allocator.free, std::memory_order_relaxed);
    gReallocate.store(allocator.reallocate, std::memory_order_relaxed);
    gAllocate.store(allocator.allocate, std::memory_order_release);
}

void* AllocateFirst(std::size_t size)
{
    Open();
    return Chosen().allocate(size);
}

void* ReallocateFirst(void* block, std::size_t size)
{
    Open();
    return Chosen().reallocate(block, size);
}

/// Apart, so that those who may throw need no frame.
[[noreturn, gnu::noinline]] void ThrowOutOfMemory()
{
    throw EOutOfMemory();
}

void* AllocateBehind(std::size_t size)
{
    void* block = gAllocate.load(std::memory_order_acquire)(size ? size : 1);
    if (!block) [[unlikely]]
        ThrowOutOfMemory();
    return block;
}

void* ReallocateBehind(void* block, std::size_t size)
{
    void* moved = gReallocate.load(std::memory_order_relaxed)(block, size ? size : 1);
    if (!moved) [[unlikely]]
        ThrowOutOfMemory();
    return moved;
}

void FreeBehind(void* block) noexcept
{
    if (block)
        gFree.load(std::memory_order_relaxed)(block);
}

}

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

[[gnu::noinline]] void* AllocateSlowly(std::size_t size)
{
    if (size <= PageHeap::kLargest) {
        PageHeap* heap = OpenHeap();
        void* block = heap ? heap->AllocateSlowly(size) : nullptr;
        if (block)
            return block;
    }
    return AllocateBehind(size);
}

[[gnu::noinline]] void* ReallocatePaged(void* block, std::size_t size)
{
    const std::size_t oldSize = PageHeap::BlockBytes(block);
    if (size <= PageHeap::kLargest && PageHeap::RoundUp(size) == oldSize)
        return block;
    void* moved = Allocate(size);
    std::memcpy(moved, block, std::min(size, oldSize));
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
    return Chosen().collect ? "pages over mimalloc" : "pages over malloc";
}

void Collect() noexcept
{
    if (tHeap != &gNoHeap)
        tHeap->Collect();
    gPool.Pool.Collect();
    if (Chosen().collect)
        Chosen().collect(true);
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
    return Chosen().collect ? "mimalloc" : "malloc";
}

void Collect() noexcept
{
    if (Chosen().collect)
        Chosen().collect(true);
}

#endif

}
