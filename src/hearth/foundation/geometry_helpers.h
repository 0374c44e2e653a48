// Short functions on rectangles and points, for integers and floats alike.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/number_text.h>
#include <hearth/runtime/geometry.h>

#include <type_traits>

namespace ht {

// Integers throw EIntOverflow where a result does not fit.

/// Width and height; negative when the edges are the wrong way round.
template <class T> constexpr T RW(const TRectOf<T>& r)
{
    return r.Width();
}
template <class T> constexpr T RH(const TRectOf<T>& r)
{
    return r.Height();
}

/// Moves the left top corner to a place; the size stays.
template <class T>
constexpr void RSetLocation(TRectOf<T>& r, std::type_identity_t<T> x, std::type_identity_t<T> y)
{
    r = {x, y, detail::Plus<T>(x, r.Width()), detail::Plus<T>(y, r.Height())};
}
template <class T>
constexpr void ROffset(TRectOf<T>& r, std::type_identity_t<T> dx, std::type_identity_t<T> dy)
{
    r.Offset(dx, dy);
}
/// Moves each edge outwards, inwards for negative numbers.
template <class T>
constexpr void RInflate(TRectOf<T>& r, std::type_identity_t<T> dx, std::type_identity_t<T> dy)
{
    r.Inflate(dx, dy);
}

/// The common area; all zeros when there is none.
template <class T> constexpr TRectOf<T> RIntersect(const TRectOf<T>& a, const TRectOf<T>& b) noexcept
{
    return TRectOf<T>::Intersect(a, b);
}
/// True when the rectangle, whose right and bottom edges do not belong to it, holds the point.
template <class T> constexpr bool RContains(const TRectOf<T>& r, const TPointOf<T>& point) noexcept
{
    return r.Contains(point);
}
template <class T>
constexpr bool RContains(const TRectOf<T>& r, std::type_identity_t<T> x, std::type_identity_t<T> y) noexcept
{
    return r.Contains(TPointOf<T>{x, y});
}
template <class T> constexpr bool RSame(const TRectOf<T>& a, const TRectOf<T>& b) noexcept
{
    return a == b;
}
/// True when the two have an area in common.
template <class T> constexpr bool RectIntersects(const TRectOf<T>& a, const TRectOf<T>& b) noexcept
{
    return a.IntersectsWith(b);
}
/// True when all of `inner` lies within `outer`, whose edges it may touch.
template <class T> constexpr bool RectInside(const TRectOf<T>& inner, const TRectOf<T>& outer) noexcept
{
    return outer.Contains(inner);
}

/// To whole numbers, halves away from zero. Throw ERangeError for what 32 bits cannot hold.
inline TPoint P2P(const TPointF& p)
{
    return {MathRound(p.X), MathRound(p.Y)};
}
inline TRect R2R(const TRectF& r)
{
    return {MathRound(r.Left), MathRound(r.Top), MathRound(r.Right), MathRound(r.Bottom)};
}

/// To floats, which hold whole numbers up to 2^24 exactly.
constexpr TPointF P2F(const TPoint& p) noexcept
{
    return {static_cast<float>(p.X), static_cast<float>(p.Y)};
}
constexpr TRectF R2F(const TRect& r) noexcept
{
    return {static_cast<float>(r.Left), static_cast<float>(r.Top), static_cast<float>(r.Right),
        static_cast<float>(r.Bottom)};
}

/// True for a <= x <= b, which are numbers of the type of x.
template <class T>
requires std::is_arithmetic_v<T>
constexpr bool Between(T x, std::type_identity_t<T> a, std::type_identity_t<T> b) noexcept
{
    return a <= x && x <= b;
}

}
