// Tests of lengths.
// SPDX-License-Identifier: MIT
#include "css_text.h"

#include <hearth/styling/nodes/styled_node.h>
#include <hearth/styling/style/measure.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace ht;
using namespace ht::literals;

/// A measure with the tokens that its calc() refers to.
struct Length {
    explicit Length(std::string_view css, TBaseElementStyle* style = nullptr)
        : Tokens(test::ValueTokens(css))
    {
        Measure.Init(style);
        DecodeInto(Measure);
    }
    void DecodeInto(TMeasure& measure) const
    {
        TCSSTokenSequence sequence;
        sequence.Init(&Tokens);
        measure.Decode(sequence);
    }

    TCSSTokens Tokens;
    TMeasure Measure;
};

float PixelsOf(std::string_view css, const float* parent = nullptr)
{
    Length length(css);
    length.Measure.Parent = parent;
    return length.Measure.FPixels();
}

std::string FlagsOf(const TMeasure& measure)
{
    std::string text;
    for (TMeasureFlag flag : measure.Flags)
        text += String(EnumName(flag).substr(2)).ToUtf8() + ' ';
    return text;
}

TEST(measure, units_become_pixels)
{
    EXPECT_EQ(PixelsOf("1in"), 96);
    EXPECT_NEAR(PixelsOf("1cm"), 37.795, 0.001);
    EXPECT_NEAR(PixelsOf("1mm"), 3.7795, 0.0001);
    EXPECT_NEAR(PixelsOf("1pt"), 1.3333, 0.0001);
    EXPECT_EQ(PixelsOf("1pc"), 16);
    EXPECT_EQ(PixelsOf("2ex"), 22);
    EXPECT_EQ(PixelsOf("1rem"), 13);
    EXPECT_EQ(PixelsOf("12"), 12);
    const float parent = 200;
    EXPECT_EQ(PixelsOf("10%"), 0);
    EXPECT_EQ(PixelsOf("10%", &parent), 20);
    EXPECT_EQ(PixelsOf("auto", &parent), 0);
    EXPECT_EQ(PixelsOf("90deg", &parent), 18000); // as a bare factor
}

TEST(measure, words)
{
    struct Case {
        std::string_view css;
        std::string_view text;
        std::string_view flags;
    };
    const Case cases[] = {
        {"auto", "auto", ""},
        {"AUTO", "auto", ""},
        {"inherit", "0", "NotAuto Inherit "},
        {"initial", "auto", "Initial "},
        {"normal", "0", "NotAuto Initial "},
        {"none", "auto", ""},
        {"NONE", "0", "NotAuto "},
        {"left", "0%", "NotAuto Left "},
        {"bottom", "100%", "NotAuto Bottom "},
        {"medium", "2px", "NotAuto "},
        {"larger", "120%", "NotAuto "},
        {"\"10px\"", "0", "NotAuto "},
        {"min(1px)", "auto", ""},
    };
    for (const Case& c : cases) {
        const Length length(c.css);
        EXPECT_EQ(length.Measure.AsString().ToUtf8(), c.text) << c.css;
        EXPECT_EQ(FlagsOf(length.Measure), c.flags) << c.css;
    }
    EXPECT_EQ(Length("1.5em").Measure.AsString(), u"1.5em");
}

TEST(measure, zero_is_marked_only_where_it_replaces_another_value)
{
    Length length("5px");
    Length("0").DecodeInto(length.Measure);
    EXPECT_EQ(FlagsOf(length.Measure), "NotAuto Zero ");
    EXPECT_EQ(length.Measure.AsString(), u"0");
    EXPECT_EQ(FlagsOf(Length("0px").Measure), "NotAuto ");

    TMeasure fresh;
    fresh.SetValue(0);
    EXPECT_TRUE(fresh.Auto());
    fresh.SetPixels(0);
    EXPECT_FALSE(fresh.Auto());
}

TEST(measure, parses_text)
{
    struct Case {
        std::u16string_view text;
        std::u16string_view result; // of a measure that was 5pt
    };
    const Case cases[] = {
        {u"12.5pt", u"12.5pt"},
        {u"1e3", u"1000"},
        {u"2e-1x", u"0.2"},
        {u"1E3", u"1"},
        {u"-3%", u"-3%"},
        {u"2rx", u"2rem"},
        {u"2ms", u"2"},
        {u"2deg", u"2"},
        {u"2PX", u"2"},
        {u"foo", u"5pt"},
        {u"", u"5pt"},
        {u"inherit", u"5pt"},
        {u"0", u"0"},
    };
    for (const Case& c : cases) {
        Length length("5pt");
        length.Measure.Parse(c.text);
        EXPECT_EQ(length.Measure.AsString(), c.result) << String(c.text).ToUtf8();
    }
    TMeasure fresh;
    fresh.Parse(u"auto");
    EXPECT_TRUE(fresh.Auto());
    fresh.Parse(u"foo");
    EXPECT_TRUE(fresh.Auto());
    fresh.Parse(u"1e400px");
    EXPECT_EQ(fresh.FValue, std::numeric_limits<float>::max());
}

TEST(measure, calc)
{
    const float parent = 200;
    struct Case {
        std::string_view css;
        float pixels;
    };
    const Case cases[] = {
        {"calc(100% - 10px)", 190},
        {"calc(-5px + 10px)", 5},
        {"calc((1 + 2) * 3)", 9},
        {"calc(1 + 2 * 3)", 7},
        {"calc(10 - 2 - 3)", 5},
        {"calc(10px / 0)", 10},
        {"calc(1px + calc(2px))", 3},
        {"calc(2 * calc(1 + 2))", 6},
        {"calc(- (1 + 2))", -3},
        {"calc(5px + 0px)", 5},
        {"calc(1in / 2)", 48},
        {"calc()", 0},
        {"calc(", 0},
        {"calc(((((", 0},
        {"calc(*)", 0},
        {"calc(- )", 0},
        {"calc(1px) 7px", 1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(PixelsOf(c.css, &parent), c.pixels) << c.css;
        EXPECT_EQ(PixelsOf(c.css, &parent), c.pixels) << c.css;
    }
    // The tokens are looked at on each read.
    Length length("calc(50%)");
    float width = 100;
    length.Measure.Parent = &width;
    EXPECT_EQ(length.Measure.Pixels(), 50);
    width = 10;
    EXPECT_EQ(length.Measure.Pixels(), 5);
    EXPECT_TRUE(length.Measure.Relative());
    length.Measure.SetAuto(true);
    EXPECT_EQ(length.Measure.Pixels(), 0);

    std::string terms = "calc(1";
    for (int i = 0; i < 100'000; ++i)
        terms += "+1";
    EXPECT_EQ(PixelsOf(terms + ")"), 100'001);
}

TEST(measure, a_calc_inside_of_a_value_ends_with_it)
{
    const TCSSTokens tokens = test::ValueTokens("3px calc(1px + 2px) 9px");
    TCSSTokenSequence sequence;
    sequence.Init(&tokens);
    sequence.Next();
    TMeasure measure;
    measure.Decode(sequence);
    EXPECT_EQ(measure.FPixels(), 3);
}

TEST(measure, style_and_zoom)
{
    TStyledHTMLNode root;
    auto* child = static_cast<TStyledHTMLNode*>(root.AddChild(THtNodeClass::Of<TStyledHTMLNode>()));
    root.Style().IntFontSize = 20;
    TBaseElementStyle& style = child->Style();
    style.IntFontSize = 10;
    style.Zoom = 2;
    const float parent = 50;

    struct Case {
        std::string_view css;
        float unzoomed;
        std::int32_t pixels;
    };
    const Case cases[] = {
        {"1.25em", 12.5, 25},
        {"1rem", 20, 40},
        {"10px", 10, 20},
        {"50%", 25, 25},
        {"50vw", 512, 1024},
        {"25vh", 192, 384},
        {"0.25em", 2.5, 5},
    };
    for (const Case& c : cases) {
        Length length(c.css, &style);
        length.Measure.Parent = &parent;
        EXPECT_EQ(length.Measure.FPixels(), c.unzoomed) << c.css;
        EXPECT_EQ(length.Measure.Pixels(), c.pixels) << c.css;
    }
    // A factor refers to the parent only where nothing is zoomed.
    Length factor("2deg", &style);
    factor.Measure.Parent = &parent;
    EXPECT_EQ(factor.Measure.Pixels(), 2);
    style.Zoom = 1;
    EXPECT_EQ(factor.Measure.Pixels(), 100);
    // Halves go to the even number for em alone.
    EXPECT_EQ(Length("0.25em", &style).Measure.Pixels(), 2);
    EXPECT_EQ(Length("2.5px", &style).Measure.Pixels(), 3);
}

TEST(measure, what_no_integer_holds_is_an_error_of_the_integer_alone)
{
    Length length("9e37px");
    EXPECT_GT(length.Measure.FPixels(), 8e37F);
    EXPECT_THROW(length.Measure.Pixels(), ERangeError);
    const float nothing = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(PixelsOf("10%", &nothing), 0);
    EXPECT_EQ(PixelsOf("9e37in"), std::numeric_limits<float>::max());
}

}
