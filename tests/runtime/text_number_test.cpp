// Numbers: the edges at which conversions go wrong.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/text_number.h>

#include "messages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

namespace ht {
namespace {

TEST(text_number, whole_numbers)
{
    struct Row {
        std::u16string_view text;
        std::optional<std::int64_t> as32;
        std::optional<std::int64_t> as64;
    };
    const Row rows[] = {{u"42", 42, 42}, {u"  -7", -7, -7}, {u"+7", 7, 7}, {u"$1F", 31, 31},
        {u"0xff", 255, 255}, {u"-$10", -16, -16}, {u"2147483647", 2147483647, 2147483647},
        {u"2147483648", {}, 2147483648}, {u"-2147483648", -2147483647 - 1, -2147483648},
        {u"-2147483649", {}, -2147483649}, {u"$FFFFFFFF", -1, 0xFFFFFFFF}, {u"$100000000", {}, 0x100000000},
        {u"$FFFFFFFFFFFFFFFF", {}, -1},
        {u"-9223372036854775808", {}, std::numeric_limits<std::int64_t>::min()},
        {u"9223372036854775808", {}, {}}, {u"$10000000000000000", {}, {}}, {u"", {}, {}}, {u"-", {}, {}},
        {u"$", {}, {}}, {u"0x", {}, {}}, {u"7 ", {}, {}}, {u"1.0", {}, {}}, {u"--1", {}, {}}, {u"1a", {}, {}},
        {u"\x0661", {}, {}}};
    for (const Row& row : rows) {
        std::int32_t small = 99;
        EXPECT_EQ(TryStrToInt(row.text, small), row.as32.has_value()) << String(row.text);
        EXPECT_EQ(small, row.as32.value_or(99)) << String(row.text);
        EXPECT_EQ(StrToInt64Def(row.text, 99), row.as64.value_or(99)) << String(row.text);
    }
    EXPECT_EQ(MessageOf<EConvertError>([] { StrToInt(u"x1"); }), u"'x1' is not a valid integer value");
    EXPECT_EQ(IntToStr(std::numeric_limits<std::int64_t>::min()), u"-9223372036854775808");
    EXPECT_EQ(IntToHex(0, 0), u"0");
    EXPECT_EQ(IntToHex(0xAB, 99), u"00000000000000AB");
}

TEST(text_number, floats_are_written_in_general_form)
{
    struct Row {
        double value;
        std::u16string_view text;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const Row rows[] = {{0, u"0"}, {-0.0, u"0"}, {0.1 + 0.2, u"0.3"}, {-1.5, u"-1.5"},
        {1e14, u"100000000000000"}, {123456789012345, u"123456789012345"}, {1e15, u"1E15"},
        {1.5e20, u"1.5E20"}, {0.0001, u"0.0001"}, {0.00001, u"1E-5"}, {-2.5e-7, u"-2.5E-7"},
        {999999999999999.9, u"1E15"}, {0.99999999999999999, u"1"}, {1e308, u"1E308"},
        {5e-324, u"4.94065645841247E-324"}, {100, u"100"}, {1.0 / 3, u"0.333333333333333"},
        {infinity, u"INF"}, {-infinity, u"-INF"}};
    for (const Row& row : rows)
        EXPECT_EQ(FloatToStr(row.value), row.text);
    for (double value : {infinity, -infinity, std::nan("")})
        EXPECT_THROW(FloatToDecimal(value, 15, 2), ERangeError);
    EXPECT_EQ(FloatToDecimal(1.5, 15, std::numeric_limits<int>::max()).count, 2);
}

TEST(text_number, floats_are_read)
{
    struct Row {
        std::u16string_view text;
        std::optional<double> value;
    };
    const Row rows[] = {{u"1", 1}, {u" -1.5 ", -1.5}, {u"+.5", 0.5}, {u"5.", 5}, {u"1e3", 1000},
        {u"1E-2", 0.01}, {u"1E+2", 100}, {u"1e999", {}}, {u"1e-999", 0}, {u"0e999", 0},
        {u"1e99999999999999999999", {}}, {u"1e-99999999999999999999", 0}, {u"0.0000001e-400", 0}, {u"", {}},
        {u".", {}}, {u"-", {}}, {u"+-1", {}}, {u"--1", {}}, {u"1e", {}}, {u"1,5", {}}, {u"0x10", {}},
        {u"inf", {}}, {u"1 2", {}}, {u"\x0661", {}}};
    for (const Row& row : rows)
        EXPECT_EQ(StrToFloatDef(row.text, 4711), row.value.value_or(4711)) << String(row.text);
    EXPECT_EQ(
        MessageOf<EConvertError>([] { StrToFloat(u"1,5"); }), u"'1,5' is not a valid floating point value");
    EXPECT_EQ(StrToFloat(String(100000, u'0') + u"1." + String(100000, u'0')), 1);
}

TEST(text_number, halves_round_to_even)
{
    const std::pair<double, std::int64_t> rows[] = {{0.5, 0}, {1.5, 2}, {2.5, 2}, {-0.5, 0}, {-1.5, -2},
        {0.49999999999999994, 0}, {4503599627370497.5, 4503599627370498},
        {-9223372036854775808.0, INT64_MIN}};
    for (const auto& [value, rounded] : rows)
        EXPECT_EQ(BankersRound(value), rounded) << value;
    for (double value : {9223372036854775808.0, -9223372036854777856.0, 1e300, std::nan("")})
        EXPECT_THROW(BankersRound(value), ERangeError) << value;
}

}
}
