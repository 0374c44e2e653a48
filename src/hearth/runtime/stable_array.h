// An array whose items never move.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/memory.h>

#include <bit>
#include <new>
#include <utility>

namespace ht {

/// Items in blocks, so that pointers to them hold until they are taken out: the first block has the size that
/// was asked for, those behind it double. `[]` raises ERangeError outside the array.
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

    /// Gives the first block room for just so many items; nothing once it is there, or below 1.
    void Reserve(std::int32_t count) noexcept
    {
        if (!FBlock && count > 0)
            FFirst = count;
    }
    /// Appends. Lifetime: the item stays where it is until it is deleted.
    T& Add(T item) { return Emplace(std::move(item)); }
    /// Appends what these arguments make.
    template <class... Arguments> T& Emplace(Arguments&&... arguments)
    {
        const std::int32_t length = CheckedLength(static_cast<std::size_t>(FLength) + 1);
        AddBlockFor(FLength);
        T* place = new (static_cast<void*>(PlaceOf(FLength))) T(std::forward<Arguments>(arguments)...);
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
        memory::Free(std::exchange(FBlock, nullptr));
        for (T* block : FMore)
            memory::Free(block);
        FMore.Clear();
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
    static constexpr std::int32_t kSecond = 4; // items of the second block

    /// Index in FMore of the block of an item that is not in the first: they have kSecond, 2 * kSecond,
    /// 4 * kSecond... items.
    std::int32_t MoreOf(std::int32_t index) const noexcept
    {
        const auto behindFirst = static_cast<std::uint32_t>(index - FFirst);
        return static_cast<std::int32_t>(std::bit_width(behindFirst / kSecond + 1)) - 1;
    }
    T* PlaceOf(std::int32_t index) const noexcept
    {
        if (index < FFirst)
            return FBlock + index;
        const std::int32_t block = MoreOf(index);
        return FMore.data()[block] + (index - FFirst - ((1 << block) - 1) * kSecond);
    }
    void AddBlockFor(std::int32_t index)
    {
        if (index < FFirst) {
            if (!FBlock)
                FBlock = NewBlock(FFirst);
        } else if (const std::int32_t block = MoreOf(index); block == FMore.Length()) {
            FMore.Reserve(block + 1);
            FMore.Add(NewBlock(kSecond << block));
        }
    }
    static T* NewBlock(std::int32_t items)
    {
        return static_cast<T*>(memory::Allocate(static_cast<std::size_t>(items) * sizeof(T)));
    }

    T* FBlock = nullptr; // the first
    TArray<T*> FMore; // those behind it
    std::int32_t FLength = 0;
    std::int32_t FFirst = 4; // items of the first block
};

}
