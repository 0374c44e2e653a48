// How the allocator behind the memory door is chosen and called.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/memory_behind_p.h>

#include <hearth/runtime/exceptions.h>

#include <atomic>
#include <cstdlib>

#if defined(HEARTH_MIMALLOC_SONAME)
#include <dlfcn.h>
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

void CollectBehind() noexcept
{
    if (Chosen().collect)
        Chosen().collect(true);
}

bool IsMimallocBehind() noexcept
{
    return Chosen().collect != nullptr;
}

}
