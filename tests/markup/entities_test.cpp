// The named character references, both ways.
// SPDX-License-Identifier: MIT
#include <hearth/markup/entities.h>
#include <hearth/markup/html_node.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using namespace ht;

std::int32_t CodeOf(std::u16string_view name)
{
    return HtEntityDictionary().FindEntity(name.data(), static_cast<std::int32_t>(name.size()));
}

String NameOf(char16_t c)
{
    const THtEntityRow* row = HtEntityReverseDictionary().FindEntity(c);
    return row ? row->Name : String();
}

struct CodeRow {
    std::u16string_view name;
    std::int32_t code;
};

struct NameRow {
    char16_t c;
    std::u16string_view name;
};

}

TEST(entities, names_are_found_exactly)
{
    const CodeRow rows[] = {
        {u"amp", '&'},
        {u"AMP", '&'},
        {u"Amp", 0},
        {u"Aacute", 0xC1},
        {u"aacute", 0xE1},
        {u"LT", '<'},
        {u"Lt", 0x226A},
        {u"lt", '<'},
        {u"ac", 0x223E},
        {u"acE", 0x223E}, // stands for two code points, the first counts
        {u"Afr", 0x1D504},
        {u"CounterClockwiseContourIntegral", 0x2233},
        {u"amp;", 0},
        {u"", 0},
    };
    for (const CodeRow& row : rows)
        EXPECT_EQ(CodeOf(row.name), row.code) << String(row.name);
    EXPECT_EQ(HtEntityDictionary().FindEntity(u"amp", -1), 0);
}

TEST(entities, characters_have_their_first_name_unless_their_script_is_never_named)
{
    const NameRow rows[] = {
        {u'\u2665', u"hearts"}, {u'\u223E', u"ac"}, {u'\u226A', u"ll"}, // in front of "Lt"
        {u'\u2290', u"NotSquareSuperset"}, // the first in order, though it stands for two code points
        {u'\uFB01', u"filig"}, {u'\u20AC', u"euro"}, {u'\u02D8', u"Breve"}, {u'\u00E9', u""},
        {u'\u0152', u""}, {u'\u03B1', u""}, {u'\u2014', u""}, {u'\u4E00', u""},
        {u'\uD504', u""}, // Afr lies above U+FFFF and must not be cut to a unit
    };
    for (const NameRow& row : rows)
        EXPECT_EQ(NameOf(row.c), row.name) << std::hex << int{row.c};
}

TEST(entities, a_written_name_is_read_as_the_same_character)
{
    for (std::uint32_t c = 0; c <= 0xFFFF; ++c) {
        const String name = NameOf(static_cast<char16_t>(c));
        EXPECT_EQ(CodeOf(name), name.IsEmpty() ? 0 : static_cast<std::int32_t>(c)) << name;
    }
}

namespace {

std::string TextOf(const std::string& html)
{
    THtmlNode page;
    page.Parse(String::FromLatin1(html));
    return page.TextContent().ToUtf8();
}

}

TEST(entities, a_page_may_use_every_name_but_the_one_that_is_too_long)
{
    constexpr struct {
        std::string_view name;
        std::uint32_t code;
    } rows[] = {
#include <hearth/markup/entities_table.inc>
    };
    constexpr std::size_t kLongestRead = 25;
    for (const auto& [name, code] : rows) {
        const std::string reference = "&" + std::string(name) + ";";
        const bool isRead = name.size() <= kLongestRead;
        EXPECT_EQ(TextOf(reference), isRead ? TextOf("&#" + std::to_string(code) + ";") : reference);
    }
}
