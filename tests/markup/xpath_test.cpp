// Paths over trees: what they find, what odd ones mean, and what hostile ones cost.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/hash.h>
#include <hearth/markup/html_error.h>
#include <hearth/markup/xpath.h>
#include <markup/trees.h>
#include <runtime/messages.h>

#include <string>

namespace {

using namespace ht;
using namespace trees;

THtNode* Add(THtNode& parent, const String& tag, const String& content = {})
{
    THtNode* child = parent.AddChild(parent.NodeClass());
    child->SetTag({tag, RSHashLower(tag), FindTagId(tag.View())});
    child->SetContent(content);
    return child;
}

/// Each match as its id, its content, or its tag.
std::string Found(THtNode& top, std::u16string_view path, THtNode* current = nullptr)
{
    std::string text;
    const auto found = top.XPath(path, false, current);
    for (const THtNode* node : *found) {
        const String& id = node->Attr(u"id");
        const String& word = !id.IsEmpty() ? id : !node->Content().IsEmpty() ? node->Content() : node->Tag();
        text += (text.empty() ? "" : " ") + word.ToUtf8();
    }
    return text;
}

class XPath : public testing::Test {
protected:
    XPath()
    {
        Root.Parse(u"<div id=a n=3><b id=b x=1>one</b>two<i id=c>three<b id=d n=7 y>four</b></i></div>"
                   u"<p id=e n=10 x='it 1'>five<b id=f>3</b><!--six--></p>"_s);
    }

    THtmlNode Root;
};

TEST_F(XPath, steps)
{
    const struct {
        std::u16string_view Path;
        std::string_view Found;
    } rows[] = {
        {u"div/b", "b"},
        {u"/div/b", "b"},
        {u"./div/b", "b"},
        {u"//b", "b d f"},
        {u".//b", "b d f"},
        {u"div//b", "b d"},
        {u"*", "a e"},
        {u"//*", "a b one two c three d four e five f 3 six"},
        {u"div/text()", "two"},
        {u"//text()", "one two three four five 3"},
        {u"//b/..", "a c e"},
        {u"//i/../b/../i/b", "d"},
        {u"//b/@x", "b"},
        {u"//@x", ""}, // asked of this node alone
        {u"//b/../..", "body a body"},
        {u"DIV", ""},
        {u"", ""},
        {u"/", ""},
        {u"div/", "a"},
        {u"../div", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Found(Root, row.Path), row.Found) << String(row.Path);
}

TEST_F(XPath, predicates)
{
    const struct {
        std::u16string_view Path;
        std::string_view Found;
    } rows[] = {
        {u"//b[0]", "b d f"},
        {u"//i[1]", "c"},
        {u"//i[0]", ""},
        {u"//*[last()]", "c d e six"},
        {u"*[LAST()]", "e"},
        {u"//b[@x]", "b"},
        {u"//b[@x='1' or @y]", "b d"},
        {u"//b[not @x]", "d f"},
        {u"//b[@x and not @y]", "b"},
        {u"//*[@x!='1' and @x]", "e"},
        {u"*[@n>'5']", "a"}, // a lone ">" compares as "<"
        {u"*[@n<'5']", "a"},
        {u"*[@n<5]", ""}, // an unquoted number is a path, which finds nothing
        {u"*[@n>=\"10\"]", "e"},
        {u"*[@n<='3']", "a"},
        {u"//*[@n<'8' and @y]", "d"},
        {u"*[b]", "a e"},
        {u"*[i/b]", "a"},
        {u"*[b='one']", "a"},
        {u"*['one'=b]", "a"},
        {u"*[b=3]", ""},
        {u"*[u=3]", "a e"}, // as nothing equals nothing
        {u"*[//p/b='3']", "a e"}, // a comparison asks the root
        {u"//b[text()='four']", "d"},
        {u"//b[text()!='four']", "b f"},
        {u"*[@x='it 1']/b", "f"},
        {u"*[@x=\"it 1\"][0]", ""}, // two predicates are not supported
        {u"div[b[@x]]", "a"},
        {u"div[b[@y]]", ""},
        {u"div[i[b[@y]]]", "a"},
        {u"*['']", ""},
        {u"*['x']", "a e"},
        {u"*[@x='it 1' and  b]", "e"},
        {u"*[]", "a e"},
        {u"*[ ]", ""}, // a condition without an operand never holds
        {u"*[ i ]", "a"},
        {u"div[/b]", "a"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Found(Root, row.Path), row.Found) << String(row.Path);
}

TEST_F(XPath, the_current_node_is_given_or_the_start)
{
    THtNode* second = Root.NodebyName(u"p");
    EXPECT_EQ(Found(*second, u"current"), "e");
    EXPECT_EQ(Found(*second, u"Current/b"), "f");
    EXPECT_EQ(Found(Root, u"div/current/b", second), "f");
    // A comparison keeps it; a test that something exists starts over from each candidate.
    EXPECT_EQ(Found(Root, u"//b[current/@n='10']", second), "b d f");
    EXPECT_EQ(Found(Root, u"*[current/i]", second), "a");
}

TEST_F(XPath, values)
{
    EXPECT_EQ(Root.XPathValue(u"div/b"), u"one");
    EXPECT_EQ(Root.XPathValue(u"//b[@y]/@n"), u"7");
    EXPECT_EQ(Root.XPathValue(u"//@n"), u"");
    EXPECT_EQ(Root.XPathValue(u"//b/@y"), u"y"); // a name alone is its own value
    EXPECT_EQ(Root.XPathValue(u"div/i/.."), u"onetwothreefour");
    EXPECT_EQ(Root.XPathValue(u"u"), u"");
    EXPECT_EQ(Root.XPathValue(u""), u"");
    THtNode* inner = Root.FindNode(u"i");
    EXPECT_EQ(inner->XPathValue(u"/p/b"), u"3"); // from the root
    EXPECT_EQ(Found(*inner, u"/p/b"), ""); // from here
}

TEST_F(XPath, the_first_match_and_callbacks)
{
    EXPECT_EQ(Root.XPath(u"//b", true)->Count(), 1);
    EXPECT_EQ(Root.XPath(u"//b", true)->List()[0]->Attr(u"id"), u"b");
    std::string seen;
    Root.XPath(u"//b", [&](THtNode& node, bool& stop) {
        seen += node.Attr(u"id").ToUtf8();
        stop = seen == "bd";
    });
    EXPECT_EQ(seen, "bd");
    Root.XPath(u"//b", [](THtNode& node, bool&) { node.Parent()->DeleteChild(&node); });
    EXPECT_EQ(Root.XPath(u"//b")->Count(), 0);
}

TEST_F(XPath, a_step_can_be_tested_alone)
{
    TXPathProcessor processor(u"b[last()]/i[0]");
    ASSERT_EQ(processor.Nodes.Length(), 2);
    EXPECT_EQ(processor.Nodes[0].Next, &processor.Nodes[1]);
    THtNode* first = Root.NodebyName(u"div");
    EXPECT_FALSE(first->EvaluateCondition(processor.Nodes[0]));
    EXPECT_TRUE(first->EvaluateCondition(processor.Nodes[1]));
    EXPECT_FALSE(Root.EvaluateCondition(processor.Nodes[1])); // no parent
}

/// `depth` elements with the tag "a", each in the one before.
void Nest(THtNode& top, std::int32_t depth)
{
    THtNode* node = &top;
    for (std::int32_t i = 0; i < depth; ++i)
        node = Add(*node, u"a"_s);
}

TEST(XPathHostile, ways_that_multiply_end_at_the_limit)
{
    THtmlNode root;
    Nest(root, 256);
    EXPECT_THROW(root.XPath(u"//a//a//a//a//a"), EHtmlParserException);
    EXPECT_EQ(root.XPath(u"//a//a")->Count(), 256 * 255 / 2);
    EXPECT_EQ(root.XPath(u"//a/..//a/..//a", true)->Count(), 1);
    // No result to count, and yet each node is looked at once a step.
    EXPECT_EQ(root.XPath(u"//a//a//a//a//a//a//a//a//b")->Count(), 0);
    EXPECT_EQ(root.XPath(Concat({u"//a", Repeated(u"/..//a", 100), u"/b"}))->Count(), 0);
    EXPECT_EQ(root.XPathValue(u"//a//a//a//a//a//a//a//a//b"), u"");
    EXPECT_EQ(root.XPath(u"//a[//a[//a[//a[//a[//b]]]]]")->Count(), 0);
    EXPECT_EQ(root.XPath(u"//a[current//a[current//a[current//b]]]")->Count(), 0);
}

TEST(XPathHostile, predicates_nest_up_to_the_limit)
{
    THtmlNode root;
    Nest(root, 400);
    const String shallow = Concat({Repeated(u"a[", 200), u"a", Repeated(u"]", 200)});
    EXPECT_EQ(root.XPath(shallow)->Count(), 1);
    const String deep = Concat({Repeated(u"a[", 300), u"a", Repeated(u"]", 300)});
    EXPECT_THROW(root.XPath(deep), EHtmlParserException);
    THtmlNode small;
    Nest(small, 5);
    EXPECT_EQ(small.XPath(Repeated(u"a[", 100'000))->Count(), 0);
    // Where the host sets no limit the stack still does.
    Nest(root, 1'200);
    TXPathProcessor processor(Repeated(u"a[", 1'200));
    processor.Limits.XPathPredicateDepth = 0;
    THtNodeList found;
    EXPECT_EQ(MessageOf<EHtmlParserException>([&] { root.InternalXPath(processor.Nodes[0], &found, false); }),
        u"XPath predicates are nested more than 1024 deep");
}

TEST(XPathHostile, odd_texts_compile)
{
    THtmlNode root;
    Nest(root, 3);
    for (const std::u16string_view path : {u"a[\"", u"a]]]]", u"[", u"]", u"//", u"///", u"a[", u"a[=",
             u"a[!", u"a[b!", u"a[@", u"a[']", u"a[1]["}) {
        EXPECT_LE(root.XPath(path)->Count(), 1) << String(path);
        EXPECT_EQ(root.XPathValue(path), u"") << String(path);
    }
    EXPECT_EQ(root.XPath(Repeated(u"/", 100'000))->Count(), 0);
    EXPECT_EQ(root.XPath(Repeated(u"a/", 100'000))->Count(), 0);
}

TEST(XPathHostile, places_among_many_siblings)
{
    constexpr std::int32_t kSiblings = 100'000;
    THtmlNode root;
    for (std::int32_t i = 0; i < kSiblings; ++i)
        Add(root, u"a"_s);
    for (std::int32_t i = 0; i < kSiblings; ++i)
        Add(root, {}, u"t"_s);
    EXPECT_EQ(root.XPath(u"a[99999]")->Count(), 1);
    EXPECT_EQ(root.XPath(u"a[last()]")->Count(), 1);
    EXPECT_EQ(root.XPath(u"//*[@x or current//b]")->Count(), 0);
}

TEST(XPathHostile, deep_trees_need_no_stack)
{
    THtmlNode root;
    Nest(root, 100'000);
    EXPECT_EQ(root.XPath(u"//a")->Count(), 100'000);
    EXPECT_EQ(root.XPath(u"//a[a/a]")->Count(), 99'998);
    EXPECT_EQ(root.XPath(u"//a[@x]//a")->Count(), 0);
}

}
