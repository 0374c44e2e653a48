// Dates before and after the first day.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/date_time.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ht {
namespace {

constexpr std::u16string_view kIso = u"yyyy-mm-dd hh:nn:ss.zzz";

TEST(date_time, known_days)
{
    struct Row {
        TDateTime value;
        std::u16string_view text;
        int dayOfWeek;
    };
    const Row rows[] = {{0, u"1899-12-30 00:00:00.000", 7}, {2.75, u"1900-01-01 18:00:00.000", 2},
        {-1.25, u"1899-12-29 06:00:00.000", 6}, {25569, u"1970-01-01 00:00:00.000", 5},
        {36585, u"2000-02-29 00:00:00.000", 3}, {73050, u"2099-12-31 00:00:00.000", 5},
        {-693593, u"0001-01-01 00:00:00.000", 2}, {2958465.999999999, u"10000-01-01 00:00:00.000", 7},
        {0.999999999, u"1899-12-31 00:00:00.000", 1},
        {44197.5 + 1.0 / 86400000, u"2021-01-01 12:00:00.001", 6}};
    for (const Row& row : rows) {
        EXPECT_EQ(FormatDateTime(kIso, row.value), row.text);
        EXPECT_EQ(DayOfWeek(row.value), row.dayOfWeek) << row.value;
    }
    EXPECT_EQ(FormatDateTime(u"yyyy-mm-dd|mmm", -700000), u"0000-00-00|");
    EXPECT_THROW(DayOfWeek(1e300), ERangeError);
    EXPECT_THROW(FormatDateTime(kIso, std::nan("")), ERangeError);
}

TEST(date_time, every_day_of_the_calendar_comes_back)
{
    TDateTime expected = EncodeDate(1, 1, 1);
    for (int year = 1; year <= 9999; ++year) {
        for (int month = 1; month <= 12; ++month) {
            const int last = DaysInAMonth(year, month);
            for (int day : {1, last}) {
                int found[3] = {};
                DecodeDate(expected + day - 1, found[0], found[1], found[2]);
                ASSERT_EQ(EncodeDate(year, month, day), expected + day - 1)
                    << year << '-' << month << '-' << day;
                ASSERT_TRUE(found[0] == year && found[1] == month && found[2] == day) << year << '-' << month;
            }
            expected += last;
        }
    }
    TDateTime kept = 7;
    for (const auto& [year, month, day] : {std::tuple{2023, 2, 29}, {1900, 2, 29}, {0, 1, 1}, {10000, 1, 1},
             {2000, 13, 1}, {2000, 0, 1}, {2000, 4, 31}, {2000, 1, 0}})
        EXPECT_FALSE(TryEncodeDate(year, month, day, kept)) << year << '-' << month << '-' << day;
    EXPECT_EQ(kept, 7);
    EXPECT_THROW(EncodeTime(24, 0, 0, 0), EConvertError);
}

TEST(date_time, months_are_counted_to_the_last_day)
{
    const TDateTime noon = EncodeTime(12, 0, 0, 0);
    EXPECT_EQ(IncMonth(EncodeDate(2024, 1, 31) + noon), EncodeDate(2024, 2, 29) + noon);
    EXPECT_EQ(IncMonth(EncodeDate(2024, 1, 31), -2), EncodeDate(2023, 11, 30));
    EXPECT_EQ(IncMonth(EncodeDate(1900, 1, 15) + 0.25, -12), EncodeDate(1899, 1, 15) - 0.25);
    EXPECT_THROW(IncMonth(EncodeDate(9999, 12, 1)), EConvertError);
    EXPECT_THROW(IncMonth(0, std::numeric_limits<int>::min()), EConvertError);
}

TEST(date_time, patterns)
{
    struct Row {
        std::u16string_view pattern;
        std::u16string_view text;
    };
    const Row rows[] = {{u"d/m/yy", u"5/3/09"}, {u"ddd, dd mmm yyyy", u"Thu, 05 Mar 2009"},
        {u"dddd d mmmm", u"Thursday 5 March"}, {u"h:mm", u"15:04"}, {u"hh:mm:ss m", u"15:04:07 3"},
        {u"h:nn am/pm", u"3:04 pm"}, {u"hAM/PM", u"3PM"}, {u"ha/p hh", u"3p 15"}, {u"h 'am/pm'", u"15 am/pm"},
        {u"z zz zzz", u"8 08 008"}, {u"\"year:\" yyyy 'x", u"year: 2009 x"}, {u"HHMM", u"1504"}, {u"b", u"b"},
        {u"ampm h", u"PM 15"}, {u"", u""}};
    const TDateTime value = EncodeDate(2009, 3, 5) + EncodeTime(15, 4, 7, 8);
    for (const Row& row : rows)
        EXPECT_EQ(FormatDateTime(row.pattern, value), row.text) << String(row.pattern);
    EXPECT_EQ(FormatDateTime(u"h am/pm", 0.0), u"12 am");
    EXPECT_EQ(FormatDateTime(u"h am/pm", 0.5), u"12 pm");
}

}
}
