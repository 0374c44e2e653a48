// An array whose items never move.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/memory.h>

#include <bit>
#include <new>

namespace ht {

/// Items in blocks that double in size, so that pointers to them hold until they are taken out. `[]` raises
/// ERangeError outside the array.
template <class T> class TStableArray {
public:
    TStableArray() = default;
    TStableArray(const TStableArray&) = delete;
    TStableArray& operator=(const TStableArray&) = delete;
    ~TStableArray() { Clear(); }

    std::int32_t Length() const noexcept { return FLength; }
    bool IsEmpty() const noexcept { return FLength == 0; }
    T& operator[](std::int32_t index) const
    {
        if (static_cast<std::uint32_t>(index) >= static_cast<std::uint32_t>(FLength)) [[unlikely]]
            RaiseRangeError();
        return *PlaceOf(index);
    }
    T& Last() const { return (*this)[FLength - 1]; }

    /// Appends. Lifetime: the item stays where it is until it is deleted.
    T& Add(T item)
    {
        const std::int32_t length = CheckedLength(static_cast<std::size_t>(FLength) + 1);
        if (BlockOf(FLength) == FBlocks.Length())
            AddBlock();
        T* place = new (static_cast<void*>(PlaceOf(FLength))) T(std::move(item));
        FLength = length;
        return *place;
    }
    void DeleteLast()
    {
        Last().~T();
        --FLength;
    }
    void Clear() noexcept
    {
        while (FLength > 0)
            PlaceOf(--FLength)->~T();
        for (T* block : FBlocks)
            memory::Free(block);
        FBlocks.Clear();
    }

    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = T*;
        using reference = T&;

        Iterator(const TStableArray& array, std::int32_t index) noexcept
            : FArray(&array)
            , FIndex(index)
        {
        }
        T& operator*() const { return (*FArray)[FIndex]; }
        Iterator& operator++() noexcept
        {
            ++FIndex;
            return *this;
        }
        bool operator==(const Iterator& other) const noexcept { return FIndex == other.FIndex; }

    private:
        const TStableArray* FArray;
        std::int32_t FIndex;
    };
    auto begin() const noexcept { return Iterator(*this, 0); }
    auto end() const noexcept { return Iterator(*this, FLength); }

private:
    static constexpr std::int32_t kFirst = 4; // items of the first block

    static std::int32_t BlockOf(std::int32_t index) noexcept
    {
        return static_cast<std::int32_t>(std::bit_width(static_cast<std::uint32_t>(index) / kFirst + 1)) - 1;
    }
    /// The blocks in front have kFirst, 2 * kFirst, 4 * kFirst... items.
    static std::int32_t StartOf(std::int32_t block) noexcept { return ((1 << block) - 1) * kFirst; }
    T* PlaceOf(std::int32_t index) const noexcept
    {
        const std::int32_t block = BlockOf(index);
        return FBlocks.data()[block] + (index - StartOf(block));
    }
    void AddBlock()
    {
        const std::size_t items = std::size_t{kFirst} << FBlocks.Length();
        void* block = memory::Allocate(items * sizeof(T));
        FBlocks.Add(static_cast<T*>(block));
    }

    TArray<T*> FBlocks;
    std::int32_t FLength = 0;
};

}
