// UTF-8 in and out: well-formed text at every offset of the wide steps, and everything ill-formed.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/text.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace ht {
namespace {

/// What the encoding's definition says, one code point at a time.
std::string EncodePlainly(std::u16string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
            code = 0x10000 + ((code & 0x3FF) << 10) + (text[++i] & 0x3FFU);
        else if ((code & 0xF800) == 0xD800)
            code = 0xFFFD;
        const int tails = code < 0x80 ? 0 : code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        const unsigned marks[] = {0, 0xC0, 0xE0, 0xF0};
        out += static_cast<char>(marks[tails] | code >> (6 * tails));
        for (int k = tails - 1; k >= 0; --k)
            out += static_cast<char>(0x80 | ((code >> (6 * k)) & 0x3F));
    }
    return out;
}

TEST(text_utf8, ill_formed_bytes_become_one_replacement_a_maximal_part)
{
    struct Row {
        std::string_view bytes;
        std::u16string_view text;
    };
    const Row rows[] = {
        {"\x80", u"\xFFFD"},
        {"\xC0\xAF", u"\xFFFD\xFFFD"},
        {"\xC1\xBF", u"\xFFFD\xFFFD"},
        {"\xC3", u"\xFFFD"},
        {"\xC3(", u"\xFFFD("},
        {"\xE0\x80\xAF", u"\xFFFD\xFFFD\xFFFD"},
        {"\xE1\x80", u"\xFFFD"},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF"
         "A",
            u"\xFFFD\xFFFD\xFFFD\xFFFD"
            u"A"},
        {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},
        {"\xED\x9F\xBF", u"\xD7FF"},
        {"\xF0\x80\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"\xF0\x90\x80", u"\xFFFD"},
        {"\xF0\x90\x80\x80", u"\xD800\xDC00"},
        {"\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"\xF5\xFF", u"\xFFFD\xFFFD"},
        {std::string_view("a\0b", 3), std::u16string_view(u"a\0b", 3)},
    };
    // Each row is tried on every path: alone, behind ASCII of each length, and between sequences of other
    // lengths.
    for (const Row& row : rows) {
        for (std::size_t before = 0; before < 70; ++before) {
            const std::string bytes = std::string(before, 'x') + std::string(row.bytes) + "\xD0\x96yz";
            const std::u16string text = std::u16string(before, u'x') + std::u16string(row.text) + u"\x416yz";
            const std::unique_ptr<char[]> exact(new char[bytes.size()]); // a read behind the end is seen
            std::copy(bytes.begin(), bytes.end(), exact.get());
            EXPECT_EQ(String::FromUtf8({exact.get(), bytes.size()}), std::u16string_view(text))
                << testing::PrintToString(row.bytes) << " behind " << before;
        }
        EXPECT_EQ(String::FromUtf8(row.bytes), row.text) << testing::PrintToString(row.bytes);
    }
}

TEST(text_utf8, random_text_goes_out_as_defined_and_comes_back)
{
    std::mt19937 random(7);
    const char16_t samples[] = {
        u'a', u'<', 0x7F, 0x80, 0x7FF, 0x800, 0x416, 0x3042, 0xFFFF, 0xD83D, 0xDE00, 0};
    for (int round = 0; round < 3000; ++round) {
        std::u16string text;
        while (text.size() < random() % 90)
            text.append(random() % 20, samples[random() % std::size(samples)]);
        const String kept{std::u16string_view(text)};
        const std::string bytes = kept.ToUtf8();
        ASSERT_EQ(bytes, EncodePlainly(text));
        ASSERT_EQ(String::FromUtf8(bytes).ToUtf8(), bytes);
        if (bytes.find("\xEF\xBF\xBD") == std::string::npos) {
            ASSERT_EQ(String::FromUtf8(bytes), kept);
        }
    }
}

TEST(text_utf8, long_text_is_encoded_in_pieces_that_split_no_pair)
{
    for (const char16_t head : {u'x', u'\u00E9', u'\u3042'}) {
        for (const char16_t tail : {u'x', u'\u3042'}) {
            for (std::size_t before : {0x7FEU, 0x7FFU, 0x800U, 0xFFEU, 0xFFFU}) {
                const std::u16string text = std::u16string(before, head) + u"\xD83D\xDE00"
                    + std::u16string(before, tail) + u"\xD83D" + std::u16string(20 * before, tail);
                const std::string bytes = String(std::u16string_view(text)).ToUtf8();
                ASSERT_EQ(bytes, EncodePlainly(text)) << int{head} << ' ' << int{tail} << ' ' << before;
                ASSERT_LE(bytes.capacity(), bytes.size() + bytes.size() / 8) << "unused room";
            }
        }
    }
}

}
}
