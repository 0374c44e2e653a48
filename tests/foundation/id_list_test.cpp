// Id lists: the order of equals, the errors by their words, sorting that cannot be slowed down.
// SPDX-License-Identifier: MIT
#include "foundation/counted.h"
#include "runtime/messages.h"

#include <hearth/foundation/id_list.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace ht {
namespace {

void* Mark(std::uintptr_t number)
{
    return reinterpret_cast<void*>(number);
}

/// "3:1 5:2", ids with the numbers of their pointers.
std::string Shown(const TIDList& list)
{
    std::string text;
    for (std::int32_t i = 0; i < list.Count(); ++i)
        text += (i > 0 ? " " : "") + std::to_string(list[i]) + ":"
            + std::to_string(reinterpret_cast<std::uintptr_t>(list.GetObject(i)));
    return text;
}

TEST(id_list, equal_ids_stand_in_the_order_of_adding)
{
    TIDList list;
    list.SetSorted(true);
    std::uintptr_t number = 0;
    for (const std::int32_t id : {5, 3, 5, 9, 5, 3, 9, -1, 4})
        list.AddObject(id, Mark(++number));
    EXPECT_EQ(Shown(list), "-1:8 3:2 3:6 4:9 5:1 5:3 5:5 9:4 9:7");
    std::int32_t index = 0;
    EXPECT_TRUE(list.Find(5, index));
    EXPECT_EQ(index, 4);
    EXPECT_FALSE(list.Find(6, index));
    EXPECT_EQ(index, 7);
    EXPECT_EQ(list.IndexOf(9), 7);
    EXPECT_EQ(list.IndexOf(8), -1);
    EXPECT_EQ(list.IndexOfObject(Mark(5)), 6);
    // Each of them goes behind all that are there already.
    for (int i = 0; i < 100'000; ++i)
        list.Add(5);
    EXPECT_EQ(list.AddObject(5, Mark(77)), 100'007);
}

TEST(id_list, find_in_small_and_unsigned_lists)
{
    TIDList list;
    std::int32_t index = 7;
    EXPECT_FALSE(list.Find(1, index));
    EXPECT_EQ(index, 0);
    for (const std::uint32_t id : {1U, 0x7FFFFFFFU, 0x80000000U, 0x80000000U, 0xFFFFFFFFU})
        list.Add(static_cast<std::int32_t>(id));
    EXPECT_TRUE(list.FindCardinal(0x80000000U, index));
    EXPECT_EQ(index, 2);
    EXPECT_FALSE(list.FindCardinal(0x80000001U, index));
    EXPECT_EQ(index, 4);
    EXPECT_EQ(list.IndexOf(-1), 4);
}

TEST(id_list, errors_are_bare_words)
{
    TIDList list;
    list.Add(2);
    list.SetDuplicates(dupError);
    list.Add(2);
    for (const std::int32_t index : {-1, 2, std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(MessageOf<EListError>([&] { list.Get(index); }), u"SListIndexError");
        EXPECT_EQ(MessageOf<EListError>([&] { list.Put(index, 1); }), u"SListIndexError");
        EXPECT_EQ(MessageOf<EListError>([&] { list.GetObject(index); }), u"SListIndexError");
        EXPECT_EQ(MessageOf<EListError>([&] { list.PutObject(index, nullptr); }), u"SListIndexError");
        EXPECT_EQ(MessageOf<EListError>([&] { list.Delete(index); }), u"SListIndexError");
        EXPECT_EQ(MessageOf<EListError>([&] { list.Exchange(0, index); }), u"SListIndexError");
        EXPECT_EQ(MessageOf<EListError>([&] { list.Insert(index == 2 ? 3 : index, 1); }), u"SListIndexError");
    }
    list.SetSorted(true);
    EXPECT_EQ(MessageOf<EListError>([&] { list.Add(2); }), u"SDuplicateString");
    EXPECT_EQ(MessageOf<EListError>([&] { list.Put(0, 1); }), u"SSortedListError");
    EXPECT_EQ(MessageOf<EListError>([&] { list.InsertObject(0, 1, nullptr); }), u"SSortedListError");
    EXPECT_EQ(list.Add(3), 2);
    EXPECT_EQ(list.Add(1), 0);
    EXPECT_THROW(list.SetCapacity(3), ERangeError);
    EXPECT_THROW(list.SetCapacity(TIDList::kMaxIndex + 2), ERangeError);
    EXPECT_THROW(TIDList(-1), ERangeError);
    EXPECT_EQ(list.Count(), 4);
}

TEST(id_list, what_was_put_out_of_order_is_asked_for_its_front_first)
{
    TIDList list;
    list.SetSorted(true);
    for (const std::int32_t id : {1, 5, 8})
        list.Add(id);
    list.Exchange(0, 2);
    EXPECT_EQ(list.Add(4), 0);
}

TEST(id_list, unsorted_lists_and_capacity)
{
    TIDList list(2);
    list.Add(9);
    list.InsertObject(0, 7, Mark(1));
    list.Insert(2, 8);
    list.Exchange(0, 2);
    EXPECT_EQ(Shown(list), "8:0 9:0 7:1");
    EXPECT_EQ(list.Capacity(), 6);
    list.Delete(1);
    list.SetCapacity(2);
    EXPECT_EQ(list.Capacity(), 2);
    list.CustomSort([](const TIDItem& a, const TIDItem& b) { return b.FObject < a.FObject ? -1 : 1; });
    EXPECT_EQ(Shown(list), "7:1 8:0");
    list.SetSorted(true);
    list.Exchange(0, 1);
    list.Sort();
    EXPECT_EQ(Shown(list), "7:1 8:0");
    list.Clear();
    EXPECT_EQ(list.Capacity(), 0);
    std::string steps;
    for (int i = 0; i < 200; ++i) {
        const std::int32_t before = list.Capacity();
        list.Add(i);
        if (list.Capacity() != before)
            steps += std::to_string(list.Capacity()) + " ";
    }
    EXPECT_EQ(steps, "4 8 12 28 44 60 76 95 118 147 183 228 ");
}

struct Entry {
    std::int32_t id;
    std::uintptr_t number;
};

/// Quicksort by the middle entry, however deep it goes.
void SortPlainly(Entry* first, Entry* last)
{
    while (first < last) {
        const std::int32_t middle = first[(last - first) / 2].id;
        Entry* left = first;
        Entry* right = last;
        while (left <= right) {
            while (left->id < middle)
                ++left;
            while (right->id > middle)
                --right;
            if (left <= right)
                std::swap(*left++, *right--);
        }
        SortPlainly(first, right);
        first = left;
    }
}

void ExpectSortedPlainly(const std::vector<std::int32_t>& ids)
{
    TIDList list;
    std::vector<Entry> entries;
    for (const std::int32_t id : ids) {
        entries.push_back({id, entries.size()});
        list.AddObject(id, Mark(entries.back().number));
    }
    list.Sort();
    SortPlainly(&entries.front(), &entries.back());
    for (std::int32_t i = 0; i < list.Count(); ++i)
        ASSERT_EQ(list.GetObject(i), Mark(entries[static_cast<std::size_t>(i)].number)) << i;
}

TEST(id_list, equal_ids_are_sorted_as_the_middle_entries_split_them)
{
    std::mt19937 random(5);
    std::vector<std::int32_t> ids(1000);
    for (int round = 0; round < 50; ++round) {
        for (std::int32_t& id : ids)
            id = static_cast<std::int32_t>(random() % 250);
        ExpectSortedPlainly(ids);
    }
    // A short list whose middle id is always the greatest of those left.
    ids.resize(60);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        ids[i] = static_cast<std::int32_t>(i / 2);
        std::swap(ids[i], ids[i / 2]);
    }
    ExpectSortedPlainly(ids);
}

TEST(id_list, a_comparison_that_changes_the_list_sorts_nothing)
{
    struct Row {
        void (*change)(TIDList&);
        std::int32_t count;
    };
    const Row rows[] = {{[](TIDList& list) { list.Clear(); }, 0},
        {[](TIDList& list) {
             while (list.Count() < 104)
                 list.Insert(1, 7);
         },
            104},
        {[](TIDList& list) { list.PutObject(0, Mark(1)); }, 64},
        {[](TIDList& list) { list.SetSorted(true); }, 64}};
    for (const Row& row : rows) {
        TIDList list;
        for (std::int32_t i = 0; i < 64; ++i)
            list.Add(i);
        bool first = true;
        list.CustomSort([&](const TIDItem& a, const TIDItem& b) {
            if (std::exchange(first, false))
                row.change(list);
            return b.FID - a.FID;
        });
        EXPECT_EQ(list.Count(), row.count);
        EXPECT_EQ(list.IndexOf(0), row.count > 0 ? 0 : -1);
    }
}

TEST(id_list, sorting_takes_no_quadratic_time)
{
    constexpr int kCount = HEARTH_TEST_SANITIZED ? 100'000 : 1'000'000;
    TIDList list;
    // Ids whose middle one is always the greatest of those left.
    for (int i = 0; i < kCount; ++i)
        list.Add(i);
    for (int i = 2; i < kCount; ++i)
        list.Exchange(i, i / 2);
    list.Sort();
    for (int i = 0; i < kCount; ++i)
        ASSERT_EQ(list[i], i);
    std::mt19937 random(5);
    for (int i = 0; i < 1000; ++i)
        list.Put(i, static_cast<std::int32_t>(random() % 100) - 50);
    list.SetSorted(true);
    for (int i = 1; i < kCount; ++i)
        ASSERT_LE(list[i - 1], list[i]);
}

TEST(id_list, frees_objects_when_asked)
{
    TIDList list;
    list.AddObject(1, static_cast<TObject*>(new Counted));
    list.Add(2);
    list.FreeObjects();
    list.FreeObjects();
    EXPECT_EQ(Counted::Alive, 0);
    EXPECT_EQ(list.GetObject(0), nullptr);
}

TEST(id_list, the_greatest_index)
{
    if (HEARTH_TEST_SANITIZED)
        GTEST_SKIP() << "needs a fast loop";
    TIDList list(TIDList::kMaxIndex + 1);
    list.SetSorted(true);
    for (std::int32_t i = 0; i <= TIDList::kMaxIndex; ++i)
        list.Add(i);
    EXPECT_THROW(list.Add(TIDList::kMaxIndex + 1), ERangeError);
    EXPECT_EQ(list.IndexOf(TIDList::kMaxIndex), TIDList::kMaxIndex);
}

}
}
