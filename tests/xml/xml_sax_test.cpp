// The event reader: its events, its places and stops, and trees built of events.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/streams.h>
#include <hearth/xml/htxml.h>
#include <markup/hostile.h>
#include <markup/trees.h>
#include <runtime/messages.h>

#include <filesystem>
#include <vector>

namespace {

using namespace ht;
using namespace hostile;
using namespace trees;

/// All events on one line, each with the depth it is told at.
class Recorder {
public:
    explicit Recorder(THtSAXXMLParser& parser)
        : FParser(parser)
    {
        parser.OnStartElement = [this](const String& tag, const THtAttributes& attributes) {
            Add("<" + tag.ToUtf8() + (attributes.Count() > 0 ? " " : "") + attributes.AsString().ToUtf8()
                + ">");
        };
        parser.OnEndElement = [this](const String& tag) { Add("</" + tag.ToUtf8() + ">"); };
        parser.OnText = [this](const String& text) { Add("'" + text.ToUtf8() + "'"); };
        parser.OnComment = [this](const String& text) { Add("!" + text.ToUtf8()); };
        parser.OnDirective = [this](const String& text) { Add("?" + text.ToUtf8()); };
        parser.OnCData = [this](const String& text) { Add("#" + text.ToUtf8()); };
    }

    void Add(const std::string& event)
    {
        Events += (Events.empty() ? "" : " ") + std::to_string(FParser.Depth()) + event;
    }

    std::string Events;

private:
    THtSAXXMLParser& FParser;
};

std::string Events(const String& text)
{
    THtSAXXMLParser parser;
    Recorder recorder(parser);
    try {
        parser.Parse(text);
    } catch (const Exception& error) {
        recorder.Events += " " + String(error.ClassName()).ToUtf8() + ": " + error.Message.ToUtf8();
    }
    return recorder.Events;
}

TEST(xml_sax, events_come_in_document_order)
{
    const std::pair<std::u16string_view, std::string_view> rows[] = {
        {u"<?xml version='1.0'?><!--no--><!DOCTYPE a><a b='&lt;' C=\"d\">x&amp;y<e/> "
         u"<!--f--><![CDATA[<g>]]><?h i?></a><j/>",
            "0?xml version='1.0' 0<a C=\"d\" b=\"&lt;\"> 1'x&y' 1<e> 1</e> 1' ' 1!f 1#<g> 1?h i 0</a>"},
        {u"<a><b>x", "0<a> 1<b> 2'x' 1</b> 0</a>"},
        {u"<a/>x", "0<a> 0</a>"},
        {u"", ""},
        {u"text", ""},
        {u"<a><b></a>", "0<a> 1<b> EHtXML: Tag order error: /b expected, /a found at position 0"},
        {u"<a></A>", "0<a> EHtXML: Tag order error: /a expected, /A found at position 0"},
        {u"<a b=c>", " EHtmlParserException: Attribute b value expected but c found. Line 0 position 7"},
    };
    for (const auto& [text, events] : rows)
        EXPECT_EQ(Events(String(text)), events) << String(text);
}

TEST(xml_sax, an_event_may_stop_or_throw_and_knows_its_place)
{
    THtSAXXMLParser parser;
    Recorder recorder(parser);
    std::string places;
    parser.OnText = [&](const String& text) {
        places += std::to_string(parser.Line()) + ":" + std::to_string(parser.Column()) + " ";
        if (text == u"stop")
            parser.Stop();
        if (text == u"throw")
            throw EConvertError(u"thrown"_s);
    };
    EXPECT_EQ(parser.Line(), 0);
    EXPECT_TRUE(parser.Parse(u"<a>\n<b/>x<c>\r\ny</c></a>"_s));
    EXPECT_EQ(places, "1:4 2:5 2:9 ");
    EXPECT_EQ(parser.Line(), 3);
    recorder.Events.clear();
    EXPECT_FALSE(parser.Parse(u"<a><b>stop</b><c></a>"_s));
    EXPECT_EQ(recorder.Events, "0<a> 1<b>");
    EXPECT_THROW(parser.Parse(u"\n<a>throw</a>"_s), EConvertError);
    EXPECT_EQ(parser.Line(), 2);
    recorder.Events.clear();
    EXPECT_TRUE(parser.Parse(u"<again/>"_s));
    EXPECT_EQ(recorder.Events, "0<again> 0</again>");
    parser.OnEndElement = [&](const String&) { parser.Parse(u"<b/>"_s); };
    EXPECT_EQ(MessageOf<EHtXML>([&] { parser.Parse(u"<a/>"_s); }), u"The document is being read");
    parser.OnStartElement = [&](const String&, const THtAttributes&) { parser.Stop(); };
    EXPECT_FALSE(parser.Parse(u"<a/>"_s));
    EXPECT_THROW(parser.Parse(u"<a>"_s, xsWellFormed), EHtXML);
}

TEST(xml_sax, hostile_documents)
{
    OnSmallStack([] {
        THtSAXXMLParser parser;
        std::int32_t opened = 0;
        parser.OnStartElement = [&opened](const String&, const THtAttributes&) { ++opened; };
        const String deep = Repeated(u"<a>", 1'000'000 / kScale);
        EXPECT_EQ(MessageOf<EHtXML>([&] { parser.Parse(deep); }), u"XML contains too many nested nodes");
        EXPECT_EQ(opened, 1024);
        opened = 0;
        parser.Limits.XmlDepth = 0;
        EXPECT_TRUE(parser.Parse(deep));
        EXPECT_EQ(opened, static_cast<std::int32_t>(1'000'000 / kScale));
    });
    ExpectLinear(50'000 / kScale, [](std::size_t size) {
        THtSAXXMLParser parser;
        std::int64_t lines = 0;
        parser.OnText = [&](const String&) { lines += parser.Line(); };
        parser.Parse(u"<a>"_s + Repeated(u"\n<b/>", size) + u"</a>"_s);
        EXPECT_GT(lines, static_cast<std::int64_t>(size));
    });
}

/// Builds the tree that THtXMLNode would read, of events alone.
class Builder {
public:
    std::unique_ptr<THtXMLNode> Build(const String& text)
    {
        FDocument = std::make_unique<THtXMLNode>();
        THtSAXXMLParser parser;
        parser.OnStartElement = [this](const String& tag, const THtAttributes& attributes) {
            Start(tag, attributes);
        };
        parser.OnEndElement = [this](const String&) { End(); };
        parser.OnText = [this](const String& part) { AddText(part); };
        parser.OnComment = [this](const String& part) { AddPiece(htComment, part); };
        parser.OnCData = [this](const String& part) { AddPiece(htCData, part); };
        parser.OnDirective = [this](const String& part) {
            if (FBlanks.empty())
                FDocument->ProcessingInstructions().Add(part);
            else
                AddPiece(htDirective, part);
        };
        parser.Parse(text);
        return std::move(FDocument);
    }

private:
    void Start(const String& tag, const THtAttributes& attributes)
    {
        THtNode* node = FNode ? FNode->AddChild(THtNodeClass::Of<THtXMLNode>()) : FDocument.get();
        FNode = static_cast<THtXMLNode*>(node);
        FNode->SetTag(tag);
        FNode->TagType = htIdent;
        for (const THtAttribute& attribute : attributes)
            FNode->SetAttr(attribute.Name, attribute.Value);
        FBlanks.emplace_back();
    }

    void End()
    {
        FNode->SetContent(FNode->Content() + String(FBlanks.back()));
        FBlanks.pop_back();
        FNode = FNode->GetParent();
    }

    void AddText(const String& text)
    {
        const bool isBlank = text.View().find_first_not_of(u" \t\r\n") == std::u16string_view::npos;
        if (isBlank)
            FBlanks.back() += text.View();
        else if (FNode->GetCount() == 0 && FNode->Content().IsEmpty() && FBlanks.back().empty())
            FNode->SetContent(text);
        else
            AddPiece(htString, text);
    }

    void AddPiece(THTMLTokenType type, const String& text)
    {
        THtNode* node = FNode->AddChild(THtNodeClass::Of<THtXMLNode>());
        node->TagType = type;
        node->SetContent(text);
    }

    std::unique_ptr<THtXMLNode> FDocument;
    THtXMLNode* FNode = nullptr;
    std::vector<std::u16string> FBlanks; // of each open element
};

TEST(xml_sax, events_make_the_tree_that_the_reader_of_trees_makes)
{
    std::vector<String> texts;
    texts.push_back(u"<?p?><a b='c'> <d>x</d> y <!--e--><![CDATA[f]]>z<g/><?h?>\n</a>"_s);
    texts.push_back(u"<a><?xml encoding='utf-8'?>\u00C3\u00A9<b c='\u00C3\u00A9'/>\n</a>"_s);
    for (const char16_t* name :
        {u"/usr/share/mime/packages/freedesktop.org.xml", u"/usr/share/xml/iso-codes/iso_639-3.xml"}) {
        if (!std::filesystem::exists(name))
            continue;
        TFileStream file(String(std::u16string_view(name)), fmOpenRead);
        texts.push_back(THtXMLNode::StreamtoText(file));
    }
    for (const String& text : texts) {
        const THtXMLNode tree(text);
        const auto built = Builder().Build(text);
        EXPECT_EQ(built->Code(), tree.Code());
        EXPECT_EQ(CountNodes(*built), CountNodes(tree));
    }
}

}
