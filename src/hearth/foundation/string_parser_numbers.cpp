// Reading numbers at the cursor; none of them depends on a locale.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/string_parser.h>

#include <hearth/runtime/checked.h>
#include <hearth/runtime/exceptions.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ht {

namespace {

/// Integers stop growing here: one digit more still fits in 32 bits.
constexpr std::int32_t kIntLimit = 0xCCCCCCC;
constexpr int kMaxFractionDigits = 7;
/// The tolerant readers do not apply exponents from here on; a long row of digits needs RequireFinite too.
constexpr std::int32_t kExponentLimit = 38;
constexpr std::int32_t kScriptExponentLimit = 300;

[[noreturn]] void RaiseIncorrect()
{
    throw EConvertError(u"Incorrect number"_s);
}

/// The sign of a based number: "+" and then "-" may both stand there.
bool ReadBasedSign(TStringParser& parser)
{
    if (parser.GetCurrent() == u'+')
        parser.Next();
    if (parser.GetCurrent() != u'-')
        return false;
    parser.Next();
    return true;
}

/// The type reaches one further down than up.
constexpr std::uint64_t GreatestMagnitude(bool negative)
{
    return static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) + (negative ? 1U : 0U);
}

/// Saturates at the ends of the type: there is no limit of digits.
std::int64_t SignedMagnitude(std::uint64_t magnitude, bool negative)
{
    const std::uint64_t kept = std::min(magnitude, GreatestMagnitude(negative));
    return static_cast<std::int64_t>(negative ? 0U - kept : kept);
}

}

bool TStringParser::StartNumber()
{
    SkipBlanks();
    if (GetCurrent() == u',' && p < pend) {
        ++p;
        SkipBlanks();
    }
    return p < pend;
}

bool TStringParser::ReadSign()
{
    const bool negative = *p == u'-';
    if (negative || *p == u'+')
        Next();
    return negative;
}

void TStringParser::CheckDigit() const
{
    if (RaiseException && !IsAsciiDigit(*p))
        RaiseIncorrect();
}

void TStringParser::CheckLeadingZero() const
{
    if (RaiseException && *p == u'0' && IsAsciiDigit(p[1]))
        RaiseIncorrect();
}

/// A "." needs a digit behind it.
void TStringParser::CheckFraction() const
{
    if (RaiseException && *p == u'.' && !IsAsciiDigit(p[1]))
        RaiseIncorrect();
}

double TStringParser::RequireFinite(double value) const
{
    if (std::isfinite(value))
        return value;
    if (RaiseException)
        RaiseIncorrect();
    return std::numeric_limits<double>::max();
}

std::int32_t TStringParser::ReadInt()
{
    if (!StartNumber())
        return 0;
    const bool negative = ReadSign();
    CheckDigit();
    std::int32_t value = 0;
    while (IsAsciiDigit(*p) && value < kIntLimit) {
        value = value * 10 + (*p - u'0');
        ++p;
    }
    return negative ? -value : value;
}

std::int32_t TStringParser::ReadInt1()
{
    if (!StartNumber())
        return 0;
    const bool negative = ReadSign();
    CheckDigit();
    const std::int32_t value = std::int32_t{*p} - u'0';
    Next();
    return negative ? -value : value;
}

std::int64_t TStringParser::ReadHex()
{
    if (!StartNumber())
        return 0;
    const bool negative = ReadBasedSign(*this);
    constexpr std::uint64_t kFull = std::numeric_limits<std::uint64_t>::max() >> 4U;
    std::uint64_t value = 0;
    for (int digit = HexDigitValue(*p); digit >= 0; digit = HexDigitValue(*++p))
        value = value > kFull ? std::numeric_limits<std::uint64_t>::max()
                              : value * 16 + static_cast<unsigned>(digit);
    return SignedMagnitude(value, negative);
}

std::int64_t TStringParser::ReadBin()
{
    SkipBlanks();
    if (p >= pend)
        return 0;
    const bool negative = ReadBasedSign(*this);
    constexpr std::uint64_t kFull = std::numeric_limits<std::uint64_t>::max() >> 1U;
    std::uint64_t value = 0;
    for (; *p == u'0' || *p == u'1'; ++p)
        value = value > kFull ? std::numeric_limits<std::uint64_t>::max() : value * 2 + (*p - u'0');
    return SignedMagnitude(value, negative);
}

double TStringParser::ReadNum()
{
    if (!StartNumber())
        return 0;
    const bool negative = ReadSign();
    std::int64_t whole = 0;
    for (; IsAsciiDigit(*p) && whole < kIntLimit + 1; ++p)
        whole = whole * 10 + (*p - u'0');
    const double value = static_cast<double>(whole) + ReadFraction(kMaxFractionDigits);
    return negative ? -value : value;
}

double TStringParser::ReadNumEx()
{
    if (!StartNumber()) {
        if (RaiseException)
            RaiseIncorrect();
        return 0;
    }
    const bool negative = ReadSign();
    if (*p != u'.')
        CheckDigit();
    CheckLeadingZero();
    double value = 0;
    for (; IsAsciiDigit(*p); ++p)
        value = value * 10 + (*p - u'0');
    CheckFraction();
    value += ReadFraction(kMaxFractionDigits);
    value = RequireFinite(
        ReadExponent(value, RaiseException ? std::numeric_limits<std::int32_t>::max() : kExponentLimit));
    return negative ? -value : value;
}

bool TStringParser::ReadIntOrFloat(std::int64_t& IntValue, double& ExtValue)
{
    IntValue = 0;
    ExtValue = 0;
    SkipBlanks();
    if (p >= pend)
        return true;
    const bool negative = ReadSign();
    CheckDigit();
    CheckLeadingZero();
    const std::uint64_t greatest = GreatestMagnitude(negative);
    std::uint64_t whole = 0;
    bool isInteger = true;
    double value = 0;
    for (; IsAsciiDigit(*p); ++p) {
        const auto digit = static_cast<unsigned>(*p - u'0');
        if (isInteger && whole > (greatest - digit) / 10) {
            isInteger = false;
            value = static_cast<double>(whole);
        }
        if (isInteger)
            whole = whole * 10 + digit;
        else
            value = value * 10 + digit;
    }
    const bool hasFraction = *p == u'.' && p[1] != u'.';
    const bool hasExponent = StartsExponent();
    if (isInteger && !hasFraction && !hasExponent) {
        IntValue = SignedMagnitude(whole, negative);
        return true;
    }
    if (isInteger)
        value = static_cast<double>(whole);
    if (hasFraction) {
        CheckFraction();
        value += ReadFraction(std::numeric_limits<int>::max());
    }
    value = RequireFinite(ReadExponent(value, kScriptExponentLimit));
    ExtValue = negative ? -value : value;
    return false;
}

double TStringParser::ReadFraction(int maxDigits)
{
    if (*p != u'.')
        return 0;
    ++p;
    // Gathered as integers and divided once: the sum of rounded tenths would drift.
    constexpr std::uint64_t kFull = 1'000'000'000'000'000'000U;
    std::uint64_t digits = 0;
    std::uint64_t divisor = 1;
    for (int count = 0; IsAsciiDigit(*p); ++p) {
        if (count >= maxDigits || divisor >= kFull)
            continue;
        digits = digits * 10 + (*p - u'0');
        divisor *= 10;
        ++count;
    }
    return static_cast<double>(digits) / static_cast<double>(divisor);
}

bool TStringParser::StartsExponent() const
{
    return (*p == u'e' || *p == u'E') && (p[1] == u'+' || p[1] == u'-' || IsAsciiDigit(p[1]));
}

double TStringParser::ReadExponent(double value, std::int32_t limit)
{
    if (!StartsExponent())
        return value;
    ++p;
    const std::int32_t exponent = ReadInt();
    // Zero times a power that has grown to infinity would be no number.
    if (value == 0 || std::abs(exponent) >= limit)
        return value;
    const double power = std::pow(10.0, std::abs(exponent));
    return exponent < 0 ? value / power : value * power;
}

}
