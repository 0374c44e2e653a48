// Tokens of JSON and members of objects: what is taken, and the messages for what is not.
// SPDX-License-Identifier: MIT
#include <hearth/markup/json_parser.h>

#include <runtime/messages.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using namespace ht;
using namespace std::string_view_literals;

/// `jtIdent:a@0-1` for each token, and the message that ends them, if one does.
std::string Tokens(std::u16string_view text)
{
    THtJSONTokenizer tokens{String(text)};
    std::string shown;
    try {
        while (tokens.NextToken()) {
            const THtJSONToken& token = tokens.Token();
            shown += String(EnumName(token.CType)).ToUtf8() + ":" + token.Name.ToUtf8() + "@"
                + std::to_string(token.StartPos) + "-" + std::to_string(token.EndPos) + " ";
        }
    } catch (const Exception& error) {
        return shown + String(error.ClassName()).ToUtf8() + ": " + error.Message.ToUtf8();
    }
    return shown.substr(0, shown.size() - 1);
}

struct Row {
    std::u16string_view Text;
    std::string_view Shown;
};

template <std::size_t N> void ExpectTokens(const Row (&rows)[N])
{
    for (const Row& row : rows)
        EXPECT_EQ(Tokens(row.Text), row.Shown) << "text: " << String(row.Text).ToUtf8();
}

TEST(json_tokenizer, every_kind_with_its_place)
{
    ExpectTokens({
        {u" {\"a\" :1,}[]",
            "jtObjectStart:{@1-2 jtString:a@2-5 jtSpace: @5-6 jtColon::@6-7 jtInt:1@7-8 "
            "jtComma:,@8-9 jtObjectEnd:}@9-10 jtArrayStart:[@10-11 jtArrayEnd:]@11-12"},
        {u"a-1_Z\u0416 True true nulls /*\u00E9x",
            "jtIdent:a-1_Z\u0416@0-6 jtSpace: @6-7 jtUnknown:True@7-11 jtSpace: @11-12 jtValue:true@12-16 "
            "jtSpace: @16-17 jtIdent:nulls@17-22 jtSpace: @22-23 jtUnknown:/@23-24 jtUnknown:*@24-25 "
            "jtUnknown:\u00E9x@25-27"},
        {u"''\"it's\"'\"'", "jtString:@0-2 jtString:it's@2-8 jtString:\"@8-11"},
        {u"1\t\x01\n", "jtInt:1@0-1"}, // blanks hide what they begin, and end the text
        {u"\x01 1", "jtInt:1@2-3"},
        {u"1 \x01"
         u"2",
            "jtInt:1@0-1 jtSpace: \x01@1-3 jtInt:2@3-4"},
        {u"1\x01", "jtInt:1@0-1 jtUnknown:\x01@1-2"},
        {u"", ""},
    });
}

TEST(json_tokenizer, escapes)
{
    ExpectTokens({
        {uR"("\n\b\f\r\t\\\"\/")", "jtString:\n\b\f\r\t\\\"/@0-18"},
        {uR"("a\u00e9\ud83D\uDE00\x4a\xZz!")", "jtString:a\u00E9\U0001F600J\0!@0-30"sv},
        {uR"("a\q")", "EHtJSONParserException: Incorrect unicode escape at line 0"},
        {u"\n\n'\\'", "EHtJSONParserException: Incorrect unicode escape at line 2"},
        {uR"("\u12g4")", "EHtJSONParserException: Incorrect unicode escape at line 0"},
        {uR"("\u12)", "EHtJSONParserException: Incorrect unicode escape at line 0"},
        {uR"("\)", "EHtJSONParserException: Incorrect unicode escape at line 0"},
        {uR"("\x)", "EHtJSONParserException: Unterminated string"},
        {u"\"a'", "EHtJSONParserException: Unterminated string"},
        {u"\"", "EHtJSONParserException: Unterminated string"},
        {u"'%s \\n\tb'", "EHtJSONParserException: Unescaped control symbol #9 in '%s \\n"},
        {u"\"long enough for a wide step\n\"",
            "EHtJSONParserException: Unescaped control symbol #10 in \"long enough for a wide step"},
    });
}

TEST(json_tokenizer, numbers)
{
    ExpectTokens({
        {u"-0 12.5e-1 1E2",
            "jtInt:-0@0-2 jtSpace: @2-3 jtFloat:12.5e-1@3-10 jtSpace: @10-11 jtFloat:1E2@11-14"},
        {u"9223372036854775808", "jtFloat:9223372036854775808@0-19"},
        {u"1e", "jtInt:1@0-1 jtIdent:e@1-2"},
        {u"+1", "jtUnknown:+1@0-2"},
        {u"1e999999999", "jtFloat:1e999999999@0-11"},
    });
    for (const std::u16string_view text : {u"-", u".", u"-.5", u"1.", u"01", u"-01", u"1e+", u"2.e3", u"--1"})
        EXPECT_EQ(Tokens(text), "EConvertError: Incorrect number") << String(text);
    THtJSONTokenizer tokens(u"-42 2.5"_s);
    ASSERT_TRUE(tokens.NextNSToken());
    EXPECT_EQ(tokens.Token().IntValue, -42);
    ASSERT_TRUE(tokens.NextNSToken());
    EXPECT_EQ(tokens.Token().FloatValue, 2.5);
}

TEST(json_tokenizer, ends)
{
    THtJSONTokenizer tokens(u"a \n"_s);
    EXPECT_FALSE(tokens.Eof());
    tokens.NextRequiredToken();
    EXPECT_EQ(tokens.Type(), jtIdent);
    EXPECT_EQ(MessageOf<EHtJSONParserException>([&] { tokens.NextRequiredToken(); }), u"Token expected");
    EXPECT_EQ(tokens.Type(), jtSpace);
    EXPECT_TRUE(tokens.Eof());
    EXPECT_FALSE(tokens.NextNSToken());
}

/// The member behind the first token: its name, the type of its value, and the value's token.
std::string Member(std::u16string_view text)
{
    THtJSONParser parser{String(text)};
    parser.Tokenizer()->NextToken();
    try {
        const THtJSONTokenType type = parser.NextNameValue();
        return parser.Name().ToUtf8() + "=" + String(EnumName(type)).ToUtf8() + ":"
            + parser.Tokenizer()->Token().Name.ToUtf8();
    } catch (const Exception& error) {
        return error.Message.ToUtf8();
    }
}

TEST(json_parser, a_member_is_a_name_a_colon_and_a_value)
{
    const Row rows[] = {
        {u"\"a\" : 1", "a=jtInt:1"},
        {u"a\n:\t1.5", "a=jtFloat:1.5"},
        {u"'a':\"b\"", "a=jtIdent:b"},
        {u"a:b", "a=jtIdent:b"},
        {u"a:null", "a=jtIdent:null"},
        {u"\"\":{", "=jtObjectStart:{"},
        {u"a:[", "a=jtArrayStart:["},
        {u"A:1", "Name expected"},
        {u"1:1", "Name expected"},
        {u"null:1", "Name expected"},
        {u"a", "Name expected"},
        {u"a 1", "Name expected"},
        {u"a,", "Name expected"},
        {u"a:", "Value expected"},
        {u"a: ", "Value expected"},
        {u"a::", "Value expected"},
        {u"a:}", "Value expected"},
        {u"a:B", "Value expected"},
        {u"a:-", "Incorrect number"},
        {u"a'\\", "Incorrect unicode escape at line 0"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Member(row.Text), row.Shown) << "text: " << String(row.Text).ToUtf8();
}

TEST(json_parser, equal_names_share_one_string)
{
    THtJSONParser parser(u"'name':1 \"na\\u006De\":2 name:3 'other':4"_s);
    const String* shared = nullptr;
    String first;
    for (int i = 0; i < 3; ++i) {
        // A word is no name in quotes.
        ASSERT_EQ(parser.NextQuotedName(), i != 2);
        ASSERT_TRUE(i != 2 || parser.Tokenizer()->NextNSToken());
        EXPECT_EQ(i == 2 ? parser.NextNameValue() : parser.NextValue(), jtInt);
        if (i == 0) {
            first = parser.Name();
            shared = &parser.Member()->Tag().Name;
        }
        EXPECT_TRUE(parser.Name().IsSame(first));
        EXPECT_EQ(&parser.Member()->Tag().Name, shared);
    }
    // One without a ":" is left to the tokenizer.
    THtJSONParser passed(u" 'a' 'b':1"_s);
    EXPECT_FALSE(passed.NextQuotedName());
    ASSERT_TRUE(passed.Tokenizer()->NextNSToken() && passed.NextQuotedName());
    EXPECT_EQ(passed.Name(), u"b");
}

TEST(json_parser, an_empty_text_has_no_tokenizer)
{
    THtJSONParser parser{String()};
    EXPECT_EQ(parser.Tokenizer(), nullptr);
    EXPECT_FALSE(parser.NextQuotedName());
    EXPECT_EQ(MessageOf<EHtJSONParserException>([&] { parser.NextValue(); }), u"Value expected");
    EXPECT_EQ(MessageOf<EHtJSONParserException>([&] { parser.NextNameValue(); }), u"Name expected");
    EXPECT_EQ(parser.Member(), nullptr);
    EXPECT_EQ(parser.Name(), u"");
}

}
