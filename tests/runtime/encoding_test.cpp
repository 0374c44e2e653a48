// Code pages: round trips of every byte, what pages lack, names of the web.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/encoding.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <thread>

namespace ht {
namespace {

TEST(encoding, known_bytes_decode_and_encode_back)
{
    struct Row {
        std::uint32_t page;
        std::string_view bytes;
        std::u16string_view text;
    };
    const Row rows[] = {
        {1252, "\x80\x81\x8D\x8F\x90\x9D\x9F\xE9", u"\x20AC\x81\x8D\x8F\x90\x9D\x178\xE9"},
        {1251, "\xCF\xF0\xE8\x98", u"\x41F\x440\x438\x98"},
        {28591, "\x80\xFF", u"\x80\xFF"},
        {65001, "\xD0\x9F\xF0\x9F\x98\x80", u"\x41F\xD83D\xDE00"},
        {1200, std::string_view("a\0\x1F\x04", 4), u"a\x41F"},
        {1201, std::string_view("\0a\x04\x1F", 4), u"a\x41F"},
        {932, "\x93\xFA\x96\x7B\xB1", u"\x65E5\x672C\xFF71"},
        {936, "\xD6\xD0", u"\x4E2D"},
        {949, "\xC7\xD1", u"\xD55C"},
        {950, "\xA4\xA4", u"\x4E2D"},
        {866, "\x8F\xE0", u"\x41F\x440"},
        {20866, "\xF0\xD2", u"\x41F\x440"},
        {28605, "\xA4", u"\x20AC"},
        {10000, "\x8E", u"\xE9"},
        {54936, "\x94\x39\xDA\x33", u"\xD83D\xDCA9"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(DecodeBytes(row.bytes, row.page), row.text) << row.page;
        EXPECT_EQ(EncodeBytes(row.text, row.page), row.bytes) << row.page;
    }
}

TEST(encoding, every_byte_of_the_system_page_survives_the_way_through_text)
{
    std::string all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    for (std::uint32_t page : {1250U, 1251U, 1252U, 1254U, 1256U, 866U, 20866U, 28591U, 28592U})
        EXPECT_EQ(EncodeBytes(DecodeBytes(all, page), page), all) << page;
}

TEST(encoding, what_a_page_lacks_becomes_a_mark)
{
    for (std::uint32_t page : {1252U, 1251U, 28591U, 932U, 950U})
        EXPECT_EQ(
            EncodeBytes(u"a\xAD\x5E9\xD83D\xDE00z\xD800", page).substr(page == 1252 || page == 28591 ? 2 : 1),
            page == 1252 || page == 28591 ? "??z?"
                : page == 1251            ? "\xAD??z?"
                                          : "???z?")
            << page;
    EXPECT_EQ(DecodeBytes("\x81", 932), u"\xFFFD");
    EXPECT_EQ(DecodeUtf16LittleEndian("a"), u"");
    EXPECT_THROW(DecodeBytes("a", 4711), EConvertError);
    EXPECT_THROW(EncodeBytes(u"a", 0), EConvertError);
    EXPECT_THROW(SetSystemCodePage(4711), EConvertError);
    EXPECT_EQ(SystemCodePage(), kDefaultSystemCodePage);
}

TEST(encoding, long_multibyte_text_crosses_the_converter_pieces)
{
    std::u16string text;
    for (int i = 0; i < 5000; ++i)
        text += i % 3 == 0 ? u"x" : u"\x65E5";
    EXPECT_EQ(DecodeBytes(EncodeBytes(text, 932), 932), std::u16string_view(text));
}

TEST(encoding, charset_names_of_the_web)
{
    struct Row {
        std::u16string_view name;
        std::uint32_t page;
    };
    const Row rows[] = {{u" UTF-8 ", 65001}, {u"ISO-8859-1", 1252}, {u"iso-8859-2", 28592}, {u"cp1251", 1251},
        {u"Windows-1250", 1250}, {u"x-cp1252", 1252}, {u"Shift_JIS", 932}, {u"gb2312", 936}, {u"GBK", 936},
        {u"euc-kr", 949}, {u"EUC-JP", 51932}, {u"koi8-r", 20866}, {u"gb18030", 54936},
        {u"iso-8859-15", 28605}, {u"macintosh", 10000}, {u"latin2", 28592}, {u"", 0}, {u"cp", 0},
        {u"klingon", 0}, {u"cp99999999999", 0}, {u"\"utf-8\"", 65001}, {u"\"", 0}, {u"\"utf-8", 0}};
    for (const Row& row : rows)
        EXPECT_EQ(CodePageOfCharset(row.name), row.page) << String(row.name);
}

TEST(encoding, byte_order_marks)
{
    EXPECT_EQ(DetectByteOrderMark("\xEF\xBB\xBFx").Mark, bomUtf8);
    EXPECT_EQ(DetectByteOrderMark("\xFF\xFE").Size, 2U);
    EXPECT_EQ(DetectByteOrderMark("\xFE\xFF").Mark, bomUtf16BigEndian);
    EXPECT_EQ(DetectByteOrderMark("\xEF\xBB").Mark, bomNone);
}

TEST(encoding, threads_may_meet_a_page_at_the_same_time)
{
    const auto work = [] {
        for (std::uint32_t page : {1253U, 1257U, 932U, 950U})
            EXPECT_EQ(DecodeBytes("abc", page), u"abc");
    };
    std::thread other(work);
    work();
    other.join();
}

}
}
