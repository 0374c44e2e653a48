// Arithmetic on lengths and indexes that raises instead of wrapping around.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/exceptions.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <utility>

namespace ht {

/// a + b; throws EIntOverflow when the sum does not fit.
template <std::integral T> constexpr T CheckedAdd(T a, T b)
{
    T result{};
    if (__builtin_add_overflow(a, b, &result)) [[unlikely]]
        RaiseIntOverflow();
    return result;
}

/// a - b; throws EIntOverflow when the difference does not fit.
template <std::integral T> constexpr T CheckedSub(T a, T b)
{
    T result{};
    if (__builtin_sub_overflow(a, b, &result)) [[unlikely]]
        RaiseIntOverflow();
    return result;
}

/// a * b; throws EIntOverflow when the product does not fit.
template <std::integral T> constexpr T CheckedMul(T a, T b)
{
    T result{};
    if (__builtin_mul_overflow(a, b, &result)) [[unlikely]]
        RaiseIntOverflow();
    return result;
}

/// -a; throws EIntOverflow for the lowest value of the type.
template <std::signed_integral T> constexpr T CheckedNegate(T a)
{
    return CheckedSub(T{0}, a);
}

/// The same number in another integer type; throws ERangeError when it does not fit.
template <std::integral To, std::integral From> constexpr To CheckedCast(From value)
{
    if (!std::in_range<To>(value)) [[unlikely]]
        RaiseRangeError();
    return static_cast<To>(value);
}

/// A size as the library's length type; throws EIntOverflow above 2^31 - 1.
constexpr std::int32_t CheckedLength(std::size_t size)
{
    if (size > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) [[unlikely]]
        RaiseIntOverflow();
    return static_cast<std::int32_t>(size);
}

}
