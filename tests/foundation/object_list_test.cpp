// Who frees what: lists and tries that own, that do not, and that stop owning.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/id_list.h>
#include <hearth/foundation/object_list.h>
#include <hearth/foundation/string_trie.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace ht {
namespace {

struct Counted : TObject {
    Counted() { ++Alive; }
    ~Counted() override { --Alive; }

    static inline int Alive = 0;
};

TEST(object_list, frees_what_leaves_it_if_it_owns)
{
    {
        THtObjectList list(true);
        for (int i = 0; i < 6; ++i)
            list.Add(new Counted);
        list.Delete(0);
        list.SetItems(0, nullptr);
        const std::unique_ptr<TObject> extracted(list.Extract(list.Last()));
        EXPECT_EQ(Counted::Alive, 4);
        list.Remove(list.Last());
        EXPECT_EQ(Counted::Alive, 3);
        list.SetCount(2);
        EXPECT_EQ(Counted::Alive, 2);
        list.Clear();
        EXPECT_EQ(Counted::Alive, 1);
        list.Add(new Counted);
    }
    EXPECT_EQ(Counted::Alive, 0);
    const auto kept = std::make_unique<Counted>();
    THtObjectList other(false);
    other.Add(kept.get());
    THtPointerList pointers;
    pointers.Add(kept.get());
    pointers.Clear();
    other.Clear();
    EXPECT_EQ(Counted::Alive, 1);
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

TEST(string_trie, keys)
{
    Counted objects[3];
    THtStringTrie trie(false);
    TObject* found = &objects[0];
    EXPECT_FALSE(trie.Find(u"ab", found));
    EXPECT_EQ(found, nullptr);
    trie.Add(u"ab", &objects[0]);
    trie.Add(u"\u6162", &objects[1]); // the bytes of "ab" in one unit
    trie.Add(u"", &objects[2]);
    EXPECT_FALSE(trie.ContainsKey(u"a"));
    EXPECT_FALSE(trie.ContainsKey(u"abc"));
    EXPECT_FALSE(trie.ContainsKey(u""));
    EXPECT_TRUE(trie.Find(u"\u6162", found));
    EXPECT_EQ(found, &objects[1]);
    EXPECT_TRUE(trie.FindPChar(u"abc", 2, found));
    EXPECT_EQ(found, &objects[0]);
    EXPECT_FALSE(trie.FindPChar(u"ab", -2, found));
    trie.Add(u"ab", nullptr);
    EXPECT_FALSE(trie.ContainsKey(u"ab"));
}

TEST(string_trie, owns_what_it_was_given_but_not_what_it_was_assigned)
{
    {
        THtStringTrie source(true);
        THtStringTrie copy(true);
        auto* const first = new Counted;
        source.Add(u"a", first);
        source.Add(u"a", first);
        source.Add(u"", new Counted);
        source.Add(u"ab", new Counted);
        source.Add(u"ab", new Counted);
        copy.Add(u"x", new Counted);
        EXPECT_EQ(Counted::Alive, 4);
        copy.Assign(copy);
        copy.Assign(source);
        EXPECT_EQ(Counted::Alive, 3);
        TObject* found = nullptr;
        EXPECT_TRUE(copy.Find(u"a", found));
        EXPECT_EQ(found, first);
        EXPECT_FALSE(copy.ContainsKey(u"x"));
        copy.Add(u"a", new Counted);
        EXPECT_TRUE(source.ContainsKey(u"a"));
        EXPECT_EQ(Counted::Alive, 4);
    }
    EXPECT_EQ(Counted::Alive, 0);
}

TEST(string_trie, long_keys_take_no_stack)
{
    constexpr std::size_t kLength = 30'000; // each unit is two tables of 2 KB
    THtStringTrie trie(true);
    trie.Add(std::u16string(kLength, u'x'), new Counted);
    EXPECT_TRUE(trie.ContainsKey(std::u16string(kLength, u'x')));
    EXPECT_FALSE(trie.ContainsKey(std::u16string(kLength - 1, u'x')));
}

}
}
