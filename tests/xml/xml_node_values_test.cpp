// Texts and names of XML nodes, copies, and changes to whole trees.
// SPDX-License-Identifier: MIT
#include <hearth/xml/htxml.h>

#include <markup/trees.h>
#include <runtime/messages.h>

namespace {

using namespace ht;
using namespace trees;

TEST(xml_node_values, a_value_is_all_the_text_of_a_node)
{
    const THtXMLNode root(u"<a> x<b>inner</b>y<!--c--><![CDATA[d]]><b/></a>"_s);
    EXPECT_EQ(root.Value(), u" xycd"); // comments count too
    EXPECT_EQ(root.GetNode(0)->Value(), u"inner");
    EXPECT_EQ(root.GetNode(1)->Value(), u"y");
    EXPECT_EQ(root.GetNode(4)->Value(), u"");
}

TEST(xml_node_values, setting_a_value_finds_the_text_that_is_there)
{
    const std::pair<std::u16string_view, std::string_view> rows[] = {
        {u"<a/>", "<a> = \"new\""},
        {u"<a>x<b/>y</a>", "<a> = \"new\"{<b> \"y\"}"},
        {u"<a><b/>x<!--c-->y</a>", "<a>{<b> \"new\" #comment \"c\" \"y\"}"},
        {u"<a><b/><!--c-->y</a>", "<a>{<b> #comment \"new\" \"y\"}"},
        {u"<a><b/></a>", "<a> = \"new\"{<b>}"},
    };
    for (const auto& [text, tree] : rows) {
        THtXMLNode root{String(text)};
        root.SetValue(u"new"_s);
        EXPECT_EQ(Tree(root), tree);
    }
    THtXMLNode plain;
    plain.SetValue(u"text"_s);
    EXPECT_EQ(Tree(plain), "\"text\"");
}

TEST(xml_node_values, names)
{
    THtXMLNode node;
    const std::u16string_view rows[][3] = {{u"a", u"a", u""}, {u"b:a", u"a", u"b"}, {u"c:b:a", u"b:a", u"c"},
        {u":a", u"a", u""}, {u"b:", u"", u"b"}};
    for (const auto& [tag, local, prefix] : rows) {
        node.SetTag(String(tag));
        EXPECT_EQ(node.LocalName(), local);
        EXPECT_EQ(node.Prefix(), prefix);
    }
    const THtXMLNode root(u"<r><x:a><b/></x:a><c><y:a id='2'/></c><a id='1'/></r>"_s);
    EXPECT_EQ(root.NodebyNameNS(u"a"), root.GetNode(0));
    EXPECT_EQ(root.NodebyNameNS(u"a/b"), root.GetNode(0)->GetNode(0));
    EXPECT_EQ(root.NodebyNameNS(u"c/a"), root.GetNode(1)->GetNode(0));
    EXPECT_EQ(root.NodebyNameNS(u"x:a"), nullptr);
    EXPECT_EQ(root.NodebyNameNS(u"a/x"), nullptr);
}

TEST(xml_node_values, what_a_node_is)
{
    const THtXMLNode root(u"<a><!--c-->x<b/><![CDATA[]]></a>"_s);
    EXPECT_FALSE(root.IsTextElement());
    EXPECT_TRUE(root.HasChildNodes());
    EXPECT_FALSE(root.GetNode(0)->IsTextElement());
    EXPECT_TRUE(root.GetNode(1)->IsTextElement());
    EXPECT_FALSE(root.GetNode(1)->HasChildNodes());
    EXPECT_FALSE(root.GetNode(3)->IsTextElement());
    EXPECT_EQ(MessageOf<EHtXML>([&] { root.GetNode(4); }), u"Node index 4 out of range");
    EXPECT_EQ(MessageOf<EHtXML>([&] { root.GetNode(2)->GetNode(-1); }), u"Node index -1 out of range");
    EXPECT_EQ(MessageOf<EHtXML>([&] { THtXMLNode().GetNode(0); }), u"Node index 0 out of range");
}

TEST(xml_node_values, attributes_keep_their_case)
{
    THtXMLNode node(u"<a/>"_s);
    node.SetAttr(u"B"_s, u"1"_s);
    node.SetAttr(u"b"_s, u"2"_s);
    node.SetAttr(u"\u00C9"_s, u"3"_s);
    EXPECT_EQ(node.Code(), u"<a B=\"1\" b=\"2\" \u00C9=\"3\"/>");
    EXPECT_EQ(node.GetAttribute(u"B"), u"1");
}

TEST(xml_node_values, processing_instructions)
{
    const THtXMLNode root(
        u"<?xml version=\"1.0\" encoding='utf-8'?><?b c=\"1\" C='&lt;' d?><?b c='2'?><?9?><?e \"?><a/>"_s);
    EXPECT_EQ(root.GetPIAttribute(u"xml", u"encoding"), u"utf-8");
    EXPECT_EQ(root.GetPIAttribute(u"b", u"c"), u"1");
    EXPECT_EQ(root.GetPIAttribute(u"b", u"C"), u"<");
    EXPECT_EQ(root.GetPIAttribute(u"b", u"d"), u"d");
    EXPECT_EQ(root.GetPIAttribute(u"b", u"x"), u"");
    for (const std::u16string_view name : {u"", u"9", u"e", u"c", u"a"})
        EXPECT_EQ(root.GetPIAttribute(name, u"c"), u"") << String(name);
    THtXMLNode made(u"<a/>"_s);
    EXPECT_FALSE(made.HasProcessingInstructions());
    made.ProcessingInstructions().Add(u"xml version=\"1.0\""_s);
    EXPECT_EQ(made.Code(), u"<?xml version=\"1.0\"?>\r\n<a/>");
}

TEST(xml_node_values, copies_are_whole)
{
    const auto json = THtXMLNode::CreatefromJSON(u"{a:'', b:1, c:'', d:[{},[2]]}"_s);
    json->GetNode(0)->SetTag(u"list"_s);
    EXPECT_EQ(json->Clone()->JSON(), json->JSON());
    EXPECT_EQ(Tree(*json->Clone()), Tree(*json));
    const THtXMLNode root(u"<?p?><a xml:space='preserve' b='' c='1'>x<b><c/></b><!--d--><e></e></a>"_s);
    const auto copy = root.Clone();
    ExpectLinked(*copy);
    EXPECT_EQ(copy->Code(), root.Code());
    EXPECT_TRUE(copy->PreserveSpace());
    copy->GetNode(0)->SetAttr(u"n"_s, u"1"_s);
    EXPECT_EQ(root.GetNode(0)->Attributes(), nullptr);

    THtXMLNode target(u"<x y='z'>old<w/></x>"_s);
    target.Assign(root);
    ExpectLinked(target);
    EXPECT_EQ(target.Code(), root.Code());
    // Parts of the own tree, the whole and its parent.
    target.Assign(*target.GetNode(0));
    EXPECT_EQ(target.Code(), u"<b><c/></b>");
    target.Assign(target);
    target.GetNode(0)->Assign(target);
    EXPECT_EQ(target.Code(), u"<b><b><c/></b></b>");
    EXPECT_EQ(target.GetNode(0)->Parent(), &target);
    ExpectLinked(target);
}

TEST(xml_node_values, foreign_nodes_are_refused)
{
    THtXMLNode root(u"<a><b/></a>"_s);
    root.AddNode(std::make_unique<THtmlNode>(u"p"_s));
    EXPECT_EQ(root.Code(), u"<a><b/><p/></a>");
    EXPECT_EQ(root.JSON(), u"{\r\n\"b\":{\r\n},\"p\":{\r\n}}");
    EXPECT_THROW(root.GetNode(1), EAssertionFailed);
    EXPECT_THROW(root.Clone(), EAssertionFailed);
    EXPECT_THROW(root.RemoveNamespaces(), EAssertionFailed);
}

TEST(xml_node_values, namespaces_go_and_xml_stays)
{
    THtXMLNode root(u"<s:a xmlns:s='urn:s' xmlns='urn:d' s:b='1' b='2' t:c='3' u:c='4' xml:lang='de'>"
                    "<s:b/><:c d:='5'/><e/>x</s:a>"_s);
    root.RemoveNamespaces();
    EXPECT_EQ(root.Code(), u"<a b=\"2\" c=\"3\" xml:lang=\"de\"><b/><c d:=\"5\"/><e/>x</a>");
    EXPECT_NE(root.NodebyName(u"b"), nullptr);
}

TEST(xml_node_values, sorting_keeps_equal_ones_in_order)
{
    THtXMLNode root(u"<r><a k='b'/><b k='B'/><c/><d k='a'/><e k='b'/><f k='10'/></r>"_s);
    root.SortbyAttr(u"k");
    ExpectLinked(root);
    EXPECT_EQ(Tree(root), "<r>{<c> <f k=\"10\"> <b k=\"B\"> <d k=\"a\"> <a k=\"b\"> <e k=\"b\">}");
    THtXMLNode empty;
    empty.SortbyAttr(u"k");
}

TEST(xml_node_values, a_path_sets_what_it_names)
{
    struct TRow {
        std::u16string_view Path;
        std::int32_t Count;
        std::u16string_view Code;
    };
    constexpr std::u16string_view kText = u"<r><a i='1'>x</a><b><a>y<c/>z</a></b><t/></r>";
    const TRow rows[] = {
        {u"a/@i", 1, u"<r><a i=\"v\">x</a><b><a>y<c/>z</a></b><t/></r>"},
        {u"//a/@i", 2, u"<r><a i=\"v\">x</a><b><a i=\"v\">y<c/>z</a></b><t/></r>"},
        {u"//a[@i='1']/@j", 1, u"<r><a i=\"1\" j=\"v\">x</a><b><a>y<c/>z</a></b><t/></r>"},
        {u"@i", 1, u"<r i=\"v\"><a i=\"1\">x</a><b><a>y<c/>z</a></b><t/></r>"},
        {u"//a", 2, u"<r><a i=\"1\">v</a><b><a>v<c/>z</a></b><t/></r>"},
        {u"t", 1, u"<r><a i=\"1\">x</a><b><a>y<c/>z</a></b><t>v</t></r>"},
        {u"a/text()", 1, u"<r><a i=\"1\">v</a><b><a>y<c/>z</a></b><t/></r>"},
        {u"b//text()", 1, u"<r><a i=\"1\">x</a><b><a>y<c/>v</a></b><t/></r>"},
        {u"b/a/../@i", 1, u"<r><a i=\"1\">x</a><b i=\"v\"><a>y<c/>z</a></b><t/></r>"},
        {u"none/@i", 0, u"<r><a i=\"1\">x</a><b><a>y<c/>z</a></b><t/></r>"},
        {u"", 0, u"<r><a i=\"1\">x</a><b><a>y<c/>z</a></b><t/></r>"},
    };
    for (const TRow& row : rows) {
        THtXMLNode root{String(kText)};
        EXPECT_EQ(root.XPathSet(row.Path, u"v"_s), row.Count) << String(row.Path);
        EXPECT_EQ(root.Code(), row.Code) << String(row.Path);
    }
    THtXMLNode root{String(kText)};
    EXPECT_EQ(root.XPathSet(u"//a/@i", u""_s, true), 1);
    EXPECT_EQ(root.Code(), u"<r><a i=\"\">x</a><b><a>y<c/>z</a></b><t/></r>");
}

}
