// Rectangles: which edges belong to them, and what does not fit.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/geometry_helpers.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ht {
namespace {

TEST(geometry_helpers, rectangles)
{
    TRect rect{10, 10, 20, 30};
    RSetLocation(rect, 1, 2);
    EXPECT_EQ(rect, (TRect{1, 2, 11, 22}));
    RInflate(rect, 1, -2);
    ROffset(rect, 0, 1);
    EXPECT_EQ(rect, (TRect{0, 5, 12, 21}));
    EXPECT_TRUE(RContains(rect, 0, 5));
    EXPECT_FALSE(RContains(rect, TPoint{12, 5}));
    EXPECT_TRUE(RectInside(rect, rect));
    EXPECT_FALSE(RectInside(TRect{0, 5, 13, 21}, rect));
    EXPECT_FALSE(RectIntersects(rect, TRect{12, 5, 13, 21}));
    EXPECT_EQ(RIntersect(R2F(rect), TRectF{11.5F, 0, 99, 5.5F}), (TRectF{11.5F, 5, 12, 5.5F}));
    EXPECT_EQ(R2R({-0.5F, 0.4F, 1.5F, 2.5F}), (TRect{-1, 0, 2, 3}));
    EXPECT_THROW(P2P({3e9F, 0}), ERangeError);
    TRect edge{0, 0, 2, 2};
    EXPECT_THROW(RSetLocation(edge, std::numeric_limits<std::int32_t>::max(), 0), EIntOverflow);
    EXPECT_EQ(edge.Left, 0);
    EXPECT_TRUE(Between(1.0F, 1.0F, 1.0F));
    EXPECT_FALSE(Between(std::nanf(""), 0.0F, 1.0F));
    EXPECT_FALSE(Between(2, 3, 1));
    EXPECT_TRUE(Between(0.5, 0, 1));
}

}
}
