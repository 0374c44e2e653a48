// Points, sizes and rectangles of integers and of floats.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace ht {

namespace detail {

/// Integer coordinates raise EIntOverflow instead of wrapping around.
template <class T> constexpr T Plus(T a, T b)
{
    if constexpr (std::is_integral_v<T>)
        return CheckedAdd(a, b);
    else
        return a + b;
}

template <class T> constexpr T Minus(T a, T b)
{
    if constexpr (std::is_integral_v<T>)
        return CheckedSub(a, b);
    else
        return a - b;
}

}

template <class T> struct TPointOf {
    T X{};
    T Y{};

    /// Moves the point. Throws EIntOverflow.
    constexpr void Offset(T dx, T dy) { *this = {detail::Plus(X, dx), detail::Plus(Y, dy)}; }
    friend constexpr bool operator==(const TPointOf&, const TPointOf&) = default;
};

template <class T> struct TSizeOf {
    T Width{};
    T Height{};

    friend constexpr bool operator==(const TSizeOf&, const TSizeOf&) = default;
};

/// A rectangle that holds its left and top edges and not its right and bottom ones.
template <class T> struct TRectOf {
    T Left{};
    T Top{};
    T Right{};
    T Bottom{};

    /// Negative when the edges are the wrong way round. Throw EIntOverflow.
    constexpr T Width() const { return detail::Minus(Right, Left); }
    constexpr T Height() const { return detail::Minus(Bottom, Top); }
    constexpr TSizeOf<T> Size() const { return {Width(), Height()}; }
    constexpr TPointOf<T> TopLeft() const noexcept { return {Left, Top}; }
    constexpr TPointOf<T> BottomRight() const noexcept { return {Right, Bottom}; }

    /// True without an area; a float edge that is no number leaves none.
    constexpr bool IsEmpty() const noexcept { return !(Left < Right && Top < Bottom); }
    constexpr bool Contains(const TPointOf<T>& point) const noexcept
    {
        return point.X >= Left && point.X < Right && point.Y >= Top && point.Y < Bottom;
    }
    constexpr bool Contains(const TRectOf& other) const noexcept
    {
        return other.Left >= Left && other.Right <= Right && other.Top >= Top && other.Bottom <= Bottom;
    }
    constexpr bool IntersectsWith(const TRectOf& other) const noexcept
    {
        return !Intersect(*this, other).IsEmpty();
    }

    /// The common area; all zeros when there is none.
    static constexpr TRectOf Intersect(const TRectOf& a, const TRectOf& b) noexcept
    {
        const TRectOf common{std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
            std::min(a.Bottom, b.Bottom)};
        return common.IsEmpty() ? TRectOf() : common;
    }
    /// The smallest rectangle around both; one that is empty does not count.
    static constexpr TRectOf Union(const TRectOf& a, const TRectOf& b) noexcept
    {
        if (a.IsEmpty() || b.IsEmpty())
            return !a.IsEmpty() ? a : b.IsEmpty() ? TRectOf() : b;
        return {std::min(a.Left, b.Left), std::min(a.Top, b.Top), std::max(a.Right, b.Right),
            std::max(a.Bottom, b.Bottom)};
    }

    /// Move, or move each edge outwards (inwards for negative values). Throw EIntOverflow and change
    /// nothing then.
    constexpr void Offset(T dx, T dy)
    {
        *this = {
            detail::Plus(Left, dx), detail::Plus(Top, dy), detail::Plus(Right, dx), detail::Plus(Bottom, dy)};
    }
    constexpr void Inflate(T dx, T dy)
    {
        *this = {detail::Minus(Left, dx), detail::Minus(Top, dy), detail::Plus(Right, dx),
            detail::Plus(Bottom, dy)};
    }

    friend constexpr bool operator==(const TRectOf&, const TRectOf&) = default;
};

using TPoint = TPointOf<std::int32_t>;
using TPointF = TPointOf<float>;
using TSize = TSizeOf<std::int32_t>;
using TSizeF = TSizeOf<float>;
using TRect = TRectOf<std::int32_t>;
using TRectF = TRectOf<float>;

}
