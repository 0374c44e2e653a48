// What the writer and the reader of dates have in common.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/date_time.h>

#include <cstddef>
#include <string_view>

namespace ht::detail {

inline constexpr std::u16string_view kMonthNames[] = {u"January", u"February", u"March", u"April", u"May",
    u"June", u"July", u"August", u"September", u"October", u"November", u"December"};

/// Units of a short name, of months and of days alike.
inline constexpr std::size_t kShortName = 3;

/// Puts a time onto midnight of a day: the fraction counts forward even where days are negative.
constexpr TDateTime JoinDayAndTime(TDateTime day, TDateTime time) noexcept
{
    return day < 0 ? day - time : day + time;
}

}
