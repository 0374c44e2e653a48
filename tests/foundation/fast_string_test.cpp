// What the fast strings write, and where their chunks show.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/fast_raw_string.h>
#include <hearth/foundation/fast_string.h>
#include <hearth/foundation/fast_string_list.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace {

using namespace ht;

/// Shows how many chunks a buffer has: PosOf finds nothing over three of them.
bool SpansThreeChunks(const TFastString& buffer)
{
    return buffer.PosOf(buffer.GetAsString()) == 0;
}

std::string TextOf(const TFastString& buffer)
{
    return buffer.GetAsString().ToUtf8();
}

template <class T>
concept Addable = requires(TFastString buffer, T value)
{
    buffer.Add(value);
};
static_assert(Addable<std::int32_t> && Addable<std::int64_t> && Addable<const char16_t*>);
static_assert(!Addable<char> && !Addable<wchar_t> && !Addable<char8_t> && !Addable<char32_t>);
static_assert(!Addable<char16_t> && !Addable<bool>);

std::string Decimal(double value, std::int32_t digits, bool zero)
{
    TFastString buffer(16);
    buffer.Add(value, digits, zero);
    return TextOf(buffer);
}

}

TEST(fast_string, an_empty_buffer_has_nothing)
{
    TFastString buffer(100);
    String text = u"old"_s;
    buffer.ToString(text);
    EXPECT_EQ(text, u""_s);
    EXPECT_EQ(buffer.LastChar(), 0);
    EXPECT_FALSE(buffer.StartsWith(u""));
    EXPECT_FALSE(buffer.EndsWith(u""));
    buffer.Add(u"").Add(u"abc", 0).Add(u"abc", -1).AddSpaces(-3).AddSpaces(0);
    buffer.DeletefromEnd(5);
    buffer.TrimTrailingBlanks();
    EXPECT_EQ(buffer.GetTotalLen(), 0);
}

TEST(fast_string, pieces_of_every_length_join)
{
    std::mt19937 random(3);
    TFastString buffer(7);
    std::u16string model;
    for (int step = 0; step < 3000; ++step) {
        const std::u16string piece(random() % 9, static_cast<char16_t>(u'a' + step % 26));
        switch (random() % 6) {
        case 5:
            buffer.AddSpaces(static_cast<std::int32_t>(random() % 9)).TrimTrailingBlanks();
            break;
        case 0:
            buffer.AddChar(u'-');
            model += u'-';
            break;
        case 1:
            buffer.Add2Char(u'<', u'>');
            model += u"<>";
            break;
        case 2:
            if (step % 50 == 0) {
                buffer.Prepend(piece);
                model.insert(0, piece);
            }
            break;
        default:
            buffer.Add(piece);
            model += piece;
        }
    }
    ASSERT_EQ(buffer.GetAsString(), model);
    std::u16string copy(model.size(), u' ');
    buffer.SavetoBuffer(copy.data());
    EXPECT_EQ(copy, model);
    TMemoryStream stream;
    buffer.SavetoStream(stream);
    copy.assign(model.size(), u' ');
    stream.SetPosition(0);
    stream.ReadBuffer(copy.data(), stream.Size());
    EXPECT_EQ(copy, model);
    EXPECT_TRUE(buffer.StartsWith(std::u16string_view(model).substr(0, 400)));
    EXPECT_TRUE(buffer.EndsWith(std::u16string_view(model).substr(model.size() - 400)));
    EXPECT_FALSE(buffer.EndsWith(model + u"x"));
    buffer.ClearandLeaveSpace();
    EXPECT_EQ(buffer.Add(u"new").GetAsString(), u"new"_s);
}

TEST(fast_string, strings_are_not_split)
{
    TFastString buffer(10);
    buffer.Add(u"abcdef").Add(u"ghijkl");
    EXPECT_EQ(buffer.PosOf(u"fg"), 6) << "over one border";
    EXPECT_EQ(buffer.PosOf(u"gx"), 0);
    EXPECT_EQ(buffer.PosOf(u""), 0);
    buffer.Add(u"mnopqr");
    EXPECT_TRUE(SpansThreeChunks(buffer));
    EXPECT_EQ(buffer.PosOf(u"fghijklm"), 0) << "over two borders";
    EXPECT_EQ(buffer.PosOf(u"lmn"), 12);
    buffer.DeletefromEnd(6);
    EXPECT_EQ(buffer.LastChar(), u'l') << "the last chunk is empty, the others stay closed";
    EXPECT_TRUE(buffer.EndsWith(u"jkl"));
    buffer.DeletefromEnd(4);
    EXPECT_EQ(TextOf(buffer), "abcdefgh");
    EXPECT_EQ(buffer.PosOf(u"abcdefgh"), 1) << "one chunk after the text was assembled";
    EXPECT_FALSE(buffer.StartsWith(u""));
    EXPECT_TRUE(buffer.EndsWith(u"")) << "not so at the start";
    buffer.DeletefromEnd(100);
    EXPECT_EQ(buffer.GetTotalLen(), 0);
}

TEST(fast_string, chunks_have_the_size_that_was_asked_for)
{
    TFastString exact(4);
    exact.Add(u"abcdef").AddChar(u'g').Add(u"hijk");
    EXPECT_TRUE(SpansThreeChunks(exact)) << "a long string leaves no room behind it";
    TFastString single(1);
    single.AddChar(u'a').AddChar(u'b').AddChar(u'c');
    EXPECT_TRUE(SpansThreeChunks(single));
    TFastString empty(4);
    empty.Add(u"abcd").Add(u"efgh").DeletefromEnd(4);
    empty.Add(u"ijklm");
    EXPECT_EQ(empty.PosOf(u"di"), 0) << "an empty chunk lies between";

    TFastRawString bytes(8);
    bytes.Add("12345").AddUTF8(u"ab").Add("1234567");
    EXPECT_EQ(bytes.PosOf("12345ab1"), 0) << "three bytes a unit are reserved, so ab stands alone";
    EXPECT_TRUE(bytes.StartsWith("12345ab1"));
    EXPECT_FALSE(bytes.StartsWith(""));
}

TEST(fast_string, two_units_fit_whatever_the_delta)
{
    for (const std::int32_t delta : {-1, 0, 1, 2, 3}) {
        TFastString wide(delta);
        TFastRawString bytes(delta);
        for (int i = 0; i < 5; ++i) {
            wide.Add2Char(u'a', u'b').AddChar(u'c');
            bytes.Add2Char('a', 'b').AddChar('c');
        }
        EXPECT_EQ(TextOf(wide), "abcabcabcabcabc");
        EXPECT_EQ(bytes.GetAsString(), "abcabcabcabcabc");
    }
}

TEST(fast_string, grab_takes_full_chunks_and_copies_poor_ones)
{
    struct {
        std::u16string_view source;
        std::int32_t left;
    } const rows[] = {{u"1234", 4}, {u"12345", 0}, {u"123456", 0}, {u"1234567890X", 0}};
    for (const auto& row : rows) {
        TFastString target(10);
        TFastString source(10);
        target.Add(u"text ");
        for (const char16_t c : row.source)
            source.AddChar(c);
        target.Grab(source);
        target.AddChar(u'!');
        EXPECT_EQ(target.GetAsString(), Concat({u"text ", row.source, u"!"}));
        EXPECT_EQ(source.GetTotalLen(), row.left);
        source.Add(u"more");
        EXPECT_EQ(source.GetTotalLen(), row.left + 4) << "a source may be written again";
    }
    TFastString self(4);
    self.Add(u"ab");
    self.Grab(self);
    EXPECT_EQ(TextOf(self), "abab");
    TFastString empty(4);
    empty.Prepend(u"front ");
    empty.Grab(self);
    EXPECT_EQ(TextOf(empty.Add(u"z")), "front ababz");
}

TEST(fast_string, trimming_an_empty_last_chunk_reaches_the_others)
{
    TFastString buffer(4);
    buffer.Add(u"ab\t ").Add(u"    ");
    buffer.TrimTrailingSpaces();
    EXPECT_EQ(TextOf(buffer), "ab") << "then all characters up to the space go";
    buffer.Add(u"\t ");
    buffer.TrimTrailingSpaces();
    EXPECT_EQ(TextOf(buffer), "ab\t");
    buffer.TrimTrailingBlanks();
    EXPECT_EQ(TextOf(buffer), "ab");

    TFastString front(4);
    TFastString behind(4);
    front.Prepend(u"a ");
    for (const char16_t* piece : {u"    ", u"    ", u"    "})
        behind.Add(piece);
    front.Grab(behind);
    EXPECT_EQ(front.LastChar(), u' ');
    EXPECT_TRUE(front.EndsWith(u"a             ")) << "through all chunks, whoever made them";
    EXPECT_FALSE(front.EndsWith(u"a            "));
    front.TrimTrailingSpaces();
    EXPECT_EQ(TextOf(front.Add(u"bcdef").AddChar(u'g')), "abcdefg");
    EXPECT_EQ(behind.GetTotalLen(), 0);
}

TEST(fast_string, reading_from_a_position_keeps_its_count)
{
    TFastString buffer(3);
    buffer.Add(u"abc").Add(u"def");
    struct {
        std::int32_t start;
        const char* text;
    } const rows[] = {{-2, "abcdef"}, {0, "abcdef"}, {1, "abcde"}, {2, "bcde"}, {5, "e"}, {6, ""}, {99, ""}};
    for (const auto& row : rows) {
        String text;
        buffer.ToStringFrom(text, row.start);
        EXPECT_EQ(text.ToUtf8(), row.text) << row.start;
    }
}

TEST(fast_string, integers_are_decimal)
{
    TFastString buffer(30);
    for (const std::int64_t value : {0L, 9L, 10L, 99L, 100L, 101L, 1234567L, -5L, -120L})
        buffer.Add(value).AddChar(u' ');
    buffer.Add(std::numeric_limits<std::int64_t>::max()).AddChar(u' ');
    EXPECT_EQ(TextOf(buffer), "0 9 10 99 100 101 1234567 -5 -120 9223372036854775807 ");
    EXPECT_THROW(buffer.Add(std::numeric_limits<std::int64_t>::min()), EIntOverflow);

    TFastRawString bytes(8);
    bytes.AddInt(-2147483647).AddChar(' ').AddInt(1005);
    EXPECT_EQ(bytes.GetAsString(), "-2147483647 1005");
    EXPECT_THROW(bytes.AddInt(std::numeric_limits<std::int32_t>::min()), EIntOverflow);
}

TEST(fast_string, decimals_are_rounded_to_even_and_short)
{
    struct {
        double value;
        std::int32_t digits;
        bool zero;
        const char* text;
    } const rows[] = {{0.5, 2, false, ".5"}, {0.5, 2, true, "0.5"}, {1.25, 2, false, "1.25"},
        {1.50, 2, false, "1.5"}, {2.001, 2, false, "2"}, {1.5, 0, false, "2"}, {2.5, 0, false, "2"},
        {-0.25, 2, true, "-0.25"}, {-0.25, 2, false, "-.25"}, {0.004, 2, false, "0"}, {-0.004, 2, true, "0"},
        {0.05, 2, false, ".05"}, {0.05, 2, true, "0.05"}, {0.05, 1, false, "0"}, {2.05, 1, false, "2"},
        {1e-8, 8, true, "0.00000001"}, {0.125, 2, true, "0.12"}, {0.375, 2, true, "0.38"},
        {123456.789, 20, true, "123456.789"}, {1.5, -3, true, "1.5"},
        {1e15 + 0.5, 8, true, "1000000000000000.5"}, {92233720368.75, 8, true, "92233720368.75"},
        {123456789012.3, 8, true, "123456789012.3"}, {-9223372036854.5, 6, true, "-9223372036854.5"},
        {90071993.12345679, 8, true, "90071993.12345679"},
        {4503599627370495.5, 1, true, "4503599627370495.5"}, {99999999999.999999, 8, true, "100000000000"},
        {1e16, 2, true, "10000000000000000"}, {-0.05, 1, true, "0"}, {std::nan(""), 3, true, "0"},
        {1e300, 3, true, "9223372036854775807"}, {-INFINITY, 3, true, "-9223372036854775807"}};
    for (const auto& row : rows)
        EXPECT_EQ(Decimal(row.value, row.digits, row.zero), row.text) << row.value << ", " << row.digits;
}

TEST(fast_string, lengths_that_pass_32_bits_are_refused)
{
    TFastRawString bytes(16);
    bytes.Add("kept");
    EXPECT_THROW(bytes.AddUTF8({u"", std::size_t{1} << 30}), EIntOverflow);
    EXPECT_THROW(bytes.Add(std::string_view("", std::size_t{1} << 31)), EIntOverflow);
    EXPECT_THROW(bytes.AddSpaces(std::numeric_limits<std::int32_t>::max()), EIntOverflow);
    EXPECT_EQ(bytes.GetAsString(), "kept");
}

TEST(fast_raw_string, utf8_joins_surrogates_in_any_order)
{
    struct {
        std::u16string text;
        std::string bytes;
    } const rows[] = {{u"plain ascii of some length", "plain ascii of some length"},
        {u"a\u00E4\u20AC"
         u"b",
            "a\xC3\xA4\xE2\x82\xAC"
            "b"},
        {{0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"}, {{0xDE00, 0xD83D}, "\xF0\x9F\x98\x80"}, {{u'x', 0xD83D}, "x"},
        {{u'x', 0xDE00}, "x"},
        {{0xDE00, u'a', u'b'},
            "\xFF\xBC\xA8\xA8\x98\x80"
            "b"},
        {{u'a', 0, u'b'}, std::string("a\0b", 3)}};
    for (const auto& row : rows) {
        TFastRawString buffer(1);
        buffer.AddUTF8(u"12345678\u00E9").AddUTF8(row.text);
        EXPECT_EQ(buffer.GetAsString().substr(10), row.bytes);
    }
}

TEST(fast_raw_string, what_comes_out_is_what_went_in)
{
    TFastRawString bytes(6);
    bytes.Add("a").AddSpaces(3).AddUTF8(u"\u00E9").AddSpaces(9).AddChar('z');
    const std::string expected = "a   \xC3\xA9         z";
    EXPECT_EQ(bytes.GetAsString(), expected);
    std::string text = "old";
    bytes.ToUTF8String(text);
    EXPECT_EQ(text, expected);
    const TBytes copied = bytes.AsBytes();
    EXPECT_EQ(std::string(copied.begin(), copied.end()), expected);

    TFastString wide(6);
    EXPECT_EQ(TextOf(wide.Add(u"a").AddSpaces(3).AddSpaces(9).AddChar(u'z')), "a            z");
}

TEST(fast_string_list, finds_words_by_pointer_and_length)
{
    TFastStringList list;
    for (const char* word : {"a", "ab", "abc", "b", "ba", "z"})
        list.Add(String::FromLatin1(word));
    const std::u16string_view text = u"abcd ba";
    struct {
        std::size_t start;
        std::int32_t length;
        std::int32_t index;
    } const rows[] = {
        {0, 1, 0}, {0, 2, 1}, {0, 3, 2}, {0, 4, -7}, {5, 2, 4}, {3, 1, -7}, {0, 0, -7}, {0, -1, -7}};
    for (const auto& row : rows) {
        std::int32_t index = -7;
        EXPECT_EQ(list.FindPChar(text.data() + row.start, row.length, index), row.index >= 0);
        EXPECT_EQ(index, row.index) << "a miss leaves the index";
    }
}

TEST(fast_string_list, frees_each_object_once_whoever_owns_it)
{
    struct Counted : TObject {
        explicit Counted(int& freed)
            : Freed(freed)
        {
        }
        ~Counted() override { ++Freed; }
        int& Freed;
    };
    struct {
        bool list;
        bool base;
    } const rows[] = {{true, false}, {false, true}, {true, true}};
    for (const auto& row : rows) {
        int freed = 0;
        {
            TFastStringList list;
            list.OwnsObjects = row.list;
            list.SetOwnsObjects(row.base);
            list.AddObject(u"a"_s, new Counted(freed));
            list.AddObject(u"b"_s, new Counted(freed));
        }
        EXPECT_EQ(freed, 2) << row.list << row.base;
    }
}
