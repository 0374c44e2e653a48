// Patterns and their arguments.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/text_format.h>

#include "messages.h"

#include <gtest/gtest.h>

#include <limits>

namespace ht {
namespace {

TEST(text_format, patterns_take_their_arguments)
{
    EXPECT_EQ(Format(u"%s has %d of %u%%", {u"box"_s, -3, 7U}), u"box has -3 of 7%");
    EXPECT_EQ(Format(u"[%5d][%-5d][%.3d][%5.3d]", {42, 42, -7, 7}), u"[   42][42   ][-007][  007]");
    EXPECT_EQ(Format(u"[%6.2s][%-4s]", {u"abc", u"x"}), u"[    ab][x   ]");
    EXPECT_EQ(Format(u"%1:s %0:s %s", {u"a", u"b"}), u"b a b");
    EXPECT_EQ(Format(u"%x %.4x %x", {-1, 255, std::int64_t{-1}}), u"FFFFFFFF 00FF FFFFFFFFFFFFFFFF");
    EXPECT_EQ(Format(u"%f %.1f %.0f %g", {3.14159, 0.25, 2.5, 0.1}), u"3.14 0.3 3 0.1");
    EXPECT_EQ(Format(u"%.2f %.2f %.2f", {0.004, -0.004, 999.999}), u"0.00 0.00 1000.00");
    EXPECT_EQ(
        Format(u"%n %.0n %e", {1234567.891, -1000.0, 1234.5}), u"1,234,567.89 -1,000 1.23450000000000E+003");
    EXPECT_EQ(Format(u"[%*d][%*d]", {4, 1, -4, 1}), u"[   1][1   ]");
    EXPECT_EQ(Format(u"%u %d", {-1, std::numeric_limits<std::uint64_t>::max()}),
        u"4294967295 18446744073709551615");
}

TEST(text_format, what_does_not_fit_is_refused)
{
    for (const char16_t* pattern : {u"%", u"%q", u"%d", u"%s %s", u"%5:s", u"%-", u"%99999s",
             u"%9999999999999999999s", u"%.", u"%0:", u"%*s"})
        EXPECT_EQ(MessageOf<EConvertError>([&] { Format(pattern, {u"a"}); }),
            Concat({u"Format '", pattern, u"' invalid or incompatible with argument"}));
}

}
}
