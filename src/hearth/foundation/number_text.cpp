// Readers of numbers in documents, rounding, and writing by pictures.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/number_text.h>

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/text_number.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

namespace ht {

namespace {

constexpr std::uint32_t kDivisorLimit = 10'000'000; // seven digits of a fraction or an exponent count
constexpr std::uint32_t kExponentLimit = 17;
constexpr int kPrecision = 15;
constexpr std::int32_t kMaxDecimals = 1100; // no digit of a double stands further behind the point

constexpr std::array<double, 24> kPowersOfTen = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11,
    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22, 1e23};

double Scaled(double value, int exponent) noexcept
{
    // Dividing rounds once; a negative power of ten is inexact, so multiplying by it would round twice.
    const double power = kPowersOfTen[static_cast<std::size_t>(std::abs(exponent))];
    return exponent < 0 ? value / power : value * power;
}

struct NumberSeparators {
    char16_t thousand; // u'\0' for none
    char16_t decimal;
    char16_t otherDecimal;
};

/// A cursor over the one shape that both readers know.
class NumberReader {
public:
    NumberReader(std::u16string_view text, NumberSeparators separators) noexcept
        : FRest(text)
        , FSeparators(separators)
    {
    }

    /// Nothing when a foreign character stands in the text.
    std::optional<double> Read() noexcept
    {
        if (FRest.empty())
            return 0.0;
        FRest.remove_prefix(std::min(FRest.find_first_not_of(u' '), FRest.size()));
        if (!StartsNumber())
            return std::nullopt;
        const bool negative = FRest.front() == u'-';
        if (negative || FRest.front() == u'+')
            FRest.remove_prefix(1);
        ReadWhole();
        if (!FRest.empty() && IsDecimal(FRest.front()))
            ReadFraction();
        if (!FRest.empty() && FoldAscii(FRest.front()) == u'e')
            ReadExponent();
        if (!FRest.empty())
            return std::nullopt;
        const double value = Value();
        return negative ? -value : value;
    }

private:
    bool IsDecimal(char16_t unit) const noexcept
    {
        return unit == FSeparators.decimal || unit == FSeparators.otherDecimal;
    }

    bool StartsNumber() const noexcept
    {
        if (FRest.empty())
            return false;
        const char16_t first = FRest.front();
        return first == u'+' || first == u'-' || IsDecimal(first) || IsAsciiDigit(first);
    }

    bool AtDigit() const noexcept { return !FRest.empty() && IsAsciiDigit(FRest.front()); }

    unsigned TakeDigit() noexcept
    {
        const unsigned digit = FRest.front() - 0x30U;
        FRest.remove_prefix(1);
        return digit;
    }

    bool AtThousandSeparator() const noexcept
    {
        return FSeparators.thousand != 0 && !FRest.empty() && FRest.front() == FSeparators.thousand
            && !IsDecimal(FRest.front());
    }

    /// Digits gather in an integer while it can take them, so that the usual number is rounded once.
    void ReadWhole() noexcept
    {
        constexpr std::uint64_t kGatherLimit = std::numeric_limits<std::uint64_t>::max() / 10 - 1;
        bool gathers = true;
        for (bool started = false; AtDigit() || (started && AtThousandSeparator()); started = true) {
            if (!AtDigit()) {
                FRest.remove_prefix(1);
                continue;
            }
            const unsigned digit = TakeDigit();
            gathers = gathers && FWhole <= kGatherLimit;
            if (gathers) {
                FWhole = FWhole * 10 + digit;
                FWholeFloat = static_cast<double>(FWhole);
            } else {
                FWholeFloat = FWholeFloat * 10 + digit;
            }
        }
    }

    void ReadFraction() noexcept
    {
        FRest.remove_prefix(1);
        while (AtDigit()) {
            const unsigned digit = TakeDigit();
            if (FDivisor < kDivisorLimit) {
                FFraction = FFraction * 10 + digit;
                FDivisor *= 10;
                ++FFractionDigits;
            }
        }
    }

    void ReadExponent() noexcept
    {
        FRest.remove_prefix(1);
        FExponentNegative = FRest.starts_with(u'-');
        if (FExponentNegative)
            FRest.remove_prefix(1);
        for (std::uint32_t divisor = 1; AtDigit();) {
            const unsigned digit = TakeDigit();
            if (divisor < kDivisorLimit) {
                FExponent = FExponent * 10 + digit;
                divisor *= 10;
            }
        }
    }

    double Value() const noexcept
    {
        if (FExponent >= kExponentLimit)
            return 0;
        const auto magnitude = static_cast<int>(FExponent);
        const int exponent = FExponentNegative ? -magnitude : magnitude;
        // Up to 2^53 all digits together are one exact integer.
        constexpr double kExactLimit = 9007199254740992.0 / kDivisorLimit - 1;
        if (FWholeFloat < kExactLimit) {
            const double digits = FWholeFloat * FDivisor + FFraction;
            return Scaled(digits, exponent - FFractionDigits);
        }
        return Scaled(FWholeFloat + static_cast<double>(FFraction) / FDivisor, exponent);
    }

    std::u16string_view FRest;
    NumberSeparators FSeparators;
    std::uint64_t FWhole = 0;
    double FWholeFloat = 0;
    std::uint32_t FFraction = 0;
    std::uint32_t FDivisor = 1;
    int FFractionDigits = 0;
    std::uint32_t FExponent = 0;
    bool FExponentNegative = false;
};

/// What a picture asks for, found in a first walk; the second one writes.
struct Picture {
    std::int64_t wholePlaces = 0; // digits told in front of the point
    std::int64_t leastWhole = 0; // of these, how many are written even when 0
    std::int64_t mostDecimals = 0;
    std::int64_t leastDecimals = 0;
    bool thousands = false;
};

bool IsQuote(char16_t unit) noexcept
{
    return unit == u'"' || unit == u'\'';
}

/// Position of the quote that closes the one at `open`; the end of the picture when none does.
std::size_t ClosingQuote(std::u16string_view format, std::size_t open) noexcept
{
    return std::min(format.find(format[open], open + 1), format.size());
}

Picture ReadPicture(std::u16string_view format) noexcept
{
    Picture picture;
    bool behindPoint = false;
    for (std::size_t i = 0; i < format.size(); ++i) {
        const char16_t unit = format[i];
        if (IsQuote(unit)) {
            i = ClosingQuote(format, i);
        } else if (unit == u'.') {
            behindPoint = true;
        } else if (unit == u',') {
            picture.thousands = true;
        } else if ((unit == u'0' || unit == u'#') && behindPoint) {
            ++picture.mostDecimals;
            if (unit == u'0')
                picture.leastDecimals = picture.mostDecimals;
        } else if (unit == u'0' || unit == u'#') {
            ++picture.wholePlaces;
            if (unit == u'0' || picture.leastWhole > 0)
                ++picture.leastWhole;
        }
    }
    return picture;
}

class PictureWriter {
public:
    PictureWriter(std::u16string_view format, double value)
        : FFormat(format)
        , FPicture(ReadPicture(format))
        , FNumber(FloatToDecimal(value, kPrecision,
              static_cast<int>(std::min<std::int64_t>(FPicture.mostDecimals, kMaxDecimals))))
    {
        FWhole = std::max<std::int64_t>(FNumber.exponent, FPicture.leastWhole);
        FDecimals = std::max<std::int64_t>(FNumber.count - FNumber.exponent, FPicture.leastDecimals);
        FPlace = FPicture.wholePlaces;
        if (FNumber.negative)
            FOut += u'-';
    }

    String Run()
    {
        for (std::size_t i = 0; i < FFormat.size(); ++i) {
            const char16_t unit = FFormat[i];
            if (IsQuote(unit)) {
                const std::size_t close = ClosingQuote(FFormat, i);
                FOut += FFormat.substr(i + 1, close - i - 1);
                i = close;
            } else if (unit == u'0' || unit == u'#') {
                WritePlaceholder();
            } else if (unit == u'.') {
                WritePoint();
            } else if (unit != u',') {
                FOut += unit;
            }
        }
        return String(FOut);
    }

private:
    void WriteDigit(std::int64_t place)
    {
        FOut += static_cast<char16_t>(FNumber.DigitAt(place));
        if (FPicture.thousands && place > 1 && place % 3 == 1)
            FOut += u',';
    }

    void WritePlaceholder()
    {
        if (FBehindPoint) {
            if (FPlace > -FDecimals)
                WriteDigit(FPlace);
            --FPlace;
            return;
        }
        // The first placeholder brings all digits in front of it along.
        const bool first = FPlace == FPicture.wholePlaces;
        for (std::int64_t place = first ? std::max(FWhole, FPlace) : FPlace; place >= FPlace; --place) {
            if (place <= FWhole)
                WriteDigit(place);
        }
        --FPlace;
    }

    void WritePoint()
    {
        if (FBehindPoint)
            return;
        if (FPicture.wholePlaces == 0) {
            for (std::int64_t place = FWhole; place > 0; --place)
                WriteDigit(place);
        }
        FBehindPoint = true;
        FPlace = 0;
        if (FDecimals > 0)
            FOut += u'.';
    }

    std::u16string_view FFormat;
    Picture FPicture;
    TFloatDecimal FNumber;
    std::int64_t FWhole = 0;
    std::int64_t FDecimals = 0;
    std::int64_t FPlace = 0;
    bool FBehindPoint = false;
    std::u16string FOut;
};

}

double iStrtoFloat(std::u16string_view text) noexcept
{
    return NumberReader(text, {u'\0', u'.', u','}).Read().value_or(0);
}

double StrtoFloatCheck(std::u16string_view text, char16_t thousandSep, char16_t decimalSep)
{
    const std::optional<double> number = NumberReader(text, {thousandSep, decimalSep, decimalSep}).Read();
    if (!number)
        throw Exception(Concat({u"Invalid number ", text}));
    return *number;
}

std::int32_t iStrtoInt(std::u16string_view text) noexcept
{
    return StrToIntDef(text, 0);
}

std::int32_t HexToDec(std::u16string_view text) noexcept
{
    constexpr std::u16string_view kDigits = u"0123456789abcdefghijklmnopqrstuvwxyz";
    if (text.starts_with(u"0x"))
        text.remove_prefix(2);
    if (text.ends_with(u'h') || text.ends_with(u'H'))
        text.remove_suffix(1);
    std::uint32_t value = 0;
    for (const char16_t unit : text) {
        const std::size_t digit = kDigits.find(FoldAscii(unit));
        value = value * 16 + (digit == std::u16string_view::npos ? 0 : static_cast<std::uint32_t>(digit));
    }
    return static_cast<std::int32_t>(value);
}

std::int32_t MathRound(double value)
{
    // Adding 0.5 in doubles would lift the greatest number below one half to 1.
    const double rounded = std::round(value);
    if (!(rounded >= std::numeric_limits<std::int32_t>::min()
            && rounded <= std::numeric_limits<std::int32_t>::max()))
        RaiseRangeError();
    return static_cast<std::int32_t>(rounded);
}

String HtFormatFloat(std::u16string_view format, double value)
{
    if (format.empty() || !std::isfinite(value))
        return FloatToStr(value);
    return PictureWriter(format, value).Run();
}

String HtFormatDecimal(double value, std::int32_t digits)
{
    if (!std::isfinite(value))
        return FloatToStr(value);
    const TFloatDecimal number = FloatToDecimal(value, kPrecision, std::clamp(digits, 0, kMaxDecimals));
    return String::FromLatin1(FixedText(number, std::max(number.count - number.exponent, 0)));
}

}
