// Dates and times of day: counting and writing.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/date_time.h>

#include <hearth/runtime/date_time_p.h>
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/text_number.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>

namespace ht {

namespace {

/// Days from 0000-12-31 to 1899-12-30: day 1 is 0001-01-01.
constexpr std::int64_t kDateDelta = 693594;

constexpr std::u16string_view kDays[] = {
    u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};

struct TimeStamp {
    std::int64_t day; // day 1 is 0001-01-01
    std::int64_t time; // milliseconds
};

TimeStamp Stamp(TDateTime value)
{
    const std::int64_t total = BankersRound(value * static_cast<double>(kMillisecondsPerDay));
    const std::int64_t time = total % kMillisecondsPerDay;
    return {total / kMillisecondsPerDay + kDateDelta, time < 0 ? -time : time};
}

constexpr int MonthLength(int year, int month) noexcept
{
    constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return kLengths[month - 1] + (month == 2 && leap ? 1 : 0);
}

/// Years that begin in March have their odd day last, so months and days follow from plain divisions.
std::int64_t DayNumber(int year, int month, int day) noexcept
{
    const std::int64_t marchYear = month > 2 ? year : year - 1;
    const std::int64_t marchMonth = month > 2 ? month - 3 : month + 9;
    return marchYear * 365 + marchYear / 4 - marchYear / 100 + marchYear / 400 + (153 * marchMonth + 2) / 5
        + day - 306;
}

TDateTime TimeOf(std::int64_t milliseconds) noexcept
{
    return static_cast<double>(milliseconds) / static_cast<double>(kMillisecondsPerDay);
}

class DateFormatter {
public:
    DateFormatter(std::u16string_view pattern, TDateTime value)
        : FRest(pattern)
        , FDayOfWeek(DayOfWeek(value))
    {
        DecodeDate(value, FYear, FMonth, FDay);
        DecodeTime(value, FHour, FMinute, FSecond, FMillisecond);
    }

    String Run()
    {
        while (!FRest.empty()) {
            const char16_t unit = FRest.front();
            if (unit == u'\'' || unit == u'"')
                CopyQuoted();
            else
                AddToken(FoldAscii(unit));
        }
        return String(FOut);
    }

private:
    void CopyQuoted()
    {
        const char16_t quote = FRest.front();
        FRest.remove_prefix(1);
        const std::size_t end = std::min(FRest.find(quote), FRest.size());
        FOut += FRest.substr(0, end);
        FRest.remove_prefix(std::min(end + 1, FRest.size()));
    }

    void AddToken(char16_t letter)
    {
        if (letter == u'a' && AddHalf())
            return;
        std::size_t count = 0;
        while (count < FRest.size() && FoldAscii(FRest[count]) == letter)
            ++count;
        const std::u16string_view token = FRest.substr(0, count);
        FRest.remove_prefix(count);
        if (letter == u'm' && FLast == u'h')
            letter = u'n';
        if (letter >= u'a' && letter <= u'z')
            FLast = letter;
        if (!AddField(letter, count))
            FOut += token;
    }

    bool AddField(char16_t letter, std::size_t count)
    {
        switch (letter) {
        case u'y':
            count <= 2 ? AddNumber(FYear % 100, 2) : AddNumber(FYear, 4);
            return true;
        case u'm':
            count <= 2 ? AddNumber(FMonth, count) : AddName(detail::kMonthNames, FMonth, count);
            return true;
        case u'd':
            count <= 2 ? AddNumber(FDay, count) : AddName(kDays, FDayOfWeek, count);
            return true;
        case u'h':
            AddNumber(HalfFollows() ? (FHour + 11) % 12 + 1 : FHour, std::min<std::size_t>(count, 2));
            return true;
        case u'n':
            AddNumber(FMinute, std::min<std::size_t>(count, 2));
            return true;
        case u's':
            AddNumber(FSecond, std::min<std::size_t>(count, 2));
            return true;
        case u'z':
            AddNumber(FMillisecond, std::min<std::size_t>(count, 3));
            return true;
        default:
            return false;
        }
    }

    void AddNumber(int number, std::size_t digits)
    {
        const String text = IntToStr(number);
        FOut.append(digits > text.size() ? digits - text.size() : 0, u'0').append(text);
    }

    /// Names count from 1; before year 1 there is none.
    template <std::size_t N>
    void AddName(const std::u16string_view (&names)[N], int number, std::size_t count)
    {
        if (number >= 1 && number <= static_cast<int>(N))
            FOut += names[number - 1].substr(
                0, count == detail::kShortName ? detail::kShortName : std::u16string_view::npos);
    }

    /// The form of half of the day at the start of `text`: its length, 0 when there is none.
    static std::size_t HalfAt(std::u16string_view text) noexcept
    {
        for (std::u16string_view form : {u"am/pm", u"ampm", u"a/p"}) {
            if (SameText(text.substr(0, form.size()), form))
                return form.size();
        }
        return 0;
    }

    bool AddHalf()
    {
        const std::size_t length = HalfAt(FRest);
        const bool morning = FHour < 12;
        if (length == 5)
            FOut += FRest.substr(morning ? 0 : 3, 2);
        else if (length == 4)
            FOut += morning ? u"AM" : u"PM";
        else if (length == 3)
            FOut += FRest[morning ? 0 : 2];
        FRest.remove_prefix(length);
        return length != 0;
    }

    /// True when half of the day stands behind this hour and in front of the next one.
    bool HalfFollows() const noexcept
    {
        char16_t quote = 0;
        for (std::size_t i = 0; i < FRest.size(); ++i) {
            const char16_t unit = FoldAscii(FRest[i]);
            if (quote != 0) {
                quote = unit == quote ? u'\0' : quote;
            } else if (unit == u'\'' || unit == u'"') {
                quote = unit;
            } else if (unit == u'h') {
                return false;
            } else if (unit == u'a' && HalfAt(FRest.substr(i)) != 0) {
                return true;
            }
        }
        return false;
    }

    std::u16string FOut;
    std::u16string_view FRest;
    char16_t FLast = 0;
    int FDayOfWeek;
    int FYear = 0;
    int FMonth = 0;
    int FDay = 0;
    int FHour = 0;
    int FMinute = 0;
    int FSecond = 0;
    int FMillisecond = 0;
};

}

bool IsLeapYear(int year) noexcept
{
    return MonthLength(year, 2) == 29;
}

int DaysInAMonth(int year, int month)
{
    if (month < 1 || month > 12)
        throw EConvertError(u"Invalid argument to date encode"_s);
    return MonthLength(year, month);
}

int DaysInMonth(TDateTime value)
{
    int year = 0;
    int month = 0;
    int day = 0;
    DecodeDate(value, year, month, day);
    return DaysInAMonth(year, month);
}

bool TryEncodeDate(int year, int month, int day, TDateTime& value) noexcept
{
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || day > MonthLength(year, month))
        return false;
    value = static_cast<double>(DayNumber(year, month, day) - kDateDelta);
    return true;
}

TDateTime EncodeDate(int year, int month, int day)
{
    TDateTime value = 0;
    if (!TryEncodeDate(year, month, day, value))
        throw EConvertError(u"Invalid argument to date encode"_s);
    return value;
}

void DecodeDate(TDateTime value, int& year, int& month, int& day)
{
    year = month = day = 0;
    const std::int64_t number = Stamp(value).day;
    if (number <= 0)
        return;
    constexpr std::int64_t kDaysIn400Years = 146097;
    const std::int64_t fromMarch = number + 305; // days since 0000-03-01
    const std::int64_t era = fromMarch / kDaysIn400Years;
    const std::int64_t rest = fromMarch % kDaysIn400Years;
    const std::int64_t yearOfEra = (rest - rest / 1460 + rest / 36524 - rest / 146096) / 365;
    const std::int64_t dayOfYear = rest - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t marchMonth = (5 * dayOfYear + 2) / 153;
    day = static_cast<int>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
    month = static_cast<int>(marchMonth < 10 ? marchMonth + 3 : marchMonth - 9);
    year = static_cast<int>(era * 400 + yearOfEra + (month <= 2 ? 1 : 0));
}

bool TryEncodeTime(int hour, int minute, int second, int millisecond, TDateTime& value) noexcept
{
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59 || millisecond < 0
        || millisecond > 999)
        return false;
    value = TimeOf(((hour * 60 + minute) * 60 + second) * std::int64_t{1000} + millisecond);
    return true;
}

TDateTime EncodeTime(int hour, int minute, int second, int millisecond)
{
    TDateTime value = 0;
    if (!TryEncodeTime(hour, minute, second, millisecond, value))
        throw EConvertError(u"Invalid argument to time encode"_s);
    return value;
}

void DecodeTime(TDateTime value, int& hour, int& minute, int& second, int& millisecond)
{
    const auto time = static_cast<int>(Stamp(value).time);
    hour = time / 3600000;
    minute = time / 60000 % 60;
    second = time / 1000 % 60;
    millisecond = time % 1000;
}

int DayOfWeek(TDateTime value)
{
    const std::int64_t rest = Stamp(value).day % 7;
    return static_cast<int>(rest < 0 ? rest + 7 : rest) + 1;
}

TDateTime IncMonth(TDateTime value, int months)
{
    int year = 0;
    int month = 0;
    int day = 0;
    DecodeDate(value, year, month, day);
    const std::int64_t all = std::int64_t{year} * 12 + month - 1 + months;
    if (month == 0 || all < 12 || all >= 10000 * 12)
        throw EConvertError(u"Invalid argument to date encode"_s);
    const auto newYear = static_cast<int>(all / 12);
    const auto newMonth = static_cast<int>(all % 12) + 1;
    const int newDay = std::min(day, MonthLength(newYear, newMonth));
    return detail::JoinDayAndTime(EncodeDate(newYear, newMonth, newDay), TimeOf(Stamp(value).time));
}

TDateTime Now()
{
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(now));
    const auto rest = duration_cast<milliseconds>(now - floor<std::chrono::seconds>(now)).count();
    std::tm local{};
    localtime_r(&seconds, &local);
    // A leap second counts into the last second of its minute.
    return EncodeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday)
        + EncodeTime(local.tm_hour, local.tm_min, std::min(local.tm_sec, 59), static_cast<int>(rest));
}

TDateTime Date()
{
    return std::trunc(Now());
}

TDateTime Time()
{
    const TDateTime now = Now();
    return now - std::trunc(now);
}

String FormatDateTime(std::u16string_view pattern, TDateTime value)
{
    return DateFormatter(pattern, value).Run();
}

}
