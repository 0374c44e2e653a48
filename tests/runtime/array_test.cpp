// Arrays at their ends.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/array.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <limits>

namespace ht {
namespace {

TEST(array, indexes_outside_raise_and_change_nothing)
{
    TArray<int> array{1, 2, 3};
    EXPECT_THROW(array[3], ERangeError);
    EXPECT_THROW(array[-1], ERangeError);
    EXPECT_THROW(array.Insert(4, 0), ERangeError);
    EXPECT_THROW(array.Insert(-1, 0), ERangeError);
    EXPECT_THROW(array.Delete(2, 2), ERangeError);
    EXPECT_THROW(array.Delete(0, -1), ERangeError);
    EXPECT_THROW(array.Delete(1, std::numeric_limits<std::int32_t>::max()), ERangeError);
    EXPECT_THROW(array.SetLength(-1), ERangeError);
    EXPECT_THROW(TArray<int>().Last(), ERangeError);
    EXPECT_EQ(array, (TArray<int>{1, 2, 3}));
    array.Insert(3, 4);
    array.Delete(0, 2);
    EXPECT_EQ(array, (TArray<int>{3, 4}));
}

TEST(array, memory_that_is_not_there_raises)
{
    if (HEARTH_TEST_SANITIZED)
        GTEST_SKIP() << "the sanitizers end the program instead";
    struct Block {
        char Bytes[1U << 28U];
    };
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    TArray<Block> array;
    EXPECT_THROW(array.Reserve(kMost), EOutOfMemory);
    EXPECT_THROW(array.SetLength(kMost), EOutOfMemory);
    EXPECT_TRUE(array.IsEmpty());
}

}
}
