// Lists of texts: order, ownership, and texts that must come back.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/strings.h>

#include "messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ht {
namespace {

using testing::ElementsAre;

std::vector<String> AllOf(const TStrings& strings)
{
    std::vector<String> all;
    for (std::int32_t i = 0; i < strings.Count(); ++i)
        all.push_back(strings[i]);
    return all;
}

TEST(strings, sorted_lists_keep_order_and_rules)
{
    TStringList list;
    for (const char16_t* text : {u"b", u"A", u"c", u"ä", u"a"})
        list.Add(String(std::u16string_view(text)));
    list.SetSorted(true);
    EXPECT_THAT(AllOf(list), ElementsAre(u"A"_s, u"a"_s, u"b"_s, u"c"_s, u"ä"_s));
    EXPECT_EQ(list.Add(u"B"_s), 2);
    EXPECT_EQ(list.Count(), 5);
    EXPECT_EQ(list.IndexOf(u"Ä"), 4);
    EXPECT_EQ(list.IndexOf(u"bb"), -1);
    list.SetDuplicates(dupError);
    EXPECT_EQ(
        MessageOf<EStringListError>([&] { list.Add(u"C"_s); }), u"String list does not allow duplicates");
    EXPECT_EQ(MessageOf<EStringListError>([&] { list.Insert(0, u"x"_s); }),
        u"Operation not allowed on sorted list");
    EXPECT_THROW(list.SetStrings(0, u"x"_s), EStringListError);
    list.SetDuplicates(dupAccept);
    list.Add(u"C"_s);
    list.SetCaseSensitive(true);
    EXPECT_THAT(AllOf(list), ElementsAre(u"A"_s, u"C"_s, u"a"_s, u"b"_s, u"c"_s, u"ä"_s));
    EXPECT_EQ(MessageOf<EStringListError>([&] { list.Delete(6); }), u"List index out of bounds (6)");
}

TEST(strings, comma_text_and_delimited_text)
{
    struct Row {
        std::u16string_view text;
        std::vector<std::u16string_view> parts;
    };
    const Row rows[] = {{u"a,b c", {u"a", u"b", u"c"}}, {u"\"a b\",\"x\"\"y\"", {u"a b", u"x\"y"}},
        {u"a,,b,", {u"a", u"", u"b", u""}}, {u"", {}}, {u"\"\"", {u""}}, {u"  a ,  b ", {u"a", u"b"}},
        {u"\"open", {u"open"}}, {u",", {u"", u""}}, {u"a\"b", {u"a\"b"}}};
    for (const Row& row : rows) {
        TStringList list;
        list.SetCommaText(row.text);
        EXPECT_THAT(AllOf(list), testing::ElementsAreArray(row.parts)) << String(row.text);
        TStringList again;
        again.SetCommaText(list.CommaText());
        EXPECT_TRUE(again.Equals(list)) << list.CommaText();
    }
    TStringList strict;
    strict.SetStrictDelimiter(true);
    strict.SetDelimiter(u';');
    strict.SetQuoteChar(u'\'');
    strict.SetDelimitedText(u" a b;'c;d';");
    EXPECT_THAT(AllOf(strict), ElementsAre(u" a b"_s, u"c;d"_s, u""_s));
    EXPECT_EQ(strict.DelimitedText(), u" a b;'c;d';");
}

TEST(strings, lines)
{
    TStringList list;
    list.SetText(u"a\r\nb\rc\n\nd");
    EXPECT_THAT(AllOf(list), ElementsAre(u"a"_s, u"b"_s, u"c"_s, u""_s, u"d"_s));
    EXPECT_EQ(list.Text(), u"a\r\nb\r\nc\r\n\r\nd\r\n");
    list.SetLineBreak(u"|"_s);
    list.SetText(u"x|y\n|");
    EXPECT_THAT(AllOf(list), ElementsAre(u"x"_s, u"y\n"_s));
}

TEST(strings, names_and_values)
{
    TStringList list;
    list.SetText(u"a=1\r\nplain\r\nb=2=3\r\n=4");
    EXPECT_EQ(list.Values(u"B"), u"2=3");
    EXPECT_EQ(list.Values(u"plain"), u"");
    EXPECT_EQ(list.IndexOfName(u""), 3);
    list.SetValues(u"A", u"9");
    list.SetValues(u"new", u"n");
    list.SetValues(u"b", u"");
    list.SetValueFromIndex(1, u"v");
    EXPECT_THAT(AllOf(list), ElementsAre(u"A=9"_s, u"=v"_s, u"=4"_s, u"new=n"_s));
}

TEST(strings, owned_objects_die_with_their_entries)
{
    const auto make = [](TStringList& list, std::u16string_view text) {
        auto* object = new TObject;
        list.AddObject(String(text), object);
        return object->Handle();
    };
    TStringList copy;
    {
        TStringList list;
        list.SetOwnsObjects(true);
        const std::uint32_t first = make(list, u"a");
        const std::uint32_t second = make(list, u"b");
        list.Move(0, 1);
        EXPECT_NE(TObject::FromHandle(first), nullptr);
        list.Exchange(0, 1);
        list.Delete(0);
        EXPECT_EQ(TObject::FromHandle(first), nullptr);
        list.Clear();
        EXPECT_EQ(TObject::FromHandle(second), nullptr);
        make(list, u"c");
        copy.Assign(&list);
    }
    EXPECT_FALSE(copy.OwnsObjects());
    EXPECT_THROW(copy.Assign(nullptr), EConvertError);
}

TEST(strings, changes_are_told_once_a_group)
{
    int changes = 0;
    TStringList list;
    list.SetOnChange([&](TObject&) { ++changes; });
    list.Add(u"b"_s);
    list.SetText(u"x\ny\nz");
    list.SetSorted(true);
    list.AddStrings(list);
    EXPECT_EQ(changes, 4);
    EXPECT_EQ(list.Count(), 3);
    list.SetOnChange([](TObject&) { throw EAbstractError(); });
    EXPECT_THROW(list.Clear(), EAbstractError);
    EXPECT_THROW(list.SetCommaText(u"a"), EAbstractError);
    list.SetOnChange([&](TObject&) { ++changes; });
    list.SetText(u"b");
    EXPECT_EQ(changes, 5);
}

TEST(strings, files_keep_their_code_page)
{
    const std::pair<std::string_view, std::u16string_view> rows[] = {{"\xEF\xBB\xBF\xD0\x96\r\n", u"\x416"},
        {std::string_view("\xFF\xFE\x16\x04\r\0\n\0", 8), u"\x416"}, {"\xE9\x80\r\n", u"\xE9\x20AC"}};
    for (const auto& [bytes, line] : rows) {
        TMemoryStream source;
        source.WriteBuffer(bytes);
        source.SetPosition(0);
        TStringList list;
        list.LoadFromStream(source);
        EXPECT_EQ(list[0], line);
        TMemoryStream target;
        list.SaveToStream(target);
        target.SetPosition(0);
        EXPECT_EQ(target.ReadRest(), bytes);
    }
}

}
}
