// The allocator behind the memory door: mimalloc where it is found, else malloc.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace ht::memory {

/// These three do what Allocate, Reallocate and Free promise, for blocks of their own.
void* AllocateBehind(std::size_t size);
void* ReallocateBehind(void* block, std::size_t size);
void FreeBehind(void* block) noexcept;

/// Gives freed memory back to the system where the allocator can.
void CollectBehind() noexcept;
bool IsMimallocBehind() noexcept;

}
