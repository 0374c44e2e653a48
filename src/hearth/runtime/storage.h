// Storage of containers, whose failures are those of the memory door.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/memory.h>

#include <cstddef>
#include <new>
#include <vector>

namespace ht::detail {

/// The allocator of lists: it asks the memory door and throws EOutOfMemory.
template <class T> struct Storage {
    using value_type = T;
    static_assert(alignof(T) <= alignof(std::max_align_t), "the memory door aligns for scalars");

    Storage() = default;
    template <class U> Storage(const Storage<U>&) noexcept { }

    /// Containers ask for no more items than can have addresses.
    T* allocate(std::size_t count) { return static_cast<T*>(memory::Allocate(count * sizeof(T))); }
    void deallocate(T* items, std::size_t) noexcept { memory::Free(items); }

    friend bool operator==(const Storage&, const Storage&) noexcept { return true; }
};

template <class T> using Items = std::vector<T, Storage<T>>;

/// What `make` gives. For strings and vectors of the C++ library: where they find no memory this throws
/// EOutOfMemory.
template <class Make> auto WithStorage(Make make)
{
    try {
        return make();
    } catch (const std::bad_alloc&) {
        throw EOutOfMemory();
    }
}

}
