// Typed sets of enumeration values.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/enum_names.h>

#include <bit>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <type_traits>

namespace ht {

/// A set over the values 0 to Count - 1 of an enumeration: the smallest machine word that
/// has a bit for each, several of 64 bits above that; 256 values at most. Putting in a number that is no
/// value throws ERangeError.
template <class E, int Count = TEnumTraits<E>::kCount> class TSet {
    static_assert(Count > 0 && Count <= 256, "sets hold up to 256 values");
    using Word = std::conditional_t<Count <= 8, std::uint8_t,
        std::conditional_t<Count <= 16, std::uint16_t,
            std::conditional_t<Count <= 32, std::uint32_t, std::uint64_t>>>;
    static constexpr int kWordBits = 8 * static_cast<int>(sizeof(Word));
    static constexpr std::size_t kWords = (static_cast<std::size_t>(Count) + kWordBits - 1) / kWordBits;

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
        result.FWords[0] = static_cast<Word>(bits & MaskOf(0));
        return result;
    }
    constexpr std::uint64_t Bits() const noexcept { return FWords[0]; }

    constexpr void Include(E value)
    {
        Word& word = WordOf(value);
        word = static_cast<Word>(word | BitOf(value));
    }
    constexpr void Exclude(E value)
    {
        if (!IsValue(value))
            return;
        Word& word = WordOf(value);
        word = static_cast<Word>(word & ~BitOf(value));
    }
    constexpr bool Contains(E value) const noexcept
    {
        return IsValue(value) && (FWords[static_cast<std::size_t>(value) / kWordBits] & BitOf(value)) != 0;
    }
    constexpr bool IsEmpty() const noexcept { return *this == TSet(); }
    constexpr int Size() const noexcept
    {
        int size = 0;
        for (Word word : FWords)
            size += std::popcount(word);
        return size;
    }
    /// True when `other` has every value of this set.
    constexpr bool IsSubsetOf(const TSet& other) const noexcept { return (*this - other).IsEmpty(); }
    constexpr TSet Complement() const noexcept
    {
        TSet result;
        for (std::size_t i = 0; i < kWords; ++i)
            result.FWords[i] = static_cast<Word>(~FWords[i] & MaskOf(i));
        return result;
    }

    /// Union, difference and intersection.
    constexpr TSet& operator+=(const TSet& other) noexcept
    {
        for (std::size_t i = 0; i < kWords; ++i)
            FWords[i] = static_cast<Word>(FWords[i] | other.FWords[i]);
        return *this;
    }
    constexpr TSet& operator-=(const TSet& other) noexcept
    {
        for (std::size_t i = 0; i < kWords; ++i)
            FWords[i] = static_cast<Word>(FWords[i] & ~other.FWords[i]);
        return *this;
    }
    constexpr TSet& operator*=(const TSet& other) noexcept
    {
        for (std::size_t i = 0; i < kWords; ++i)
            FWords[i] = static_cast<Word>(FWords[i] & other.FWords[i]);
        return *this;
    }
    friend constexpr TSet operator+(TSet a, const TSet& b) noexcept { return a += b; }
    friend constexpr TSet operator-(TSet a, const TSet& b) noexcept { return a -= b; }
    friend constexpr TSet operator*(TSet a, const TSet& b) noexcept { return a *= b; }
    friend constexpr bool operator==(const TSet&, const TSet&) = default;

    constexpr Iterator begin() const noexcept { return Iterator(*this, 0); }
    constexpr Iterator end() const noexcept { return Iterator(*this, Count); }

private:
    static constexpr Word MaskOf(std::size_t word) noexcept
    {
        constexpr int kRest = Count % kWordBits;
        constexpr Word kAll = std::numeric_limits<Word>::max();
        return word + 1 == kWords && kRest != 0 ? static_cast<Word>(kAll >> (kWordBits - kRest)) : kAll;
    }
    static constexpr bool IsValue(E value) noexcept
    {
        return static_cast<std::int64_t>(value) >= 0 && static_cast<std::int64_t>(value) < Count;
    }
    static constexpr Word BitOf(E value) noexcept
    {
        return static_cast<Word>(Word{1} << (static_cast<unsigned>(value) % kWordBits));
    }
    constexpr Word& WordOf(E value)
    {
        if (!IsValue(value)) [[unlikely]]
            RaiseRangeError();
        return FWords[static_cast<std::size_t>(value) / kWordBits];
    }
    constexpr int NextFrom(int ordinal) const noexcept
    {
        while (ordinal < Count) {
            const Word word = FWords[static_cast<std::size_t>(ordinal) / kWordBits];
            const auto rest = static_cast<Word>(word >> (ordinal % kWordBits));
            if (rest != 0)
                return ordinal + std::countr_zero(rest);
            ordinal = (ordinal / kWordBits + 1) * kWordBits;
        }
        return Count;
    }

    std::array<Word, kWords> FWords{};
};

}
