// Selectors: how they are read, printed and weighed, and what one compound tests.
// SPDX-License-Identifier: MIT
#include "sheets.h"

#include <fuzz/styling/plain_selectors.h>
#include <hearth/foundation/hash.h>

#include <gtest/gtest.h>

namespace {

using namespace ht;
using namespace ht::literals;
using test::Selectors;

std::string Printed(const TCSSSection* section)
{
    std::string text;
    for (std::int32_t i = 0; section && i < section->Selectors->Count(); ++i)
        text += (i == 0 ? "" : ", ") + section->Selectors->GetSelector(i)->AsString().ToUtf8();
    return text;
}

TEST(selector, prints_what_reads_back_as_the_same)
{
    const struct {
        std::string_view Css;
        std::string_view Printed;
    } rows[] = {
        {"A", "a"},
        {"*", "*"},
        {"Ul.B#c .D", "ul#c.b .d"},
        {"a>b +c~d  e", "a > b + c ~ d e"},
        {"a!b", "a b"},
        {"a , b", "a, b"},
        {"a:hover::before", "a:hover:before"},
        {":FIRST-child:focus-within", ":first-child:focus-within"},
        {"a:focus:hover:focus", "a:focus:hover"},
        {"p:nth-child(ODD)", "p:nth-child(0)"},
        {"p:nth-child(odd):nth-of-type(even)", "p:nth-child(even):nth-of-type(even)"},
        {"p:nth-child(2n+1)", "p:nth-child(0)"},
        {"p:nth-child( 3 )", "p:nth-child(0)"}, // the blank is the argument
        {"p:nth-child(2.5)", "p:nth-child(2)"},
        {"p:nth-child(1e30)", "p:nth-child(2147483647)"},
        {"p:nth-child(-1e30)", "p:nth-child(-2147483648)"},
        {"p:hover(7)", "p:hover(7)"},
        {"p:lang(de) b", "p:unknown b"},
        {"p:none()", "p:none"},
        {"a: b", "a:unknown b"},
        {"a:", "a"},
        {"a[b][c='d e'][f~=g]", "a[b][c=\"d e\"][f~=g]"},
        {"a[b = c]", "a[\"b = c\"]"},
        {"a[]", "a"},
        {"a[b][]", "a[b][]"},
        {"['\\1 a']", "[\"\\1 a\"]"},
        {"[a=\"\\\"\\d \\\\\"]", "[a=\"\\22 \\d \\5c \"]"},
        {"[a=\"]\"", "[a=\"]\"]"},
        {"a[b", "a[b]"},
        {"a foo(b c)[d]", "a [\"foo(b c\"][d]"},
        {"a(b)", "[\"a(b\"]"},
        {"p:not(.A):not(#b[c]) d", "p:not(.a):not(#b[c]) d"},
        {"p:not(p)", "p:not(.)"},
        {"p:not(q.a:hover)", "p:not(.a:hover)"},
        {"p:not(:not(.a).b).c", "p.c:not(.b:not(.a))"},
        {"p:not(.a", "p:not(.a)"},
        {"p:not()", "p:unknown"},
        {"p:not(.a, .b)", "p:not(.a), .b"},
        {"a /**/ b", "a . b"}, // two runs of blanks have nothing between them
        {"a/**/b", "a b"},
        {"a > = b", "a > . b"},
        {". > b", ". > b"},
        {"a >", "a > ."},
        {"/a /b/", "a b"},
        {"a)]b", "a b"},
        {"50%", "50%"},
        {"50%.a", "\\35 0\\25 .a"},
        {"a 5px", "a 5px"},
        {"a 'B c'", "a b\\20 c"},
        {".\\31 a", ".\\31 a"},
        {"#1a\\:b", "#\\31 a\\3a b"},
        {".-\\32 .--a.\\-", ".-\\32 .--a.-"},
        {".\\20 .\xC3\xA4.a", ".\\20  .a"}, // U+00E4 is a mark
        {"@page:hover", "@page:hover"},
        {"@FONT-FACE", "@font-face"},
        {"#", "."},
        {"#a#", "."},
    };
    for (const auto& row : rows) {
        const auto section = Selectors(row.Css);
        EXPECT_EQ(Printed(section.get()), row.Printed) << row.Css;
        const auto again = Selectors(Printed(section.get()));
        ASSERT_EQ(again->Selectors->Count(), section->Selectors->Count()) << row.Css;
        for (std::int32_t i = 0; i < section->Selectors->Count(); ++i) {
            EXPECT_TRUE(
                plain::SameSelector(*section->Selectors->GetSelector(i), *again->Selectors->GetSelector(i)))
                << row.Css;
        }
    }
}

TEST(selector, tokens_that_belong_to_none_end_the_rule)
{
    const struct {
        std::string_view Css;
        std::string_view Printed;
    } rows[] = {
        {"a;b{} c", "c"},
        {"a, b;c{} d", "a, d"},
        {"a url(b) {} c", "c"},
        {"a}b", "b"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Printed(Selectors(row.Css).get()), row.Printed) << row.Css;
}

TEST(selector, stands_in_its_text)
{
    TCSSParser parser(u" a , /**/ b  c /**/ {} "_s);
    ASSERT_TRUE(parser.NextSection());
    const TCSSSection& section = *parser.CurrentSection;
    ASSERT_EQ(section.Selectors->Count(), 2);
    EXPECT_EQ(section.BlockStartPos, 2);
    const TCSSSelector& a = *section.Selectors->GetSelector(0);
    const TCSSSelector& b = *section.Selectors->GetSelector(1);
    EXPECT_EQ(std::tie(a.StartPos, a.EndPos), std::make_tuple(2, 2));
    EXPECT_EQ(std::tie(b.StartPos, b.EndPos), std::make_tuple(11, 14));
    EXPECT_EQ(section.Selectors->EndPos, 14);
    EXPECT_EQ(b.Section, &section);
    EXPECT_EQ(b.TagHash, RSHash(u"c"));
}

TEST(selector, weights)
{
    const struct {
        std::string_view Css;
        std::int32_t Weight;
    } rows[] = {
        {"*", 0},
        {"* > a", 2}, // no element has the tag "*" on the left
        {"p.a", 17},
        {".a", 16},
        {"#x", 256},
        {"p:hover", 17},
        {"p::before", 17},
        {"p:hover:hover", 17},
        {"[a=b][c=d]", 16},
        {"p:not(#a)", 1},
        {"a #b .c.c d", 256 + 32 + 2},
        {".a.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a", 272},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Selectors(row.Css)->Selectors->GetSelector(0)->CalcWeight(), row.Weight) << row.Css;
}

TEST(selector, weight_stays_below_the_important_byte)
{
    const std::int32_t ids = 0x10000;
    std::unique_ptr<TCSSSelector> selector;
    for (std::int32_t i = 0; i < ids; ++i) {
        selector = std::make_unique<TCSSSelector>(std::move(selector));
        selector->ID = u"a"_s;
    }
    EXPECT_EQ(selector->CalcWeight(), 0xFFFFFF);
    selector = std::move(selector->Previous);
    EXPECT_EQ(selector->CalcWeight(), 0xFFFF00);
}

std::string Repeated(std::string_view text, int times)
{
    std::string result;
    for (int i = 0; i < times; ++i)
        result += text;
    return result;
}

TEST(selector, beyond_the_limit_it_is_dropped)
{
    EXPECT_EQ(Printed(Selectors(Repeated("a ", 1024)).get()), Repeated("a ", 1023) + "a");
    EXPECT_EQ(Printed(Selectors("x," + Repeated("a ", 1025) + ", y").get()), "x, y");
    for (const char* part : {"a ", ":not(", ":not(.a)", "a:not(:not(b)) "})
        EXPECT_EQ(Printed(Selectors("x, " + Repeated(part, 200'000) + "{} y").get()), "x") << part;
}

TEST(selector, without_a_limit_nothing_nests_on_the_stack)
{
    for (const char* part : {"a ", ":not(", "a:not(:not(b)) "}) {
        TCSSParser parser(String::FromUtf8(Repeated(part, 200'000) + "{}"));
        parser.Limits.SelectorCompounds = 0;
        ASSERT_TRUE(parser.NextSection());
        const TCSSSelector& selector = *parser.CurrentSection->Selectors->GetSelector(0);
        EXPECT_GT(selector.AsString().Length(), 200'000);
        EXPECT_GE(selector.CalcWeight(), 0);
    }
}

/// Ids of the nodes that a selector matches.
std::string Matched(const THtNode& root, std::string_view css, TCSSPseudo pseudo = {})
{
    const TCSSStyleSheet sheet;
    const auto section = Selectors(css);
    std::string text;
    for (const TStyledHTMLNode* node : test::Nodes(root)) {
        for (std::int32_t i = 0; i < section->Selectors->Count(); ++i) {
            if (sheet.TestElement(*node, *section->Selectors->GetSelector(i), pseudo)) {
                text += (text.empty() ? "" : " ") + node->GetId().ToUtf8();
                break;
            }
        }
    }
    return text;
}

class selector_match : public testing::Test {
protected:
    selector_match()
    {
        Root.Parse(u"<div id=a class='One two'><p id=b class=one>x<b id=c data-x='ab cd-e'></b>y"
                   u"<i id=d class='two one three' n=5></i><b id=e lang=de-AT></b></p><!--z-->"
                   u"<p id=f>t<b id=g></b></p></div><div id=h class=two><p id=i></p></div>"_s);
        for (const TStyledHTMLNode* node : test::Nodes(Root)) {
            if (node->GetId() == u"b" || node->GetId() == u"g")
                const_cast<TStyledHTMLNode*>(node)->Style().CurrentPC = {pcHover, pcFirstChild};
        }
    }

    TStyledHTMLNode Root;
};

TEST_F(selector_match, elements_match)
{
    const struct {
        std::string_view Css;
        std::string_view Matched;
    } rows[] = {
        {"p", "b f i"},
        {"P", "b f i"},
        {"#C", ""},
        {"#c", "c"},
        {".ONE", "a b d"},
        {".one.two", "a d"},
        {".one.one", "a d"}, // two classes do not fit into one
        {"p.one", "b"},
        {"p.two", ""},
        {"i.three.one.two", "d"},
        {"* > p", ""},
        {"div p", "b f i"},
        {"div > b", ""},
        {"p > b", "c e g"},
        {"div b", "c e g"},
        {"#a > p > .one", "d"},
        {"p + p", ""}, // a comment has a tag
        {"p ~ p", "f"},
        {"div + div", "h"},
        {"b + i, i + b", "d e"},
        {"b ~ b", "e"},
        {"div:not(.one) p", "i"},
        {"p:not(.one)", "f i"},
        {"p:not(p)", ""},
        {"b:not([lang])", "c g"},
        {"#h . p", ""},
        {". p#i", "i"},
        {"b:unknown", ""},
        // Pseudo-classes.
        {"p:hover", "b"},
        {":hover", "b g"},
        {"b:hover:first-child", "g"},
        {"p:first-child", "b"},
        {".one:first-child", "a b d"}, // with classes alone the place is taken on trust
        {"p.one:first-child", "b"},
        {".one:focus", ""},
        {".one:hover", "b"},
        {"b:nth-child(1)", "c g"},
        {"b:nth-child(odd)", "c e g"},
        {"i:nth-child(even)", "d"},
        {"b:nth-of-type(2)", "e"},
        {"b:nth-child(3):hover", ""},
        {"b:nth-child(1):hover", "g"},
        {"b:nth-child(odd):hover", "c e g"},
        {"b:nth-child(1):nth-of-type(1)", ""},
        {"b:nth-child(2n+1)", ""},
        {"b:nth-child(-1)", "c e g"}, // the same number as "odd"
        {".one:nth-child(2)", "d"},
        {".one:nth-of-type(7)", "a b d"},
        {"[lang]:nth-child(3)", "e"},
        {"[n]:nth-of-type(1)", ""},
        {"[id]:hover", "b g"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Matched(Root, row.Css), row.Matched) << row.Css;
}

TEST_F(selector_match, attributes_are_compared)
{
    const struct {
        std::string_view Css;
        std::string_view Matched;
    } rows[] = {
        {"[data-x]", "c"},
        {"[DATA-X]", "c"},
        {"b[data-x='']", "c"},
        {"[ data-x]", ""}, // the blank belongs to the name
        {"[n=5]", "d"},
        {"[n='5 ']", "d"},
        {"[n=6]", ""},
        {"[data-x^=ab]", "c"},
        {"[data-x^=b]", ""},
        {"[data-x$=e]", "c"},
        {"[data-x*='b c']", "c"},
        {"[data-x*=x]", ""},
        {"[data-x~=ab], [data-x~=cd-e]", "c"},
        {"[data-x~=cd]", ""},
        {"[class~=one]", "b d"},
        {"[lang|=de]", "e"},
        {"[lang|=de-AT]", "e"},
        {"[lang|=d]", ""},
        {"b[lang!=de-AT]", "c g"},
        {"b[lang!=en]", "c e g"},
        {"b[lang!=en][nothing=1]", "c g"}, // what lacks decides at once
        {"i[n][class=one]", ""},
        {"i[n][id=d]", "d"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Matched(Root, row.Css), row.Matched) << row.Css;
}

TEST_F(selector_match, a_pseudo_element_is_asked_for)
{
    EXPECT_EQ(Matched(Root, "p::before"), "b f i");
    EXPECT_EQ(Matched(Root, "p", {pcBefore}), "");
    EXPECT_EQ(Matched(Root, "p::before", {pcBefore}), "b f i");
    EXPECT_EQ(Matched(Root, "p:hover:before", {pcBefore}), "b");
    EXPECT_EQ(Matched(Root, ".one:hover:before", {pcBefore}), "b");
    EXPECT_EQ(Matched(Root, "p::before b", {pcBefore}), "");
}

TEST(selector_classes, very_many_are_compared)
{
    String names;
    std::string selector;
    for (int i = 0; i < 3000; ++i) {
        names += String::FromUtf8("c" + std::to_string(i) + " ");
        selector += ".c" + std::to_string(2999 - i);
    }
    TStyledHTMLNode node;
    node.SetAttribute(u"class"_s, names);
    const auto all = Selectors(selector);
    EXPECT_TRUE(all->Selectors->GetSelector(0)->TestClass(node, {}));
    EXPECT_EQ(all->Selectors->GetSelector(0)->CalcWeight(), 48'000);
    node.SetAttribute(u"class"_s, names + u"d"_s);
    const auto other = Selectors(selector + ".e");
    EXPECT_FALSE(other->Selectors->GetSelector(0)->TestClass(node, {}));
}

}
