// Date masks: what each accepts, how one is guessed, and the text of the refusal.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/date_text.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <optional>

namespace ht {
namespace {

/// The date in days, or the message.
testing::AssertionResult Reads(std::u16string_view text, std::u16string_view format,
    std::optional<double> days, std::u16string_view mask)
{
    const auto about = [text, format](const auto& seen) {
        return testing::AssertionFailure() << String(text) << " by '" << String(format) << "' gave " << seen;
    };
    try {
        const TDateTime read = StrtoDateFmt(text, format);
        constexpr double kHalfSecond = 0.5 / 86400;
        if (days && read > *days - kHalfSecond && read < *days + kHalfSecond)
            return testing::AssertionSuccess();
        return about(read);
    } catch (const Exception& error) {
        const String expected = Concat({u"Date/time string '", text, u"' does not match mask '", mask, u"'"});
        if (!days && error.Message == expected && std::u16string_view(error.ClassName()) == u"Exception")
            return testing::AssertionSuccess();
        return about(error.Message);
    }
}

constexpr double kDay2004 = 38047; // 1 March 2004
constexpr double kTime = (4 * 3600 + 5 * 60 + 6) / 86400.0;
constexpr double kHourMinute = (4 * 60 + 5) / 1440.0;

TEST(date_text, told_masks)
{
    struct Row {
        std::u16string_view text;
        std::u16string_view format;
        std::optional<double> days;
    };
    const Row rows[] = {{u"2004-03-01", u"yyyy-mm-dd", kDay2004}, {u"2004-3-1", u"yyyy-mm-dd", {}},
        {u"2004-02-29", u"yyyy-mm-dd", kDay2004 - 1}, {u"2003-02-29", u"yyyy-mm-dd", {}},
        {u"2004-13-01", u"yyyy-mm-dd", {}}, {u"2004-00-01", u"yyyy-mm-dd", {}},
        {u"2004-01-00", u"yyyy-mm-dd", {}}, {u"0000-01-01", u"yyyy-mm-dd", {}},
        {u"2004--01", u"yyyy-mm-dd", {}}, {u"-004-03-01", u"yyyy-mm-dd", {}},
        {u"2004-03-01 04:05:06", u"yyyy-mm-dd hh:nn:ss", kDay2004 + kTime},
        {u"2004-03-01T04:05:06", u"yyyy-mm-dd hh:nn:ss", {}},
        {u"2004-03-01T04:05:06", u"yyy-mm-dd\"T\"hh:nn:ss", kDay2004 + kTime},
        {u"2004-03-01", u"yyyy-mm-dd hh:nn:ss", {}}, {u"2004-03-01 ", u"yyyy-mm-dd", {}},
        {u"04:05:06", u"hh:nn:ss", kTime}, {u"24:00:00", u"hh:nn:ss", {}}, {u"23:60:00", u"hh:nn:ss", {}},
        {u"23:59:60", u"hh:nn:ss", {}}, {u"1899-12-29 18:00:00", u"yyyy-mm-dd hh:nn:ss", -1.75},
        {u"01.03.49", u"dd.mm.yy", 54483}, {u"01.03.50", u"dd.mm.yy", 18323},
        {u"3/1/2004", u"m/d/yyyy", kDay2004}, {u"03/01/2004", u"m/d/yyyy", kDay2004},
        {u"1 MARCH 2004", u"d mmmm yyyy", kDay2004}, {u"1 mar 2004", u"d mmm yyyy", kDay2004},
        {u"1 M\u00e4r 2004", u"d mmm yyyy", {}}, {u"1 Mar 2004", u"d mmmm yyyy", {}},
        {u"March 2004", u"mmmm yyyy", kDay2004}, {u"March 2004", u"mmmmm yyyy", {}}, {u"03", u"mm", 61},
        {u"01", u"ddd", {}}, {u"", u"dd", {}}};
    for (const Row& row : rows)
        EXPECT_TRUE(Reads(row.text, row.format, row.days, row.format));
}

TEST(date_text, log_lines)
{
    const std::u16string_view mask = u"hh:nn:ss mmm d yyyy";
    EXPECT_TRUE(Reads(u"*04:05:06 Mar 1 2004", u"cisco", kDay2004 + kTime, mask));
    EXPECT_TRUE(Reads(u"04:05:06 Mar  1 2004", u"cisco", kDay2004 + kTime, mask));
    EXPECT_TRUE(Reads(u"*04:05:06 Mar 11 2004", u"cisco", kDay2004 + 10 + kTime, mask));
    EXPECT_TRUE(Reads(u"**04:05:06 Mar 1 2004", u"cisco", {}, mask));
}

TEST(date_text, empty_format_is_guessed_from_the_shape)
{
    struct Row {
        std::u16string_view text;
        std::optional<double> days;
        std::u16string_view mask = {};
    };
    const Row rows[] = {{u"01.03.2004 04:05:06", kDay2004 + kTime}, {u"01.03.2004 4:05:06", kDay2004 + kTime},
        {u"01.03.2004 04:05", kDay2004 + kHourMinute}, {u"01.03.2004 4:05", kDay2004 + kHourMinute},
        {u"01.03.04 04:05", kDay2004 + kHourMinute}, {u"01.03.04 4:05", kDay2004 + kHourMinute},
        {u"01-03-2004 04:05:06", kDay2004 + kTime}, {u"01-Mar-2004 04:05:06", kDay2004 + kTime},
        {u"2004-03-01 04:05:06", kDay2004 + kTime}, {u"01.03.2004", kDay2004}, {u"01.03.04", kDay2004},
        {u"03/01/2004", kDay2004}, {u"2004-03-01", kDay2004}, {u"01-MAR-2004", kDay2004},
        {u"3/01/2004", kDay2004}, {u"03/1/2004", kDay2004}, {u"3/1/2004", kDay2004}, {u"01-Mar-04", kDay2004},
        {u"32.13.2004", {}, u"dd.mm.yyyy"}, {u"ab.cd.efgh", {}, u"dd.mm.yyyy"},
        {u"13/01/2004", {}, u"mm/dd/yyyy"}, {u"01-Mai-04", {}, u"dd-mmm-yy"}, {u"2004-03-01T04:05:06", {}},
        {u"1.3.2004", {}}, {u"", {}}};
    for (const Row& row : rows)
        EXPECT_TRUE(Reads(row.text, u"", row.days, row.mask));
}

TEST(date_text, great_texts_and_masks_are_refused)
{
    for (char16_t unit : std::u16string_view(u"1.*\"dm ")) {
        const std::u16string million(1'000'000, unit);
        EXPECT_TRUE(Reads(million, u"", {}, u""));
        EXPECT_TRUE(Reads(million, u"yyyy-mm-dd", {}, u"yyyy-mm-dd"));
        EXPECT_TRUE(Reads(u"2004-03-01", million, {}, million));
    }
}

}
}
