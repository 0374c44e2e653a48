// JSON that comes back as it was: kinds, order, names, escapes, the public suite, large data.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/streams.h>
#include <hearth/xml/htxml.h>
#include <markup/hostile.h>
#include <markup/trees.h>
#include <runtime/messages.h>

#include <filesystem>

namespace {

using namespace ht;
using namespace hostile;
using namespace trees;

String Lossless(std::u16string_view text, std::int32_t spaces = 0)
{
    return THtXMLNode::CreateFromLosslessJSON(String(text))->LosslessJSON(spaces);
}

/// The same names, kinds and contents in the same places.
void ExpectSame(const THtXMLNode& a, const THtXMLNode& b)
{
    const THtNode* other = &b;
    for (const THtNode* node = &a; node; node = node->NextNodeIn(&a), other = other->NextNodeIn(&b)) {
        ASSERT_NE(other, nullptr);
        ASSERT_EQ(node->Tag(), other->Tag());
        ASSERT_EQ(node->Content(), other->Content());
        ASSERT_EQ(node->GetCount(), other->GetCount());
        ASSERT_EQ(static_cast<const THtXMLNode*>(node)->JSONKind(),
            static_cast<const THtXMLNode*>(other)->JSONKind());
    }
    EXPECT_EQ(other, nullptr);
}

TEST(xml_node_lossless, every_value_comes_back)
{
    for (const std::u16string_view text : {u"{\"b\":1,\"a\":\"1\",\"b\":true,\"\":null,\"\":{\"\":[]}}",
             u"[1,-0,2.50,1E+2,123456789012345678901234567890,\"\",null,false,{},[[]]]", u"\"x\"", u"0",
             u"null", u"\"\\u0000\\u001f\\b\\t\\n\\f\\r\\\"\\\\/\u007F\u2028\U0001F600\"",
             u"\"\\ud800\\udc00x\\ud800\"", u"{\"\\ud800\":\"\\udbff\"}"}) {
        const String once = Lossless(text);
        EXPECT_EQ(Lossless(once), once);
        EXPECT_EQ(String::FromUtf8(once.ToUtf8()), once); // no half of a pair is left
    }
    EXPECT_EQ(Lossless(u" {\"b\" : 1 , \"a\":[ \"x\\u0041\\/\", {} ] } "), u"{\"b\":1,\"a\":[\"xA/\",{}]}");
    EXPECT_EQ(Lossless(u"{a:b, 'c':'\"\\x41'}"), u"{\"a\":\"b\",\"c\":\"\\\"A\"}");
    EXPECT_EQ(Lossless(u"\"\\u0000\\u001F\\ud83d\\ude00\\ud83d\""), u"\"\\u0000\\u001f\U0001F600\\ud83d\"");
    EXPECT_EQ(Lossless(u"{\"a\":[1,{}],\"b\":{\"c\":2},\"d\":[]}", 2),
        u"{\r\n  \"a\": [\r\n    1,\r\n    {}\r\n  ],\r\n  \"b\": {\r\n    \"c\": 2\r\n  },\r\n  \"d\": "
        u"[]\r\n}");
}

TEST(xml_node_lossless, the_tree_tells_kinds)
{
    const auto root = THtXMLNode::CreateFromLosslessJSON(u"{\"a\":[1,\"1\",{}],\"\":null,\"b\":true}"_s);
    EXPECT_EQ(Tree(*root), "<object>{<a>{<value> = \"1\" <value> = \"1\" <object>} \"null\" <b> = \"true\"}");
    const std::pair<std::u16string_view, THtJSONKind> rows[] = {
        {u"a", jkArray}, {u"a/value", jkNumber}, {u"a/object", jkObject}, {u"b", jkBoolean}};
    for (const auto& [path, kind] : rows)
        EXPECT_EQ(static_cast<THtXMLNode*>(root->NodebyName(path))->JSONKind(), kind) << String(path);
    EXPECT_EQ(root->GetNode(1)->JSONKind(), jkNull);
    EXPECT_EQ(root->GetNode(0)->GetNode(1)->JSONKind(), jkString);
    const auto copy = root->Clone();
    ExpectSame(*root, *copy);
    copy->SetXML(u"<a/>"_s);
    EXPECT_EQ(copy->JSONKind(), jkNone);
}

TEST(xml_node_lossless, other_trees_print_too)
{
    EXPECT_EQ(THtXMLNode(u"<a b='c'>x<!--d--><e/><f><![CDATA[g]]>h</f><i>j<k/></i></a>"_s).LosslessJSON(),
        u"{\"b\":\"c\",\"e\":\"\",\"f\":\"gh\",\"i\":{\"k\":\"\"}}");
    EXPECT_EQ(THtXMLNode::CreatefromJSON(u"{a:[1,{b:2}],c:{}}"_s)->LosslessJSON(),
        u"{\"a\":[\"1\",{\"b\":\"2\"}],\"c\":\"\"}");
    EXPECT_EQ(THtXMLNode().LosslessJSON(), u"\"\"");
}

TEST(xml_node_lossless, errors_are_those_of_the_other_mode)
{
    const auto message = [](const String& text) {
        return MessageOf<EHtJSONParserException>([&] { THtXMLNode::CreateFromLosslessJSON(text); });
    };
    EXPECT_EQ(message(u""_s), u"JSON is empty");
    EXPECT_EQ(message(u"{},{}"_s), u"JSON is not terminated properly");
    EXPECT_EQ(message(u"[1,]"_s), u"Incorrect JSON, token expected.");
    EXPECT_EQ(message(u"{\"a\":1,}"_s), u"Name/Value expected after comma");
    EXPECT_THROW(THtXMLNode::CreateFromLosslessJSON(u"[01]"_s), EConvertError);
    OnSmallStack([&message] {
        const auto arrays = [](std::size_t depth) { return Repeated(u"[", depth) + Repeated(u"]", depth); };
        EXPECT_EQ(Lossless(arrays(1024)), arrays(1024));
        EXPECT_EQ(message(arrays(100'000)), u"JSON contains too many nested nodes");
        EXPECT_EQ(message(Repeated(u"[{\"\":", 50'000)), u"JSON contains too many nested nodes");
    });
    ExpectLinear(100'000 / kScale, [](std::size_t size) {
        const String text = u"["_s + Repeated(u"{\"a\":\"\\n\"},", size) + u"1]"_s;
        EXPECT_EQ(Lossless(text), text);
    });
}

String FileText(const std::filesystem::path& path)
{
    TFileStream file(String::FromUtf8(path.string()), fmOpenRead);
    return String::FromUtf8(file.ReadRest());
}

TEST(xml_node_lossless, the_public_suite_comes_back)
{
    const std::filesystem::path folder =
        std::filesystem::path(HEARTH_SUITES_DIR) / "JSONTestSuite" / "test_parsing";
    if (std::string_view(HEARTH_SUITES_DIR).empty() || !std::filesystem::is_directory(folder))
        GTEST_SKIP() << "the public JSON test suite is not here (HEARTH_SUITES_DIR)";
    int seen = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (!entry.path().filename().string().starts_with("y_"))
            continue;
        const auto first = THtXMLNode::CreateFromLosslessJSON(FileText(entry.path()));
        for (const std::int32_t spaces : {0, 3})
            ExpectSame(*first, *THtXMLNode::CreateFromLosslessJSON(first->LosslessJSON(spaces)));
        ++seen;
    }
    EXPECT_GT(seen, 90);
}

TEST(xml_node_lossless, large_data_come_back_value_by_value)
{
    const std::filesystem::path path =
        std::filesystem::path(HEARTH_PACKAGES_DIR) / "caniuse-db" / "data.json";
    if (!std::filesystem::exists(path))
        GTEST_SKIP() << "the data is not here (HEARTH_PACKAGES_DIR)";
    const auto tree = THtXMLNode::CreateFromLosslessJSON(FileText(path));
    ExpectSame(*tree, *THtXMLNode::CreateFromLosslessJSON(tree->LosslessJSON()));
}

}
