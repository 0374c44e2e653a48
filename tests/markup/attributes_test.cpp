// The order of attributes, against a plain map.
// SPDX-License-Identifier: MIT
#include <hearth/markup/attributes.h>

#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

namespace {

using namespace ht;

std::string Shown(const THtAttributes& attributes)
{
    std::string text;
    for (const THtAttribute& attribute : attributes)
        text += attribute.Name.ToUtf8() + "=" + attribute.Value.ToUtf8() + " ";
    return text;
}

TEST(attributes, names_are_folded_and_sorted_unless_case_counts)
{
    THtAttributes folding;
    THtAttributes keeping(true);
    for (THtAttributes* store : {&folding, &keeping}) {
        for (const String& name :
            {u"b"_s, u"a"_s, u"B"_s, u"_id"_s, u"a-b"_s, u"A{x}"_s, u"\u00C4"_s, u"ab"_s})
            store->SetAttribute(name, name);
    }
    EXPECT_EQ(Shown(folding), "_id=_id a=a a-b=a-b ab=ab A{x}=A{x} b=B \u00C4=\u00C4 ");
    EXPECT_EQ(Shown(keeping), "A{x}=A{x} B=B _id=_id a=a a-b=a-b ab=ab b=b \u00C4=\u00C4 ");
    EXPECT_EQ(folding.Indexof(u"AB"), 3);
    EXPECT_EQ(folding.GetAttribute(u"a{X}"), u"A{x}");
    EXPECT_EQ(keeping.Indexof(u"AB"), -1);
}

TEST(attributes, duplicates)
{
    THtAttributes store;
    EXPECT_TRUE(store.SetAttributeEx(u"a"_s, u"1"_s));
    EXPECT_FALSE(store.SetAttributeEx(u"A"_s, u"1"_s));
    EXPECT_TRUE(store.SetAttributeEx(u"A"_s, u"2"_s));
    store.AddNew(u"a"_s, u"3"_s);
    EXPECT_EQ(Shown(store), "a=2 ");
    store.Add(u"A"_s, u"4"_s);
    EXPECT_EQ(store.Count(), 2);
    store.ClearAttr(u"a");
    EXPECT_EQ(store.Count(), 1);
    store.ClearAttr(u"a");
    store.ClearAttr(u"a");
    EXPECT_EQ(store.Count(), 0);
}

TEST(attributes, misses_and_bounds)
{
    THtAttributes store;
    std::int32_t index = 5;
    EXPECT_FALSE(store.Find(u"a", index));
    EXPECT_EQ(index, 0);
    store.Add(u"b"_s, u"1"_s);
    EXPECT_FALSE(store.Find(u"c", index));
    EXPECT_EQ(index, 1);
    EXPECT_FALSE(store.Find(u"", index));
    EXPECT_EQ(index, 0);
    for (const std::int32_t outside : {-1, 1, INT32_MAX}) {
        EXPECT_THROW(store.GetItem(outside), ERangeError);
        EXPECT_THROW(store.SetValue(outside, u"x"_s), ERangeError);
    }
    store.Clear();
    EXPECT_THROW(store.GetItem(0), ERangeError);
    EXPECT_EQ(store.GetAttribute(u"b"), u"");
    store.Add(u"a"_s, u"2"_s);
    EXPECT_EQ(Shown(store), "a=2 ");
}

TEST(attributes, taking_over_leaves_an_empty_store_that_works_on)
{
    THtAttributes source(true);
    for (const String& name : {u"b"_s, u"A"_s, u"c"_s})
        source.Add(name, name);
    const std::unique_ptr<THtAttributes> taken = THtAttributes::TakeFrom(source);
    EXPECT_EQ(source.Count(), 0);
    source.Add(u"x"_s, u"1"_s);
    for (const String& name : {u"D"_s, u"a"_s, u"e"_s, u"f"_s})
        taken->Add(name, name);
    EXPECT_EQ(Shown(*taken), "A=A D=D a=a b=b c=c e=e f=f ");
    EXPECT_EQ(Shown(source), "x=1 ");
}

TEST(attributes, an_entry_may_be_copied_from_another)
{
    THtAttributes store;
    store.Add(u"m"_s, u"1"_s);
    for (const String& name : {u"a"_s, u"k"_s, u"z"_s, u"b"_s})
        store.SetAttribute(name, store.GetAttribute(u"m"));
    store.Add(store.GetName(0), store.GetValue(2));
    EXPECT_EQ(Shown(store), "a=1 a=1 b=1 k=1 m=1 z=1 ");
}

/// Random sets, removals and look-ups; small stores shift entries, large ones sort late.
void ExpectSameAsMap(std::size_t names, int steps)
{
    std::mt19937 random(7);
    THtAttributes store;
    std::map<std::u16string, String> expected;
    for (int step = 0; step < steps; ++step) {
        std::u16string name = u"n" + std::u16string(1, static_cast<char16_t>(u'a' + random() % 26));
        for (std::size_t number = random() % names; number > 0; number /= 10)
            name += static_cast<char16_t>(u'0' + number % 10);
        const String value = String(name) + (step % 2 == 0 ? u"x"_s : u"y"_s);
        switch (random() % 8) {
        case 0:
            store.ClearAttr(name);
            expected.erase(name);
            break;
        case 1:
            store.AddNew(String(name), value);
            expected.emplace(name, value);
            break;
        case 2:
            ASSERT_EQ(store.Contains(name), expected.count(name) == 1);
            break;
        default:
            ASSERT_EQ(store.SetAttributeEx(String(name), value),
                expected.count(name) == 0 || expected[name] != value);
            expected[name] = value;
        }
    }
    ASSERT_EQ(store.Count(), static_cast<std::int32_t>(expected.size()));
    const THtAttribute* found = store.begin();
    for (const auto& [name, value] : expected) {
        EXPECT_EQ(found->Name, name);
        EXPECT_EQ(found->Value, value);
        ++found;
    }
}

TEST(attributes, random_stores_hold_what_a_map_holds)
{
    ExpectSameAsMap(2, 500);
    ExpectSameAsMap(100, 20'000);
    ExpectSameAsMap(5'000, 4'000);
}

TEST(attributes, unsorted_inserts_show_up_wherever_one_looks)
{
    THtAttributes store;
    for (int i = 200; i-- > 0;)
        store.Add(String(u"k" + std::u16string(static_cast<std::size_t>(i % 100 + 1), u'a')), u"v"_s);
    EXPECT_TRUE(store.Contains(u"KAAA"));
    EXPECT_EQ(store.GetName(0), u"ka");
    EXPECT_EQ(store.GetName(1), u"ka");
    store.Add(u"j"_s, u"w"_s);
    EXPECT_EQ(store.GetAttribute(u"J"), u"w");
    EXPECT_EQ(store.Indexof(u"j"), 0);
    store.Add(u"i"_s, u"w"_s);
    store.SetValue(0, u"z"_s);
    EXPECT_EQ(store.GetAttribute(u"i"), u"z");
}

}
