// Numbers in documents: the edges of the tolerant and the strict reader, rounding and pictures.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/number_text.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

namespace ht {
namespace {

TEST(number_text, tolerant_reader_takes_both_notations_and_never_raises)
{
    struct Row {
        std::u16string_view text;
        double value;
    };
    const Row rows[] = {{u"1,5", 1.5}, {u"1.5", 1.5}, {u"1.5x", 0}, {u"1.5,", 0}, {u" 12", 12}, {u"12 ", 0},
        {u"\t12", 0}, {u"", 0}, {u"  ", 0}, {u"+7", 7}, {u"-,5", -0.5}, {u"-", 0}, {u"--1", 0}, {u"- 1", 0},
        {u".", 0}, {u"5.", 5}, {u"e5", 0}, {u"1e16", 1e16}, {u"1E17", 0}, {u"1e-17", 0}, {u"1e+5", 0},
        {u"25e-1", 2.5}, {u"1e", 1}, {u"1e5.5", 0}, {u"0.123456789", 0.1234567}, {u"1e00000000016", 1},
        {u"0.3", 0.3}, {u"1234.5678", 1234.5678}, {u"1.1e2", 110}, {u"98765432109.25", 98765432109.25},
        {u"18446744073709551616", 18446744073709551616.0}, {u"\uff11", 0},
        {std::u16string_view(u"1\0", 2), 0}};
    for (const Row& row : rows)
        EXPECT_EQ(iStrtoFloat(row.text), row.value) << String(row.text);
    const std::u16string million(1'000'000, u'9');
    EXPECT_TRUE(std::isinf(iStrtoFloat(million)));
    EXPECT_EQ(iStrtoFloat(u"1." + million), 1.9999999);
    EXPECT_EQ(iStrtoFloat(u"1e" + million), 0);
}

TEST(number_text, strict_reader_raises_with_the_text)
{
    struct Row {
        std::u16string_view text;
        char16_t thousandSep;
        char16_t decimalSep;
        std::optional<double> value;
    };
    const Row rows[] = {{u"1,234,567.5", u',', u'.', 1234567.5}, {u"-1.234,5e1", u'.', u',', -12345},
        {u" 1 234", u' ', u'.', 1234}, {u"1.5", u'\0', u',', {}}, {u"1.5", u'.', u'.', 1.5},
        {u",5", u',', u'.', {}}, {u"-,5", u',', u'.', {}}, {u"1.5,000", u',', u'.', {}},
        {u"12 ", u',', u'.', {}}, {u"x", u',', u'.', {}}, {u" ", u',', u'.', {}},
        {std::u16string_view(u"1\0002", 3), u'\0', u'.', {}}, {u"", u',', u'.', 0}, {u"1e17", u',', u'.', 0}};
    for (const Row& row : rows) {
        try {
            EXPECT_EQ(StrtoFloatCheck(row.text, row.thousandSep, row.decimalSep), row.value)
                << String(row.text);
        } catch (const Exception& error) {
            EXPECT_FALSE(row.value) << String(row.text);
            EXPECT_EQ(error.Message, u"Invalid number " + String(row.text));
            EXPECT_EQ(std::u16string_view(error.ClassName()), u"Exception");
        }
    }
}

TEST(number_text, hexadecimal_digits_reach_z_and_wrap_around)
{
    struct Row {
        std::u16string_view text;
        std::int32_t value;
    };
    const Row rows[] = {{u"", 0}, {u"ff", 255}, {u"0xFfh", 255}, {u"0x", 0}, {u"h", 0}, {u"hh", 17},
        {u"0X1", 33 * 16 + 1}, {u"z0", 35 * 16}, {u"1-2", 0x102}, {u"ffffffff", -1},
        {u"123456789abcdef0", static_cast<std::int32_t>(0x9ABCDEF0)}};
    for (const Row& row : rows)
        EXPECT_EQ(HexToDec(row.text), row.value) << String(row.text);
    EXPECT_EQ(HexToDec(std::u16string(100, u'z')), static_cast<std::int32_t>(35U * 0x11111111U));
}

TEST(number_text, rounds_half_away_from_zero_within_32_bits)
{
    struct Row {
        double value;
        std::optional<std::int32_t> rounded;
    };
    const Row rows[] = {{0.5, 1}, {2.5, 3}, {-0.5, -1}, {-2.5, -3}, {0.49999999999999994, 0}, {-2.4, -2},
        {2147483647.4, 2147483647}, {2147483647.5, {}}, {-2147483648.4, -2147483647 - 1}, {-2147483648.5, {}},
        {std::nan(""), {}}, {std::numeric_limits<double>::infinity(), {}}};
    for (const Row& row : rows) {
        if (row.rounded)
            EXPECT_EQ(MathRound(row.value), *row.rounded) << row.value;
        else
            EXPECT_THROW(MathRound(row.value), ERangeError) << row.value;
    }
}

TEST(number_text, pictures)
{
    struct Row {
        std::u16string_view picture;
        double value;
        std::u16string_view text;
    };
    const Row rows[] = {{u"0.##", 3, u"3"}, {u"0.##", 0.125, u"0.13"}, {u"0.##", -0.001, u"0"},
        {u"0.##", 99.999, u"100"}, {u"0.###", -1.5, u"-1.5"}, {u"0.######", 0.1f, u"0.1"},
        {u"0.######", 1e-6, u"0.000001"}, {u"0.00", 0.5, u"0.50"}, {u"0.#0#", 1, u"1.00"},
        {u"#.##", 0.5, u".5"}, {u".##", 12.5, u"12.5"}, {u"000", 7, u"007"}, {u"#0#", 0, u"00"},
        {u"0.##", 1e20, u"100000000000000000000"}, {u"#,##0.0", 1234567.25, u"1,234,567.3"},
        {u"#,##0.0", -999, u"-999.0"}, {u",0", 1000, u"1,000"}, {u"0,000", 5, u"0,005"},
        {u"# ##0.00", 12345, u"12 345.00"}, {u"0.0 '#.0'", 1, u"1.0 #.0"}, {u"0'x", 1, u"1x"},
        {u"0'", 2, u"2"}, {u"0.0.0", 1, u"1.00"}, {u"", 0.25, u"0.25"}, {u"0.##", std::nan(""), u"NAN"},
        {u"0.##;(0.##)", -1.5, u"(1.5)"}, {u"0.##;(0.##)", 1.5, u"1.5"}, {u"0.##;(0.##)", -0.001, u"0"},
        {u"0.0;;'none; at all';x", -0.01, u"none; at all"}, {u"0.0;;none", -1, u"-1.0"},
        {u";-0", 2.5, u"2.5"}, {u"0.00E+00", 12345.678, u"1.23E+04"}, {u"0.##e-0", 99.999, u"1e2"},
        {u"#.##E-0", 0.00015, u"1.5E-4"}, {u"000.0E+0", -5, u"-500.0E-2"}, {u".00E+0", 5, u".50E+1"},
        {u"0.0E+00", 0, u"0.0E+00"}, {u"0E-0", 5e-324, u"5E-324"}, {u".E+0", 5, u"E+1"},
        {u"0 e-mails", 3, u"3 e-mails"}};
    for (const Row& row : rows)
        EXPECT_EQ(HtFormatFloat(row.picture, row.value), row.text)
            << String(row.picture) << " of " << row.value;
    const std::u16string million(1'000'000, u'0');
    EXPECT_EQ(HtFormatFloat(u"0." + million, 0.5).Length(), 1'000'002);
    EXPECT_EQ(HtFormatFloat(million, 0.5).Length(), 1'000'000);
    EXPECT_EQ(HtFormatFloat(u"0E+" + million, 0.5).Length(), 1'000'003);
}

TEST(number_text, decimals_lose_their_trailing_zeros)
{
    struct Row {
        double value;
        std::int32_t digits;
        std::u16string_view text;
    };
    const Row rows[] = {{2.5, 4, u"2.5"}, {100, 2, u"100"}, {0.125, 2, u"0.13"}, {-0.004, 2, u"0"},
        {1.5, 0, u"2"}, {1.5, -3, u"2"}, {0.1, 2147483647, u"0.1"}, {-1e15, 2, u"-1000000000000000"}};
    for (const Row& row : rows)
        EXPECT_EQ(HtFormatDecimal(row.value, row.digits), row.text) << row.value;
}

}
}
