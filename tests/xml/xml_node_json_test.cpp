// JSON in and out of XML nodes: trees, messages, and the public suite.
// SPDX-License-Identifier: MIT
#include <hearth/xml/htxml.h>

#include <markup/trees.h>
#include <runtime/messages.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <vector>

namespace {

using namespace ht;
using namespace trees;

/// The tree, arrays marked by "[]", or what was raised.
std::string JsonTree(const String& text)
{
    try {
        const auto root = THtXMLNode::CreatefromJSON(text);
        ExpectLinked(*root);
        for (THtNode* node = root.get(); node; node = node->NextNodeIn(root.get())) {
            if (static_cast<THtXMLNode*>(node)->IsArray())
                node->SetTag(node->Tag() + u"[]"_s);
        }
        return Tree(*root);
    } catch (const Exception& error) {
        return String(error.ClassName()).ToUtf8() + ": " + error.Message.ToUtf8();
    }
}

void ExpectJsonTrees(std::initializer_list<Row> rows)
{
    for (const Row& row : rows)
        EXPECT_EQ(JsonTree(String(row.Text)), row.Tree) << "text: " << String(row.Text).ToUtf8();
}

TEST(xml_node_json, values_members_and_elements)
{
    ExpectJsonTrees({
        {u"{\"a\":1,\"b\":{\"c\":\"x\"}}", "<object a=\"1\">{<b c=\"x\">}"},
        {u"[1,-2.5,\"x\",true,null]",
            "<array[]>{<value> = \"1\" <value> = \"-2.5\" <value> = \"x\" <value> = \"true\" "
            "<value> = \"null\"}"},
        {u"[{\"a\":1},[],[[]]]", "<array[]>{<object a=\"1\"> <array[]> <array[]>{<array[]>}}"},
        {u"{a:[1], 'b':{}}", "<object>{<a[]>{<value> = \"1\"} <b>}"},
        {u"{}", "<object>"},
        {u" [ ] ", "<array[]>"},
        {u"{a:b}", "<object a=\"b\">"},
        {u"{\"Z\":1,\"a\":2,\"B\":3,\"b\":4}", "<object B=\"3\" Z=\"1\" a=\"2\" b=\"4\">"},
        {u"{\"a\":1,\"a\":2,\"a\":{},\"a\":3}", "<object a=\"3\">{<a>}"},
        {u"{\"\":{},\"\":[]}", "<object>{<object> <array[]>}"},
        {u"[\"\"]", "<array[]>{<value>}"},
        // A first empty value is not stored, as with every attribute that is set.
        {u"{\"a\":\"\",\"b\":\"\",\"c\":1,\"d\":\"\",\"c\":\"\"}", "<object c=\"\" d=\"\">"},
        {u"\"x\\u0000\"", "\"x\\u0000\""},
        {u"12", "\"12\""},
        {u"word", "\"word\""},
    });
}

TEST(xml_node_json, several_objects_become_a_list)
{
    ExpectJsonTrees({
        {u"{\"a\":1},{\"b\":2} , {}", "<array>{<object a=\"1\"> <object b=\"2\"> <object>}"},
        {u"{\"a\":{\"b\":1},\"c\":2},{}", "<array>{<object c=\"2\">{<a b=\"1\">} <object>}"},
        {u"[1],{}", "<array>{<array[]>{<value> = \"1\"} <object>}"},
        {u"1,{}", "<array>{\"1\" <object>}"},
        {u"{},[]", "EHtJSONParserException: Incorrect JSON, token expected."},
        {u"{},1", "EHtJSONParserException: Incorrect JSON, token expected."},
        {u"{},", "EHtJSONParserException: JSON is not terminated properly"},
        {u"{}{}", "EHtJSONParserException: JSON is not terminated properly"},
        {u"{},{}]", "EHtJSONParserException: JSON is not terminated properly"},
    });
}

TEST(xml_node_json, messages)
{
    const std::string token = "EHtJSONParserException: Incorrect JSON, token expected.";
    for (const std::u16string_view text : {u"]", u"}", u",", u":", u"*", u"\u00E9", u"True", u"[", u"{",
             u"[1", u"[1,", u"[1,]", u"[,1]", u"[1 2]", u"[1}", u"[a]", u"[1:2]", u"{\"a\":1",
             u"{\"a\":1 \"b\":2}", u"{\"a\":1]", u"{\"a\":[]", u"{\"\":1}", u"{'':''}", u"/**/1", u"[1e]"})
        EXPECT_EQ(JsonTree(String(text)), token) << String(text);
    ExpectJsonTrees({
        {u"", "EHtJSONParserException: JSON is empty"},
        {u" \n", "EHtJSONParserException: JSON is empty"},
        {u"{\"a\":1,}", "EHtJSONParserException: Name/Value expected after comma"},
        {u"{\"a\":1, ", "EHtJSONParserException: Name/Value expected after comma"},
        {u"{,}", "EHtJSONParserException: Name expected"},
        {u"{1:2}", "EHtJSONParserException: Name expected"},
        {u"{\"a\"}", "EHtJSONParserException: Name expected"},
        {u"{A:1}", "EHtJSONParserException: Name expected"},
        {u"{\"a\":1,,}", "EHtJSONParserException: Name expected"},
        {u"{\"a\":", "EHtJSONParserException: Value expected"},
        {u"{\"a\":}", "EHtJSONParserException: Value expected"},
        {u"1 2", "EHtJSONParserException: JSON is not terminated properly"},
        {u"[]]", "EHtJSONParserException: JSON is not terminated properly"},
        {u"[01]", "EConvertError: Incorrect number"},
        {u"[\"\\q\"]", "EHtJSONParserException: Incorrect unicode escape at line 0"},
    });
}

TEST(xml_node_json, names_that_are_guessed_and_values_of_all_forms)
{
    // Behind the first object each name is expected where it stood there.
    ExpectJsonTrees({
        {u"[{\"a\":\"1\",\"b\":true},{\"a\" : '2' , 'b':[] },{\"a\":1.5,\"bc\":null},{\"a\":nil,a:-0}]",
            "<array[]>{<object a=\"1\" b=\"true\"> <object a=\"2\">{<b[]>} <object a=\"1.5\" bc=\"null\"> "
            "<object a=\"-0\">}"},
        {u"[{\"a\":1},{\"\\u0061\":\"\\u0062\"},{\"a\":1e2},{\"a\":{}}]",
            "<array[]>{<object a=\"1\"> <object a=\"b\"> <object a=\"1e2\"> <object>{<a>}}"},
        {u"[{\"a\":1},{\"a\"}]", "EHtJSONParserException: Name expected"},
        {u"[{\"a\":1},{\"a\":}]", "EHtJSONParserException: Value expected"},
        {u"[{\"a\":1},{\"a\":True}]", "EHtJSONParserException: Value expected"},
        {u"[{\"a\":1},{\"a\":01}]", "EConvertError: Incorrect number"},
        {u"[{\"a\":1},{\"a\":1.}]", "EConvertError: Incorrect number"},
        {u"[{\"a\":1},{\"a\":1..2}]", "EConvertError: Incorrect number"},
        {u"[{\"a\":1},{\"a\":true\"b\":1}]", "EHtJSONParserException: Incorrect JSON, token expected."},
        {u"[{\"a\":1},{\"a\":\"x", "EHtJSONParserException: Unterminated string"},
        {u"[{\"a\":1},{\"a\":\"x\t\"", "EHtJSONParserException: Unescaped control symbol #9 in \"x"},
    });
}

TEST(xml_node_json, short_texts_share_units_and_keep_apart)
{
    std::u16string text = u"[";
    std::vector<std::u16string> values;
    std::mt19937 random(5);
    while (text.size() < 20000) {
        std::u16string& value = values.emplace_back(random() % 11, u'x');
        for (char16_t& unit : value)
            unit = u"ab1\u0100\uFFFF "[random() % 6];
        text += u'"' + value + u"\",";
    }
    text += u"\"a\",\"a\"]"; // so near the end that no eight units are left
    values.insert(values.end(), 2, u"a");
    const auto root = THtXMLNode::CreatefromJSON(String(text));
    ASSERT_EQ(root->GetCount(), static_cast<std::int32_t>(values.size()));
    std::map<std::u16string, const THtNode*> first;
    for (std::int32_t i = 0; i < root->GetCount(); ++i) {
        const THtNode* node = root->GetNode(i);
        ASSERT_EQ(node->Content().View(), values[static_cast<std::size_t>(i)]);
        first.emplace(values[static_cast<std::size_t>(i)], node);
    }
    EXPECT_TRUE(first.at(u"b")->Content().ReferenceCount() > 1);
}

TEST(xml_node_json, the_limit_counts_nested_containers)
{
    const auto message = [](const String& text) {
        return MessageOf<EHtJSONParserException>([&] { THtXMLNode::CreatefromJSON(text); });
    };
    const auto arrays = [](std::size_t depth) { return Repeated(u"[", depth) + Repeated(u"]", depth); };
    EXPECT_EQ(Depth(*THtXMLNode::CreatefromJSON(arrays(1024))), 1023);
    EXPECT_EQ(message(arrays(1025)), u"JSON contains too many nested nodes");
    EXPECT_EQ(message(Repeated(u"{a:", 1025) + u"1"_s + Repeated(u"}", 1025)),
        u"JSON contains too many nested nodes");
    THtJSONParser parser(arrays(50'000));
    parser.Limits.JsonDepth = 0;
    parser.Tokenizer()->NextToken();
    THtXMLNode root;
    root.ParseJSON(parser);
    EXPECT_EQ(Depth(root), 49'999);
    EXPECT_EQ(root.JSON().Length(), 50'000 * 6);
}

TEST(xml_node_json, a_node_reads_one_value_out_of_many)
{
    THtJSONParser parser(u"{\"b\":1,\"a\":''} [2] 3 ]"_s);
    THtXMLNode root(u"<old a='0'>x</old>"_s);
    parser.Tokenizer()->NextToken();
    root.ParseJSON(parser);
    EXPECT_EQ(Tree(root), "<old a=\"\" b=\"1\"> = \"x\"");
    THtXMLNode list;
    parser.Tokenizer()->NextNSToken();
    list.ParseJSON(parser);
    EXPECT_EQ(Tree(list), "<array>{<value> = \"2\"}");
    parser.Tokenizer()->NextNSToken();
    list.ParseJSON(parser);
    EXPECT_EQ(Tree(list), "<array> = \"3\"{<value> = \"2\"}");
    parser.Tokenizer()->NextNSToken();
    EXPECT_THROW(list.ParseJSON(parser), EHtJSONParserException);
    THtJSONParser none{String()};
    EXPECT_THROW(list.ParseJSON(none), EHtJSONParserException);
}

TEST(xml_node_json, printed)
{
    const std::pair<std::u16string_view, std::u16string_view> rows[] = {
        {u"{\"a\":1,\"b\":{\"c\":\"x\"},\"d\":[]}",
            u"{\r\n\"a\":\"1\",\"b\":{\r\n\"c\":\"x\"},\"d\":[\r\n]\r\n}"},
        {u"[1,2]", u"[\r\n{\r\n},\r\n{\r\n}]\r\n"},
        {u"[[],{\"a\":1}]", u"[\r\n[\r\n]\r\n,\r\n{\r\n\"a\":\"1\"}]\r\n"},
        {u"{}", u"{\r\n}"},
        {u"{},{}", u"{\r\n\"object\":{\r\n},\"object\":{\r\n}}"},
        {u"{'\"':\"\\n\\r\\\\\"}", u"{\r\n\"\\\"\":\"\\r\\n\\\\\"}"},
        {u"\"text\"", u""},
    };
    for (const auto& [text, json] : rows)
        EXPECT_EQ(THtXMLNode::CreatefromJSON(String(text))->JSON(), json) << String(text);
    const THtXMLNode xml(u"<a b='c'>x<!--d--><e/><![CDATA[f]]><?g?><h i='\"'/>j</a>"_s);
    EXPECT_EQ(xml.JSON(), u"{\r\n\"b\":\"c\",\"e\":{\r\n},\"h\":{\r\n\"i\":\"\\\"\"}}");
    EXPECT_EQ(xml.GetNode(0)->JSON(), u"");
}

/// Why a text of the suite that is no JSON is read here all the same.
const std::map<std::string, std::string> kReadHere = {
    {"n_object_key_with_single_quotes.json", "a name without quotes"},
    {"n_object_single_quote.json", "a name in single quotes"},
    {"n_object_unquoted_key.json", "a name without quotes"},
    {"n_string_escape_x.json", "the escape \\x"},
    {"n_string_single_quote.json", "a string in single quotes"},
    {"n_string_single_string_no_double_quotes.json", "a word as the whole text"},
};

/// JSON that is not read: attributes have to have names.
constexpr std::string_view kEmptyName = "y_object_empty_key.json";

String FileText(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return String::FromUtf8(std::string(std::istreambuf_iterator<char>(file), {}));
}

TEST(xml_node_json, the_public_suite)
{
    const std::filesystem::path folder =
        std::filesystem::path(HEARTH_SUITES_DIR) / "JSONTestSuite" / "test_parsing";
    if (std::string_view(HEARTH_SUITES_DIR).empty() || !std::filesystem::is_directory(folder))
        GTEST_SKIP() << "the public JSON test suite is not here (HEARTH_SUITES_DIR)";
    int seen = 0;
    std::size_t readHere = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        ++seen;
        if (name.starts_with("i_")) { // may be read or not
            JsonTree(FileText(entry.path()));
            continue;
        }
        const std::string outcome = JsonTree(FileText(entry.path()));
        const bool isRead =
            outcome.find("Exception: ") == std::string::npos && !outcome.starts_with("EConvertError: ");
        const bool isJson = name.starts_with("y_");
        const bool isExpected = isJson ? name != kEmptyName : kReadHere.contains(name);
        readHere += isRead && !isJson ? 1 : 0;
        EXPECT_EQ(isRead, isExpected) << name << ": " << outcome;
    }
    EXPECT_EQ(readHere, kReadHere.size());
    EXPECT_GT(seen, 300);
}

}
