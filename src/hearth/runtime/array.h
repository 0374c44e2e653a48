// The dynamic array whose every access is checked.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/checked.h>
#include <hearth/runtime/storage.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <type_traits>
#include <vector>

namespace ht {

/// A value array with 32-bit lengths; `[]` raises ERangeError outside it, in every build type. What grows it
/// throws EOutOfMemory, and leaves it as it was.
template <class T> class TArray {
    static_assert(!std::is_same_v<T, bool>, "use TArray<std::uint8_t>: packed bits have no addresses");

public:
    TArray() = default;
    TArray(std::initializer_list<T> items)
        : FItems(detail::WithStorage([&] { return std::vector<T>(items); }))
    {
    }
    explicit TArray(std::int32_t length) { SetLength(length); }
    TArray(const TArray& other)
        : FItems(detail::WithStorage([&] { return other.FItems; }))
    {
    }
    TArray(TArray&&) noexcept = default;
    TArray& operator=(const TArray& other)
    {
        detail::WithStorage([&] { FItems = other.FItems; });
        return *this;
    }
    TArray& operator=(TArray&&) noexcept = default;
    ~TArray() = default;

    std::int32_t Length() const noexcept { return static_cast<std::int32_t>(FItems.size()); }
    std::size_t size() const noexcept { return FItems.size(); }
    bool IsEmpty() const noexcept { return FItems.empty(); }

    /// Grows with default values or cuts. Throws ERangeError for a negative length.
    void SetLength(std::int32_t length)
    {
        detail::WithStorage([&] { FItems.resize(CheckedCast<std::size_t>(length)); });
    }
    void Reserve(std::int32_t capacity)
    {
        detail::WithStorage([&] { FItems.reserve(CheckedCast<std::size_t>(capacity)); });
    }
    void Clear() noexcept { FItems.clear(); }

    T& operator[](std::int32_t index) { return FItems[Checked(index)]; }
    const T& operator[](std::int32_t index) const { return FItems[Checked(index)]; }
    /// First and last item; throw ERangeError on an empty array.
    T& First() { return (*this)[0]; }
    T& Last() { return (*this)[Length() - 1]; }
    const T& Last() const { return (*this)[Length() - 1]; }

    /// Appends and returns the new index.
    std::int32_t Add(T item)
    {
        const std::int32_t index = CheckedLength(FItems.size() + 1) - 1;
        if (FItems.size() == FItems.capacity()) [[unlikely]]
            Grow();
        FItems.push_back(std::move(item));
        return index;
    }
    /// Appends copies of items, which are not its own.
    void Append(std::span<const T> items)
    {
        CheckedLength(FItems.size() + items.size());
        detail::WithStorage([&] { FItems.insert(FItems.end(), items.begin(), items.end()); });
    }
    /// Appends what these arguments make, without moving it about.
    template <class... Arguments> T& Emplace(Arguments&&... arguments)
    {
        static_cast<void>(CheckedLength(FItems.size() + 1));
        if (FItems.size() == FItems.capacity()) [[unlikely]]
            Grow();
        return FItems.emplace_back(std::forward<Arguments>(arguments)...);
    }
    /// Puts `item` in front of `index`, which may be the length.
    void Insert(std::int32_t index, T item)
    {
        if (index < 0 || index > Length()) [[unlikely]]
            RaiseRangeError();
        detail::WithStorage([&] { FItems.insert(FItems.begin() + index, std::move(item)); });
    }
    void Delete(std::int32_t index, std::int32_t count = 1)
    {
        if (count < 0 || index < 0 || count > Length() - index) [[unlikely]]
            RaiseRangeError();
        FItems.erase(FItems.begin() + index, FItems.begin() + index + count);
    }

    T* data() noexcept { return FItems.data(); }
    const T* data() const noexcept { return FItems.data(); }
    auto begin() noexcept { return FItems.begin(); }
    auto end() noexcept { return FItems.end(); }
    auto begin() const noexcept { return FItems.begin(); }
    auto end() const noexcept { return FItems.end(); }

    friend bool operator==(const TArray&, const TArray&) = default;

private:
    /// Apart from Add, which is then as short as it would be without a try block.
    [[gnu::noinline]] void Grow()
    {
        constexpr std::size_t kFirst = 4;
        detail::WithStorage([&] { FItems.reserve(std::max(2 * FItems.size(), kFirst)); });
    }
    std::size_t Checked(std::int32_t index) const
    {
        if (static_cast<std::size_t>(static_cast<std::uint32_t>(index)) >= FItems.size()) [[unlikely]]
            RaiseRangeError();
        return static_cast<std::size_t>(index);
    }

    /// With an allocator of our own the C++ library would fill and copy bytes one by one.
    std::vector<T> FItems;
};

/// Bytes by value.
using TBytes = TArray<std::uint8_t>;

}
