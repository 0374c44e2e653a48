// Numbers read from text and written as text, the same way on every machine.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <cstdint>

namespace ht {

/// The tolerant reader: blanks in front, a sign, digits, "." or "," with up to seven fraction digits that
/// count (further ones are passed over), then "e" with an exponent below 17 and no "+". A miss returns 0.
HT_API double iStrtoFloat(std::u16string_view text) noexcept;

/// The strict reader: the same shape with one decimal separator; `thousandSep` is passed over behind the
/// first digit of the integer part, u'\0' allows none. An empty text and an exponent of 17 or more give 0.
/// Throws Exception "Invalid number ..." for any other character and for a text of blanks alone.
HT_API double StrtoFloatCheck(std::u16string_view text, char16_t thousandSep, char16_t decimalSep);

/// Decimal digits, or hexadecimal ones behind "$" or "0x", with blanks and a sign in front. A miss returns 0.
HT_API std::int32_t iStrtoInt(std::u16string_view text) noexcept;

/// Hexadecimal digits of either case between an optional "0x" and an optional "h" or "H". Letters behind "f"
/// are digits up to 35, other units count as 0, and what passes 32 bits wraps around: "ffffffff" is -1. An
/// empty text gives 0.
HT_API std::int32_t HexToDec(std::u16string_view text) noexcept;

/// The nearest whole number, halves away from zero. Throws ERangeError for what 32 bits cannot hold.
HT_API std::int32_t MathRound(double value);

/// Writes the value by a picture: "0" is a digit that is always written, "#" one that may be left out, the
/// first "." the decimal point, a "," anywhere puts "," between thousands; text in quotes and all else stands
/// for itself. Rounds halves away from zero to the places of the picture and 15 digits; digits in front of
/// the picture's first are written with it, and the point only with a digit behind it. "E+00" or "e-0" writes
/// a power of ten, with "+" always signed, and as many digits in front of the point as the picture has there.
/// Behind a ";" may stand the picture of negative values, which writes no sign, and behind another one that
/// of what is rounded to zero; an empty one leaves it to the first. An empty first picture, and a value that
/// is no finite number, give the text of FloatToStr.
HT_API String HtFormatFloat(std::u16string_view format, double value);

/// Writes the value with at most `digits` places, without trailing zeros; rounds as HtFormatFloat does.
HT_API String HtFormatDecimal(double value, std::int32_t digits);

}
