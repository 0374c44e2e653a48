// Tries: keys and their beginnings, and who frees the objects.
// SPDX-License-Identifier: MIT
#include "foundation/counted.h"

#include <hearth/foundation/string_trie.h>

#include <gtest/gtest.h>

#include <string>

namespace ht {
namespace {

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
