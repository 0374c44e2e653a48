// Ways through a tree, changes of it, and what stands in its attributes.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <markup/trees.h>

#include <functional>
#include <random>
#include <vector>

namespace {

using namespace ht;
using namespace trees;

class NodeTree : public testing::Test {
protected:
    NodeTree()
    {
        Root.Parse(u"<ul><li>a<!--c--><li id=x>b<i>c</i><i>d</i></ul>t<p>e<?f?>"_s);
        Items = Root.NodebyName(u"ul");
        Second = Items->NodebyNameIndex(u"li", 1);
    }

    THtmlNode Root;
    THtNode* Items;
    THtNode* Second;
};

TEST_F(NodeTree, walks_forth_and_back_visit_the_same_nodes)
{
    std::vector<const THtNode*> forth;
    for (const THtNode* node = &Root; node; node = node->NextNode())
        forth.push_back(node);
    std::vector<const THtNode*> back;
    for (const THtNode* node = Root.Last(); node; node = node->PreviousNode())
        back.push_back(node);
    EXPECT_EQ(forth, std::vector<const THtNode*>(back.rbegin(), back.rend()));
    EXPECT_EQ(forth.size(), 15U);
    EXPECT_EQ(Second->Last()->NextNodeIn(Items), nullptr);
    EXPECT_EQ(Second->Last()->NextNode()->Content(), u"t");
    EXPECT_EQ(Root.GetNode(2)->PreviousSibling()->Content(), u"t");
}

TEST_F(NodeTree, places_among_siblings)
{
    const THtNode* second = Second->NodebyNameIndex(u"i", 1);
    EXPECT_EQ(second->NodeIndex(), 2);
    EXPECT_EQ(second->ChildIndex(), 1);
    EXPECT_EQ(second->TagIndex(), 1);
    EXPECT_EQ(Second->Countof(u"i"), 2);
    EXPECT_EQ(Second->NodebyNameIndex(u"i", 2), nullptr);
    EXPECT_EQ(Second->NodebyNameIndex(u"i", -1), nullptr);
    EXPECT_EQ(Root.NodeIndex(), -1);
    EXPECT_EQ(Root.ChildIndex() + Root.TagIndex(), 0);
    EXPECT_EQ(static_cast<const THtmlNode*>(second)->AbsoluteTagIndex(), 6);
}

TEST_F(NodeTree, only_the_search_from_the_front_passes_over_comments)
{
    THtmlNode mixed;
    mixed.Parse(u"<!--a-->b<i></i><u></u><!--c-->d"_s);
    EXPECT_EQ(mixed.FirstChildTag()->Tag(), u"i");
    EXPECT_EQ(mixed.LastChildTag()->Tag(), u"!");
    EXPECT_EQ(Second->GetNode(0)->FirstChildTag(), nullptr);
    EXPECT_EQ(Second->GetNode(0)->LastChild(), nullptr);
}

TEST_F(NodeTree, searches)
{
    EXPECT_EQ(Second->GetNode(1)->Path(), u"i/li/ul/body");
    EXPECT_EQ(Root.NodebyName(u"li"), nullptr);
    EXPECT_EQ(Root.NodebyName(u"ul/li")->FirstChild()->Content(), u"a");
    EXPECT_EQ(Root.NodebyName(u"ul/li/i"), nullptr) << "the second li is not tried";
    EXPECT_EQ(Root.NodebyName(u"UL"), nullptr);
    EXPECT_EQ(Root.FindNode(u"i"), Second->GetNode(1));
    EXPECT_EQ(Items->FindNode(u"p"), nullptr);
    EXPECT_EQ(Items->NodebyAttr(u"id", u"x"), Second);
    EXPECT_EQ(Items->NodebyNameAttr(u"p", u"id", u"x"), nullptr);
    EXPECT_EQ(Root.FindNodebyAttr(u"", u"id", u"x"), Second);
    EXPECT_EQ(Root.FindNodebyAttr(u"i", u"id", u"x"), nullptr);
    EXPECT_EQ(Second->UpTo({u"li", u"body"}), &Root);
    EXPECT_FALSE(Second->HasParentTag(u"li"));
    EXPECT_TRUE(Second->HasAsParent(Items));
    EXPECT_FALSE(Second->HasAsParent(Second));
    EXPECT_FALSE(Second->HasAsParent(nullptr));
    EXPECT_EQ(Root.TextContent(), u"acbcdtef");
}

TEST_F(NodeTree, changes_that_would_break_the_tree_are_refused)
{
    THtmlNode other(u"div"_s);
    auto* stranger = static_cast<THtmlNode*>(other.AddChild(other.NodeClass()));
    auto* items = static_cast<THtmlNode*>(Items);
    auto* second = static_cast<THtmlNode*>(Second);
    const std::string before = Tree(Root);
    std::unique_ptr<THtNode> root(&Root);
    std::unique_ptr<THtNode> child(Items);
    std::unique_ptr<THtNode> self(std::make_unique<THtmlNode>());
    THtNode* const selfNode = self.get();
    std::unique_ptr<THtNode> none;
    const std::function<void()> refused[] = {
        [&] { Second->AddNode(std::move(root)); },
        [&] { other.AddNode(std::move(child)); },
        [&] { selfNode->AddNode(std::move(self)); },
        [&] { Root.AddNode(std::move(none)); },
        [&] { Root.Exchange(Items, stranger); },
        [&] { Root.Exchange(Second, Items); },
        [&] { Root.Exchange(nullptr, Items); },
        [&] { stranger->Exchange(stranger, stranger); },
        [&] { Root.DeleteChild(Second); },
        [&] { stranger->DeleteChild(stranger); },
        [&] { Root.ExtractChild(nullptr); },
        [&] { Root.MoveNode(items, stranger); },
        [&] { Root.MoveChildrento(second, -1); },
        [&] { items->MoveChildrento(stranger, 1); },
        [&] { items->MoveChildrento(stranger, -2); },
        [&] { Root.MoveChildrentoParent(true); },
        [&] { Root.GetNode(3); },
        [&] { Root.GetNode(-1); },
        [&] { Root.Nodes().Move(0, 3); },
    };
    int number = 0;
    for (const auto& change : refused) {
        EXPECT_THROW(change(), Exception) << number;
        EXPECT_EQ(Tree(Root), before) << number;
        ExpectLinked(Root);
        ++number;
    }
    EXPECT_TRUE(root && child && self);
    static_cast<void>(root.release());
    static_cast<void>(child.release());
    EXPECT_EQ(Tree(other), "<div>{#node}");
}

TEST_F(NodeTree, moves)
{
    struct {
        std::function<void(THtmlNode&)> Change;
        std::string_view Tree;
    } const rows[] = {
        {[](THtmlNode& top) { top.MoveNode(top.GetNode(0), top.GetNode(2)); }, "<b> <c>{<d> <e>} <a>"},
        {[](THtmlNode& top) { top.MoveNode(top.GetNode(2), top.GetNode(0)); }, "<c>{<d> <e>} <a> <b>"},
        {[](THtmlNode& top) { top.MoveNode(top.GetNode(1), top.GetNode(1)); }, "<a> <b> <c>{<d> <e>}"},
        {[](THtmlNode& top) { top.Exchange(top.GetNode(0), top.GetNode(2)); }, "<c>{<d> <e>} <b> <a>"},
        {[](THtmlNode& top) { top.Exchange(top.GetNode(1), top.GetNode(0)); }, "<b> <a> <c>{<d> <e>}"},
        {[](THtmlNode& top) { top.GetNode(2)->MoveChildrentoParent(true); }, "<a> <b> <d> <e> <c>"},
        {[](THtmlNode& top) { top.GetNode(2)->MoveChildrentoParent(false); }, "<a> <b> <c> <d> <e>"},
        {[](THtmlNode& top) { top.GetNode(0)->MoveChildrentoParent(true); }, "<a> <b> <c>{<d> <e>}"},
        {[](THtmlNode& top) { top.MoveChildrento(top.GetNode(2), 1); }, "<c>{<d> <a> <b> <e>}"},
        {[](THtmlNode& top) { top.MoveChildrento(top.GetNode(1), -1); }, "<b>{<a> <c>{<d> <e>}}"},
        {[](THtmlNode& top) { top.GetNode(2)->MoveChildrento(&top, 0); }, "<d> <e> <a> <b> <c>"},
        {[](THtmlNode& top) { top.GetNode(2)->MoveChildrento(top.GetNode(0), 0); }, "<a>{<d> <e>} <b> <c>"},
        {[](THtmlNode& top) { top.AddNode(top.ExtractChild(top.GetNode(0))); }, "<b> <c>{<d> <e>} <a>"},
        {[](THtmlNode& top) { top.Nodes().Insert(1, std::make_unique<THtmlNode>(u"x"_s).release()); },
            "<a> <x> <b> <c>{<d> <e>}"},
    };
    for (const auto& row : rows) {
        THtmlNode top;
        top.Parse(u"<a></a><b></b><c><d></d><e></e></c>"_s);
        row.Change(top);
        EXPECT_EQ(Tree(top), "<body>{" + std::string(row.Tree) + "}");
        ExpectLinked(top);
    }
}

TEST_F(NodeTree, a_result_set_leaves_its_nodes_alone)
{
    const std::string before = Tree(Root);
    {
        THtNodeList found;
        for (THtNode* node = Root.Last(); node; node = node->PreviousNode())
            found.Add(node);
        found.Exchange(0, 5);
        found.Move(1, 9);
        found.Insert(0, Second);
        EXPECT_EQ(found.IndexOf(Second), 0);
        found.Delete(0);
        found.RemoveItem(Items);
        EXPECT_EQ(found.IndexOf(Items), -1);
        EXPECT_THROW(found.GetItem(found.Count()), ERangeError);
    }
    EXPECT_EQ(Tree(Root), before);
    ExpectLinked(Root);
}

TEST(node, links_hold_after_any_change)
{
    std::mt19937 random(20);
    THtmlNode top(u"top"_s);
    std::vector<THtmlNode*> nodes;
    for (int step = 0; step < 3'000; ++step) {
        nodes.clear();
        for (THtNode* node = &top; node; node = node->NextNode())
            nodes.push_back(static_cast<THtmlNode*>(node));
        const auto any = [&] { return nodes[random() % nodes.size()]; };
        THtmlNode* node = any();
        THtmlNode* other = any();
        const std::int32_t place = static_cast<std::int32_t>(random() % 8);
        switch (nodes.size() > 60 ? random() % 8 : random() % 16) {
        case 0:
            if (node->Count() > 0)
                node->DeleteChild(node->GetNode(place % node->Count()));
            break;
        case 1:
            if (node->Count() > 0)
                node->Exchange(node->GetNode(place % node->Count()), node->LastChild());
            break;
        case 2:
            if (node->Count() > 0)
                node->MoveNode(node->GetNode(place % node->Count()), node->GetNode(0));
            break;
        case 3:
            if (node->GetParent())
                node->MoveChildrentoParent(place % 2 == 0);
            break;
        case 4:
            if (node != other && (other->Parent() == node || !other->HasAsParent(node)))
                node->MoveChildrento(other, place % (other->Count() + 1));
            break;
        case 5:
            if (node->GetParent() && node != other && !other->HasAsParent(node))
                other->AddNode(node->GetParent()->ExtractChild(node));
            break;
        case 6:
            if (nodes.size() > 40)
                node->DeleteAllChildren();
            break;
        case 7:
            if (node->Count() > 0)
                node->Nodes().Move(place % node->Count(), node->Count() - 1);
            break;
        case 8:
            node->Nodes().Insert(place % (node->Count() + 1), std::make_unique<THtmlNode>(u"x"_s).release());
            break;
        default:
            node->AddChild(node->NodeClass());
        }
        ASSERT_NO_FATAL_FAILURE(ExpectLinked(top)) << "step " << step;
    }
}

TEST(node_attributes, typed_values)
{
    THtmlNode node(u"p"_s);
    node.SetAttr(u"a"_s, u""_s);
    EXPECT_EQ(node.Attributes(), nullptr);
    EXPECT_TRUE(node.HasAttributeValue(u"a", u""));
    EXPECT_FALSE(node.SetAttribute(u"a"_s, u""_s));
    EXPECT_TRUE(node.SetAttribute(u"A"_s, u"12"_s));
    EXPECT_FALSE(node.SetAttribute(u"a"_s, u"12"_s));
    EXPECT_EQ(node.GetAttrI(u"A"), 12);
    EXPECT_THROW(node.GetAttrI(u"b"), EConvertError);
    node.SetAttrF(u"f"_s, 1.256);
    node.SetFloat(u"g"_s, 0.1);
    node.SetAttrB(u"t"_s, true);
    node.SetAttr(u"on"_s, u"on"_s);
    node.SetAttr(u"yes"_s, u"True"_s);
    EXPECT_EQ(Tree(node), R"(<p a="12" f="1.26" g="0.1" on="on" t="1" yes="True">)");
    EXPECT_DOUBLE_EQ(node.GetAttrF(u"f"), 1.26);
    EXPECT_EQ(node.GetFloat(u"yes"), 0);
    EXPECT_TRUE(node.GetAttrB(u"on") && node.GetAttrB(u"t"));
    EXPECT_FALSE(node.GetAttrB(u"yes") || node.GetAttrB(u"none"));
}

TEST(node_attributes, dates)
{
    THtmlNode node(u"p"_s);
    EXPECT_EQ(static_cast<double>(node.GetDate(u"d")), 0);
    const TDateTime moment = 45000.75;
    node.SetDate(u"d"_s, moment);
    node.SetTime(u"t"_s, moment);
    node.SetDateTime(u"m"_s, moment);
    EXPECT_EQ(Tree(node), R"(<p d="2023-03-15" m="2023-03-15T18:00:00" t="18:00:00">)");
    EXPECT_DOUBLE_EQ(static_cast<double>(node.GetDate(u"d")), 45000);
    EXPECT_DOUBLE_EQ(static_cast<double>(node.GetTime(u"t")), 0.75);
    node.SetAttr(u"m"_s, u"2023-03-15 18:00:00"_s);
    EXPECT_DOUBLE_EQ(static_cast<double>(node.GetDateTime(u"m")), 45000.75);
    node.SetAttr(u"m"_s, u"yesterday"_s);
    EXPECT_THROW(node.GetDateTime(u"m"), Exception);
}

TEST(node_attributes, elements_are_numbered_in_document_order)
{
    THtmlNode root;
    root.Parse(u"<p>a<!--b--><?c?></p><![CDATA[d]]><Datapacket></Datapacket><datapacket id=k>"_s);
    root.EnumerateElements();
    EXPECT_EQ(Tree(root),
        R"(<body _id="0">{<p _id="1">{"a" #comment "b" #directive "c"} #cdata "d" )"
        R"(<datapacket _id="2" id="2"> <datapacket _id="3" id="k">})");
}

TEST(node_attributes, classes_go_when_they_are_empty)
{
    THtmlNode node(u"p"_s);
    node.SetStyleClass(u""_s);
    node.SetStyleClass(u"a"_s);
    EXPECT_EQ(node.StyleClass(), u"a");
    node.SetStyleClass(u""_s);
    EXPECT_FALSE(node.HasAttribute(u"class"));
    node.ParseAttributes(u"b=1 c"_s);
    node.ParseAttributes(u" "_s);
    EXPECT_EQ(Tree(node), R"(<p b="1" c="c">)");
}

TEST(node_text, is_decoded_anew_with_its_attributes)
{
    THtmlNode root(u"p"_s);
    root.AddHTML(u"<i a='\u00C3\u00A9'>\u00C3\u00A8</i>\u00E2\u201A\u00AC"_s);
    THtmlNode other;
    other.Parse(u"\u00C0<i a=\u00C1>"_s);
    root.ChangeEncoding(heUTF16, 0);
    root.ChangeEncoding(heANSI, 0);
    root.ChangeEncoding(heUTF8, 0);
    EXPECT_EQ(Tree(root), "<p>{<i a=\"\u00E9\">{\"\u00E8\"} \"\u20AC\"}");
    other.ChangeEncoding(heANSI, 1251);
    EXPECT_EQ(Tree(other), "<body>{\"\u0410\" <i a=\"\u0411\">}");
}

enum TEntry { enInner, enOuter, enAdd, enText };

TEST(node_text, replaces_children_or_the_node)
{
    struct {
        TEntry Entry;
        std::u16string_view Before;
        std::u16string_view Text;
        std::string_view Tree;
    } const rows[] = {
        {enInner, u"<p>a<i>b", u"<b>x</b>y", R"(<p>{<b>{"x"} "y"})"},
        {enInner, u"<p>a", u"", "<p>"},
        {enInner, u"<p>a", u"x</div>y", R"(<p>{"x"})"},
        {enInner, u"<p>", u"<p>a<p>b", R"(<p>{<p>{"a"} <p>{"b"}})"},
        {enInner, u"<table>", u"<tr><td>a<tr><td>b", R"(<table>{<tr>{<td>{"a"}} <tr>{<td>{"b"}}})"},
        {enInner, u"<table>", u"<td>a", R"(<table>{<tr>{<td>{"a"}}})"},
        {enInner, u"<table>", u"<b>x</b>", R"(<table>{<b>{"x"}})"},
        {enInner, u"<table>", u"<img><tr>", "<table>{<img> <tr>}"},
        {enInner, u"<table>", u"<tr></table><tr><td>x", R"(<table>{<tr> <tr>{<td>{"x"}}})"},
        {enOuter, u"<p>", u"<div><b>x</div>y", R"(<div>{<b>{"x"}})"},
        {enOuter, u"<p>", u"<br>c", "<br>"},
        {enInner, u"<tr>", u"<td>a<td>b", R"(<tr>{<td>{"a" <td>{"b"}}})"},
        {enInner, u"<li>", u"<li>a<li>b", R"(<li>{<li>{"a" <li>{"b"}}})"},
        {enInner, u"<b>", u"<p><b>x</p>y", R"(<b>{<p>{<b>{"x"}} <b>{"y"}})"},
        {enInner, u"<p>", u"</p>a</body>b</html>c", R"(<p>{"a" "b" "c"})"},
        {enInner, u"<a>", u"<a>x<a>y", R"(<a>{<a>{"x"} <a>{"y"}})"},
        {enOuter, u"<p a=1>b", u"<i c=2>d</i>e", R"(<i c="2">{"d"})"},
        {enOuter, u"<p a=1>b", u"<!DOCTYPE x> <i>d", R"(<i>{"d"})"},
        {enOuter, u"<p a=1>b", u"text<i>d", R"("text")"},
        {enOuter, u"<p a=1>b", u"<!--c--><i>", R"(#comment "c")"},
        {enOuter, u"<p a=1>b", u"<script d=1>c</script>", R"(<script d="1"> = "c")"},
        {enOuter, u"<p a=1>b", u"<br>", "<br>"},
        {enOuter, u"<td>b", u"<td>c<td>d", R"(<td>{"c" <td>{"d"}})"},
        {enAdd, u"<p>a", u"<i>b</i>c", R"(<p>{"a" <i>{"b"} "c"})"},
        {enAdd, u"<p>a", u"", R"(<p>{"a"})"},
        {enAdd, u"<p>a", u"<p>b</p></p>c", R"(<p>{"a" <p>{"b"} "c"})"},
        {enAdd, u"<ul><li>a</ul>", u"<li>b<li>c", R"(<ul>{<li>{"a"} <li>{"b" <li>{"c"}}})"},
        {enAdd, u"<table><tr>", u"<tr><td>a<tr><td>b", R"(<table>{<tr> <tr>{<td>{"a"}} <tr>{<td>{"b"}}})"},
        {enAdd, u"<table>", u"<b>x</b></table>y", R"(<table>{<b>{"x"} "y"})"},
        {enText, u"<p>a<i>b</i>c", u"<x>", R"(<p>{"<x>"})"},
        {enText, u"<p><i>b</i>c", u"x", R"(<p>{"x"})"},
        {enText, u"<p><!--b-->", u"", R"(<p>{""})"},
    };
    for (const auto& row : rows) {
        THtmlNode root(u"root"_s);
        root.AddHTML(String(row.Before));
        auto* const node = root.GetNode(0);
        const String text(row.Text);
        const THtmlNode* added = nullptr;
        const std::int32_t count = node->Count();
        if (row.Entry == enInner)
            node->SetInnerHTML(text);
        else if (row.Entry == enOuter)
            node->SetOuterHTML(text);
        else if (row.Entry == enAdd)
            added = node->AddHTML(text);
        else
            node->SetInnerText(text);
        EXPECT_EQ(Tree(root), "<root>{" + std::string(row.Tree) + "}") << text.ToUtf8();
        EXPECT_EQ(added, node->Count() > count && row.Entry == enAdd ? node->GetNode(count) : nullptr);
        ExpectLinked(root);
    }
}

TEST(node_text, a_text_that_comes_first_keeps_its_node)
{
    THtmlNode root;
    root.Parse(u"a<i>b"_s);
    const THtmlNode* text = root.GetNode(0);
    root.SetInnerText(u"c"_s);
    EXPECT_EQ(root.GetNode(0), text);
    EXPECT_EQ(THtmlNode::HTMLtoText(u"<p>a&amp;<b>b"_s), u"a&b");
}

}
