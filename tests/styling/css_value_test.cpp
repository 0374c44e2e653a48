// Tests of what a value knows before it is applied, and of its text.
// SPDX-License-Identifier: MIT
#include "css_rules.h"

#include <hearth/foundation/checksums.h>
#include <hearth/foundation/limits.h>

#include <gtest/gtest.h>

#include <cstdio>

namespace {

using namespace ht;
using namespace ht::literals;

/// The type of the property and what was worked out, "dropped" without a value.
std::string Prepared(std::string_view css)
{
    const std::unique_ptr<TCSSSection> section = test::Declarations(css);
    if (section->Values.IsEmpty())
        return "dropped";
    TCSSValue& value = section->Values[0];
    std::string text = String(EnumName(value.PropRec->PropType).substr(3)).ToUtf8();
    char number[32];
    const std::uint32_t color = value.Tokens[0].Color;
    std::snprintf(number, sizeof number, color > kUnknownKeywordMark ? " %08x" : " %u", color);
    text += number;
    if (value.PropRec->PropType == cptLength)
        text += ' ' + value.Measure.Value1.AsString().ToUtf8();
    if (value.ApplyProc != vpNone)
        text += ' ' + std::to_string(value.ApplyProc);
    return text + (value.Inherit ? " inherit" : "") + (value.Vendor ? " vendor" : "");
}

TEST(css_value, is_prepared_by_its_property)
{
    struct Case {
        std::string_view css;
        std::string_view prepared;
    };
    const Case cases[] = {
        {"color:red", "Color ffff0000"},
        {"COLOR:#0f0", "Color ff00ff00"},
        {"color:rgb(1,2,3)", "Color ff010203"},
        {"color:transparent", "Color 00ffffff"},
        {"color:var(--x)", "Color 0"},
        {"color:inherit", "Color 888 inherit"},
        {"color:Inherit", "dropped"},
        {"color:nocolor", "dropped"},
        {"color:hsl(0,0%,0%)", "dropped"},
        {"background-color:red", "Color ffff0000 1"},
        {"display:inline-block", "Enum 2 3"},
        {"display:INHERIT", "dropped"},
        {"float:up", "dropped"},
        {"contenteditable:whatever", "Enum 0"},
        {"font-weight:bold", "Enum 1 4"},
        {"font-weight:550", "Enum 999 4"},
        {"white-space:pre", "Enum 2 5"},
        {"position:running(head)", "Enum 4 1"},
        {"text-decoration-line:underline", "Enum 1 1"},
        {"text-decoration:underline", "Complex 4 1"},
        {"text-decoration:line-through", "Complex 8 1"},
        {"text-decoration:'line-through underline '", "Complex 12 1"},
        {"text-decoration:'underline line-through'", "Complex 12 1"},
        {"text-decoration:blink", "Complex 0 1"},
        {"background:#fff", "Complex ffffffff 2"},
        {"box-shadow:#fff 1px", "Complex ffffffff"},
        {"width:12px", "Length 0 12px"},
        {"width:auto", "Length 0 auto"},
        {"width:calc(1px + 2px)", "Length 0 0px"}, // until somebody asks for pixels
        {"margin:inherit", "Length 888 auto inherit"},
        {"line-height:1.5", "Length 0 1.5"},
        {"line-height:150%", "Length 0 150%"},
        {"line-height:2em", "Length 0 2em"},
        {"font-size:medium", "Length 0 18px"},
        {"border-top-width:medium", "Length 0 2px"},
        {"opacity:.5", "Number 0"},
        {"zoom:2", "Number 0 1"},
        {"_zoom:1", "Number 0"},
        {"--x:y", "Number 0 vendor"},
        {"-webkit-transition:x", "Number 0 vendor"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Prepared(c.css), c.prepared) << c.css;
}

TEST(css_value, a_slash_in_front_brings_a_second_length)
{
    const auto first = test::Declarations("border-spacing:/ 3px");
    EXPECT_EQ(first->Values[0].Measure.Value2.AsString(), u"3px");
    const auto second = test::Declarations("border-spacing:1px / calc(3px)");
    EXPECT_TRUE(second->Values[0].Measure.Value2.Flags.Contains(mfInitial));
}

TEST(css_value, a_calc_outlives_the_growth_of_its_rule)
{
    std::string css = "width:calc(100% - 10px);border-spacing:/ calc(1px + 2px);";
    for (int i = 0; i < 100; ++i)
        css += "x" + std::to_string(i) + ":y;";
    const auto section = test::Declarations(css);
    const float parent = 200;
    for (TCSSValue* value : {&section->Values[0], &section->CompiledValues[0]}) {
        TMeasure measure = value->Measure.Value1;
        measure.Parent = &parent;
        EXPECT_EQ(measure.FPixels(), 190);
    }
    EXPECT_EQ(section->Values[1].Measure.Value2.FPixels(), 3);
    TCSSSection other;
    other.AddValue(section->Values[1]);
    section->Values.Clear();
    section->FCalcValues.reset();
    EXPECT_EQ(other.Values[0].Measure.Value2.FPixels(), 3);
}

TEST(css_value, too_long_a_calc_is_dropped)
{
    std::string terms;
    for (int i = 0; i < HtLimits().CalcTokens / 2; ++i)
        terms += "+1";
    EXPECT_EQ(Prepared("width:calc(0" + terms + ")"), "dropped");
    EXPECT_EQ(Prepared("width:f(" + terms + ")"), "Length 0 auto");
}

TEST(css_value, prints_plainly)
{
    struct Case {
        std::string_view css;
        std::string_view text;
    };
    const Case cases[] = {
        {"Color:RED", "Color:RED;"},
        {"color:#fff !important", "color: #fff!important;"},
        {"margin:1px 2px/**/3px", "margin:1px 2px 3px;"},
        {"width:calc(1px+2px)", "width:calc( 1px + 2px);"},
        {"x:url(a.png) 'b c'", "x:url('a.png') b c;"},
        {"x:a url(b)", "x:aurl('b');"},
        {"x:'a  '", "x:'a  ';"},
        {"x:a,b:c(d)[e]/f", "x:a, b: c( d)[ e] / f;"},
        {"width:10px ! important", "width:'10px  important';"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CSSValuetoString(test::Declarations(c.css)->Values[0]).ToUtf8(), c.text) << c.css;
}

std::string TokensOf(const TCSSValue& value)
{
    std::string text = value.NameToken.Name.ToUtf8() + (value.Important ? "!" : "");
    for (const TCSSToken& token : value.Tokens.Span())
        text += '|' + String(EnumName(token.CType)).ToUtf8() + ' ' + token.Name.ToUtf8();
    return text;
}

TEST(css_value, prints_what_reads_back)
{
    const std::string_view cases[] = {
        "content:'a' \"b'\" 'c\"d' '\\'\"' '\\\\' 'a\\d b' ''",
        "x:a url(b) url('c\"d') url(\"e'f\") url(g'\"h) url() a",
        "x:50 % 100  % 1fr 1r \\31 23 -\\35 5e 12emx 5.% 5;%",
        "x:a (b) #f(c) #url(a) (d)e(f) # g #(h)",
        "\\31 x\\:\\ y:\\e9\\0 \\20 z \\-5 -a --b -\\.5",
        "x:! important ! \n a ! / ! \x01",
        "x:/**/\x01/**/\x01 b! /**/\x01 %",
        "x:!;!}!{!@a!/*b*/!! important !@ !\"!\"",
        "x:!\\\r a \\\r\n(b !\\\r (c !\\\r! d",
        "x:5!%6!;%7)% 8 ! important",
        "\\31 f:a;",
        "1f:a",
    };
    for (std::string_view css : cases) {
        const auto section = test::Declarations(css);
        ASSERT_EQ(section->Values.Length(), 1) << css;
        const std::string printed = CSSValuetoString(section->Values[0], cpExact).ToUtf8();
        const auto again = test::Declarations(printed);
        ASSERT_EQ(again->Values.Length(), 1) << css << " as " << printed;
        EXPECT_EQ(TokensOf(again->Values[0]), TokensOf(section->Values[0])) << printed;
    }
}

TEST(css_value, hash_takes_words_in_any_order)
{
    const auto section = test::Declarations("a:x y;b:y x;c:x");
    EXPECT_EQ(section->Values[0].Hash(), section->Values[1].Hash());
    EXPECT_EQ(section->Values[2].Hash(), CalcStrCRC32(u"x"));
    EXPECT_EQ(TCSSValue().Hash(), 0U);
}

TEST(css_section, finds_changes_and_prints_its_values)
{
    auto section = test::Declarations("width:1px;Color:red;margin:1px 2px");
    EXPECT_EQ(section->ItembyName(u"color")->Tokens[0].Name, u"red");
    EXPECT_EQ(section->ItembyName(u"Color"), nullptr);
    EXPECT_EQ(section->ValuebyName(u"margin").Length(), 2);
    EXPECT_EQ(section->CompiledValuebyName(u"margin-left")[0].Name, u"2px");
    EXPECT_TRUE(section->CompiledValuebyName(u"margin").IsEmpty());
    EXPECT_EQ(section->AsInlineString(), u"width:1px;Color:red;margin:1px 2px;");
    section->DeleteValue(1);
    EXPECT_EQ(section->AsString(), u"\r\n{  width:1px;\r\n  margin:1px 2px;\r\n}");
}

TEST(css_section, minify_gathers_equal_sides)
{
    struct Case {
        std::string_view css;
        std::string_view text;
    };
    const Case cases[] = {
        {"border-top:1px solid;border-left:1px solid;color:red;border-right:1px solid;border-bottom:1px "
         "solid",
            "border:1px solid;color:red;"},
        {"border-top:1px;border-left:2px;border-right:1px;border-bottom:1px",
            "border-top:1px;border-left:2px;border-right:1px;border-bottom:1px;"},
        {"border:0;border-top:1px;border-left:1px;border-right:1px;border-bottom:1px",
            "border:0;border-top:1px;border-left:1px;border-right:1px;border-bottom:1px;"},
        {"padding-top:1px;padding-left:1px;padding-right:1px",
            "padding-top:1px;padding-left:1px;padding-right:1px;"},
        {"padding-left:1px;padding-bottom:1px;padding-right:1px;padding-top:1px", "padding:1px;"},
        {"padding-left:1px;padding-bottom:1px!important;padding-right:1px;padding-top:1px",
            "padding-left:1px;padding-bottom:1px!important;padding-right:1px;padding-top:1px;"},
    };
    for (const Case& c : cases) {
        const auto section = test::Declarations(c.css);
        section->Minify();
        EXPECT_EQ(section->AsInlineString().ToUtf8(), c.text);
    }
}

}
