// Text that is shared and changed.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/text.h>

#include <gtest/gtest.h>

#include <limits>
#include <thread>

namespace ht {
namespace {

TEST(text, appending_never_changes_what_another_owner_sees)
{
    String text{std::u16string_view(u"ab")};
    const String other = text;
    text += u"cd";
    EXPECT_EQ(other, u"ab");
    EXPECT_EQ(text, u"abcd");
    const String literal = u"xy"_s;
    String copy = literal;
    copy += u'z';
    EXPECT_EQ(literal, u"xy");
    EXPECT_EQ(copy, u"xyz");
    String empty;
    empty += u"";
    empty += u"q";
    EXPECT_EQ(empty, u"q");
}

TEST(text, appends_parts_of_itself)
{
    String text{std::u16string_view(u"abc")};
    for (int i = 0; i < 6; ++i)
        text += text;
    text += text.View().substr(1, 1);
    EXPECT_EQ(text.Length(), 193);
    EXPECT_EQ(text.Substring(189, 10), u"abcb");
    text = text.Substring(0, 2);
    String& same = text;
    text = same;
    EXPECT_EQ(text, u"ab");
}

TEST(text, keeps_units_that_are_zero)
{
    const String text{std::u16string_view(u"a\0b", 3)};
    EXPECT_EQ(text.Length(), 3);
    EXPECT_EQ((text + u"c").Length(), 4);
    EXPECT_NE(text, u"a");
    EXPECT_EQ(text.data()[3], 0);
    EXPECT_EQ(u"a\0b"_s, text);
}

TEST(text, substrings_are_cut_to_what_is_there)
{
    struct Row {
        std::int32_t start;
        std::int32_t count;
        std::u16string_view part;
    };
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    const Row rows[] = {{0, 3, u"abc"}, {1, kMax, u"bc"}, {-1, 2, u"a"}, {3, 1, u""}, {kMax, kMax, u""},
        {0, -1, u""}, {kMin, kMax, u""}, {kMin, kMin, u""}, {2, 0, u""}};
    const String text{std::u16string_view(u"abc")};
    for (const Row& row : rows)
        EXPECT_EQ(text.Substring(row.start, row.count), row.part) << row.start << ", " << row.count;
    EXPECT_TRUE(text.Substring(0, 99).IsSame(text));
    EXPECT_THROW(text[3], ERangeError);
    EXPECT_THROW(text[-1], ERangeError);
    EXPECT_THROW(String()[0], ERangeError);
}

TEST(text, comparisons)
{
    EXPECT_LT(CompareText(u"a", u"B"), 0);
    EXPECT_EQ(CompareText(u"aZ", u"Az"), 0);
    EXPECT_LT(CompareText(u"ab", u"ABC"), 0);
    EXPECT_FALSE(SameText(u"Ä", u"ä"));
    EXPECT_FALSE(SameText(u"@", u"`"));
    EXPECT_TRUE(u"a"_s < u"b"_s && u"\xD800"_s < u"\xFFFF"_s);
    EXPECT_EQ(String(), u""_s);
    EXPECT_EQ(u"\t a\x1F"_s.Trim(), u"a");
    EXPECT_EQ(u" \n "_s.Trim(), u"");
}

TEST(text, shared_units_are_counted_by_all_threads)
{
    const String text(1000, u'x');
    const auto work = [&text] {
        for (int i = 0; i < 20000; ++i)
            String(text).Length();
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(text.ReferenceCount(), 1);
}

}
}
