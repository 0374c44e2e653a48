// Typed sets of enumeration values.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/enum_names.h>

#include <bit>
#include <cstddef>
#include <initializer_list>
#include <iterator>

namespace ht {

/// A set over the values 0 to Count - 1 of an enumeration: one machine word up to 64 values, 256 values at
/// most. Putting in a number that is no value throws ERangeError.
template <class E, int Count = TEnumTraits<E>::kCount> class TSet {
    static_assert(Count > 0 && Count <= 256, "sets hold up to 256 values");
    static constexpr std::size_t kWords = (static_cast<std::size_t>(Count) + 63) / 64;

public:
    /// Visits the values in rising order.
    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = E;
        using difference_type = std::ptrdiff_t;
        using pointer = const E*;
        using reference = E;

        constexpr Iterator(const TSet& set, int ordinal) noexcept
            : FSet(&set)
            , FOrdinal(set.NextFrom(ordinal))
        {
        }
        constexpr E operator*() const noexcept { return static_cast<E>(FOrdinal); }
        constexpr Iterator& operator++() noexcept
        {
            FOrdinal = FSet->NextFrom(FOrdinal + 1);
            return *this;
        }
        constexpr Iterator operator++(int) noexcept
        {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        constexpr bool operator==(const Iterator& other) const noexcept { return FOrdinal == other.FOrdinal; }

    private:
        const TSet* FSet;
        int FOrdinal;
    };

    constexpr TSet() noexcept = default;
    constexpr TSet(std::initializer_list<E> values)
    {
        for (E value : values)
            Include(value);
    }
    /// The set with every value.
    static constexpr TSet All() noexcept { return TSet().Complement(); }
    /// The first 64 values as bits, lowest value first; bits that stand for no value are dropped.
    static constexpr TSet FromBits(std::uint64_t bits) noexcept
    {
        TSet result;
        result.FWords[0] = bits & MaskOf(0);
        return result;
    }
    constexpr std::uint64_t Bits() const noexcept { return FWords[0]; }

    constexpr void Include(E value) { Word(value) |= BitOf(value); }
    constexpr void Exclude(E value) noexcept
    {
        if (IsValue(value))
            Word(value) &= ~BitOf(value);
    }
    constexpr bool Contains(E value) const noexcept
    {
        return IsValue(value) && (FWords[static_cast<std::size_t>(value) / 64] & BitOf(value)) != 0;
    }
    constexpr bool IsEmpty() const noexcept { return *this == TSet(); }
    constexpr int Size() const noexcept
    {
        int size = 0;
        for (std::uint64_t word : FWords)
            size += std::popcount(word);
        return size;
    }
    /// True when `other` has every value of this set.
    constexpr bool IsSubsetOf(const TSet& other) const noexcept { return (*this - other).IsEmpty(); }
    constexpr TSet Complement() const noexcept
    {
        TSet result;
        for (std::size_t i = 0; i < kWords; ++i)
            result.FWords[i] = ~FWords[i] & MaskOf(i);
        return result;
    }

    /// Union, difference and intersection.
    constexpr TSet& operator+=(const TSet& other) noexcept
    {
        for (std::size_t i = 0; i < kWords; ++i)
            FWords[i] |= other.FWords[i];
        return *this;
    }
    constexpr TSet& operator-=(const TSet& other) noexcept
    {
        for (std::size_t i = 0; i < kWords; ++i)
            FWords[i] &= ~other.FWords[i];
        return *this;
    }
    constexpr TSet& operator*=(const TSet& other) noexcept
    {
        for (std::size_t i = 0; i < kWords; ++i)
            FWords[i] &= other.FWords[i];
        return *this;
    }
    friend constexpr TSet operator+(TSet a, const TSet& b) noexcept { return a += b; }
    friend constexpr TSet operator-(TSet a, const TSet& b) noexcept { return a -= b; }
    friend constexpr TSet operator*(TSet a, const TSet& b) noexcept { return a *= b; }
    friend constexpr bool operator==(const TSet&, const TSet&) = default;

    constexpr Iterator begin() const noexcept { return Iterator(*this, 0); }
    constexpr Iterator end() const noexcept { return Iterator(*this, Count); }

private:
    static constexpr std::uint64_t MaskOf(std::size_t word) noexcept
    {
        constexpr int kRest = Count % 64;
        return word + 1 == kWords && kRest != 0 ? (std::uint64_t{1} << kRest) - 1 : ~std::uint64_t{0};
    }
    static constexpr bool IsValue(E value) noexcept
    {
        return static_cast<std::int64_t>(value) >= 0 && static_cast<std::int64_t>(value) < Count;
    }
    static constexpr std::uint64_t BitOf(E value) noexcept
    {
        return std::uint64_t{1} << (static_cast<unsigned>(value) % 64);
    }
    constexpr std::uint64_t& Word(E value)
    {
        if (!IsValue(value)) [[unlikely]]
            RaiseRangeError();
        return FWords[static_cast<std::size_t>(value) / 64];
    }
    constexpr int NextFrom(int ordinal) const noexcept
    {
        while (ordinal < Count) {
            const std::uint64_t rest = FWords[static_cast<std::size_t>(ordinal) / 64] >> (ordinal % 64);
            if (rest != 0)
                return ordinal + std::countr_zero(rest);
            ordinal = (ordinal / 64 + 1) * 64;
        }
        return Count;
    }

    std::array<std::uint64_t, kWords> FWords{};
};

}
