// Numbers as text and back, "." as the decimal point everywhere.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <cstdint>

namespace ht {

HT_API String IntToStr(std::int64_t value);
HT_API String UIntToStr(std::uint64_t value);
/// Upper-case hexadecimal with at least `digits` digits (16 at most).
HT_API String IntToHex(std::uint64_t value, int digits);

/// Readers of whole numbers: blanks in front, a sign, then decimal digits or hexadecimal ones behind "$" or
/// "0x". Hexadecimal digits may fill the whole type, sign bit included. A miss raises EConvertError, returns
/// false and leaves `value` alone, or returns the default.
HT_API std::int32_t StrToInt(std::u16string_view text);
HT_API bool TryStrToInt(std::u16string_view text, std::int32_t& value) noexcept;
HT_API std::int32_t StrToIntDef(std::u16string_view text, std::int32_t defaultValue) noexcept;
HT_API std::int64_t StrToInt64(std::u16string_view text);
HT_API bool TryStrToInt64(std::u16string_view text, std::int64_t& value) noexcept;
HT_API std::int64_t StrToInt64Def(std::u16string_view text, std::int64_t defaultValue) noexcept;

/// General form of at most 15 significant digits without trailing zeros: "0.1", "1E20", "1E-5". Plain digits
/// are used from 0.0001 up to 15 places in front of the point. "NAN", "INF" and "-INF" for what is no number.
/// Values of up to 15 digits read back as they were.
HT_API String FloatToStr(double value);

/// Reads what FloatToStr writes and every usual form of a decimal number, blanks around it allowed. Too great
/// numbers are a miss, too small ones 0. A miss raises EConvertError, returns false, or returns the default.
HT_API double StrToFloat(std::u16string_view text);
HT_API bool TryStrToFloat(std::u16string_view text, double& value);
HT_API double StrToFloatDef(std::u16string_view text, double defaultValue);

/// The nearest whole number, halves to the even one. Throws ERangeError for what 64 bits cannot hold.
HT_API std::int64_t BankersRound(double value);

/// A finite value as 0.d1d2d3... times ten to the `exponent`, halves rounded away from zero.
struct TFloatDecimal {
    static constexpr int kMaxDigits = 18;
    static constexpr int kAllDecimals = 9999; // no value has that many digits behind the point

    bool negative = false; // never for zero
    int exponent = 0;
    int count = 0; // digits without trailing zeros; 0 for zero
    char digits[kMaxDigits]{};

    /// The digit at a place: 1, 2, 3 leftwards from the point and 0, -1, -2 behind it. '0' where none
    /// is kept.
    char DigitAt(std::int64_t place) const noexcept
    {
        const std::int64_t index = exponent - place;
        return index >= 0 && index < count ? digits[index] : '0';
    }
};

/// Rounds to at most `precision` (1 to 18) significant digits and `decimals` digits behind the point. Throws
/// ERangeError for a value that is not finite.
HT_API TFloatDecimal FloatToDecimal(double value, int precision, int decimals);

/// Writes plain digits with just `decimals` digits behind the point.
HT_API std::string FixedText(const TFloatDecimal& number, int decimals);

}
