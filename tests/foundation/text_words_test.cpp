// Words of text: where they end, what stays behind, and which names they are.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/text_words.h>

#include <gtest/gtest.h>

namespace ht {

enum TDisplayStyle : std::uint8_t { dsInline, dsInlineBlock, dsNone };

template <> struct TEnumTraits<TDisplayStyle> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TDisplayStyle";
};

namespace {

TEST(text_words, token_and_rest)
{
    struct Row {
        std::u16string_view text;
        bool strict;
        std::u16string_view word;
        std::u16string_view rest;
    };
    const Row rows[] = {{u"  ab cd", true, u"ab", u"cd"}, {u"  ab cd", false, u"  ab", u" cd"},
        {u"ab,;cd", true, u"ab", u";cd"}, {u"ab", true, u"ab", u""}, {u"ab ", true, u"ab", u""},
        {u"ab", false, u"ab", u""}, {u" ;,", true, u"", u""}, {u" ;,", false, u" ;,", u""},
        {u"", true, u"", u""}, {u"", false, u"", u""}};
    for (const Row& row : rows) {
        String text(row.text);
        EXPECT_EQ(Q_StrTok(text, u" ,;", row.strict), row.word) << String(row.text);
        EXPECT_EQ(text, row.rest) << String(row.text);
    }
    // Words of a long text, which would take for ever if each of them copied the rest.
    const std::u16string text(2'000'001, u' ');
    std::u16string words = text;
    for (std::size_t i = 0; i < words.size(); i += 2)
        words[i] = u'x';
    std::u16string_view rest = words;
    int count = 0;
    while (!Q_StrTok(rest, u" ", true).empty())
        ++count;
    EXPECT_EQ(count, 1'000'001);
}

TEST(text_words, characters_and_places)
{
    EXPECT_EQ(FindChar(u'b', u"abcb"), 2);
    EXPECT_EQ(FindChar(u'b', u"abcb", 3), 4);
    EXPECT_EQ(FindChar(u'b', u"abcb", 5), 0);
    EXPECT_EQ(FindChar(u'a', u"abcb", -7), 1);
    EXPECT_EQ(FindChar(u'a', u"abcb", 2'147'483'647), 0);
    EXPECT_EQ(CharLower(u'É'), u'É');
    EXPECT_EQ(AnsiCharLower(u'É'), u'é');
    EXPECT_EQ(AnsiCharLower(u'\x0130'), u'i');
    EXPECT_EQ(AnsiCharLower(u'\xD801'), u'\xD801');
    EXPECT_TRUE(AnsiStartsWith(u"ab", u""));
    EXPECT_FALSE(AnsiStartsWith(u"ab", u"A"));
    EXPECT_FALSE(AnsiEndsWith(u"b", u"ab"));
    EXPECT_TRUE(StrIn(u"b", {u"a", u"b"}));
    EXPECT_FALSE(StrIn(u"B", {u"a", u"b"}));
    EXPECT_TRUE(BlankString(u" \t\r\n"));
    EXPECT_FALSE(BlankString(u"\u00a0"));
    EXPECT_TRUE(BlankOrNBSP(u" \u00a0"));
    EXPECT_FALSE(BlankOrNBSP(u"\u2003"));
    EXPECT_EQ(Coalesce(String(), u"b"_s), u"b");
}

TEST(text_words, replaced_parts)
{
    struct Row {
        std::u16string_view text;
        std::u16string_view from;
        std::u16string_view to;
        std::u16string_view result;
    };
    const Row rows[] = {{u"aXbX", u"X", u"--", u"a--b--"}, {u"aaaa", u"aa", u"a", u"aa"},
        {u"aaa", u"aa", u"", u"a"}, {u"XX", u"X", u"XX", u"XXXX"}, {u"ab", u"", u"x", u"ab"},
        {u"", u"a", u"b", u""}, {u"a", u"ab", u"x", u"a"}, {u"aabaabaacaabaac", u"aabaac", u"-", u"aab--"},
        {u"abababc", u"ababc", u"-", u"ab-"}, {u"ababa", u"aba", u"-", u"-ba"}};
    for (const Row& row : rows)
        EXPECT_EQ(ReplaceStr(String(row.text), row.from, row.to), row.result) << String(row.text);
    const String text = u"a-b-c"_s;
    EXPECT_EQ(ReplaceChar(text, u'-', u'+'), u"a+b+c");
    EXPECT_TRUE(ReplaceChar(text, u'x', u'+').IsSame(text));
    EXPECT_TRUE(ReplaceStr(text, u"--", u"+").IsSame(text));
    // Nearly there at every place.
    const String same(std::u16string(1'000'000, u'a'));
    EXPECT_TRUE(ReplaceStr(same, std::u16string(500'000, u'a') + u'b', u"x").IsSame(same));
}

TEST(text_words, lists_grow_by_their_own_parts_too)
{
    String list;
    AddStr(list, u"ab", u", ");
    AddStr(list, u"", u", ");
    EXPECT_EQ(list, u"ab, ");
    AddStr(list, list.View().substr(0, 2), list);
    EXPECT_EQ(list, u"ab, ab, ab");
}

TEST(text_words, keywords_find_values)
{
    TDisplayStyle style = dsNone;
    EXPECT_TRUE(IsEnum2(u"ds", u"Inline-BLOCK", style));
    EXPECT_EQ(style, dsInlineBlock);
    EXPECT_TRUE(IsEnum(u"-ds-inline-", style));
    EXPECT_EQ(style, dsInline);
    for (const std::u16string_view unknown : {u"", u"-", u"inline_block", u"inlineblock ", u"inlin"})
        EXPECT_FALSE(IsEnum2(u"ds", unknown, style)) << String(unknown);
    EXPECT_FALSE(IsEnum2(u"d-s", u"inline", style));
    EXPECT_FALSE(IsEnum2(u"ds", std::u16string(1'000'000, u'x'), style));
    EXPECT_TRUE(IsEnum2(u"ds", u"none" + std::u16string(1'000'000, u'-'), style));
    EXPECT_EQ(style, dsNone);
}

}
}
