// Which rules apply to an element, and the walk around it compared with the plain rules.
// SPDX-License-Identifier: MIT
#include "sheets.h"

#include <fuzz/styling/plain_selectors.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace ht;
using namespace ht::literals;
using test::Fill;
using test::Nodes;

/// "17/10001 color": weight, order and property of each value; "!" stands for the important byte.
std::string Text(const TCSSWeightList& list)
{
    std::string text;
    for (std::int32_t i = 0; i < list.Count(); ++i) {
        const std::uint32_t weight = list.GetWeight(i);
        text += (i == 0 ? "" : " ") + std::string(weight >= kImportantWeight ? "!" : "")
            + std::to_string(weight & ~kImportantWeight) + '/' + std::to_string(list.GetOrder(i)) + ' '
            + list.GetValue(i)->Name.ToUtf8();
    }
    return text;
}

std::string Applied(const TCSSStyleSheet& sheet, const THtNode& root, std::u16string_view id)
{
    TCSSWeightList list;
    for (const TStyledHTMLNode* node : Nodes(root)) {
        if (node->GetId() == id)
            sheet.GetElementSelectors(*node, list, &sheet.Main, {}, cmScreen, 0, 0);
    }
    return Text(list);
}

TEST(style_sheet_match, values_come_by_weight_and_order)
{
    TStyledHTMLNode root;
    root.Parse(u"<div id=a class='x y x'><p id=b title=t>text</p></div>"_s);
    const struct {
        std::string_view Css;
        std::u16string_view Id;
        std::string_view Applied;
    } rows[] = {
        {"#b{top:0} p{left:0} *{right:0} p{bottom:0}", u"b",
            "0/10003 right 1/10002 left 1/10004 bottom 256/10001 top"},
        {"p{top:0!important;left:0} div p{top:1px}", u"b", "1/10001 left 2/10002 top !1/10001 top"},
        {"[title]{top:0} [TITLE=t]{left:0} [title!=x]{right:0} [nothing]{bottom:0} [nothing!=x]{width:0}",
            u"b", "16/10001 top 16/10002 left 16/10003 right 16/10005 width"},
        {":not(.z){top:0} p:not(.x){left:0}", u"b", "1/10002 left"},
        {":nth-child(1){top:0} :nth-child(2){left:0}", u"b", "16/10001 top"},
        // A rule counts once in a weight, by the first of its selectors.
        {"p,p,div p{top:0;left:0}", u"b", "1/10001 top 1/10001 left 2/10003 top 2/10003 left"},
        {".x,.y{top:0}", u"a", "16/10001 top"},
        {".y,.x{top:0!important}", u"a", "!16/10001 top"},
        {"div#a.y{top:0} .y#a{left:0} .y{right:0}", u"a", "16/10003 right 272/10002 left 273/10001 top"},
        {"p::before{top:0} p{margin:0}", u"b",
            "1/10002 margin-top 1/10002 margin-right 1/10002 margin-bottom 1/10002 margin-left"},
        {"q{top:0} div div{top:0}", u"b", ""},
    };
    for (const auto& row : rows) {
        TCSSStyleSheet sheet;
        Fill(sheet, row.Css);
        EXPECT_EQ(Applied(sheet, root, row.Id), row.Applied) << row.Css;
    }
}

TEST(style_sheet_match, sheets_meet_in_one_list)
{
    TStyledHTMLNode root;
    root.SetTag(u"p"_s);
    TCSSStyleSheet defaults;
    defaults.SelectorCounter = 0;
    Fill(defaults, "p{top:0!important;left:0} p,*{width:0}", 0);
    TCSSStyleSheet author;
    Fill(author, "p{right:0} *{left:0}");
    TCSSStyleSheet own;
    Fill(own, "*{bottom:0!important;-x-y:1;unknown:1}", kImportantWeight);
    TCSSWeightList list;
    for (int i = 0; i < 2; ++i) { // the second time adds nothing
        author.GetElementSelectors(root, list, &author.Main, {}, cmScreen, 0, 0);
        own.GetAllSelectors(list);
        defaults.GetElementSelectors(root, list, &defaults.Main, {}, cmScreen, 0, 0);
        EXPECT_EQ(Text(list), "0/1 left 0/2 width 0/10002 left 1/10001 right !0/1 top !0/10001 bottom");
    }
    TCSSStyleSheet empty;
    empty.GetAllSelectors(list);
    empty.GetElementSelectors(root, list, empty.Before.get(), {pcBefore}, cmScreen, 0, 0);
    EXPECT_EQ(list.Count(), 6);
}

TEST(style_sheet_match, disabled_media_are_passed_over)
{
    TStyledHTMLNode root;
    root.SetTag(u"p"_s);
    TCSSStyleSheet sheet;
    Fill(sheet, "p{top:0} @media print{p{left:0} p::before{top:0}} p{right:0}");
    auto& media = static_cast<TCSSMediaSet&>(*sheet.MediaSets[0]);
    for (const bool disabled : {true, false}) {
        media.Disabled = disabled;
        TCSSWeightList list;
        sheet.GetElementSelectors(root, list, &sheet.Main, {}, cmScreen, 0, 0);
        EXPECT_EQ(
            Text(list), disabled ? "1/10001 top 1/10004 right" : "1/10001 top 1/10002 left 1/10004 right");
        TCSSPseudo pseudo;
        sheet.GetElementPseudoClasses(root, pseudo);
        EXPECT_EQ(pseudo.IsEmpty(), disabled);
    }
}

TEST(style_sheet_match, generated_boxes)
{
    TStyledHTMLNode root;
    root.Parse(u"<p id=a class=x></p><b id=b></b>"_s);
    TCSSStyleSheet sheet;
    Fill(sheet, "p::before{top:0} div p::after{top:0} .x:hover::marker{top:0} ::before{left:0}");
    auto& p = const_cast<TStyledHTMLNode&>(*Nodes(root)[1]);
    TCSSPseudo pseudo{pcFocus};
    sheet.GetElementPseudoClasses(p, pseudo);
    EXPECT_EQ(pseudo, (TCSSPseudo{pcFocus, pcBefore, pcAfter})); // asks the last compound alone
    p.Style().CurrentPC = {pcHover};
    sheet.GetElementPseudoClasses(p, pseudo);
    EXPECT_TRUE(pseudo.Contains(pcMarker));
    TCSSWeightList list;
    sheet.GetElementSelectors(p, list, sheet.Before.get(), {pcBefore}, cmScreen, 0, 0);
    sheet.GetElementSelectors(p, list, sheet.After.get(), {pcAfter}, cmScreen, 0, 0);
    sheet.GetElementSelectors(p, list, sheet.Marker.get(), {pcMarker}, cmScreen, 0, 0);
    EXPECT_EQ(Text(list), "17/10001 top 48/10003 top");
    pseudo = {};
    sheet.GetElementPseudoClasses(*Nodes(root)[2], pseudo);
    EXPECT_TRUE(pseudo.IsEmpty());
}

/// Trees and selectors out of few words, so that much of it matches.
class Chance {
public:
    explicit Chance(unsigned seed)
        : FEngine(seed)
    {
    }

    int Below(int count) { return static_cast<int>(FEngine() % static_cast<unsigned>(count)); }

    template <std::size_t N> const char* OneOf(const char* const (&words)[N])
    {
        return words[Below(static_cast<int>(N))];
    }

    /// `nodes` nodes, each below one of the last `spread` before it.
    void FillTree(THtNode& root, int nodes, int spread)
    {
        std::vector<THtNode*> parents{&root};
        for (int i = 0; i < nodes; ++i) {
            const int last = static_cast<int>(parents.size());
            THtNode* parent = parents[static_cast<std::size_t>(last - 1 - Below(std::min(last, spread)))];
            THtNode* node = parent->AddChild(root.NodeClass());
            const int kind = Below(8);
            if (kind == 0) {
                node->SetContent(u"text"_s);
                continue;
            }
            node->SetTag(String::FromUtf8(OneOf({"a", "b", "c", "!"})));
            if (kind < 5)
                node->SetAttribute(u"class"_s, String::FromUtf8(OneOf({"x", "y", "x y", "z", "y z x"})));
            if (kind == 6)
                node->SetAttribute(u"t"_s, String::FromUtf8(OneOf({"1", "2"})));
            if (Below(6) == 0)
                static_cast<TStyledHTMLNode*>(node)->Style().CurrentPC = {pcHover, pcFirstChild};
            parents.push_back(node);
        }
    }

    std::string Compound()
    {
        return OneOf({"a", "a", "b", "b", "c", ".x", ".y", ".z", "*", ".x.y", "a.x", "b.y", ":hover",
            "a:hover", ".x:first-child", "[t]", "[t=1]", "a[t!=1]", "b:not(.x)", ":not(.y)", "a:not(:hover)",
            "c:not([t])", ".", ":nth-child(2)", "b:nth-child(odd)", "a:nth-of-type(1)", "!"});
    }

    std::string Selector(int compounds)
    {
        std::string text = Compound();
        for (int i = 1; i < compounds; ++i)
            text += OneOf({" ", " ", " > ", " + ", " ~ "}) + Compound();
        return text;
    }

    /// One that looks far around before it finds something or not.
    std::string LongSelector(int compounds)
    {
        std::string text = OneOf({"r > a + b", "r > b ~ a", "r > a ~ .", "r > . + .", "r > b + .", "x"});
        for (int i = 0; i < compounds; ++i) {
            text += OneOf({" ", " ", " ", " ", " ~ ", " + "});
            text += OneOf({"a", "b", ".x", ".y", "a:not(.z)", "."});
        }
        return text;
    }

    std::string SiblingSelector(int compounds)
    {
        std::string text = OneOf({"a", "b", ".x"});
        for (int i = 0; i < compounds; ++i) {
            text += OneOf({" + ", " + ", " ~ ", " ~ ", " ", " > "});
            text += OneOf({"a", "b", "c", "."});
        }
        return text;
    }

    std::string AnySelector(unsigned kind)
    {
        return kind == 0 ? Selector(1 + Below(9))
            : kind == 1  ? LongSelector(2 + Below(7))
                         : SiblingSelector(1 + Below(4));
    }

private:
    std::mt19937 FEngine;
};

TEST(style_sheet_match, the_walk_keeps_the_plain_rules)
{
    constexpr int kSeeds = HEARTH_TEST_SANITIZED ? 90 : 900;
    constexpr long kBudget = 100'000;
    constexpr long kLong = 1000; // looks by then the walk remembers
    const TCSSStyleSheet sheet;
    int compared = 0;
    int matches = 0;
    int longOnes = 0;
    int longMatches = 0;
    for (unsigned seed = 0; seed < kSeeds; ++seed) {
        Chance chance(seed);
        const unsigned kind = seed % 3;
        TStyledHTMLNode root;
        root.SetTag(u"r"_s);
        for (const String& tag : {u"a"_s, u"b"_s, u"a"_s})
            root.AddChild(root.NodeClass())->SetTag(tag);
        chance.FillTree(root, 30 + chance.Below(120), 1 + chance.Below(kind == 1 ? 6 : 40));
        const auto nodes = Nodes(root);
        for (int i = 0; i < 12; ++i) {
            const std::string css = chance.AnySelector(kind);
            const auto section = test::Selectors(css);
            if (section->Selectors->Count() == 0)
                continue;
            const TCSSSelector& selector = *section->Selectors->GetSelector(0);
            for (const TStyledHTMLNode* node : nodes) {
                plain::Selectors rules(kBudget);
                bool expected = false;
                try {
                    expected = rules.TestElement(*node, selector, {});
                } catch (const plain::TooMuch&) {
                    continue;
                }
                ASSERT_EQ(sheet.TestElement(*node, selector, {}), expected) << css << " seed " << seed;
                ++compared;
                matches += expected ? 1 : 0;
                longOnes += rules.Looks() > kLong ? 1 : 0;
                longMatches += expected && rules.Looks() > kLong ? 1 : 0;
            }
        }
    }
    EXPECT_GT(compared, 300 * kSeeds);
    EXPECT_GT(matches, 20 * kSeeds);
    EXPECT_GT(longOnes, 2 * kSeeds);
    EXPECT_GT(longMatches, 0);
}

/// All rules, one by one.
std::string AppliedPlainly(const TCSSStyleSheet& sheet, const TStyledHTMLNode& node)
{
    std::vector<std::tuple<std::uint32_t, std::uint32_t, PCSSValue>> found;
    for (void* item : sheet.Sections()) {
        const auto& section = *static_cast<TCSSSection*>(item);
        for (std::int32_t i = 0; i < section.Selectors->Count(); ++i) {
            const TCSSSelector& selector = *section.Selectors->GetSelector(i);
            const bool isFiled = !selector.Tag.IsEmpty() || !selector.Classes.IsEmpty()
                || !selector.Condition.IsEmpty() || !selector.Pseudo.IsEmpty();
            if (!isFiled || !plain::Selectors(1'000'000).TestElement(node, selector, {}))
                continue;
            for (const TCSSValue& value : section.CompiledValues) {
                const std::uint32_t weight = selector.Weight | (value.Important ? kImportantWeight : 0);
                const auto isThere = [&](const auto& other) {
                    return std::get<0>(other) == weight && std::get<2>(other) == &value;
                };
                if (std::none_of(found.begin(), found.end(), isThere))
                    found.emplace_back(weight, selector.Order, &value);
            }
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return std::tie(std::get<0>(a), std::get<1>(a)) < std::tie(std::get<0>(b), std::get<1>(b));
    });
    TCSSWeightList list;
    for (const auto& [weight, order, value] : found)
        list.AddNewValue(weight, order, value);
    return Text(list);
}

TEST(style_sheet_match, maps_find_all_that_applies)
{
    for (unsigned seed = 0; seed < 12; ++seed) {
        Chance chance(seed);
        TStyledHTMLNode root;
        chance.FillTree(root, 40, 8);
        std::string css;
        const int rules = seed < 10 ? 60 : 700; // more than a query keeps at hand
        for (int i = 0; i < rules; ++i) {
            for (int selectors = chance.Below(3); selectors > 0; --selectors)
                css += "a " + chance.Selector(1 + chance.Below(2)) + ",";
            css += "b" + chance.Selector(1 + chance.Below(2))
                + chance.OneOf({"{top:0}", "{top:0;left:1px}", "{top:0!important;left:0;right:0}",
                    "{margin:0!important}"});
        }
        TCSSStyleSheet sheet;
        Fill(sheet, css);
        for (const TStyledHTMLNode* node : Nodes(root)) {
            TCSSWeightList list;
            sheet.GetElementSelectors(*node, list, &sheet.Main, {}, cmScreen, 0, 0);
            ASSERT_EQ(Text(list), AppliedPlainly(sheet, *node)) << "seed " << seed;
        }
    }
}

TEST(style_sheet_match, hostile_walks_end)
{
    const TCSSStyleSheet sheet;
    const auto matches = [&sheet](const THtNode& node, std::string_view css) {
        const auto section = test::Selectors(css);
        return sheet.TestElement(
            static_cast<const TStyledHTMLNode&>(node), *section->Selectors->GetSelector(0), {});
    };
    std::string css = "div";
    for (int i = 0; i < 1022; ++i)
        css += " div";

    TStyledHTMLNode nested;
    THtNode* deepest = &nested;
    for (int i = 0; i < 2000; ++i) {
        deepest = deepest->AddChild(nested.NodeClass());
        deepest->SetTag(u"div"_s);
    }
    EXPECT_FALSE(matches(*deepest, "x div div div div div div"));
    EXPECT_FALSE(matches(*deepest, "x > div div > div > div div div > div"));
    EXPECT_TRUE(matches(*deepest, css));
    EXPECT_FALSE(matches(*deepest, "x " + css));

    TStyledHTMLNode wide;
    for (int i = 0; i < 10'000; ++i)
        wide.AddChild(wide.NodeClass())->SetTag(u"p"_s);
    EXPECT_FALSE(matches(*wide.LastChild(), "x ~ p ~ p ~ p"));
    EXPECT_FALSE(matches(*wide.LastChild(), "x ~ p + p ~ p + p ~ p ~ p"));
    EXPECT_TRUE(matches(*wide.LastChild(), "p ~ p ~ p ~ p"));
    EXPECT_FALSE(matches(*wide.LastChild(), "x p ~ p p ~ p ~ p"));

    // Texts side by side, each with the same element in front.
    TStyledHTMLNode texts;
    texts.AddChild(texts.NodeClass())->SetTag(u"p"_s);
    for (int i = 0; i < 20'000; ++i)
        texts.AddChild(texts.NodeClass());
    texts.AddChild(texts.NodeClass())->SetTag(u"p"_s);
    EXPECT_FALSE(matches(*texts.LastChild(), "x + p ~ p"));
    EXPECT_FALSE(matches(*texts.LastChild(), "x ~ p ~ p"));
    EXPECT_TRUE(matches(*texts.LastChild(), "p + p ~ p"));
}

TEST(style_sheet_match, other_nodes_in_the_tree_fit_nothing)
{
    THtmlNode root;
    root.SetTag(u"a"_s);
    THtNode* middle = root.AddChild(THtNodeClass::Of<TStyledHTMLNode>());
    middle->SetTag(u"b"_s);
    THtNode* leaf = middle->AddChild(THtNodeClass::Of<TStyledHTMLNode>());
    const TCSSStyleSheet sheet;
    const auto matches = [&](std::string_view css) {
        const auto section = test::Selectors(css);
        return sheet.TestElement(
            static_cast<TStyledHTMLNode&>(*leaf), *section->Selectors->GetSelector(0), {});
    };
    EXPECT_TRUE(matches("b ."));
    EXPECT_FALSE(matches("a ."));
    EXPECT_FALSE(matches(". > b > ."));
}

}
