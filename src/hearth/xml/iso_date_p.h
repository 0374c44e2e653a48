// Dates as JSON and others exchange them.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/date_time.h>
#include <hearth/runtime/text.h>

#include <string_view>

namespace ht {

/// True for what has a date of the years 1 to 9999.
bool HasIsoDate(TDateTime value) noexcept;
/// "yyyy-mm-ddThh:nn:ss", and ".zzz" where there are milliseconds.
String ToIsoDate(TDateTime value);
/// Reads a date, with a time if there is one: hours and minutes, seconds and their fraction (to
/// milliseconds), a zone. False, with `value` left alone, for all else.
bool TryIsoDate(std::u16string_view text, TDateTime& value);

}
