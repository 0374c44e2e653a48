// XML printed plainly and indented, the encoders, files and streams.
// SPDX-License-Identifier: MIT
#include <hearth/xml/htxml.h>

#include <hearth/foundation/fast_raw_string.h>
#include <hearth/foundation/fast_string.h>
#include <markup/trees.h>
#include <runtime/messages.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace {

using namespace ht;
using namespace trees;
using namespace std::string_view_literals;

TEST(xml_encode, only_what_xml_needs_becomes_a_reference)
{
    const std::pair<std::u16string_view, std::u16string_view> rows[] = {
        {u"a<b>&\"'\u00A0\u00E9\u2665", u"a&lt;b&gt;&amp;&quot;'&#160;\u00E9\u2665"},
        {u"\0\x08\t\n"sv, u"&#0;&#8;\t\n"},
        {u"\U0001F600!", u"&#x01F600;!"},
        {u"\xD800", u"&#x002400;"}, // the terminator taken for the partner
        {u"\xDE00", u"\xDE00"},
        {u"long text in front of an escape & behind it", u"long text in front of an escape &amp; behind it"},
    };
    for (const auto& [text, encoded] : rows)
        EXPECT_EQ(XMLEncode(String(text)), encoded);
    const String plain = u"nothing to do here: \u2665 \u00C9"_s + u"!"_s;
    EXPECT_TRUE(XMLEncode(plain, 7).IsSame(plain));
}

TEST(xml_encode, json_exchanges_line_feed_and_carriage_return)
{
    EXPECT_EQ(JSONEncode(u"\n|\r|\t|\b|\"|\\|/|\f\x01\u00E9"_s), u"\\r|\\n|\\t|\\b|\\\"|\\\\|/|\f\x01\u00E9");
    const String plain = u"long enough for a wide step, and \f"_s + u"\v"_s;
    EXPECT_TRUE(JSONEncode(plain).IsSame(plain));
}

/// What a document prints as; it has to print the same when it is read again.
String Printed(std::u16string_view text)
{
    const THtXMLNode root{String(text)};
    const String code = root.Code();
    EXPECT_EQ(THtXMLNode(code).Code(), code);
    EXPECT_EQ(THtXMLNode(root.FormattedCode()).Code(), code);
    return code;
}

TEST(xml_node_write, printed_documents)
{
    const std::pair<std::u16string_view, std::u16string_view> rows[] = {
        {u"<a></a>", u"<a/>"},
        {u"<a> </a>", u"<a> </a>"},
        {u"<a> <b> x </b>\n</a>", u"<a><b> x </b></a>"},
        {u"<a b='&quot;&lt;&#9;&#160;' c='c'/>", u"<a b=\"&quot;&lt;&#9;&#160;\" c=\"c\"/>"},
        {u"<a>&lt;&#233;<b/>\U0001F600</a>", u"<a>&lt;\u00E9<b/>&#x01F600;</a>"},
        {u"<a><!-- b --><?c d?><![CDATA[<e>]]></a>", u"<a><!-- b --><?c d?><![CDATA[<e>]]></a>"},
        {u"<?xml version='1.0'?>\n<?b?><!--c--><!DOCTYPE a><a/>", u"<?xml version='1.0'?>\r\n<?b?>\r\n<a/>"},
        {u"", u""},
    };
    for (const auto& [text, code] : rows)
        EXPECT_EQ(Printed(text), code);
}

TEST(xml_node_write, nodes_that_no_document_gives)
{
    THtXMLNode root;
    root.SetTag(u"a"_s);
    root.SetContent(u" "_s);
    EXPECT_EQ(root.Code(), u"<a> </a>");
    THtNode* text = root.AddChild(root.NodeClass());
    text->SetContent(u"<"_s);
    text->AddChild(root.NodeClass())->SetTag(u"lost"_s);
    EXPECT_EQ(root.Code(), u"<a>&lt;</a>"); // a text is written without its children
    root.DeleteAllChildren();
    root.SetContent(String());
    EXPECT_EQ(root.Code(), u"<a></a>"); // the list of children is still there
    root.TagType = htComment;
    EXPECT_EQ(root.Code(), u"<!---->");
}

TEST(xml_node_write, indented)
{
    const std::pair<std::u16string_view, std::u16string_view> rows[] = {
        {u"<a><b/><c>x</c></a>", u"<a>\r\n  <b/>\r\n  <c>x</c>\r\n</a>"},
        {u"<a>\n<b><c/></b>\n</a>", u"<a>\r\n  <b>\r\n    <c/>\r\n  </b>\r\n</a>"},
        {u"<a>x<b><c/></b></a>", u"<a>x<b><c/></b></a>"},
        {u"<a><b/>x</a>", u"<a><b/>x</a>"},
        {u"<a><b/><![CDATA[]]></a>", u"<a><b/><![CDATA[]]></a>"},
        {u"<a><b><!--c--></b><?d?></a>", u"<a>\r\n  <b>\r\n    <!--c-->\r\n  </b>\r\n  <?d?>\r\n</a>"},
        {u"<a><b xml:space='preserve'><c/></b></a>", u"<a>\r\n  <b xml:space=\"preserve\"><c/></b>\r\n</a>"},
        {u"<a><b> </b></a>", u"<a>\r\n  <b> </b>\r\n</a>"},
        {u"<?xml?><a/>", u"<?xml?>\r\n<a/>"},
    };
    for (const auto& [text, code] : rows)
        EXPECT_EQ(THtXMLNode{String(text)}.FormattedCode(), code);
    TFastString buffer(16);
    THtXMLNode(u"<a><b/></a>"_s).FastFormatCode(buffer, 1, 3);
    EXPECT_EQ(buffer.GetAsString(), u"   <a>\r\n      <b/>\r\n   </a>");
}

TEST(xml_node_write, random_documents_read_back_from_both_prints)
{
    const std::u16string_view pieces[] = {u"<a>", u"<b>", u"<c d='&amp;'>", u"<e/>", u" ", u"\n ", u"x",
        u"&lt;", u"<!--c-->", u"<?d?>", u"<![CDATA[f]]>", u"<g xml:space='preserve'>", u"</>", u"</>",
        u"</>"};
    std::mt19937 random(32);
    for (int round = 0; round < 5'000; ++round) {
        std::u16string text = u"<r>";
        std::vector<std::u16string_view> open;
        for (std::size_t count = random() % 20; count > 0; --count) {
            const std::u16string_view piece = pieces[random() % std::size(pieces)];
            if (piece == u"</>") {
                if (!open.empty()) {
                    text.append(u"</").append(open.back()).append(u">");
                    open.pop_back();
                }
                continue;
            }
            text += piece;
            if (piece[0] == u'<' && IsAsciiLower(piece[1]) && !piece.ends_with(u"/>"))
                open.push_back(piece.substr(1, 1));
        }
        // Blanks in an element that preserves them are dropped in print where it has children.
        if (text.find(u"preserve") == std::u16string::npos)
            Printed(text);
        else
            THtXMLNode(THtXMLNode{String(text)}.FormattedCode());
        ASSERT_FALSE(::testing::Test::HasFailure()) << String(text);
    }
}

TEST(xml_node_write, utf8_forms_are_the_texts)
{
    const THtXMLNode root(u"<?p?><\u0416 a='\u20AC'>x<b/></\u0416>"_s);
    EXPECT_EQ(root.UTF8Code(), "<?p?>\r\n<\u0416 a=\"\u20AC\">x<b/></\u0416>");
    EXPECT_EQ(root.UTF8FormattedCode(4), root.FormattedCode(4).ToUtf8());
    TFastRawString bytes(16);
    root.FastUTF8Code(bytes);
    bytes.AddChar('|');
    root.FastUTF8FormatCode(bytes, 2, 2);
    EXPECT_EQ(
        bytes.GetAsString(), "<\u0416 a=\"\u20AC\">x<b/></\u0416>|    <\u0416 a=\"\u20AC\">x<b/></\u0416>");
    THtXMLNode lone(u"<a/>"_s);
    lone.SetAttr(u"b"_s, u"\xD800"_s);
    EXPECT_EQ(lone.UTF8Code(), "<a b=\"\uFFFD\"/>");
}

std::string FileBytes(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(xml_node_write, files_come_back)
{
    const std::filesystem::path path = std::filesystem::path(::testing::TempDir()) / "hearth_xml_test.xml";
    const String name = String::FromUtf8(path.string());
    const THtXMLNode root(u"<a>\u00E9<b/></a>"_s);
    root.SaveToFileANSI(name);
    EXPECT_EQ(FileBytes(path), "<a>\xE9<b/></a>");
    EXPECT_EQ(THtXMLNode::CreateFromFile(name)->Code(), root.Code());
    root.SaveToFileUTF8(name);
    EXPECT_EQ(FileBytes(path), "\xEF\xBB\xBF<a>\xC3\xA9<b/></a>");
    EXPECT_EQ(THtXMLNode::CreateFromFile(name)->Code(), root.Code());
    THtXMLNode(u"<a><b/></a>"_s).SaveToFileUTF8Format(name);
    EXPECT_EQ(FileBytes(path), "\xEF\xBB\xBF<a>\r\n  <b/>\r\n</a>");
    std::ofstream(path, std::ios::binary | std::ios::trunc);
    EXPECT_EQ(MessageOf<EHtXML>([&] { THtXMLNode::CreateFromFile(name); }), u"Cannot load empty stream");
    std::filesystem::remove(path);
    EXPECT_THROW(THtXMLNode::CreateFromFile(name), EFOpenError);
}

TEST(xml_node_write, streams_tell_their_encoding)
{
    const auto decode = [](std::string_view bytes) {
        TMemoryStream stream;
        stream.WriteBuffer(bytes);
        stream.SetPosition(0);
        return THtXMLNode::StreamtoText(stream);
    };
    const std::pair<std::string_view, std::u16string_view> rows[] = {
        {"\xEF\xBB\xBF<a>\xC3\xA9", u"<a>\u00E9"}, {"\xFE\xFF\0<"sv, u"<"}, {"<\0a\0"sv, u"<a"},
        {"\0<\0a"sv, u"<a"},
        {"<?xml version=\"1.0\" encoding='windows-1251'?><a>\xE9",
            u"<?xml version=\"1.0\" encoding='windows-1251'?><a>\u0439"},
        {"<?xml encoding=\"UTF-8\"?>\xE9", u"<?xml encoding=\"UTF-8\"?>\uFFFD"},
        {"<?xml encoding='utf-16'?>\xC3\xA9", u"<?xml encoding='utf-16'?>\u00E9"},
        {"<?xml encoding='klingon'?>\xC3\xA9", u"<?xml encoding='klingon'?>\u00E9"}, {"<?xml", u"<?xml"},
        {"\xF0\x9F\x98\x80\xEF\xBF\xBD", u"\U0001F600\uFFFD"},
        {"\xC3\xA9\xE9", u"\u00C3\u00A9\u00E9"}, // no UTF-8, so the system code page
    };
    for (const auto& [bytes, text] : rows)
        EXPECT_EQ(decode(bytes), text);
    EXPECT_EQ(MessageOf<EHtXML>([&] { decode(""); }), u"Cannot load empty stream");
    TMemoryStream stream;
    stream.WriteBuffer("skipped<a/>"sv);
    stream.SetPosition(7);
    EXPECT_EQ(THtXMLNode::CreateFromStream(stream)->Code(), u"<a/>");
}

}
