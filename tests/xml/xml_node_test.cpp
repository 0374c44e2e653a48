// Reading XML strictly: trees, errors, and a reference that follows the rules item by item.
// SPDX-License-Identifier: MIT
#include <hearth/xml/htxml.h>

#include <markup/trees.h>
#include <runtime/messages.h>

#include <random>

namespace {

using namespace ht;
using namespace trees;

std::string XmlTree(std::u16string_view text)
{
    const THtXMLNode root{String(text)};
    ExpectLinked(root);
    return Tree(root);
}

void ExpectXmlTrees(std::initializer_list<Row> rows)
{
    for (const Row& row : rows)
        EXPECT_EQ(XmlTree(row.Text), row.Tree) << "text: " << String(row.Text).ToUtf8();
}

TEST(xml_node, elements_texts_and_the_rest)
{
    ExpectXmlTrees({
        {u"<a/>", "<a>"},
        {u"<a z='1' b=\"&lt;\" B='2'>x</a>", "<a B=\"2\" b=\"<\" z=\"1\"> = \"x\""},
        {u"<a>x<b>y</b>z<!--c--><?d e?><![CDATA[f]]></a>",
            "<a> = \"x\"{<b> = \"y\" \"z\" #comment \"c\" #directive \"d e\" #cdata \"f\"}"},
        {u"<a><!--c-->x</a>", "<a>{#comment \"c\" \"x\"}"},
        {u"<a:b c:d='e'/>", "<a:b c:d=\"e\">"},
        {u"<a b='1' b='2'/>", "<a b=\"1\">"},
        {u"<script>a<b/></script>", "<script> = \"a\"{<b>}"},
        {u"<br>x</br>", "<br> = \"x\""},
        {u"<a><!DOCTYPE b></a>", "<a>{\"DOCTYPE b\"}"},
        // The end of the text ends all elements; what follows the root is not looked at.
        {u"<a>x<b>y", "<a> = \"x\"{<b> = \"y\"}"},
        {u"<a></a><b></c>", "<a>"},
        {u"x<!--y--><a/>", "<a>"},
        {u"", "#node"},
        {u"text", "#node"},
    });
}

TEST(xml_node, elements_in_rows_read_as_if_each_stood_alone)
{
    ExpectXmlTrees({
        {u"<a><b x='1' y='2'/><b x='3' y='4' /><b y='5' x='6'></b><b>t</b></a>",
            "<a>{<b x=\"1\" y=\"2\"> <b x=\"3\" y=\"4\"> <b x=\"6\" y=\"5\"> <b> = \"t\"}"},
        {u"<a><b/><bc/><b /><B/><b\n/><b ></b></a>", "<a>{<b> <bc> <b> <B> <b> <b>}"},
        // The slash belongs to the name where a blank is behind it, and ends the element where it is not.
        {u"<a><b/ x='1'></b/><b/></a>", "<a>{<b/ x=\"1\"> <b>}"},
        {u"<a><b x='1'/><b xy='2'/><b x ='3'/><b x='4'y='5'/><b x=''/></a>",
            "<a>{<b x=\"1\"> <b xy=\"2\"> <b x=\"3\"> <b x=\"4\" y=\"5\"> <b x=\"\">}"},
        {u"<a><b y='1' xml:space='preserve'> </b><b z='1'> <c/></b><b xml:space='preserve'> <c/> </b></a>",
            "<a>{<b xml:space=\"preserve\" y=\"1\"> = \" \" <b z=\"1\"> = \" \"{<c>} "
            "<b xml:space=\"preserve\"> = \" \"{<c> \" \"}}"},
        {u"<a><b/><b x", "<a>{<b>}"},
    });
}

TEST(xml_node, blanks)
{
    ExpectXmlTrees({
        {u"<a>  <b/>\n</a>", "<a> = \"  \\n\"{<b>}"},
        {u"<a> <b> </b> </a>", "<a> = \"  \"{<b> = \" \"}"},
        {u"<a> <!--b--> x </a>", "<a> = \" \"{#comment \"b\" \" x \"}"},
        {u"<a>x<b/> <c/> </a>", "<a> = \"x  \"{<b> <c>}"},
        {u"<a> &#32;<b/></a>", "<a> = \"  \"{<b>}"},
        {u"<a xml:space='preserve'> <b> <c/></b> </a>",
            "<a xml:space=\"preserve\"> = \" \"{<b> = \" \"{<c>} \" \"}"},
        {u"<a xml:space='preserve'><b/> </a>", "<a xml:space=\"preserve\">{<b> \" \"}"},
        {u"<a xml:space='default'> <b/> </a>", "<a xml:space=\"default\"> = \"  \"{<b>}"},
        {u" <a> ", "<a> = \" \""},
    });
}

TEST(xml_node, tags_that_do_not_nest_are_errors)
{
    const auto message = [](std::u16string_view text) {
        return MessageOf<EHtXML>([text] { THtXMLNode{String(text)}; });
    };
    EXPECT_EQ(message(u"<a><b></a>"), u"Tag order error: /b expected, /a found at position 0");
    EXPECT_EQ(message(u"<A></a>"), u"Tag order error: /A expected, /a found at position 0");
    EXPECT_EQ(message(u"<a>\n</b >"), u"Tag order error: /a expected, /b found at position 0");
    const auto tagMessage = [](std::u16string_view text) {
        return MessageOf<EHtmlParserException>([text] { THtXMLNode{String(text)}; });
    };
    EXPECT_EQ(tagMessage(u"<a>\n1 < 2</a>"), u"Invalid tag name  . Line 1 position 7");
    EXPECT_EQ(tagMessage(u"<a b=1/>"), u"Attribute b value expected but 1 found. Line 0 position 7");
    THtXMLNode root;
    EXPECT_THROW(root.SetXML(u"<a><b>x</b><c></d>"_s), EHtXML);
    EXPECT_EQ(Tree(root), "<a>{<b> = \"x\" <c>}"); // what was read so far
    root.SetXML(u"<e/>"_s);
    EXPECT_EQ(Tree(root), "<e>");
}

TEST(xml_node, reading_again_forgets_the_old_document)
{
    THtXMLNode root(u"<?xml version='1.0'?><a xml:space='preserve' b='c'>x<d/></a>"_s);
    EXPECT_EQ(root.Code(), u"<?xml version='1.0'?>\r\n<a b=\"c\" xml:space=\"preserve\">x<d/></a>");
    root.SetXML(u"<e>y</e>"_s);
    EXPECT_EQ(root.Code(), u"<e>y</e>");
    EXPECT_FALSE(root.PreserveSpace());
    root.SetXML(String());
    EXPECT_EQ(Tree(root), "#node");
}

TEST(xml_node, a_declaration_inside_the_root_decodes_the_rest)
{
    ExpectXmlTrees({
        {u"<a>\u00C3\u00A9<?xml encoding='UTF-8'?><b>\u00C3\u00A9</b></a>",
            "<a> = \"\u00C3\u00A9\"{#directive \"xml encoding='UTF-8'\" <b> = \"\u00E9\"}"},
        {u"<a><?xml encoding='koi8-r'?><b>\u00C3\u00A9</b></a>",
            "<a>{#directive \"xml encoding='koi8-r'\" <b> = \"\u00C3\u00A9\"}"},
        {u"\uFEFF<a/>", "<a>"},
    });
}

TEST(xml_node, the_limit_counts_nested_elements)
{
    const auto nested = [](std::size_t depth) { return Repeated(u"<a>", depth) + Repeated(u"</a>", depth); };
    EXPECT_EQ(Depth(THtXMLNode(nested(1024))), 1023);
    EXPECT_EQ(MessageOf<EHtXML>([&] { THtXMLNode{nested(1025)}; }), u"XML contains too many nested nodes");
    EXPECT_THROW(THtXMLNode{Repeated(u"<a>", 1024) + u"<b/>"_s}, EHtXML);
    const THtXMLNode wide(u"<a>"_s + Repeated(u"<b><c/></b>", 2000) + u"</a>"_s);
    EXPECT_EQ(wide.Count(), 2000);
    THtmlParser parser(nested(5), true);
    parser.SetCaseSensitive(true);
    parser.Limits.XmlDepth = 4;
    parser.NextItem();
    THtXMLNode root;
    EXPECT_THROW(root.Parse(parser), EHtXML);
    THtmlParser deep(nested(100'000), true);
    deep.SetCaseSensitive(true);
    deep.Limits.XmlDepth = 0;
    deep.NextItem();
    THtXMLNode bottomless;
    bottomless.Parse(deep);
    EXPECT_EQ(Depth(bottomless), 99'999);
}

/// Counts in a class of its own how often it is asked to read.
class TCountingNode : public THtXMLNode {
public:
    static constexpr TClassInfo kClassInfo{u"TCountingNode", &THtXMLNode::kClassInfo};
    static int Reads;

    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    THtNodeClass NodeClass() const override { return THtNodeClass::Of<TCountingNode>(); }
    THtNodeClass GetElementClass(const THtTagName& ATag, const THtNode* ARoot) const override
    {
        return ATag == THtTagName(u"plain"_s) ? THtXMLNode::GetElementClass(ATag, ARoot)
            : ATag == THtTagName(u"html"_s)   ? THtNodeClass::Of<THtmlNode>()
                                              : NodeClass();
    }
    void Parse(THtmlParser& HP) override
    {
        ++Reads;
        THtXMLNode::Parse(HP);
    }
};
int TCountingNode::Reads = 0;

TEST(xml_node, classes_of_elements_read_themselves)
{
    TCountingNode root;
    TCountingNode::Reads = 0;
    root.SetXML(u"<a>x<b>y<plain><b>z</b></plain></b><c/>w</a>"_s);
    EXPECT_EQ(TCountingNode::Reads, 3); // below "plain" all nodes are plain
    EXPECT_EQ(Tree(root), "<a> = \"x\"{<b> = \"y\"{<plain>{<b> = \"z\"}} <c> \"w\"}");
    EXPECT_EQ(Tree(*root.Clone()), Tree(root));
    EXPECT_NE(As<TCountingNode>(root.Clone()->GetNode(0)), nullptr);
    EXPECT_EQ(MessageOf<EAssertionFailed>([&] { root.SetXML(u"<a><html/></a>"_s); }),
        u"The class of an XML element has to descend from THtXMLNode");
    THtmlParser deep(Repeated(u"<a>", 2000), true);
    deep.Limits.XmlDepth = 0;
    deep.NextItem();
    EXPECT_EQ(MessageOf<EHtXML>([&] { TCountingNode().Parse(deep); }), u"XML contains too many nested nodes");
}

class TOpenNode : public THtXMLNode {
public:
    using THtXMLNode::ReplaceAttributes;
};

/// The rules of reading, one call an element and one item a step.
void ReadElement(THtmlParser& items, TOpenNode& node)
{
    node.SetTag(items.Tag);
    node.TagType = items.TagType;
    if (items.Attributes())
        node.ReplaceAttributes(items.TakeAttributes());
    if (items.TagClosed)
        return;
    const bool preserves = node.HasAttributeValue(u"xml:space", u"preserve");
    while (items.NextItem()) {
        if (items.IsCloseTag) {
            if (items.Tag == node.TagName())
                return;
            throw EHtXML(u"order"_s);
        }
        if (items.Tag.IsEmpty() && items.TagType == htString) {
            const String joined = node.Content() + items.Value;
            if ((IsBlankText(items.Value) && !preserves) || (node.Count() == 0 && node.Content().IsEmpty())) {
                node.SetContent(joined);
                continue;
            }
        }
        auto& child = static_cast<TOpenNode&>(*node.InternalAddChild(THtNodeClass::Of<TOpenNode>()));
        child.TagType = items.TagType;
        if (items.Tag.IsEmpty())
            child.SetContent(items.Value);
        else
            ReadElement(items, child);
    }
}

std::string ReferenceTree(const String& text)
{
    THtmlParser items(text, true);
    items.SetCaseSensitive(true);
    TOpenNode root;
    while (items.NextItem()) {
        if (items.TagType == htIdent) {
            ReadElement(items, root);
            break;
        }
    }
    return Tree(root);
}

template <class Read> std::string TreeOrError(Read read)
{
    try {
        return read();
    } catch (const Exception& error) {
        return String(error.ClassName()).ToUtf8();
    }
}

TEST(xml_node, random_documents_read_as_the_reference_does)
{
    const std::u16string_view pieces[] = {u"<a>", u"<a>", u"</a>", u"</a>", u"<bb c='d'>", u"</bb>",
        u"</bb >", u" ", u"\n  ", u"text", u"&lt;", u"&#32;", u"<!-- c -->", u"<?d?>", u"<![CDATA[ ]]>",
        u"<e/>", u"<a xml:space='preserve'>", u"<\u0416/>", u"<a f=\"", u"\"", u">", u"</", u"<longer.name>",
        u"</longer.name>", u"/", u"\u00A0"};
    std::mt19937 random(31);
    int complete = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::u16string text = u"<a>";
        for (std::size_t count = random() % 24; count > 0; --count)
            text += pieces[random() % std::size(pieces)];
        const String document(text);
        const std::string expected = TreeOrError([&] { return ReferenceTree(document); });
        ASSERT_EQ(TreeOrError([&] { return XmlTree(document); }), expected) << document;
        complete += expected.starts_with("<") ? 1 : 0;
    }
    EXPECT_GT(complete, 2'000);
}

}
