// The one door through which strings, objects and arrays of the trees get their memory.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include <hearth/export.h>

namespace ht::memory {

/// Gives `size` bytes (0 counts as 1), aligned for every scalar. Throws EOutOfMemory.
HT_API void* Allocate(std::size_t size);

/// Like Allocate, for a block that may have to move; its old contents are kept up to the smaller size.
HT_API void* Reallocate(void* block, std::size_t size);

/// Takes back what Allocate gave; null is allowed.
HT_API void Free(void* block) noexcept;

/// Name of the allocator behind the door, for benchmarks: "mimalloc" or "malloc".
HT_API const char* AllocatorName() noexcept;

/// Gives freed memory back to the system where the allocator can.
HT_API void Collect() noexcept;

}
