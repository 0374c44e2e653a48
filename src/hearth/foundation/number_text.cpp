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
    bool power = false;
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

/// Takes the part of a picture in front of its next ";" off, and the ";".
std::u16string_view TakeSection(std::u16string_view& format) noexcept
{
    std::size_t end = 0;
    while (end < format.size() && format[end] != u';')
        end = IsQuote(format[end]) ? ClosingQuote(format, end) + 1 : end + 1;
    const std::u16string_view section = format.substr(0, end);
    format.remove_prefix(std::min(end + 1, format.size()));
    return section;
}

/// The place of a power of ten, such as "E+00", when it stands at `at`.
std::u16string_view PowerAt(std::u16string_view format, std::size_t at) noexcept
{
    const std::u16string_view rest = format.substr(at);
    if (rest.size() < 3 || FoldAscii(rest[0]) != u'e' || (rest[1] != u'+' && rest[1] != u'-')
        || rest[2] != u'0')
        return {};
    return rest.substr(0, rest.find_first_not_of(u'0', 2));
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
        } else if (const std::size_t power = PowerAt(format, i).size()) {
            picture.power = true;
            i += power - 1;
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
        , FNumber(Rounded(value, FPicture))
    {
        if (FPicture.power && !IsZero()) {
            FPower = FNumber.exponent - FPicture.wholePlaces;
            FNumber.exponent = static_cast<int>(FPicture.wholePlaces);
        }
        FWhole = std::max<std::int64_t>(FNumber.exponent, FPicture.leastWhole);
        FDecimals = std::clamp<std::int64_t>(
            FNumber.count - FNumber.exponent, FPicture.leastDecimals, FPicture.mostDecimals);
        FPlace = FPicture.wholePlaces;
        if (FNumber.negative)
            FOut += u'-';
    }

    /// True for what is zero in all places of the picture.
    bool IsZero() const noexcept { return FNumber.count == 0; }

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
            } else if (const std::u16string_view power = PowerAt(FFormat, i); !power.empty()) {
                WritePower(power);
                i += power.size() - 1;
            } else if (unit != u',') {
                FOut += unit;
            }
        }
        return String(FOut);
    }

private:
    static TFloatDecimal Rounded(double value, const Picture& picture)
    {
        if (!picture.power)
            return FloatToDecimal(value, kPrecision,
                static_cast<int>(std::min<std::int64_t>(picture.mostDecimals, kMaxDecimals)));
        const std::int64_t places = picture.wholePlaces + picture.mostDecimals;
        return FloatToDecimal(value, static_cast<int>(std::clamp<std::int64_t>(places, 1, kPrecision)),
            TFloatDecimal::kAllDecimals);
    }

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

    void WritePower(std::u16string_view place)
    {
        FOut += place[0];
        if (FPower < 0 || place[1] == u'+')
            FOut += FPower < 0 ? u'-' : u'+';
        const String digits = IntToStr(std::abs(FPower));
        const std::size_t least = place.size() - 2;
        FOut.append(least - std::min(digits.size(), least), u'0');
        FOut += digits;
    }

    std::u16string_view FFormat;
    Picture FPicture;
    TFloatDecimal FNumber;
    std::int64_t FWhole = 0;
    std::int64_t FDecimals = 0;
    std::int64_t FPlace = 0;
    std::int64_t FPower = 0;
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
    if (!std::isfinite(value))
        return FloatToStr(value);
    const std::u16string_view picture = TakeSection(format);
    const std::u16string_view negative = TakeSection(format);
    const std::u16string_view zero = TakeSection(format);
    if (value < 0 && !negative.empty()) {
        PictureWriter writer(negative, -value);
        if (!writer.IsZero())
            return writer.Run();
        value = 0;
    }
    if (picture.empty())
        return FloatToStr(value);
    PictureWriter writer(picture, value);
    if (writer.IsZero() && !zero.empty())
        return PictureWriter(zero, 0).Run();
    return writer.Run();
}

String HtFormatDecimal(double value, std::int32_t digits)
{
    if (!std::isfinite(value))
        return FloatToStr(value);
    const TFloatDecimal number = FloatToDecimal(value, kPrecision, std::clamp(digits, 0, kMaxDecimals));
    return String::FromLatin1(FixedText(number, std::max(number.count - number.exponent, 0)));
}

}
