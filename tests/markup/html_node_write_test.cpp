// Trees printed plainly and indented, and their text, against rows and a recursive reference.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_node.h>

#include <hearth/foundation/fast_raw_string.h>
#include <hearth/foundation/fast_string.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>

namespace {

using namespace ht;

/// Adds what only descendants of the class add to the raw text.
class TRawNode : public THtmlNode {
public:
    String RawText() const override { return Content(); }
};

/// Builds a tree from a short notation: name[attribute=value,...]'content'(children); 'text' alone is a text
/// node,
/// !'...' a comment, ?'...' a directive, #'...' CDATA. A tree whose root has no tag begins with "(".
class TreeReader {
public:
    TreeReader(std::u16string_view notation, THtmlNode& root)
        : FRest(notation)
    {
        Read(root);
    }

private:
    bool Take(char16_t c)
    {
        const bool taken = FRest.starts_with(c);
        FRest.remove_prefix(taken ? 1 : 0);
        return taken;
    }

    String TakeUntil(std::u16string_view stops)
    {
        const std::u16string_view text = FRest.substr(0, FRest.find_first_of(stops));
        FRest.remove_prefix(text.size());
        return String(text);
    }

    void SetKind(THtmlNode& node, const String& tag, THTMLTokenType type)
    {
        if (!tag.IsEmpty())
            node.SetTag(tag);
        node.TagType = type;
    }

    void ReadName(THtmlNode& node)
    {
        if (Take(u'!'))
            return SetKind(node, u"!"_s, htComment);
        if (Take(u'?'))
            return SetKind(node, u"?"_s, htDirective);
        if (Take(u'#'))
            return SetKind(node, u""_s, htCData);
        const String name = TakeUntil(u"[' ()");
        SetKind(node, name,
            name == u"script"      ? htScript
                : name == u"style" ? htStyle
                : name.IsEmpty()   ? htString
                                   : htIdent);
    }

    void Read(THtmlNode& node)
    {
        ReadName(node);
        if (Take(u'[')) {
            do {
                const String name = TakeUntil(u"=");
                Take(u'=');
                node.SetAttribute(name, TakeUntil(u",]"));
            } while (Take(u','));
            Take(u']');
        }
        if (Take(u'\'')) {
            node.SetContent(TakeUntil(u"'"));
            Take(u'\'');
        }
        if (Take(u'(')) {
            while (!Take(u')')) {
                Read(*static_cast<THtmlNode*>(node.AddChild(node.NodeClass())));
                Take(u' ');
            }
        }
    }

    std::u16string_view FRest;
};

/// Line breaks as "|", so that a row shows them.
String Shown(const String& text)
{
    String out;
    for (const char16_t c : text) {
        if (c != u'\r')
            out += c == u'\n' ? u'|' : c;
    }
    return out;
}

String Formatted(const THtmlNode& root, std::int32_t spaces)
{
    TFastString buffer(128);
    bool afterBlock = false;
    root.FastFormattedHTML(buffer, 0, spaces, afterBlock);
    return buffer.GetAsString();
}

String FastText(const THtmlNode& root)
{
    TFastString buffer(128);
    root.FastInnerText(buffer);
    return buffer.GetAsString();
}

struct Row {
    std::u16string_view tree;
    std::u16string_view output;
};

template <class Output> void ExpectRows(std::initializer_list<Row> rows, Output output)
{
    for (const Row& row : rows) {
        THtmlNode root;
        TreeReader(row.tree, root);
        EXPECT_EQ(Shown(output(root)), row.output) << String(row.tree);
    }
}

bool IsOneOf(const String& tag, std::initializer_list<std::u16string_view> tags)
{
    return std::find(tags.begin(), tags.end(), tag.View()) != tags.end();
}

bool IsBlock(const THtNode& node)
{
    return IsOneOf(
        node.Tag(), {u"p", u"pre", u"blockquote", u"li", u"tr", u"div", u"h1", u"h2", u"h3", u"h4", u"h5"});
}

/// The readable text as it is defined: each node from the texts of its children.
String ReadableText(const THtmlNode& node)
{
    const bool isSilent = node.TagType >= htScript && node.TagType <= htCData;
    if (isSilent)
        return String();
    String text = node.Tag() == u"br"         ? u"\r\n"_s
        : IsOneOf(node.Tag(), {u"a", u"img"}) ? String()
                                              : node.Content();
    if (node.Tag() == u"noscript")
        return text;
    for (const THtNode* child : node.Children())
        text += ReadableText(*static_cast<const THtmlNode*>(child));
    const THtNode* parent = node.Parent();
    if (!text.IsEmpty() && IsBlock(node)) {
        bool startsLine = true;
        if (parent && (IsBlock(*parent) || parent->Tag() == u"body")) {
            startsLine = false;
            for (std::int32_t i = 0; i < node.NodeIndex(); ++i) {
                const THtNode& earlier = *parent->GetNode(i);
                startsLine |= earlier.TagType != htString || !IsBlankText(earlier.Content());
            }
        }
        text = startsLine ? u"\r\n"_s + text.Trim() : text.TrimLeft();
    }
    if (IsOneOf(node.Tag(), {u"td", u"th"}) && parent && parent->LastChildTag() != &node)
        text += u'\t';
    return text;
}

void Grow(THtmlNode& node, std::mt19937& random, int depth)
{
    static constexpr std::u16string_view kNodes[] = {u"p", u"div", u"li", u"tr", u"td", u"th", u"span", u"a",
        u"br", u"body", u"h6", u"noscript", u"img", u"!'c'", u"#' '", u"script's'", u"' '", u"'x'", u"' y '",
        u"'\r\n'", u"'\tz'", u"'  '"};
    for (auto count = random() % 5; count > 0; --count) {
        auto* child = static_cast<THtmlNode*>(node.AddChild(node.NodeClass()));
        TreeReader(kNodes[random() % std::size(kNodes)], *child);
        if (child->TagType == htIdent && depth > 0)
            Grow(*child, random, depth - 1);
    }
}

}

TEST(html_write, outer_html)
{
    ExpectRows(
        {
            {u"div('a<b\"' b('c') !'x' ?'y' #'z')", u"<div>a&lt;b\"<b>c</b><!--x--><?y?><![CDATA[z]]></div>"},
            {u"div(br img[src=x] hr p wbr)", u"<div><br/><img src=\"x\"/><hr/><p></p><wbr/></div>"},
            {u"br('x')", u"<br>x</br>"},
            {u"input[disabled=disabled]", u"<input disabled/>"},
            {u"a[z=1,b=2<]", u"<a b=\"2&lt;\" z=\"1\"></a>"},
            {u"script[async=async,src=q]'a<b'", u"<script async=\"async\" src=\"q\">a<b</script>"},
            {u"div(style'b>i'('never'))", u"<div><style>b>i</style></div>"},
            {u"xbody[a=1]", u"<body a=\"1\"></body>"},
            {u"html(xbody('t'))", u"<html><body>t</body></html>"},
            {u"('a' p('b'))", u"a<p>b</p>"},
            {u"'a&b'('c')", u"a&amp;bc"},
            {u"meta[http-equiv=content-TYPE,content=x]",
                u"<meta http-equiv=\"Content-Type\" content=\"text/html;\"/>"},
            {u"meta[http-equiv=refresh]", u"<meta http-equiv=\"refresh\"/>"},
        },
        [](const THtmlNode& root) { return root.OuterHTML(); });

    THtmlNode root;
    TreeReader(u"p('a' b[c=d] !'e')", root);
    EXPECT_EQ(root.InnerHTML(), u"a<b c=\"d\"></b><!--e-->");
    THtmlNode meta;
    TreeReader(u"meta[http-equiv=Content-Type]", meta);
    TFastString buffer(64);
    buffer.Charset = u"utf-8"_s;
    meta.FastInnerHTML(buffer);
    EXPECT_EQ(
        buffer.GetAsString(), u"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\"/>");
    root.LastChild()->Nodes(); // an empty list does not make a comment an element
    EXPECT_EQ(root.InnerHTML(), u"a<b c=\"d\"></b><!--e-->");
}

TEST(html_write, indented_html)
{
    ExpectRows(
        {
            {u"body(div('short'))", u"|  <div>short</div>"},
            {u"body(div(p('a') ' ' p('b')))", u"|  <div>|    <p>a</p>|    <p>b</p>|  </div>"},
            {u"body(p('a' b('c') ' d '))", u"|  <p>|    a<b>c</b> d|  </p>"},
            {u"body(script[src=x]'  go(); ')", u"|  <script src=\"x\">|go(); |  </script>"},
            {u"body(!'c' p('x'))", u"|  <!--c-->||  <p>x</p>"},
            {u"body('x ' ?'d')", u"|  x|<?d?>|"},
            {u"body(p hr b)", u"|  <p></p>|  <hr/>|  <b></b>"},
            {u"body('a' b hr[x=y])", u"|  a<b></b>|  <hr x=\"y\"/>"},
            {u"('a ' b('c') #'d')", u"a <b>c</b><![CDATA[d]]>"},
            {u"html(xbody('t'))", u"|  <body>t</body>"},
            {u"meta[http-equiv=content-type]", u""},
        },
        [](const THtmlNode& root) { return Formatted(root, 2); });
    // Line break, indentation, start tag and the trimmed text count.
    for (const std::size_t length : {std::size_t{54}, std::size_t{55}}) {
        const String text(length, u'x');
        THtmlNode root;
        TreeReader(Concat({u"body(div(' ", text, u" '))"}), root);
        EXPECT_EQ(Shown(Formatted(root, 2)),
            length == 54 ? Concat({u"|  <div> ", text, u"</div>"})
                         : Concat({u"|  <div>|    ", text, u"|  </div>"}));
    }
}

TEST(html_write, attributes)
{
    struct AttributesRow {
        bool caseSensitive;
        String fast;
        String plain;
    };
    const AttributesRow rows[] = {
        {false, u" async b=\"&quot;&nbsp;\U0001F600\""_s, u"async=\"async\" b=\"&quot;&nbsp;\U0001F600\""_s},
        {true, u" Async=\"async\" B=\"&quot;&#160;\U0001F600\""_s,
            u"Async=\"async\" B=\"&quot;&nbsp;\U0001F600\""_s},
    };
    for (const AttributesRow& row : rows) {
        THtAttributes attributes(row.caseSensitive);
        attributes.Add(u"B"_s, u"\"\u00A0\U0001F600"_s);
        attributes.Add(u"Async"_s, u"async"_s);
        TFastString buffer(64);
        attributes.FastAsString(buffer);
        EXPECT_EQ(buffer.GetAsString(), row.fast);
        TFastRawString bytes(64);
        attributes.FastAsUTF8String(bytes);
        EXPECT_EQ(bytes.GetAsString(), row.fast.ToUtf8());
        EXPECT_EQ(attributes.AsString(), row.plain);
    }
}

TEST(html_write, inner_text)
{
    ExpectRows(
        {
            {u"body(p('a') p('b'))", u"a|b"},
            {u"body(!'c' p('a'))", u"|a"},
            {u"table(tbody(tr(td('a') ' ' th('b')) tr(td('c'))))", u"|a\t b|c"},
            {u"div(' ' p(' x '))", u"|x"},
            {u"body('x' p(' ') 'y')", u"x|y"},
            {u"p('a' br 'b' a[href=u]('c') img)", u"|a|bc"},
            {u"div(noscript('n') script's' h6('h'))", u"|h"},
        },
        [](const THtmlNode& root) { return root.InnerText(); });
}

TEST(html_write, inner_text_is_that_of_the_recursive_definition)
{
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        THtmlNode root;
        root.SetTag(i % 2 == 0 ? u"body"_s : u"div"_s);
        Grow(root, random, 5);
        for (const THtNode* node = &root; node; node = node->NextNode()) {
            const auto& subtree = *static_cast<const THtmlNode*>(node);
            ASSERT_EQ(Shown(subtree.InnerText()), Shown(ReadableText(subtree))) << root.OuterHTML();
        }
    }
}

TEST(html_write, fast_text_and_raw_text)
{
    ExpectRows(
        {
            {u"body(p('a') a[title=t,href=u]('b') br text('c') td('d') !'e' script's')", u"a| u  t b| c|d|"},
            {u"html(head'x'(title('t')) img'i' noscript('n'))", u"xn"},
        },
        &FastText);

    TRawNode root;
    root.SetTag(u"div"_s);
    auto* child = root.AddChild(THtNodeClass::Of<TRawNode>());
    child->SetContent(u"a"_s);
    for (const THTMLTokenType type : {htComment, htString}) {
        child = root.AddChild(THtNodeClass::Of<TRawNode>());
        child->TagType = type;
        child->SetContent(u"b"_s);
    }
    EXPECT_EQ(root.RawInnerText(), u"ab");
}

TEST(html_write, a_million_levels)
{
    constexpr std::int32_t kDepth = 1'000'000;
    THtmlNode root;
    THtNode* node = &root;
    for (std::int32_t i = 0; i < kDepth; ++i) {
        node = node->AddChild(root.NodeClass());
        node->SetTag(u"p"_s);
    }
    node->SetContent(u"x"_s);
    node->AddChild(root.NodeClass())->SetContent(u" y "_s);
    EXPECT_EQ(root.OuterHTML().Length(), kDepth * 7 + 3);
    EXPECT_EQ(root.InnerText(), u"\r\nx y");
    EXPECT_EQ(FastText(root).Length(), 4 + 2 * kDepth);
    EXPECT_EQ(root.RawInnerText(), u"");
    EXPECT_EQ(Formatted(root, 0).Length(), kDepth * 11);
}

TEST(html_write, many_siblings_cost_linear_time)
{
    THtmlNode root;
    root.SetTag(u"div"_s);
    for (int i = 0; i < 200'000; ++i)
        root.AddChild(root.NodeClass())->SetTag(u"td"_s);
    for (int i = 0; i < 200'000; ++i)
        root.AddChild(root.NodeClass())->SetContent(u" "_s);
    for (int i = 0; i < 200'000; ++i)
        TreeReader(u"p('x')", *static_cast<THtmlNode*>(root.AddChild(root.NodeClass())));
    EXPECT_EQ(root.InnerText().Length(), 200'000 * 3);
}
