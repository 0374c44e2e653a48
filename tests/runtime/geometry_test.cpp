// Rectangles, and the edges of their types.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/geometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ht {
namespace {

TEST(geometry, rectangles)
{
    const TRect rect{10, 10, 20, 30};
    EXPECT_TRUE(rect.Contains(TPoint{10, 10}));
    EXPECT_FALSE(rect.Contains(TPoint{20, 10}));
    EXPECT_TRUE(rect.Contains(rect));
    EXPECT_EQ(TRect::Intersect(rect, {15, 0, 40, 12}), (TRect{15, 10, 20, 12}));
    EXPECT_EQ(TRect::Intersect(rect, {20, 10, 40, 30}), TRect());
    EXPECT_EQ(TRect::Union(rect, {5, 5, 5, 50}), rect);
    EXPECT_EQ(TRect::Union({9, 9, 0, 0}, {9, 9, 9, 9}), TRect());
    const float notANumber = std::nanf("");
    EXPECT_TRUE((TRectF{0, 0, notANumber, 1}).IsEmpty());
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    TRect edge{-2, 0, kMax, 1};
    EXPECT_THROW(edge.Width(), EIntOverflow);
    EXPECT_THROW(edge.Offset(1, 0), EIntOverflow);
    EXPECT_THROW(edge.Inflate(1, 0), EIntOverflow);
    EXPECT_EQ(edge.Left, -2);
}

}
}
