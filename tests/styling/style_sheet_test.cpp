// Tests of style sheets: what they take in, keep, drop and print.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/builtin_sheets.h>
#include <hearth/styling/css/css_extension.h>
#include <hearth/styling/css/custom_font.h>
#include <hearth/styling/css/style_sheet.h>

#include <gtest/gtest.h>

namespace {

using namespace ht;
using namespace ht::literals;

String TextOf(std::u16string_view css)
{
    TCSSStyleSheet sheet;
    sheet.Parse(String(css));
    return sheet.AsString();
}

String VariableOf(const TCSSStyleSheet& sheet, std::u16string_view name)
{
    const TObject* found = sheet.Variables ? sheet.Variables->Get(name) : nullptr;
    return found ? static_cast<const TCSSVariable*>(found)->Tokens[0].Name : String();
}

TEST(style_sheet, nothing_comes_of_blanks)
{
    TCSSStyleSheet sheet;
    sheet.Parse(String());
    sheet.Parse(u" \r\n "_s);
    EXPECT_EQ(sheet.SelectorCounter, 10000U);
    EXPECT_EQ(sheet.Sections().Count(), 0);
    sheet.Parse(u"a{} {color:red}"_s);
    EXPECT_EQ(sheet.Sections().Count(), 0);
}

TEST(style_sheet, prints_rules_and_media_blocks)
{
    EXPECT_EQ(TextOf(u"p,a{color:red;margin:1px 2px!important}"),
        u"p, a\r\n{  color:red;\r\n  margin:1px 2px!important;\r\n}\r\n");
    EXPECT_EQ(TextOf(u"@media print{a{color:red}b{color:red}}i{color:red}@media tv{u{color:red}}"),
        u"@media print{\r\na\r\n{  color:red;\r\n}\r\nb\r\n{  color:red;\r\n}\r\n}\r\n"
        u"i\r\n{  color:red;\r\n}\r\n@media tv{\r\nu\r\n{  color:red;\r\n}\r\n}\r\n");
}

TEST(style_sheet, declarations_on_one_line)
{
    TCSSStyleSheet sheet;
    sheet.Parse(u"[x]{top:1px}.c{left:1px}:hover{right:1px}#i{bottom:1px}p{width:1px}p:hover{width:2px}"_s);
    EXPECT_EQ(sheet.AsInlineString(), u"width:1px;width:2px;bottom:1px;right:1px;left:1px;");
}

TEST(style_sheet, variables_belong_to_the_sheet)
{
    TCSSStyleSheet sheet;
    sheet.Parse(u":root{--a:1;--B:x y}p{--a:2}"_s);
    EXPECT_EQ(VariableOf(sheet, u"--a"), u"2");
    EXPECT_EQ(VariableOf(sheet, u"--b"), u"x");

    TCSSStyleSheet other;
    other.Assign(sheet);
    EXPECT_EQ(VariableOf(other, u"--a"), u"2");
}

TEST(style_sheet, imports_are_combined_with_the_address)
{
    TCSSStyleSheet sheet;
    sheet.Parse(u"@import 'a.css';"_s);
    sheet.URL = u"http://host/x/y.css"_s;
    sheet.Parse(u"@import url(b.css) print; @import '/c.css';"_s);
    EXPECT_EQ(sheet.Imports().CommaText(), u"a.css,http://host/x/b.css,http://host/c.css");
}

TEST(style_sheet, media)
{
    TCSSStyleSheet sheet;
    sheet.Parse(u"a{color:red}@media all{a{color:red}}"_s);
    EXPECT_FALSE(sheet.HasMediaQueries);
    sheet.Parse(u"@media screen and (max-width:600px){a{top:0}}@media print{a{top:1px}}"_s);
    EXPECT_TRUE(sheet.HasMediaQueries);
    EXPECT_TRUE(sheet.HasMediaSizeQueries);
    const auto isDisabled = [&sheet](std::int32_t section) {
        return static_cast<const TCSSSection&>(*sheet.Sections()[section]).MediaSet->Disabled;
    };
    EXPECT_TRUE(sheet.TestMediaSets(cmScreen, 500, 0));
    EXPECT_FALSE(isDisabled(0));
    EXPECT_FALSE(isDisabled(2));
    EXPECT_TRUE(isDisabled(3));
    EXPECT_FALSE(sheet.TestMediaSets(cmScreen, 600, 0));
    EXPECT_TRUE(sheet.TestMediaSets(cmScreen, 601, 0));
    EXPECT_TRUE(isDisabled(2));
}

TEST(style_sheet, drops_properties_and_rules)
{
    TCSSStyleSheet sheet;
    sheet.Parse(u"p{color:red;top:1px}a > b{color:red}p{left:1px}i{color:blue}"_s);
    sheet.ClearProp(u"COLOR");
    EXPECT_EQ(sheet.AsInlineString(), u"top:1px;left:1px;");
    EXPECT_TRUE(sheet.ValuebyName(u"color").IsEmpty());
    sheet.ClearSection(u"p"_s);
    EXPECT_EQ(sheet.AsString(), u"a > b\r\n{}\r\ni\r\n{}\r\n");
    EXPECT_FALSE(sheet.Main.TagMap.FindList(u"p"));

    sheet.Parse(u"@keyframes k{from{top:0}to{top:9px}}:root{--a:1}"_s);
    sheet.Clear();
    EXPECT_EQ(sheet.Sections().Count(), 0);
    EXPECT_FALSE(sheet.KeyFrames->GetKeyFrameList(u"k"));
    EXPECT_EQ(VariableOf(sheet, u"--a"), u"1");
}

TEST(style_sheet, inline_values_stand_as_given)
{
    TCSSStyleSheet sheet;
    sheet.AddInlineValue(u"color"_s, u"red"_s);
    EXPECT_EQ(sheet.Sections().Count(), 0);
    sheet.Parse(u"p{top:1px}"_s);
    sheet.AddInlineValue(u"color"_s, u"red green"_s);
    sheet.AddInlineValue(u"colour"_s, u"red"_s);
    EXPECT_EQ(sheet.AsInlineString(), u"top:1px;color:red;");
}

TEST(style_sheet, values_alone_are_for_every_element)
{
    TCSSStyleSheet sheet;
    sheet.ParseValues(u"color:red;top:1px"_s, 0xFF000000);
    sheet.ParseValues(u"color:blue"_s, 0xFF000000);
    sheet.ParseValues(u"nothing"_s, 0xFF000000);
    EXPECT_EQ(sheet.AsString(), u"*\r\n{  color:blue;\r\n  top:1px;\r\n}\r\n");
    EXPECT_EQ(static_cast<const TCSSSection&>(*sheet.Sections()[0]).CompiledValuebyName(u"color")[0].Color,
        0xFF0000FFU);
}

TEST(style_sheet, fonts)
{
    TCSSStyleSheet sheet;
    sheet.Parse(u"@font-face{font-family:x;src:url(a.ttf)}"
                u"@font-face{font-family:'My Face';src:local('My'), local('Mine'), url(a.eot),"
                u"url(b.woff) format('woff'), url(c.svg) format('svg');font-style:italic;font-weight:bold}"
                u"@font-face{font-family:\"My face\";src:url(d.ttf) format('truetype');font-weight:300}"_s);
    ASSERT_TRUE(sheet.CustomFonts);
    EXPECT_EQ(sheet.CustomFonts->Count(), 1);
    const auto* family = static_cast<const TCSSCustomFontFamily*>(sheet.CustomFonts->Get(u"my face"));
    ASSERT_TRUE(family);
    const TCSSCustomFont& font = family->GetFontByIndex(0);
    EXPECT_EQ(font.URL, u"b.woff");
    EXPECT_EQ(font.LocalNames, u"My;Mine");
    EXPECT_EQ(font.CSSWeight, fwBold);
    EXPECT_EQ(font.FontStyles, (THtFontStyles{hfsBold, hfsItalic}));
    EXPECT_EQ(family->GetFontByIndex(1).WeightValue, 300);
    try {
        family->GetFontByIndex(2);
        FAIL();
    } catch (const Exception& error) {
        EXPECT_EQ(error.Message, u"Font index out of range");
    }
}

TEST(custom_font, the_nearest_face_is_chosen)
{
    TCSSCustomFontFamily family(u"F"_s);
    EXPECT_EQ(family.GetFont({}), nullptr);
    const auto add = [&family](std::u16string_view style, std::u16string_view weight) {
        family.AddFont(TCSSCustomFont(u"f"_s, String(weight), String(style), String(weight), String()));
    };
    const auto chosen = [&family](THtFontStyles styles) { return family.GetFont(styles)->URL; };
    add(u"", u"bold");
    EXPECT_EQ(chosen({}), u"bold");
    add(u"italic", u"900");
    add(u"", u"200");
    EXPECT_EQ(chosen({hfsBold, hfsUnderline}), u"bold");
    EXPECT_EQ(chosen({hfsLight}), u"200");
    EXPECT_EQ(chosen({hfsBlack}), u"bold");
    EXPECT_EQ(chosen({hfsItalic, hfsBold}), u"900");
    EXPECT_EQ(chosen({hfsItalic, hfsSemibold}), u"900");
}

TEST(custom_font, names_tell_traits)
{
    struct Case {
        std::u16string_view name;
        bool found;
        std::u16string_view family;
        std::u16string_view style;
    };
    const Case cases[] = {
        {u"Arial", false, u"Arial", u""},
        {u"Arial Bold", true, u"Arial", u"bold"},
        {u"Arial ExtraBold", true, u"Arial", u"extrabold"},
        {u"Arial Bold Narrow", true, u"Arial Bold", u"narrow"},
        {u"Bold", false, u"Bold", u""},
        {u"", false, u"", u""},
    };
    for (const Case& c : cases) {
        String family;
        String style;
        EXPECT_EQ(ParseFontFamilyName(String(c.name), family, style), c.found);
        EXPECT_EQ(family, c.family);
        EXPECT_EQ(style, c.style);
    }
}

TEST(key_frames, are_filed_by_percentage)
{
    TCSSStyleSheet sheet;
    sheet.Parse(u"@keyframes k{from,to{top:0}50%{top:5px}x{top:1px}120%{top:2px}}p{top:3px}"_s);
    TArray<std::int32_t> steps;
    sheet.GetAnimationSteps(u"k", steps);
    EXPECT_EQ(steps, (TArray<std::int32_t>{0, 50, 100}));
    EXPECT_EQ(sheet.Sections().Count(), 1);
    const TCSSKeyFrameList& list = *sheet.KeyFrames->GetKeyFrameList(u"k");
    EXPECT_EQ(list.FindSection(20)->ValuebyName(u"top")[0].Name, u"5px");
    EXPECT_EQ(list.FindSection(51)->ValuebyName(u"top")[0].Name, u"0");

    TCSSWeightList values;
    sheet.GetAnimationSelectors(u"k", 1, values);
    ASSERT_EQ(values.Count(), 1);
    EXPECT_EQ(values.GetValue(0)->Tokens[0].Name, u"5px");
    EXPECT_EQ(static_cast<std::uint32_t>(values.Get(0)), kImportantWeight);
}

TEST(dark_colors, text_gets_light_and_backgrounds_dark)
{
    struct Case {
        std::u16string_view css;
        std::u16string_view dark;
    };
    const Case cases[] = {
        {u"color:#000;background:#fff", u"color: #f2f2f2;background:transparent;"},
        {u"background:#808080", u"background: #7f7f7f;"},
        {u"background:#222", u"background: #dddddd;"},
        {u"background:none", u"background:none;"},
        {u"background:white url(a.png)", u"background:transparenturl('a.png');"},
        {u"background:url(a.png) #ddd", u"background:url('a.png') #262626;"},
        {u"color:red", u"color: #e05252;"},
        {u"border-color:rgb(0,0,0)", u"border-color: #f2f2f2;"},
        {u"color:inherit;top:1px", u"color:inherit;top:1px;"},
        {u"color:var(--x)", u"color:var( --x);"},
    };
    for (const Case& c : cases) {
        TCSSStyleSheet sheet;
        sheet.Parse(u"a{" + String(c.css) + u"}");
        sheet.ConvertLighttoDark();
        EXPECT_EQ(sheet.AsInlineString(), c.dark) << String(c.css).ToUtf8();
    }
    EXPECT_EQ(TCSSStyleSheet::LighttoDark(u"a{color:#000}"_s), u"a\r\n{  color: #f2f2f2;\r\n}\r\n");
}

TEST(builtin_sheets, stand_below_all_others)
{
    TCSSStyleSheet& html = HTML4StyleSheet();
    EXPECT_GT(html.Sections().Count(), 70);
    EXPECT_LT(html.SelectorCounter, 10000U);
    EXPECT_LT(HTML4QuirkStyleSheet().SelectorCounter, 10000U);
    const TCSSFiledSelectors* lists = html.Main.TagMap.FindList(u"li");
    ASSERT_TRUE(lists);
    EXPECT_EQ(lists->GetSelector(0)->Weight, 0U);
    EXPECT_TRUE(html.Before && html.After);

    TCSSStyleSheet document;
    document.Assign(html);
    document.Parse(u"li{top:0}"_s);
    const TCSSFiledSelectors* both = document.Main.TagMap.FindList(u"li");
    EXPECT_LT(both->GetOrder(0), 10000U);
    EXPECT_GT(both->GetOrder(both->Count() - 1), 10000U);
}

TEST(css_extension, comes_with_its_classes)
{
    const String keys[] = {u"hint"_s, u"note"_s};
    TCSSExtension::RegisterExtension(keys, u".hint{top:0}.note{top:1px}"_s);
    THtStringList classes;
    TCSSStyleSheet sheet;
    TCSSExtension::AddExtensions(classes, sheet);
    EXPECT_FALSE(sheet.Main.ClassMap);
    classes.AddKey(u"hint"_s);
    classes.AddKey(u"note"_s);
    TCSSExtension::AddExtensions(classes, sheet);
    EXPECT_EQ(sheet.Main.ClassMap->FindList(u"hint")->Count(), 1);
    EXPECT_EQ(sheet.AsInlineString(), u"top:0;top:1px;");
}

}
