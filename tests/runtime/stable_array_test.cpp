// Tests of the array whose items never move.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/stable_array.h>
#include <hearth/runtime/text.h>

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

using namespace ht;

TEST(stable_array, items_stay_where_they_are)
{
    for (std::int32_t reserved : {0, 1, 7, 1000}) {
        TStableArray<std::int32_t> array;
        array.Reserve(reserved);
        std::vector<std::int32_t*> places;
        for (std::int32_t i = 0; i < 1000; ++i)
            places.push_back(&array.Add(i));
        array.Reserve(2000); // too late
        for (std::int32_t i = 0; i < 1000; ++i) {
            EXPECT_EQ(&array[i], places[static_cast<std::size_t>(i)]);
            EXPECT_EQ(array[i], i);
        }
        EXPECT_EQ(std::accumulate(array.begin(), array.end(), 0), 499'500);
        EXPECT_THROW(array[1000], ERangeError);
        EXPECT_THROW(array[-1], ERangeError);
    }
}

TEST(stable_array, items_end_when_they_are_deleted)
{
    const String text(u"text that is counted");
    TStableArray<String> array;
    for (int i = 0; i < 20; ++i)
        array.Emplace(text);
    array.DeleteLast();
    EXPECT_EQ(text.ReferenceCount(), 20);
    array.Clear();
    EXPECT_EQ(text.ReferenceCount(), 1);
    EXPECT_THROW(array.DeleteLast(), ERangeError);
    array.Add(text);
    EXPECT_EQ(array.Last(), text);
}

}
