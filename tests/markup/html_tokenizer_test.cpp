// Text to tokens, references to characters, and what the strict mode refuses.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_tokenizer.h>

#include <hearth/markup/html_error.h>

#include <cli/tree_text.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using namespace ht;
using hearth_cli::Quoted;

enum TMode { tmHtml, tmXml };

constexpr const char* kTypeNames[] = {"unknown", "ident", "space", "string", "<", ">", "/", "=", "script",
    "style", "comment", "directive", "cdata", "custom"};
static_assert(std::size(kTypeNames) == TEnumTraits<THTMLTokenType>::kCount);

bool HasName(THTMLTokenType type)
{
    return type == htIdent || type == htString || type >= htScript;
}

/// Kinds, with the text where the kind has one; read as the parser does, strings only outside of tags.
std::string Tokens(std::u16string_view text, TMode mode = tmHtml)
{
    const String kept(text);
    THTMLTokenizer tokenizer(kept, mode == tmXml);
    std::string found;
    bool inTag = false;
    std::int32_t end = -1;
    while (tokenizer.NextToken(!inTag || tokenizer.Type() == htEq)) {
        const THTMLToken& token = tokenizer.Token();
        EXPECT_LE(token.StartPos, token.EndPos);
        EXPECT_TRUE(end < 0 || token.StartPos == end) << "a gap in front of token " << found;
        EXPECT_LE(token.EndPos, kept.Length());
        end = token.EndPos;
        inTag = token.CType == htTagStart || (inTag && token.CType < htScript && token.CType != htTagEnd);
        found += (found.empty() ? "" : " ") + std::string(kTypeNames[token.CType]);
        if (HasName(token.CType))
            found += Quoted(token.Name);
    }
    EXPECT_TRUE(tokenizer.Eof());
    return found;
}

struct TokenRow {
    std::u16string_view Text;
    std::string_view Tokens;
};

template <std::size_t N> void ExpectTokens(const TokenRow (&rows)[N], TMode mode = tmHtml)
{
    for (const TokenRow& row : rows)
        EXPECT_EQ(Tokens(row.Text, mode), row.Tokens) << "text: " << String(row.Text).ToUtf8();
}

/// The text token of a reference, and the value of the same reference in quotes.
void ExpectReference(std::u16string_view reference, std::u16string_view expected)
{
    const String text(reference);
    THTMLTokenizer inText(text, false);
    ASSERT_TRUE(inText.NextToken(true));
    EXPECT_EQ(inText.Token().Name, expected) << "text: " << text.ToUtf8();
    THTMLTokenizer inString(u"<a b=\""_s + text + u"\">"_s, false);
    while (inString.NextToken(inString.Type() == htEq) && inString.Type() != htString) { }
    EXPECT_EQ(inString.Token().Name, expected) << "string: " << text.ToUtf8();
}

TEST(html_tokenizer, tags_and_text)
{
    ExpectTokens({
        {u"  a b", R"(string"a b")"},
        {u"<p>a>b</p>", R"(< ident"p" > string"a>b" < / ident"p" >)"},
        {u"<DIV A=b>", R"(< ident"div" space ident"A" = ident"b" >)"},
        {u"<a/b c/>", R"(< ident"a/b" space ident"c" / >)"},
        {u"<a b=\"x'y\" c='x\"y'>",
            R"(< ident"a" space ident"b" = string"x'y" space ident"c" = string"x\"y" >)"},
        {u"<a \"b\" ''c>", R"(< ident"a" space ident"b" space ident"c" >)"},
        {u"<a b=\"c", R"(< ident"a" space ident"b" = string"c")"},
        {u"<a b?c,d\u00E9=1>", "< ident\"a\" space ident\"b?c,d\u00E9\" = ident\"1\" >"},
        {u"<a b=a/b?c>", R"(< ident"a" space ident"b" = ident"a/b?c" >)"},
        {u"<\u00E9>", "< ident\"\u00E9\" >"},
        {u"<a!b>", R"(< ident"a" ident"!b" >)"},
        {u"<a[b>", R"(< ident"a[b" >)"},
        {u"a < b", R"(string"a " string"< b")"},
        {u"1<2<b>", R"(string"1" string"<2" < ident"b" >)"},
        {u"<>a", R"(string"<>a")"},
        {u"a\n\n<", R"(string"a\n\n" string"<")"},
        {u"</", "< /"},
    });
}

TEST(html_tokenizer, a_single_blank_leaves_the_name_and_a_run_sets_it)
{
    THTMLTokenizer tokenizer(u"<a b  c"_s, false);
    std::string names;
    while (tokenizer.NextToken(false))
        names += "[" + tokenizer.Token().Name.ToUtf8() + "]";
    EXPECT_EQ(names, "[][a][a][b][  ][c]");
}

TEST(html_tokenizer, equal_tag_names_share_one_string)
{
    THtNameTable tags(THtNameTable::ntTags, 255);
    THtNameTable attributes(THtNameTable::ntAttributes, 511);
    THTMLTokenizer tokenizer(u"<fancy-name><FANCY-name><div>"_s, false);
    tokenizer.SetNameTables(&tags, &attributes);
    std::vector<const char16_t*> names;
    while (tokenizer.NextToken(false)) {
        if (tokenizer.Type() == htIdent)
            names.push_back(tokenizer.Token().Name.data());
    }
    ASSERT_EQ(names.size(), 3U);
    EXPECT_EQ(names[0], names[1]);
}

TEST(html_tokenizer, named_references)
{
    struct {
        std::u16string_view Text;
        std::u16string_view Expected;
    } const rows[] = {
        {u"&lt;&gt;", u"<>"},
        {u"&quot;&quo12", u"\"\""},
        {u"&amp;&ampx", u"&&"},
        {u"&nbsp;x", u"\u00A0x"},
        {u"&nbsp x", u"\u00A0 x"},
        {u"&nbs;;", u"\u00A0"},
        {u"&copy;", u"\u00A9"},
        {u"&Aacute;&aacute;", u"\u00C1\u00E1"},
        {u"&AACUTE;", u"&ACUTE;"},
        {u"&acE;", u"\u223E"},
        {u"&Afr;", u"\xD835\xDD04"},
        {u"&unknown;", u"&nknown;"},
        {u"&copy", u"&copy"},
        {u"&copy x;", u"&copy x;"},
        {u"a & b; c", u"a & b; c"},
        {u"&&lt;", u"&lt;"},
        {u"&;", u"&"},
        {u"&CounterClockwiseContourIntegral;", u"&CounterClockwiseContourIntegral;"},
        {u"&DoubleLongLeftArrow;x", u"\u27F8x"},
        {u"&lt", u"&lt"},
        {u"&", u"&"},
        {u"&am", u"&am"},
    };
    for (const auto& row : rows)
        ExpectReference(row.Text, row.Expected);
}

TEST(html_tokenizer, numeric_references)
{
    struct {
        std::u16string_view Text;
        std::u16string_view Expected;
    } const rows[] = {
        {u"&#65;&#x41;&#x1F600;", u"AA\xD83D\xDE00"},
        {u"&#65", u"A"},
        {u"&#65 b", u"A b"},
        {u"&#x41g;b", u"Ab"},
        {u"&#X41;b", std::u16string_view(u"\0b", 2)},
        {u"&#;b", std::u16string_view(u"\0b", 2)},
        {u"&#xD800;&#xDC00;", u"\xD800\xDC00"},
        {u"&#x110000;b", u"  b"},
        {u"&#xFFFFFFFFFFFFFFFFF;b", u"  b"},
        {u"&#99999999999999999999;b", u"  b"},
        {u"&#-1;b", u"&#-1;b"},
        {u"&#x-1;b", u"&#x-1;b"},
        {u"&#x10FFFF;", u"\xDBFF\xDFFF"},
        {u"&#65536;", u"\xD800\xDC00"},
        {u"&#", std::u16string_view(u"\0", 1)},
    };
    for (const auto& row : rows)
        ExpectReference(row.Text, row.Expected);
}

TEST(html_tokenizer, a_loose_reference_may_swallow_the_end_of_its_text)
{
    ExpectTokens({
        {u"a&amp", R"(string"a&")"},
        {u"&amp<b>c<i", R"(string"&b>c" < ident"i")"},
        {u"a&quo<b<i", R"(string"a\"" < ident"i")"},
        {u"&<;x<i", R"(string"&;x" < ident"i")"},
        {u"<a b='&amp'c' d>", R"(< ident"a" space ident"b" = string"&c" space ident"d" >)"},
        {u"<a b='&amp'c", R"(< ident"a" space ident"b" = string"&c")"},
    });
}

TEST(html_tokenizer, marked_sections)
{
    ExpectTokens({
        {u"<!-- a > b -->c", R"(comment" a > b " string"c")"},
        {u"<!-->c", R"(comment"" string"c")"},
        {u"<!--->c", R"(comment"" string"c")"},
        {u"<!-x-->c", R"(comment"" string"c")"},
        {u"<!--a--b->-->c", R"(comment"a--b->" string"c")"},
        {u"<!--abc", R"(comment"a")"},
        {u"<!--a", R"(comment"")"},
        {u"<![CDATA[a]b]]>c", R"(cdata"a]b" string"c")"},
        {u"<![CDATA[a]]]>b]]>c", R"(cdata"a]]]>b" string"c")"},
        {u"<![CDATA[abc", R"(cdata"a")"},
        {u"<!DOCTYPE html>a", R"(custom"DOCTYPE html" string"a")"},
        {u"<!D [<!E \"]>\">]>a", R"(custom"D [<!E \"]>\">]" string"a")"},
        {u"<!D \">a\">b", R"(custom"D \"" string"a\">b")"},
        {u"<!>a>b", R"(custom">a" string"b")"},
        {u"<!D", R"(custom"D")"},
        {u"<?xml a=\"b\"?>c", R"(directive"xml a=\"b\"" string"c")"},
        {u"<?a?b>c", R"(directive"a?b" string"c")"},
        {u"<?a", R"(directive"a")"},
    });
}

TEST(html_tokenizer, scripts_and_styles)
{
    ExpectTokens({
        {u"<script> a<b </script>c", R"(< ident"script" script"a<b" < / ident"script" > string"c")"},
        {u"<SCRIPT a=1>x</Script>",
            R"(< ident"script" space ident"a" = ident"1" script"x" < / ident"Script" >)"},
        {u"<script><!--a//--></script>", R"(< ident"script" script"a//" < / ident"script" >)"},
        {u"<script><!--abcdef</script>", R"(< ident"script" script"abc" < / ident"script" >)"},
        {u"<script><!--a</script>", R"(< ident"script" script"" < / ident"script" >)"},
        {u"<script>a</script >b", R"(< ident"script" script"a</script >b")"},
        {u"<script/>a", R"(< ident"script" / > string"a")"},
        {u"<script>a", R"(< ident"script" script"a")"},
        {u"</script>a", R"(< / ident"script" > string"a")"},
        {u"<style> a </STYLE>", R"(< ident"style" style" a " < / ident"STYLE" >)"},
        {u"<style>a<!--b--><!--c</style>", R"(< ident"style" style"abc" < / ident"style" >)"},
        {u"<style><!<!---->--x-->y</style>", R"(< ident"style" style"xy" < / ident"style" >)"},
        {u"<textarea><b></textarea>", R"(< ident"textarea" > < ident"b" > < / ident"textarea" >)"},
    });
}

TEST(html_tokenizer, xml_keeps_case_and_knows_no_scripts)
{
    ExpectTokens({{u"<Script>a&lt;</Script>", R"(< ident"Script" > string"a<" < / ident"Script" >)"}}, tmXml);
}

TEST(html_tokenizer, xml_refuses_what_is_no_name)
{
    struct {
        std::u16string_view Text;
        std::string_view Message;
    } const rows[] = {
        {u"a < b", "Invalid tag name  . Line 0 position 3"},
        {u"<a>\n\n<1>", "Invalid tag name 1. Line 2 position 6"},
        {u"<<a>", "Invalid tag name <. Line 0 position 1"},
        {u"<a><", "Invalid tag name . Line 0 position 4"},
    };
    for (const auto& row : rows) {
        try {
            Tokens(row.Text, tmXml);
            ADD_FAILURE() << "no exception for " << String(row.Text).ToUtf8();
        } catch (const EHtmlParserException& error) {
            EXPECT_EQ(error.what(), row.Message);
        }
    }
}

TEST(html_tokenizer, every_start_of_a_construct_at_the_end_of_the_text)
{
    for (const std::u16string_view mark :
        {u"<!--", u"<!-->", u"<![CDATA[", u"<![CDATA[]]", u"<!D [\"", u"<?a?", u"</a", u"<a b=\"&quot;",
            u"<a b='&#x41;", u"&nbsp;", u"<script></script", u"<style><!--</style>"}) {
        for (std::size_t length = 0; length <= mark.size(); ++length)
            Tokens(mark.substr(0, length));
    }
}

}
