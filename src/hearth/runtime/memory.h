// The one door through which strings, objects and arrays of the trees get their memory.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include <hearth/export.h>

// What is freed is kept for the next document, within bounds: up to 32 MiB of small blocks for as long as the
// process lives, and up to 128 MiB of stretches of 1 MiB and more (large texts, small blocks beyond the 32
// MiB) for two seconds. These go back to the system when memory is taken or freed after that time. In a
// program that is idle by then they stay, and the system may take those in huge pages whenever it is short of
// memory; Collect gives all of it back at once.

namespace ht::memory {

/// Gives `size` bytes (0 counts as 1), aligned for every scalar. Throws EOutOfMemory.
HT_API void* Allocate(std::size_t size);

/// Like Allocate, for a block that may have to move; its old contents are kept up to the smaller size.
HT_API void* Reallocate(void* block, std::size_t size);

/// Takes back what Allocate gave, on whatever thread; null is allowed.
HT_API void Free(void* block) noexcept;

/// Name of what stands behind the door, for benchmarks: "mimalloc" or "malloc", after "pages over " where
/// small blocks come from pages of our own.
HT_API const char* AllocatorName() noexcept;

/// Gives freed memory back to the system where it can: what this thread holds, what ended threads left, and
/// what belongs to no thread. Other threads see to their own.
HT_API void Collect() noexcept;

}
