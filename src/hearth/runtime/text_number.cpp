// Numbers as text and back.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/text_number.h>

#include <hearth/runtime/exceptions.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace ht {

namespace {

constexpr int kGeneralPrecision = 15;

/// Digits of any base up to 16; nothing for an empty text, a foreign unit or more than 64 bits.
std::optional<std::uint64_t> ReadDigits(std::u16string_view digits, unsigned base) noexcept
{
    if (digits.empty())
        return std::nullopt;
    std::uint64_t number = 0;
    for (char16_t unit : digits) {
        const char16_t folded = FoldAscii(unit);
        const unsigned digit = IsAsciiDigit(unit) ? unit - 0x30U
            : folded >= u'a' && folded <= u'f'    ? folded - 0x61U + 10
                                                  : base;
        if (digit >= base || __builtin_mul_overflow(number, base, &number)
            || __builtin_add_overflow(number, digit, &number))
            return std::nullopt;
    }
    return number;
}

/// Int is the type to read, UInt the unsigned one of its size.
template <class Int, class UInt> std::optional<Int> ReadInteger(std::u16string_view text) noexcept
{
    text = TrimLeftView(text);
    const bool negative = text.starts_with(u'-');
    if (negative || text.starts_with(u'+'))
        text.remove_prefix(1);
    unsigned base = 10;
    if (text.starts_with(u'$')) {
        base = 16;
        text.remove_prefix(1);
    } else if (text.starts_with(u"0x") || text.starts_with(u"0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    const std::optional<std::uint64_t> number = ReadDigits(text, base);
    const std::uint64_t highest =
        static_cast<std::uint64_t>(std::numeric_limits<Int>::max()) + (negative ? 1U : 0U);
    const std::uint64_t limit = base == 16 ? std::numeric_limits<UInt>::max() : highest;
    if (!number || *number > limit)
        return std::nullopt;
    const auto magnitude = static_cast<UInt>(*number);
    return static_cast<Int>(negative ? UInt{0} - magnitude : magnitude);
}

template <class Int> Int Required(const std::optional<Int>& number, std::u16string_view text)
{
    if (!number)
        throw EConvertError(Concat({u"'", text, u"' is not a valid integer value"}));
    return *number;
}

std::optional<std::int32_t> ReadInt32(std::u16string_view text) noexcept
{
    return ReadInteger<std::int32_t, std::uint32_t>(text);
}

std::optional<std::int64_t> ReadInt64(std::u16string_view text) noexcept
{
    return ReadInteger<std::int64_t, std::uint64_t>(text);
}

/// True when a well-formed decimal lies below 1: what the reader of the C++ library reports as out of range
/// is then too small, not too great.
bool IsBelowOne(std::string_view decimal) noexcept
{
    const std::size_t mark = decimal.find_first_of("eE");
    const std::string_view mantissa = decimal.substr(0, mark);
    const std::size_t first = mantissa.find_first_of("123456789");
    if (first == std::string_view::npos)
        return true;
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const auto place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    if (mark == std::string_view::npos)
        return place <= 0;
    const bool negative = decimal[mark + 1] == '-';
    std::int64_t exponent = 0;
    const char* digits = decimal.data() + mark + (negative || decimal[mark + 1] == '+' ? 2 : 1);
    const auto read = std::from_chars(digits, decimal.data() + decimal.size(), exponent);
    if (read.ec != std::errc())
        return negative;
    return place + (negative ? -exponent : exponent) <= 0;
}

std::optional<double> ReadDecimal(std::string_view decimal)
{
    const bool negative = decimal.starts_with('-');
    if (negative || decimal.starts_with('+'))
        decimal.remove_prefix(1);
    if (decimal == "NAN" || decimal == "INF") {
        const double special = decimal == "NAN" ? std::numeric_limits<double>::quiet_NaN()
                                                : std::numeric_limits<double>::infinity();
        return negative ? -special : special;
    }
    if (decimal.find_first_not_of("0123456789.eE+-") != std::string_view::npos || decimal.starts_with('-'))
        return std::nullopt;
    double value = 0;
    const char* const end = decimal.data() + decimal.size();
    const auto [stop, error] = std::from_chars(decimal.data(), end, value);
    if (stop != end || error == std::errc::invalid_argument)
        return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        if (!IsBelowOne(decimal))
            return std::nullopt;
        value = 0;
    }
    return negative ? -value : value;
}

template <class Int> String DecimalText(Int value)
{
    char text[24];
    const char* const end = std::to_chars(text, std::end(text), value).ptr;
    return String::FromLatin1({text, static_cast<std::size_t>(end - text)});
}

}

String IntToStr(std::int64_t value)
{
    return DecimalText(value);
}

String UIntToStr(std::uint64_t value)
{
    return DecimalText(value);
}

String IntToHex(std::uint64_t value, int digits)
{
    constexpr char16_t kDigits[] = u"0123456789ABCDEF";
    char16_t text[16];
    int count = 0;
    for (; value != 0 || (count < digits && count < 16) || count == 0; value >>= 4)
        text[15 - count++] = kDigits[value & 15];
    return String(std::u16string_view(text + 16 - count, static_cast<std::size_t>(count)));
}

std::int32_t StrToInt(std::u16string_view text)
{
    return Required(ReadInt32(text), text);
}

bool TryStrToInt(std::u16string_view text, std::int32_t& value) noexcept
{
    const std::optional<std::int32_t> number = ReadInt32(text);
    value = number.value_or(value);
    return number.has_value();
}

std::int32_t StrToIntDef(std::u16string_view text, std::int32_t defaultValue) noexcept
{
    return ReadInt32(text).value_or(defaultValue);
}

std::int64_t StrToInt64(std::u16string_view text)
{
    return Required(ReadInt64(text), text);
}

bool TryStrToInt64(std::u16string_view text, std::int64_t& value) noexcept
{
    const std::optional<std::int64_t> number = ReadInt64(text);
    value = number.value_or(value);
    return number.has_value();
}

std::int64_t StrToInt64Def(std::u16string_view text, std::int64_t defaultValue) noexcept
{
    return ReadInt64(text).value_or(defaultValue);
}

TFloatDecimal FloatToDecimal(double value, int precision, int decimals)
{
    if (!std::isfinite(value))
        RaiseRangeError();
    TFloatDecimal result;
    if (value == 0)
        return result;
    // Digits far behind the precision, so that a half is a half and not the result of a first rounding.
    constexpr int kDigits = 26;
    char text[kDigits + 16];
    const auto end =
        std::to_chars(text, std::end(text), std::fabs(value), std::chars_format::scientific, kDigits - 1).ptr;
    const char* const mark = std::find<const char*>(text, end, 'e');
    int exponent = 0;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, exponent);
    text[1] = text[0]; // closes the gap of the point
    const char* const all = text + 1;
    result.exponent = exponent + 1;
    constexpr int kAll = TFloatDecimal::kAllDecimals;
    int count = std::min(std::clamp(precision, 1, TFloatDecimal::kMaxDigits),
        result.exponent + std::clamp(decimals, -kAll, kAll));
    if (count < 0)
        return {};
    bool carry = all[count] >= '5';
    std::copy_n(all, count, result.digits);
    while (carry && count > 0 && result.digits[count - 1] == '9')
        --count;
    if (carry && count > 0) {
        ++result.digits[count - 1];
    } else if (carry) {
        result.digits[0] = '1';
        ++result.exponent;
        count = 1;
    }
    while (count > 0 && result.digits[count - 1] == '0')
        --count;
    if (count == 0)
        return {};
    result.count = count;
    result.negative = std::signbit(value);
    return result;
}

std::string FixedText(const TFloatDecimal& number, int decimals)
{
    std::string text = number.negative ? "-" : "";
    for (int place = std::max(number.exponent, 1); place > 0; --place)
        text += number.DigitAt(place);
    if (decimals > 0)
        text += '.';
    for (int place = 0; place > -decimals; --place)
        text += number.DigitAt(place);
    return text;
}

String FloatToStr(double value)
{
    if (std::isnan(value))
        return u"NAN"_s;
    if (std::isinf(value))
        return value < 0 ? u"-INF"_s : u"INF"_s;
    const TFloatDecimal number = FloatToDecimal(value, kGeneralPrecision, TFloatDecimal::kAllDecimals);
    if (number.exponent >= -3 && number.exponent <= kGeneralPrecision)
        return String::FromLatin1(FixedText(number, std::max(number.count - number.exponent, 0)));
    std::string text = number.negative ? "-" : "";
    text += number.digits[0];
    if (number.count > 1)
        text.append(1, '.').append(number.digits + 1, static_cast<std::size_t>(number.count - 1));
    return String::FromLatin1(text.append(1, 'E').append(std::to_string(number.exponent - 1)));
}

bool TryStrToFloat(std::u16string_view text, double& value)
{
    std::string decimal;
    for (char16_t unit : TrimView(text)) {
        if (unit >= 0x80)
            return false;
        decimal += static_cast<char>(unit);
    }
    const std::optional<double> number = ReadDecimal(decimal);
    value = number.value_or(value);
    return number.has_value();
}

double StrToFloat(std::u16string_view text)
{
    double value = 0;
    if (!TryStrToFloat(text, value))
        throw EConvertError(Concat({u"'", text, u"' is not a valid floating point value"}));
    return value;
}

double StrToFloatDef(std::u16string_view text, double defaultValue)
{
    TryStrToFloat(text, defaultValue);
    return defaultValue;
}

std::int64_t BankersRound(double value)
{
    const double lower = std::floor(value);
    const double rest = value - lower;
    const bool up = rest > 0.5 || (rest == 0.5 && std::fmod(lower, 2) != 0);
    const double rounded = up ? lower + 1 : lower;
    constexpr double kLimit = 9223372036854775808.0;
    if (!(rounded >= -kLimit && rounded < kLimit))
        RaiseRangeError();
    return static_cast<std::int64_t>(rounded);
}

}
