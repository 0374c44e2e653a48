// Lists of pointers: bounds, order, and what they tell.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/lists.h>

#include "messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace ht {
namespace {

using testing::ElementsAre;

void* Item(std::intptr_t number)
{
    return reinterpret_cast<void*>(number);
}

class NotingList : public TList {
public:
    std::string Log;

protected:
    void Notify(void* item, TListNotification action) override
    {
        Log += "+x-"[action] + std::to_string(reinterpret_cast<std::intptr_t>(item));
    }
};

TEST(lists, tells_what_comes_and_goes_but_not_of_null)
{
    NotingList list;
    for (int i : {1, 0, 2, 3, 4})
        list.Add(Item(i));
    list.Log.clear();
    list.Pack();
    EXPECT_EQ(list.Extract(Item(2)), Item(2));
    EXPECT_EQ(list.Remove(Item(3)), 1);
    EXPECT_EQ(list.Remove(Item(9)), -1);
    list.SetItems(0, Item(5));
    list.SetCount(1);
    list.SetCount(3);
    EXPECT_EQ(list.Extract(nullptr), nullptr);
    EXPECT_EQ(list.Count(), 2);
    list.Insert(0, Item(6));
    list.Insert(0, nullptr);
    list.Clear();
    EXPECT_EQ(list.Log, "x2-3-1+5-4+6-6-5");
}

TEST(lists, indexes_outside_are_named)
{
    TList list;
    list.Add(Item(1));
    EXPECT_EQ(MessageOf<EListError>([&] { list.Items(1); }), u"List index out of bounds (1)");
    EXPECT_EQ(MessageOf<EListError>([&] { list.Delete(-1); }), u"List index out of bounds (-1)");
    EXPECT_EQ(MessageOf<EListError>([&] { list.Insert(2, nullptr); }), u"List index out of bounds (2)");
    EXPECT_EQ(MessageOf<EListError>([&] { list.Move(0, 1); }), u"List index out of bounds (1)");
    EXPECT_EQ(MessageOf<EListError>([&] { list.SetCount(-1); }), u"List count out of bounds (-1)");
    EXPECT_EQ(MessageOf<EListError>([&] { list.SetCapacity(0); }), u"List capacity out of bounds (0)");
    EXPECT_EQ(MessageOf<EListError>([] { TList().Last(); }), u"List index out of bounds (-1)");
    EXPECT_EQ(list.Count(), 1);
}

TEST(lists, inserts_exchanges_and_takes_over)
{
    TList list;
    for (int i : {1, 3})
        list.Add(Item(i));
    list.Insert(1, Item(2));
    list.Insert(3, Item(4));
    list.Exchange(0, 3);
    TList other;
    other.Add(Item(9));
    other.SetCapacity(100);
    other.SetCapacity(50);
    EXPECT_EQ(other.Capacity(), 50);
    other.Assign(list);
    other.Assign(other);
    EXPECT_THAT(
        std::vector<void*>(other.begin(), other.end()), ElementsAre(Item(4), Item(2), Item(3), Item(1)));
}

TEST(lists, moves_and_sorts)
{
    TList list;
    for (int i : {31, 12, 32, 11, 13})
        list.Add(Item(i));
    list.Move(0, 4);
    list.Move(3, 1);
    EXPECT_THAT(std::vector<void*>(list.begin(), list.end()),
        ElementsAre(Item(12), Item(13), Item(32), Item(11), Item(31)));
    const auto tens = [](void* item) { return static_cast<int>(reinterpret_cast<std::intptr_t>(item) / 10); };
    list.Sort([&](void* a, void* b) { return tens(a) - tens(b); });
    EXPECT_THAT(std::vector<void*>(list.begin(), list.end()),
        ElementsAre(Item(12), Item(13), Item(11), Item(32), Item(31)));
}

TEST(lists, a_comparison_that_contradicts_itself_loses_no_item)
{
    std::mt19937 random(3);
    TList list;
    for (int i = 1; i <= 1000; ++i)
        list.Add(Item(i));
    list.Sort([&](void*, void*) { return static_cast<int>(random() % 3) - 1; });
    EXPECT_THROW(list.Sort([](void*, void*) -> int { throw EAbstractError(); }), EAbstractError);
    list.Sort([](void* a, void* b) { return a < b ? -1 : a > b; });
    for (int i = 1; i <= 1000; ++i)
        ASSERT_EQ(list[i - 1], Item(i));
}

TEST(lists, a_comparison_that_changes_the_list_sorts_nothing)
{
    TList list;
    for (int i = 4; i > 0; --i)
        list.Add(Item(i));
    list.Sort([&](void* a, void* b) {
        list.SetItems(3, Item(9));
        return a < b ? -1 : a > b;
    });
    EXPECT_THAT(
        std::vector<void*>(list.begin(), list.end()), ElementsAre(Item(4), Item(3), Item(2), Item(9)));
}

}
}
