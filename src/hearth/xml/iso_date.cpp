// Writing and reading dates of the form 2024-02-29T13:05:00.250+01:00.
// SPDX-License-Identifier: MIT
#include "iso_date_p.h"

#include <cmath>

namespace ht {

namespace {

constexpr double kMinutesADay = 24 * 60;

/// Reads a text from its start.
class TCursor {
public:
    explicit TCursor(std::u16string_view text)
        : FRest(text)
    {
    }

    bool AtEnd() const noexcept { return FRest.empty(); }
    bool Accept(char16_t c) noexcept
    {
        const bool stands = !FRest.empty() && FRest.front() == c;
        FRest.remove_prefix(stands ? 1 : 0);
        return stands;
    }
    /// Just so many digits.
    bool Number(std::size_t digits, int& number) noexcept
    {
        number = 0;
        if (FRest.size() < digits)
            return false;
        for (std::size_t i = 0; i < digits; ++i) {
            if (!IsAsciiDigit(FRest[i]))
                return false;
            number = number * 10 + (FRest[i] - u'0');
        }
        FRest.remove_prefix(digits);
        return true;
    }
    /// At least one digit, of which three count.
    bool Milliseconds(int& number) noexcept
    {
        number = 0;
        int place = 100;
        std::size_t i = 0;
        for (; i < FRest.size() && IsAsciiDigit(FRest[i]); ++i, place /= 10)
            number += place * (FRest[i] - u'0');
        FRest.remove_prefix(i);
        return i > 0;
    }

private:
    std::u16string_view FRest;
};

bool ReadTime(TCursor& cursor, TDateTime& time)
{
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    if (!cursor.Number(2, hour) || !cursor.Accept(u':') || !cursor.Number(2, minute))
        return false;
    if (cursor.Accept(u':')) {
        if (!cursor.Number(2, second))
            return false;
        if (cursor.Accept(u'.') && !cursor.Milliseconds(millisecond))
            return false;
    }
    return TryEncodeTime(hour, minute, second, millisecond, time);
}

/// The zone in minutes east of zone 0.
bool ReadZone(TCursor& cursor, int& minutes)
{
    minutes = 0;
    if (cursor.AtEnd() || cursor.Accept(u'Z') || cursor.Accept(u'z'))
        return cursor.AtEnd();
    const bool isWest = cursor.Accept(u'-');
    int hour = 0;
    int minute = 0;
    if ((!isWest && !cursor.Accept(u'+')) || !cursor.Number(2, hour))
        return false;
    cursor.Accept(u':');
    if (!cursor.AtEnd() && !cursor.Number(2, minute))
        return false;
    minutes = (hour * 60 + minute) * (isWest ? -1 : 1);
    return cursor.AtEnd() && hour < 24 && minute < 60;
}

/// Days on an even scale as a date: the fraction of a date counts forward also in front of day 0.
TDateTime FromEvenDays(double days)
{
    const double day = std::floor(days);
    const double time = days - day;
    return day < 0 ? day - time : day + time;
}

}

bool HasIsoDate(TDateTime value) noexcept
{
    constexpr TDateTime kFirstDay = -693593; // January 1st, 1
    constexpr TDateTime kEnd = 2958466; // January 1st, 10000
    // A time that is rounded up must not leave the last year.
    constexpr TDateTime kHalfMillisecond = 0.5 / 86400000;
    return std::trunc(value) >= kFirstDay && value < kEnd - kHalfMillisecond;
}

String ToIsoDate(TDateTime value)
{
    const String text = FormatDateTime(u"yyyy-mm-dd\"T\"hh:nn:ss.zzz", value);
    constexpr std::u16string_view kNone = u".000";
    return text.View().ends_with(kNone) ? String(text.View().substr(0, text.size() - kNone.size())) : text;
}

bool TryIsoDate(std::u16string_view text, TDateTime& value)
{
    TCursor cursor(text);
    int year = 0;
    int month = 0;
    int day = 0;
    TDateTime date = 0;
    const bool hasDate = cursor.Number(4, year) && cursor.Accept(u'-') && cursor.Number(2, month)
        && cursor.Accept(u'-') && cursor.Number(2, day) && TryEncodeDate(year, month, day, date);
    if (!hasDate)
        return false;
    TDateTime time = 0;
    int zone = 0;
    if (!cursor.AtEnd()) {
        if (!cursor.Accept(u'T') && !cursor.Accept(u't') && !cursor.Accept(u' '))
            return false;
        if (!ReadTime(cursor, time) || !ReadZone(cursor, zone))
            return false;
    }
    value = FromEvenDays(date + time - zone / kMinutesADay);
    return true;
}

}
