// Where a sheet files its selectors, and which rules melt into one.
// SPDX-License-Identifier: MIT
#include "css_rules.h"
#include "sheets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace ht;
using namespace ht::literals;
using test::Fill;

std::string Keys(std::string_view kind, const TCSSStyleMap* map)
{
    std::string text;
    for (std::int32_t i = 0; map && i < map->Count(); ++i) {
        const TCSSFiledSelectors& list = map->GetSelectors(i);
        const String key = list.Key.IsEmpty() ? String(EnumName(list.Pseudo)) : list.Key;
        text += std::string(kind) + ' ' + key.ToUtf8() + " x" + std::to_string(list.Count()) + ' ';
    }
    return text;
}

std::string Keys(const TCSSStyleMaps* maps)
{
    if (!maps)
        return {};
    std::string text = Keys("tag", &maps->TagMap) + Keys("id", maps->IDMap.get())
        + Keys("class", maps->ClassMap.get()) + Keys("condition", maps->ConditionMap.get())
        + Keys("pseudo", maps->PseudoMap.get());
    if (!text.empty())
        text.pop_back();
    return text;
}

std::string Names(const THtStringList& list)
{
    std::vector<std::string> names;
    list.Traverse(nullptr, [&names](TObject*, TObject* pair) {
        names.push_back(static_cast<const THtNameObjectPair*>(pair)->Name.ToUtf8());
    });
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : " ") + name;
    return text;
}

TEST(style_map, files_under_one_key)
{
    const struct {
        std::string_view Css;
        std::string_view Keys;
    } rows[] = {
        {"div.x#y{top:0}", "tag div x1"},
        {"a{top:0} a:hover{top:0} b a{top:0}", "tag a x3"},
        {"*{top:0} *[a]{top:0}", "tag * x2"},
        {".c#Id{top:0}", "id Id x1"},
        {".c.d[e]{top:0} .c{top:0} .d{top:0}", "class c x2 class d x1"},
        {"[A=b]:hover{top:0} [a=B]{top:0}", "condition a=b x2"},
        {":hover:focus{top:0} :focus{top:0} :hover{top:0}", "pseudo pcHover x2 pseudo pcFocus x1"},
        {":not(.a){top:0} .{top:0}", ""},
    };
    for (const auto& row : rows) {
        TCSSStyleSheet sheet;
        Fill(sheet, row.Css);
        EXPECT_EQ(Keys(&sheet.Main), row.Keys) << row.Css;
        EXPECT_EQ(sheet.Before, nullptr);
    }
}

TEST(style_map, pseudo_elements_have_maps_of_their_own)
{
    TCSSStyleSheet sheet;
    Fill(sheet,
        "p::before{top:0} .a:hover:after{top:0} ::before{top:0} #b::before::after{top:0}"
        ":hover:marker{top:0}");
    EXPECT_EQ(Keys(&sheet.Main), "");
    EXPECT_EQ(Keys(sheet.Before.get()), "tag p x1 id b x1"); // nothing to find "::before" by
    EXPECT_EQ(Keys(sheet.After.get()), "class a x1");
    EXPECT_EQ(Keys(sheet.Marker.get()), "pseudo pcHover x1");
    const TCSSPseudo pseudo = sheet.Marker->PseudoMap->AllPseudo();
    EXPECT_EQ(pseudo, (TCSSPseudo{pcHover, pcMarker}));
}

TEST(style_map, rules_leave)
{
    TCSSStyleSheet sheet;
    Fill(sheet, "a,b,.c,:hover{top:0} b,.c,:focus{top:0} b{top:0}");
    EXPECT_EQ(Keys(&sheet.Main), "tag a x1 tag b x3 class c x2 pseudo pcHover x1 pseudo pcFocus x1");
    sheet.Main.RemoveSection(static_cast<const TCSSSection&>(*sheet.Sections()[0]));
    EXPECT_EQ(Keys(&sheet.Main), "tag b x2 class c x1 pseudo pcFocus x1");
    EXPECT_EQ(sheet.Main.TagMap.FindList(u"a"), nullptr);
    EXPECT_EQ(sheet.Main.TagMap.FindList(u"b")->GetOrder(1), 10008U);
    EXPECT_EQ(sheet.Main.PseudoMap->AllPseudo(), TCSSPseudo{pcFocus});
    Fill(sheet, "a{top:0}");
    EXPECT_EQ(Keys(&sheet.Main), "tag b x2 tag a x1 class c x1 pseudo pcFocus x1");
    sheet.Main.Clear();
    EXPECT_EQ(Keys(&sheet.Main), "");
}

TEST(style_map, names_of_all_compounds)
{
    TCSSStyleSheet sheet;
    Fill(sheet, "a.b#I .c.d{top:0} #j.b:hover{top:0} [x] :focus.e{top:0} p .f:not(.g#k){top:0}");
    THtStringList classes;
    sheet.Main.GetAllClasses(classes);
    EXPECT_EQ(Names(classes), "b c d e f");
    THtStringList ids;
    sheet.Main.GetAllIds(ids);
    EXPECT_EQ(Names(ids), "I j");
}

TEST(style_map, low_orders_stay)
{
    TCSSStyleSheet sheet;
    sheet.SelectorCounter = 0;
    Fill(sheet, "a{top:0}");
    sheet.SelectorCounter = 10'000;
    Fill(sheet, "b{top:0} c{top:0}");
    TCSSStyleSheet other;
    for (const TCSSStyleSheet* source : {&sheet, &sheet}) {
        for (void* section : source->Sections())
            other.AddSelector(static_cast<TCSSSection*>(section)->Selectors->GetSelector(0));
    }
    EXPECT_EQ(other.Main.TagMap.FindList(u"a")->GetOrder(1), 1U);
    EXPECT_EQ(other.Main.TagMap.FindList(u"b")->GetOrder(0), 10'002U);
    EXPECT_EQ(other.Main.TagMap.FindList(u"c")->GetOrder(1), 10'006U);
}

/// The compiled values of the rules in the list "*".
std::string Universal(const TCSSStyleSheet& sheet)
{
    std::string text;
    for (const TCSSFiledSelectors::TItem& item : *sheet.Main.TagMap.FindList(u"*"))
        text += (text.empty() ? "" : " | ") + test::ValuesAsText(item.Selector->Section->CompiledValues);
    return text;
}

TEST(style_map, bare_universal_rules_melt)
{
    const struct {
        std::string_view Css;
        std::string_view Rules;
    } rows[] = {
        {"*{color:red;left:1px} *{top:2px;color:blue}", "color:blue; left:1px; top:2px"},
        {"*{color:red} *{top:2px} *{top:3px;color:blue}", "color:blue; top:3px"},
        {"*{Color:red;color:green} *{color:blue}", "Color:red; color:blue"},
        {"*{left:1px} *{Color:red;color:green}", "left:1px; Color:red; color:green"},
        {"*{color:red} *{color:blue!important}", "color:blue"}, // the first tells what is important
        {"*{left:1px} *{color:blue!important}", "left:1px; color:blue!important"},
        {"*{margin:1px} *{margin:2px}",
            "margin-top:2px; margin-right:2px; margin-bottom:2px; margin-left:2px"},
        {"*,p{color:red} *{color:blue}", "color:red | color:blue"},
        {"*{color:red} *,p{color:blue}", "color:red | color:blue"},
        {"*{color:red} *.a{color:blue} *{top:0}", "color:red; top:0 | color:blue"},
        {"*.a{color:red} *{color:blue} *{top:0}", "color:red | color:blue | top:0"},
        {"*{color:red} *[a]{color:blue}", "color:red | color:blue"},
        {"*{color:red} p *{color:blue}", "color:red | color:blue"},
        {"*{color:red} *:hover{color:blue}", "color:red | color:blue"},
        {"*{color:red} *:not(.a){color:blue}", "color:red | color:blue"},
        {"*{color:red} @media print{*{color:blue}}", "color:red | color:blue"},
    };
    for (const auto& row : rows) {
        TCSSStyleSheet sheet;
        Fill(sheet, row.Css, 0);
        EXPECT_EQ(Universal(sheet), row.Rules) << row.Css;
    }
    TCSSStyleSheet sheet;
    Fill(sheet, "*{color:red}", 1);
    Fill(sheet, "*{color:blue}", 2);
    EXPECT_EQ(Universal(sheet), "color:red | color:blue");
}

TEST(style_map, melted_values_are_prepared_again)
{
    TCSSStyleSheet sheet;
    Fill(sheet, "*{color:inherit;left:1px;width:1px} *{color:red;left:calc(2px + 3px);width:auto}");
    auto& source = static_cast<TCSSSection&>(*sheet.Sections()[1]);
    EXPECT_TRUE(source.Values.IsEmpty());
    sheet.Sections().Remove(&source); // its tokens go too
    const TCSSSection& section = *sheet.Main.TagMap.FindList(u"*")->GetSelector(0)->Section;
    ASSERT_EQ(section.Values.Length(), 3);
    EXPECT_FALSE(section.Values[0].Inherit);
    EXPECT_EQ(section.Values[0].Tokens[0].Color, 0xFFFF0000U);
    TMeasure left = section.CompiledValues[1].Measure.Value1;
    EXPECT_EQ(left.GetFPixels(), 5);
    EXPECT_EQ(section.Values[2].Section, &section);
}

TEST(style_map, rules_of_other_sheets_do_not_melt)
{
    TCSSStyleSheet source;
    Fill(source, "*{color:red}");
    TCSSStyleSheet sheet;
    TCSSSelector* selector = source.Main.TagMap.FindList(u"*")->GetSelector(0);
    sheet.Main.AddSelector(selector, foKeep, 20'000);
    sheet.Main.AddSelector(selector, foKeep, 20'001);
    Fill(sheet, "*{color:blue} *{color:green}");
    EXPECT_EQ(Universal(sheet), "color:red | color:red | color:blue | color:green");
    EXPECT_EQ(Universal(source), "color:red");
    EXPECT_EQ(selector->Order, 10'001U);
}

TEST(style_map, very_many_rules_melt_in_one_go)
{
    constexpr int kRules = 100'000;
    std::string css;
    for (int i = 0; i < kRules; ++i)
        css += "*{--n" + std::to_string(i) + ":" + std::to_string(i) + ";top:" + std::to_string(i) + "px}";
    TCSSParser parser(String::FromUtf8(css));
    TCSSStyleMaps maps;
    std::vector<std::unique_ptr<TCSSSection>> sections;
    while (parser.NextSection()) {
        sections.push_back(std::move(parser.CurrentSection));
        maps.AddSelector(sections.back()->Selectors->GetSelector(0), foDistinct, 1);
    }
    maps.CompileFolded();
    ASSERT_EQ(sections.size(), static_cast<std::size_t>(kRules));
    EXPECT_EQ(maps.TagMap.FindList(u"*")->Count(), 1);
    EXPECT_EQ(sections[0]->Values.Length(), kRules + 1);
    EXPECT_EQ(test::ValuesAsText(sections[0]->CompiledValues), "top:99999px");
}

}
