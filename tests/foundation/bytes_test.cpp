// Bytes in all orders.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/bytes.h>

#include <gtest/gtest.h>

namespace ht {
namespace {

TEST(bytes, orders_and_fills)
{
    EXPECT_EQ(SwapWord(0x1234), 0x3412);
    EXPECT_EQ(SwapSmallInt(0x00FF), -256);
    EXPECT_EQ(SwapCardinal(0x12345678), 0x78563412U);
    EXPECT_EQ(CompCardinal(0, 0xFFFFFFFF), -1);
    EXPECT_EQ(CompCardinal(2, 1) + CompCardinal(1, 1), 1);
    TBytes bytes(10);
    HtFillLong(bytes.data() + 1, 2, 0x04030201);
    HtFillLong(bytes.data(), -1, 0x09090909);
    EXPECT_EQ(bytes, (TBytes{0, 1, 2, 3, 4, 1, 2, 3, 4, 0}));
    EXPECT_EQ(HtUTF8EncodetoBytes(u"é"), (TBytes{0xC3, 0xA9}));
    EXPECT_EQ(HtUTF8EncodePtr(u"abc", 2) + HtUTF8EncodePtr(nullptr, -1), "ab");
}

}
}
