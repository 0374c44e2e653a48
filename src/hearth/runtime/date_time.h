// Dates and times of day as one number.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <cstdint>

namespace ht {

/// Days since 1899-12-30. The fraction is the time of day and counts forward for dates before that day too:
/// -1.25 is 1899-12-29 06:00. What is no date at all is NaN, and what 64 bits cannot count in milliseconds.
using TDateTime = double;

inline constexpr std::int64_t kMillisecondsPerDay = 86400000;

/// Years 1 to 9999 and the days that they have. Throws EConvertError, or returns false and leaves
/// `value` alone.
HT_API TDateTime EncodeDate(int year, int month, int day);
HT_API bool TryEncodeDate(int year, int month, int day, TDateTime& value) noexcept;
/// All three are 0 before year 1. Throws ERangeError for what is no date at all.
HT_API void DecodeDate(TDateTime value, int& year, int& month, int& day);

/// The time of a day of 24 hours. Throws EConvertError, or returns false and leaves `value` alone.
HT_API TDateTime EncodeTime(int hour, int minute, int second, int millisecond);
HT_API bool TryEncodeTime(int hour, int minute, int second, int millisecond, TDateTime& value) noexcept;
/// Rounds to milliseconds. Throws ERangeError for what is no date at all.
HT_API void DecodeTime(TDateTime value, int& hour, int& minute, int& second, int& millisecond);

/// 1 for Sunday to 7 for Saturday. Throws ERangeError for what is no date at all.
HT_API int DayOfWeek(TDateTime value);
HT_API bool IsLeapYear(int year) noexcept;
/// Throws EConvertError for a month that is none.
HT_API int DaysInAMonth(int year, int month);
/// Throws EConvertError before year 1, ERangeError for what is no date at all.
HT_API int DaysInMonth(TDateTime value);
/// The same day and time some months later, or the last day of a shorter month. Throws EConvertError outside
/// the years 1 to 9999, ERangeError for what is no date at all.
HT_API TDateTime IncMonth(TDateTime value, int months = 1);

/// The local clock.
HT_API TDateTime Now();
HT_API TDateTime Date();
HT_API TDateTime Time();

/// Writes a date by a pattern with English names. y yy: two digits of the year, yyy yyyy: four; m mm: month
/// (minutes behind h), mmm mmmm: its name; d dd: day, ddd dddd: day of the week; h hh, n nn, s ss: hour,
/// minute, second; z zz zzz: milliseconds; am/pm, a/p, ampm: half of the day, which makes hours count to 12.
/// Quoted text and all other characters are copied. Before year 1 the date is all zeros and its names are
/// empty. Throws ERangeError for what is no date at all.
HT_API String FormatDateTime(std::u16string_view pattern, TDateTime value);

}
