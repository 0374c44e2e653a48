// Tests of rules, at-rules and declarations.
// SPDX-License-Identifier: MIT
#include "css_rules.h"

#include <hearth/styling/css/selector.h>

#include <markup/hostile.h>

#include <gtest/gtest.h>

namespace {

using namespace ht;
using namespace ht::literals;

struct Case {
    std::string_view css;
    std::string_view shown;
};

/// "a,b{width:1px}": the rules, with their media or animation in front.
std::string Rules(TCSSParser& parser)
{
    std::string text;
    while (parser.NextSection()) {
        const TCSSSection& section = *parser.CurrentSection;
        if (!text.empty())
            text += ' ';
        if (!parser.KeyFramesName.IsEmpty())
            text += parser.KeyFramesName.ToUtf8() + ": ";
        if (section.MediaSet != &TCSSMediaSet::All())
            text += std::to_string(parser.MediaSets.IndexOf(section.MediaSet)) + ": ";
        for (std::int32_t i = 0; i < section.Selectors->Count(); ++i)
            text += (i == 0 ? "" : ",") + section.Selectors->GetSelector(i)->Tag.ToUtf8();
        text += (section.FontFace ? "!{" : "{") + test::ValuesAsText(section.Values) + '}';
    }
    return text;
}

std::string Rules(std::string_view css)
{
    TCSSParser parser(String::FromUtf8(css));
    return Rules(parser);
}

template <std::size_t N> void ExpectRules(const Case (&cases)[N])
{
    for (const Case& c : cases)
        EXPECT_EQ(Rules(c.css), c.shown) << c.css;
}

TEST(css_parser, rules)
{
    ExpectRules({
        {"", ""},
        {" /* only this */ ", ""},
        {"a{b:c}", "a{b:c}"},
        {"a , b{}c{d:e", "a,b{} c{d:e}"},
        {"a", "a{}"},
        {"> ] a{b:c} d{e:f}", "d{e:f}"},
        {"a; b{c:d} e{f:g}", "e{f:g}"},
        {"a}b{c:d}", "b{c:d}"},
        {"'x'{a:b}c{d:e}", "c{d:e}"},
        {"<!-- a{b:c}", "a{b:c}"},
        {"{a:b}", "{a:b}"},
    });
}

TEST(css_parser, declarations)
{
    ExpectRules({
        {"a{color:red;color:nocolor}", "a{color:red}"},
        {"a{color:red;color:blue}", "a{color:blue}"},
        {"a{color:red;width:1px;color:blue}", "a{width:1px; color:blue}"},
        {"a{color:red;COLOR:blue}", "a{color:red; COLOR:blue}"},
        {"a{*zoom:1;_zoom:2;+zoom:3}", "a{_zoom:2; zoom:3}"},
        {"a{color red;width:1px}", "a{width:1px}"},
        {"a{b /**/ c:d;e/**/:f;g : h}", "a{c:d; g:h}"},
        {"a{b:;c:d;e}", "a{c:d}"},
        {"a{b:c{d:e;f:g}h:i}j{k:l}", "a{f:g} j{k:l}"},
        {"a{b:@c d;e:f}", "a{e:f}"},
        {"a{;;/ b:c;#d:e;'f':g;5:h;url(i):j;(k:l;m:n}", "a{b:c; m:n}"},
        {"a{b:c;-->d:e}", "a{b:c; d:e}"},
        {"a{b:c ! important d!important;e:f!IMPORTANT}", "a{b:c! important d!important; e:f!important}"},
        {"a{b:c!}d!;e:f}", "a{b:c!} d!; e: f}"},
        {"a{b:c!}d{e:f}g{h:i}", "a{} g{h:i}"},
        {"a{b:c!", "a{b:c}"},
        {"a{--b:c;--B:d}", "a{--b:c; --B:d}"},
    });
}

TEST(css_parser, at_rules)
{
    ExpectRules({
        {"@charset 'x';a{b:c}", "a{b:c}"},
        {"@font-face{b:c}a{b:c}", "@font-face!{b:c} a{b:c}"},
        {"@PAGE{b:c}", "@page{b:c}"},
        {"@keyframes x{from{b:c}50%{d:e}}f{g:h}", "x: from{b:c} x: 50%{d:e} f{g:h}"},
        {"@supports (a:b){c{d:e}f{g:h}}i{j:k}", "f{g:h} i{j:k}"},
        {"@media print{a{b:c}d{e:f}}g{h:i}", "0: a{b:c} 0: d{e:f} g{h:i}"},
        {"@media print{@media tv{a{b:c}}d{e:f}}", "1: a{b:c} d{e:f}"},
        {"@media print;x{}a{b:c}", "a{b:c}"},
    });
    TCSSParser parser(u"@charset \"utf-8\" x;@import 'a' screen and (min-width:1px);@import url(b);"
                      "@import ;@import c"_s);
    EXPECT_EQ(Rules(parser), "");
    EXPECT_EQ(parser.Charset, u"x");
    ASSERT_EQ(parser.Imports.Length(), 3);
    EXPECT_EQ(parser.Imports[0].Token.Name, u"a");
    EXPECT_EQ(parser.Imports[0].Media.Length(), 3); // screen, and, min-width
    EXPECT_EQ(parser.Imports[1].Token.Name, u"b");
    EXPECT_EQ(parser.Imports[2].Token.Name, u"c");
}

TEST(css_parser, positions)
{
    TCSSParser parser(u" a, b { c:d }x{}"_s);
    ASSERT_TRUE(parser.NextSection());
    const TCSSSection& section = *parser.CurrentSection;
    EXPECT_EQ(section.BlockStartPos, 2);
    EXPECT_EQ(section.BlockEndPos, 13);
    EXPECT_EQ(section.Values[0].NameToken.StartPos, 9);
    EXPECT_EQ(section.Values[0].Section, &section);
    EXPECT_EQ(section.Selectors->EndPos, section.Selectors->GetSelector(1)->EndPos);
}

/// The media, the limits that are set, and the query as it is printed.
std::string Media(std::string_view query)
{
    TCSSParser parser(String::FromUtf8("@media" + std::string(query) + "{a{b:c}}"));
    Rules(parser);
    const auto& media = static_cast<const TCSSMediaSet&>(*parser.MediaSets.Items(0));
    std::string text;
    for (TCSSMedia medium : media.Medias)
        text += (text.empty() ? "" : "+") + String(EnumName(medium).substr(2)).ToUtf8();
    const auto limit = [&text](const char* name, std::int64_t value) {
        if (value != 0)
            text += std::string(" ") + name + std::to_string(value);
    };
    limit("min", media.MinWidth);
    limit("max", media.MaxWidth);
    limit("devmin", media.MinDeviceWidth);
    limit("devmax", media.MaxDeviceWidth);
    return text;
}

TEST(css_parser, media_queries)
{
    const Case cases[] = {
        {" screen and (max-width:600px)", "Screen max600"},
        {" print,screen", "Print+Screen"},
        {" foo", "Unknown"},
        {" (max-width:40em)", "All max40"},
        {" only SCREEN and (MIN-WIDTH : 1.5px)and(max-width:2px)", "Screen min2 max2"},
        {" ( min-device-width: 1px ) and (max-device-width:2)", "All devmin1 devmax2"},
        {" (orientation:portrait) and (min-height:5px)", "All"},
        {" (min-aspect-ratio: 16/9)", "All"},
        {" not print", "Print"},
        {" (color),(min-width:1px)", "Unknown min1"},
        {" 'print'", "Print"},
        {" 'tv':foo", "TV"},
        {" (min-width:1e30px)", "All min9223372036854775807"},
        {" (max-width:-1e30px)", "All max-9223372036854775808"},
        {" (min-width:1px", "All min1"},
        {"", "All"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Media(c.css), c.shown) << c.css;
}

TEST(media_set, checks_media_and_widths)
{
    TCSSMediaSet media;
    EXPECT_FALSE(media.CheckMedia(cmScreen, 100, 0));
    media.Medias = {cmAll};
    EXPECT_TRUE(media.CheckMedia(cmScreen, 100, 0));
    media.Medias = {cmAll, cmPrint};
    EXPECT_FALSE(media.CheckMedia(cmScreen, 100, 0));
    media.Medias = {cmScreen};
    media.MinWidth = 200;
    EXPECT_TRUE(media.CheckMedia(cmScreen, 100, 0)); // nobody said that there are limits
    media.HasSizeQuery = true;
    EXPECT_FALSE(media.CheckMedia(cmScreen, 199, 0));
    EXPECT_TRUE(media.CheckMedia(cmScreen, 200, 0));
    media.MaxWidth = 300;
    EXPECT_TRUE(media.CheckMedia(cmScreen, 300, 0));
    EXPECT_FALSE(media.CheckMedia(cmScreen, 301, 0));
    media.MaxDeviceWidth = 250;
    EXPECT_FALSE(media.CheckMedia(cmScreen, 300, 0));
    EXPECT_TRUE(media.CheckMedia(cmScreen, 300, 250));
}

TEST(media_set, prints_its_query)
{
    TCSSParser parser(u"@media  only screen/*x*/and (max-width : 600px), 'a\"' {a{b:c}"_s);
    Rules(parser);
    const auto& media = static_cast<const TCSSMediaSet&>(*parser.MediaSets.Items(0));
    EXPECT_EQ(media.AsString(), u"@media only screen/*x*/and (max-width : 600px), 'a\"'");
    EXPECT_EQ(media.Medias, (TCSSMedias{cmScreen})); // the end of the text closes the block
}

TEST(css_parser, texts_that_end_too_early)
{
    const std::string_view whole =
        "@charset 'a';@import 'b' c;@media print and (min-width:1px){a{b:c}}@keyframes x{to{d:calc(1px) "
        "!important;e:f}}@font-face{src:url('g')}h[i='j']:k>l{m:n!";
    for (std::size_t length = 0; length <= whole.size(); ++length)
        Rules(whole.substr(0, length));
}

TEST(css_parser, long_rules_take_linear_time)
{
    const auto rule = [](std::size_t count, std::size_t names) {
        std::string css = "a{";
        for (std::size_t i = 0; i < count; ++i)
            css += "x" + std::to_string(i % names) + ":y;";
        return String::FromUtf8(css + "}");
    };
    const std::size_t count = 200'000 / hostile::kScale;
    for (std::size_t names : {count, count / 2}) {
        TCSSParser parser(rule(count, names));
        ASSERT_TRUE(parser.NextSection());
        const TCSSValues& values = parser.CurrentSection->Values;
        ASSERT_EQ(values.size(), names);
        EXPECT_EQ(values[0].Name, u"x0");
        EXPECT_EQ(values.Last().Name, u"x" + String::FromUtf8(std::to_string(names - 1)));
    }
}

}
