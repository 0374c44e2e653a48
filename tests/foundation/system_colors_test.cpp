// The colours of the desktop: their names, and those that a host sets.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/colors.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

namespace ht {
namespace {

TEST(system_colors, may_change)
{
    EXPECT_EQ(HtStringtoSysColor(u"red"), 0U);
    EXPECT_EQ(HtStringtoSysColor(u""), 0U);
    const std::uint32_t before = GetSysColor(26);
    SetSysColor(26, 0xFF112233);
    EXPECT_EQ(htmlHextoColor(u"hotlight"), 0xFF332211U);
    EXPECT_EQ(Win2Color(static_cast<std::int32_t>(0xFF00001A)), 0xFF332211U);
    SetSysColor(26, before);
    EXPECT_NE(GetSysColor(130), 0U);
    for (const std::int32_t index : {-1, 31, 129, 131}) {
        EXPECT_EQ(GetSysColor(index), 0U);
        EXPECT_THROW(SetSysColor(index, 0), ERangeError);
    }
    EXPECT_EQ(Win2Color(0x123456), 0xFF563412U);
    EXPECT_EQ(Color2Win(0x80563412), 0x123456);
}

}
}
