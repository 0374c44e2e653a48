// Tests of shorthands and what becomes of them.
// SPDX-License-Identifier: MIT
#include "css_rules.h"

#include <gtest/gtest.h>

namespace {

using namespace ht;

struct Case {
    std::string_view css;
    std::string_view compiled;
};

template <std::size_t N> void ExpectCompiled(const Case (&cases)[N])
{
    for (const Case& c : cases)
        EXPECT_EQ(test::CompiledAsText(c.css), c.compiled) << c.css;
}

TEST(section_compile, four_sides)
{
    ExpectCompiled({
        {"margin:1px", "margin-top:1px; margin-right:1px; margin-bottom:1px; margin-left:1px"},
        {"margin:1px 2px", "margin-top:1px; margin-right:2px; margin-bottom:1px; margin-left:2px"},
        {"margin:1px 2px 3px", "margin-top:1px; margin-right:2px; margin-bottom:3px; margin-left:2px"},
        {"padding:1px 2px 3px 4px 5px",
            "padding-top:1px; padding-right:2px; padding-bottom:3px; padding-left:4px"},
        {"margin:calc(1px + (2px)) 4px!important",
            "margin-top:calc( 1px +( 2px))!important; margin-right:4px!important; "
            "margin-bottom:calc( 1px +( 2px))!important; margin-left:4px!important"},
        {"margin:f(1px", "margin-top:f( 1px; margin-right:f( 1px; margin-bottom:f( 1px; margin-left:f( 1px"},
        {"margin:inherit",
            "margin-top:inherit; margin-right:inherit; margin-bottom:inherit; margin-left:inherit"},
        {"border-radius:1px 2px 3px 4px",
            "border-top-left-radius:1px; border-top-right-radius:2px; border-bottom-right-radius:3px; "
            "border-bottom-left-radius:4px"},
        {"border-radius:1px / 2px", "border-radius:1px / 2px"},
        {"border-radius:1px * 2px", "border-radius:1px * 2px"},
        {"border-style:solid none",
            "border-top-style:solid; border-right-style:none; border-bottom-style:solid; "
            "border-left-style:none"},
        {"border-style:solid odd", "border-top-style:solid; border-bottom-style:solid"},
        {"border-color:red",
            "border-top-color:red; border-right-color:red; border-bottom-color:red; border-left-color:red"},
    });
}

TEST(section_compile, two_axes)
{
    ExpectCompiled({
        {"overflow:hidden", "overflow-x:hidden; overflow-y:hidden"},
        {"overflow:hidden auto", "overflow-x:hidden; overflow-y:auto"},
        {"overflow:odd", ""},
        {"background-position:left 2px", "background-position-x:left; background-position-y:2px"},
    });
}

TEST(section_compile, longhands_in_order)
{
    ExpectCompiled({
        {"list-style:square", "list-style-type:square"},
        {"list-style:inside square", ""},
        {"flex:1 2 3px", "flex-grow:1; flex-shrink:2; flex-basis:3px"},
        {"flex:1 30%", "flex-grow:1; flex-basis:30%"},
        {"flex:auto 1", ""},
        {"outline:solid red 1px", "outline-style:solid; outline-color:red; outline-width:1px"},
        {"outline:#f00 1px", "outline-color: #f00; outline-width:1px"},
        {"outline:buttonface", "outline-color:buttonface"},
        {"outline:1px solid red", "outline-width:1px"},
    });
}

TEST(section_compile, others_stay_as_they_are)
{
    ExpectCompiled({
        {"transform:scale(2);opacity:0;content:'x';color:red",
            "transform:scale( 2); opacity:0; content:\"x\"; color:red"},
        {"border-top:1px solid red", "border-top:1px solid red"},
        {"-webkit-x:y;--z:1;fill:red;nosuch:1;width:1px", "width:1px"},
        {"font-weight:550", "font-weight:550"},
    });
}

TEST(section_compile, font)
{
    ExpectCompiled({
        {"font:12px/1.5 Arial",
            "font-size:12px; line-height:1.5; font-family:Arial; font-style:normal; font-weight:normal"},
        {"font:bold italic 12px x", "font-weight:bold; font-style:italic; font-size:12px; font-family:x"},
        {"font:italic bold 12px x",
            "font-style:italic; font-family:bold; font-size:12px; font-family:x; font-weight:normal"},
        {"font:700 1em 'a b',serif",
            "font-size:700; font-size:1em; font-family:\"a b\"; font-family:serif; font-style:normal; "
            "font-weight:normal"},
        {"font:1em/", "font-size:1em; font-style:normal; font-weight:normal"},
        {"font:inherit", "font-family:inherit; font-style:normal; font-weight:normal"},
    });
}

TEST(section_compile, border)
{
    constexpr std::string_view kSolid = "border-top-style:solid; border-right-style:solid; "
                                        "border-bottom-style:solid; border-left-style:solid";
    ExpectCompiled({
        {"border:1px solid red", "border-width:1px; " + std::string(kSolid) + "; border-color:red"},
        {"border:THIN #f00", "border-width:THIN; border-color: #f00"},
        {"border:solid hsl(0,0%,0%) odd", kSolid},
        {"border:rgb(1,2,3) 2", "border-color:rgb; border-width:2"},
        {"border:rgb(300,0,0)", ""},
        {"border:0", "border-width:0"},
    });
    const auto section = test::Declarations("border:rgba(1,2,3,0.5) solid");
    EXPECT_EQ(section->CompiledValues[0].Tokens[0].Color, 0x80010203U);
    EXPECT_EQ(section->CompiledValues[1].Tokens[0].Color, 4U);
}

TEST(section_compile, text_decoration)
{
    ExpectCompiled({
        {"text-decoration:underline line-through #f00 wavy",
            "text-decoration-line:underline; text-decoration-line:line-through; "
            "text-decoration-color: #f00; text-decoration-style:wavy"},
        {"text-decoration:#f00 red", "text-decoration-color: #f00"},
        {"text-decoration:inherit", "text-decoration-line:inherit"},
    });
    const auto section = test::Declarations("text-decoration:line-through");
    EXPECT_EQ(section->Values[0].Tokens[0].Color, 8U);
    EXPECT_EQ(section->CompiledValues[0].Tokens[0].Color, 3U);
}

TEST(section_compile, background)
{
    ExpectCompiled({
        {"background:#fff url(a.png) no-repeat left top",
            "background-color: #fff; background-image:url('a.png'); background-repeat:no-repeat; "
            "background-position-x:left; background-position-y:top"},
        {"background:red", "background-color:red; background-image:none"},
        {"background:none", "background-color:none; background-image:none"},
        {"background:inherit", "background-color:inherit; background-image:none"},
        {"background:odd", "background-image:none"},
        {"background:linear-gradient(red, blue) no-repeat",
            "background-image:linear-gradient( red, blue) no-repeat"},
        {"background:fixed radial-gradient(red, blue)",
            "background-attachment:fixed; background-image:radial-gradient( red, blue)"},
        {"background:rgba(1,2,3,0)", "background-color:rgba( 1, 2, 3, 0); background-image:none"},
        {"background:var(--x)", "background-color:var( --x); background-image:none"},
        {"background:image(x) red", "background-image:none"},
        {"background:center center border-box",
            "background-position-x:center; background-position-y:center; background-origin:border-box; "
            "background-image:none"},
        {"background:1px 50% 2px middle",
            "background-position-x:1px; background-position-y:2px; background-position-y:middle; "
            "background-image:none"},
    });
}

TEST(section_compile, once_more_gives_the_same)
{
    const auto section =
        test::Declarations("margin:calc(1px) 2px;overflow:hidden;border:1px solid rgb(1,2,3)");
    const std::string compiled = test::ValuesAsText(section->CompiledValues);
    PCSSTokens kept = section->Values[0].Measure.Value1.Calc;
    section->Compile();
    EXPECT_EQ(test::ValuesAsText(section->CompiledValues), compiled);
    EXPECT_EQ(section->Values[0].Measure.Value1.Calc, kept);
    EXPECT_EQ(section->FCalcValues->Count(), 1);
    EXPECT_EQ(section->CompiledValues[0].Measure.Value1.FPixels(), 1);
}

}
