// Matching a text with a date mask, and guessing the mask.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/date_text.h>

#include <hearth/runtime/date_time_p.h>
#include <hearth/runtime/exceptions.h>

#include <algorithm>
#include <optional>

namespace ht {

namespace {

constexpr std::u16string_view kCiscoMask = u"hh:nn:ss mmm d yyyy";

/// No two of them have the same length and the same separators, so their order means nothing.
constexpr std::u16string_view kGuessedMasks[] = {
    u"dd.mm.yyyy hh:nn:ss",
    u"dd.mm.yyyy h:nn:ss",
    u"dd.mm.yyyy hh:nn",
    u"dd.mm.yyyy h:nn",
    u"dd.mm.yy hh:nn",
    u"dd.mm.yy h:nn",
    u"dd-mm-yyyy hh:nn:ss",
    u"dd-mmm-yyyy hh:nn:ss",
    u"yyyy-mm-dd hh:nn:ss",
    u"dd.mm.yyyy",
    u"dd.mm.yy",
    u"mm/dd/yyyy",
    u"yyyy-mm-dd",
    u"dd-mmm-yyyy",
    u"m/dd/yyyy",
    u"mm/d/yyyy",
    u"m/d/yyyy",
    u"dd-mmm-yy",
};

constexpr int kCenturyPivot = 50; // two digits from here on belong to the 20th century
constexpr int kDefaultYear = 1900;

constexpr bool IsSeparator(char16_t unit) noexcept
{
    return unit == u'.' || unit == u'-' || unit == u'/' || unit == u':' || unit == u' ';
}

bool HasShapeOf(std::u16string_view text, std::u16string_view mask) noexcept
{
    return text.size() == mask.size()
        && std::equal(text.begin(), text.end(), mask.begin(), [](char16_t unit, char16_t sign) {
               return IsSeparator(sign) ? unit == sign : !IsSeparator(unit);
           });
}

std::u16string_view GuessMask(std::u16string_view text) noexcept
{
    const auto found = std::find_if(std::begin(kGuessedMasks), std::end(kGuessedMasks),
        [text](std::u16string_view mask) { return HasShapeOf(text, mask); });
    return found == std::end(kGuessedMasks) ? std::u16string_view() : *found;
}

struct DateFields {
    std::optional<int> year;
    std::optional<int> month;
    std::optional<int> day;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// Walks a mask and a text side by side; each unit of both is looked at a fixed number of times.
class MaskReader {
public:
    MaskReader(std::u16string_view text, std::u16string_view mask) noexcept
        : FText(text)
        , FMask(mask)
    {
    }

    /// Nothing when the text does not fit. Values are not yet checked against the calendar.
    std::optional<DateFields> Read() noexcept
    {
        if (FMask.empty())
            return std::nullopt;
        while (!FMask.empty()) {
            if (!ReadPart())
                return std::nullopt;
        }
        if (!FText.empty())
            return std::nullopt;
        return FFields;
    }

private:
    bool ReadPart() noexcept
    {
        const char16_t sign = FMask.front();
        if (sign == u'"' || sign == u'\'')
            return ReadQuoted(sign);
        const char16_t letter = FoldAscii(sign);
        if (std::u16string_view(u"dmyhns").find(letter) == std::u16string_view::npos) {
            FMask.remove_prefix(1);
            return TakeText({&sign, 1});
        }
        const auto end = std::find_if(
            FMask.begin(), FMask.end(), [letter](char16_t unit) { return FoldAscii(unit) != letter; });
        const auto width = static_cast<std::size_t>(end - FMask.begin());
        FMask.remove_prefix(width);
        if (letter == u'y')
            return ReadYear(width);
        if (letter == u'm' && width > 2)
            return ReadMonthName(width);
        int number = 0;
        if (width > 2 || !ReadNumber(width, number))
            return false;
        Store(letter, number);
        return true;
    }

    bool TakeText(std::u16string_view expected) noexcept
    {
        if (!FText.starts_with(expected))
            return false;
        FText.remove_prefix(expected.size());
        return true;
    }

    bool ReadQuoted(char16_t quote) noexcept
    {
        const std::size_t close = std::min(FMask.find(quote, 1), FMask.size());
        const std::u16string_view quoted = FMask.substr(1, close - 1);
        FMask.remove_prefix(std::min(close + 1, FMask.size()));
        return TakeText(quoted);
    }

    /// Just `count` digits, 4 at most.
    bool ReadDigits(std::size_t count, int& number) noexcept
    {
        if (FText.size() < count || !std::all_of(FText.begin(), FText.begin() + count, IsAsciiDigit))
            return false;
        number = 0;
        for (char16_t unit : FText.substr(0, count))
            number = number * 10 + (unit - u'0');
        FText.remove_prefix(count);
        return true;
    }

    bool ReadNumber(std::size_t width, int& number) noexcept
    {
        if (width == 2)
            return ReadDigits(2, number);
        // A single letter also reads columns padded with a blank.
        if (FText.starts_with(u' '))
            return TakeText(u" ") && ReadDigits(1, number);
        return ReadDigits(2, number) || ReadDigits(1, number);
    }

    bool ReadYear(std::size_t width) noexcept
    {
        int year = 0;
        if (width > 4 || !ReadDigits(width > 2 ? 4 : 2, year))
            return false;
        if (width <= 2)
            year += year < kCenturyPivot ? 2000 : 1900;
        FFields.year = year;
        return true;
    }

    bool ReadMonthName(std::size_t width) noexcept
    {
        if (width > detail::kShortName + 1)
            return false;
        int number = 0;
        for (std::u16string_view name : detail::kMonthNames) {
            ++number;
            if (width == detail::kShortName)
                name = name.substr(0, detail::kShortName);
            if (!SameText(FText.substr(0, name.size()), name))
                continue;
            FText.remove_prefix(name.size());
            FFields.month = number;
            return true;
        }
        return false;
    }

    void Store(char16_t letter, int number) noexcept
    {
        switch (letter) {
        case u'd':
            FFields.day = number;
            break;
        case u'm':
            FFields.month = number;
            break;
        case u'h':
            FFields.hour = number;
            break;
        case u'n':
            FFields.minute = number;
            break;
        default:
            FFields.second = number;
        }
    }

    std::u16string_view FText;
    std::u16string_view FMask;
    DateFields FFields;
};

/// False for a day or a time that does not exist.
bool Compose(const DateFields& fields, TDateTime& value) noexcept
{
    TDateTime time = 0;
    if (!TryEncodeTime(fields.hour, fields.minute, fields.second, 0, time))
        return false;
    TDateTime date = 0;
    const bool hasDate = fields.year || fields.month || fields.day;
    if (hasDate
        && !TryEncodeDate(
            fields.year.value_or(kDefaultYear), fields.month.value_or(1), fields.day.value_or(1), date))
        return false;
    value = detail::JoinDayAndTime(date, time);
    return true;
}

}

TDateTime StrtoDateFmt(std::u16string_view text, std::u16string_view format)
{
    std::u16string_view mask = format;
    std::u16string_view dateText = text;
    if (format == u"cisco") {
        mask = kCiscoMask;
        if (dateText.starts_with(u'*'))
            dateText.remove_prefix(1);
    } else if (format.empty()) {
        mask = GuessMask(text);
    }
    const std::optional<DateFields> fields = MaskReader(dateText, mask).Read();
    TDateTime value = 0;
    if (!fields || !Compose(*fields, value))
        throw Exception(Concat({u"Date/time string '", text, u"' does not match mask '", mask, u"'"}));
    return value;
}

}
