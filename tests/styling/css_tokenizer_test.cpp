// Tests of the style sheet tokenizer.
// SPDX-License-Identifier: MIT
#include "css_text.h"

#include <gtest/gtest.h>

namespace {

using namespace ht;
using namespace ht::literals;
using test::TokensAsText;

struct Case {
    std::string_view css;
    std::string_view tokens;
};

TEST(css_tokenizer, marks_and_words)
{
    const Case cases[] = {
        {"", ""},
        {" \n ", ""},
        {"a{}", "Ident a|BlockStart {|BlockEnd }"},
        {"a {}", "Ident a|Space  |BlockStart {|BlockEnd }"},
        {"(),:;[]{}/",
            "OpenPar (|ClosePar )|Comma ,|Colon :|Semicolon ;|OpenBr [|CloseBr ]|BlockStart {|BlockEnd "
            "}|Slash /"},
        {"*.>+~=!<|^$\x01",
            "Delimiter *|Delimiter .|Delimiter >|Delimiter +|Delimiter ~|Delimiter =|Delimiter !|"
            "Delimiter <|Delimiter ||Delimiter ^|Delimiter $|Delimiter \x01"},
        {".x", "Delimiter .|Ident x"},
        {"-foo --foo", "Ident -foo|Space  |Ident --foo"},
        {"<!-- -->", "Delimiter <|Delimiter !|Ident --|Space  |Ident --|Delimiter >"},
        {"# #1a#", "Hash |Space  |Hash 1a|Hash "},
        {"@ @media", "AtKeyword @|Space  |AtKeyword @media"},
        {"/**/ /* a * b */ /* a", "Comment |Space  |Comment  a * b |Space  |Comment  "},
        {"/*", "Comment "},
        // U+00E4 ends a word, U+0142 does not.
        {"\xC3\xA4\x61\xC5\x82", "Delimiter \xC3\xA4|Ident a\xC5\x82"},
        {"rgb(Url2(X)", "Function rgb|OpenPar (|Function url2|OpenPar (|Ident X|ClosePar )"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(TokensAsText(c.css), c.tokens) << c.css;
}

TEST(css_tokenizer, escapes)
{
    const Case cases[] = {
        {R"(\41 b)", "Ident Ab"},
        {R"(\41  b)", "Ident A|Space  |Ident b"},
        {R"(\000041b)", "Ident Ab"},
        {R"(\25B8;)", "Ident \xE2\x96\xB8|Semicolon ;"},
        {R"(\1F600 )", "Ident \xF0\x9F\x98\x80"},
        {R"(\110041 )", "Ident A"}, // no character, so its low bits
        {R"(a\:b\.c)", "Ident a:b.c"},
        {"a\\\r\nb", "Ident ab"},
        {"a\\\nb", "Ident a\nb"},
        {"\\", "Space "},
        {R"("a\"b\)", "String a\"b"},
        {R"('a"b' "c)", "String a\"b|Space  |String c"},
        {"'a\rb\n", "String a|Ident b|Space \n"},
        {"'a\nb'", "String a\nb"},
        {"'a\\\r\nb'", "String ab"},
        {"'\\", "String "},
    };
    for (const Case& c : cases)
        EXPECT_EQ(TokensAsText(c.css), c.tokens) << c.css;
}

TEST(css_tokenizer, addresses)
{
    const Case cases[] = {
        {"url( 'a.png' )x", "URI a.png|Ident x"},
        {"URL(a.png )", "URI a.png"},
        {"url(\"a)'b\"c)d", "URI a)'b|Ident d"},
        {"url()", "URI url|ClosePar )"},
        {"url(", "URI "},
        {"url('a", "URI a"},
        {"url(a", "URI a"},
        {"#url(a)", "Hash a"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(TokensAsText(c.css), c.tokens) << c.css;
}

TEST(css_tokenizer, numbers)
{
    struct NumberCase {
        std::string_view css;
        std::string_view tokens;
        float value; // of the first token
        TMeasureUnit unit;
    };
    const NumberCase cases[] = {
        {".5", "Number .5", 0.5F, muNone},
        {"-.5", "Number -.5", -0.5F, muNone},
        {"12e3", "Number 12e3", 12000, muNone},
        {"12em", "Dimension 12em", 12, muEM},
        {"12emx", "Ident 12e|Ident mx", 0, muNone},
        {"5pxfoo", "Dimension 5pxfoo", 5, muPX},
        {"3secs", "Dimension 3secs", 3, muS},
        {"2vmin", "Dimension 2vmin", 2, muVH},
        {"1v", "Dimension 1v", 1, muVH},
        {"2VW", "Dimension 2VW", 2, muVW},
        {"90deg", "Dimension 90deg", 90, muDeg},
        {"90deG", "Ident 90de|Ident G", 0, muNone},
        {"1rem", "Dimension 1rem", 1, muREM},
        {"1r", "Ident 1|Ident r", 0, muNone},
        {"1cm1in1mm1ms1pc1pt1ex", "Ident 1c|Ident m1in1mm1ms1pc1pt1ex", 0, muNone},
        {"1ex", "Dimension 1ex", 1, muEX},
        {"7in", "Dimension 7in", 7, muIN},
        {"7ms", "Dimension 7ms", 7, muMS},
        {"1fr", "Ident 1f|Ident r", 0, muNone},
        {"100%", "Percentage 100%", 100, muPercent},
        {"100 %", "Percentage 100 %", 100, muPercent},
        {"100  %", "Number 100|Space   |Delimiter %", 100, muNone},
        {"99e37px", "Dimension 99e37px", 0, muPX},
        {"1e38px", "Dimension 1e38px", 1, muPX},
        {"1e99999", "Number 1e99999", 1, muNone},
        {"0ff00gg", "Ident 0ff00|Ident gg", 0, muNone},
    };
    for (const NumberCase& c : cases) {
        EXPECT_EQ(TokensAsText(c.css), c.tokens);
        const TCSSToken token = test::Tokenize(c.css)[0];
        EXPECT_EQ(token.AsFloat, c.value) << c.css;
        EXPECT_EQ(token.MUnit, c.unit) << c.css;
    }
    EXPECT_EQ(TokensAsText("+.5"), "Delimiter +|Number .5");
    EXPECT_EQ(test::Tokenize(std::string(10'000, '9'))[0].AsFloat, 0);
}

TEST(css_tokenizer, numbers_may_be_passed_over)
{
    TCSSTokenizer tokenizer(u"1.5-2+3px"_s, false);
    ASSERT_TRUE(tokenizer.NextToken());
    EXPECT_EQ(tokenizer.Token.Name, u"1.5-2+3px");
    EXPECT_EQ(tokenizer.Token.CType, ctDimension);
    EXPECT_EQ(tokenizer.Token.AsFloat, 0);
}

TEST(css_tokenizer, positions_and_the_end)
{
    TCSSTokenizer tokenizer(u"  ab 12px "_s);
    const std::int32_t positions[][2] = {{3, 4}, {5, 5}, {6, 9}};
    for (const auto& position : positions) {
        ASSERT_TRUE(tokenizer.NextToken());
        EXPECT_EQ(tokenizer.Token.StartPos, position[0]);
        EXPECT_EQ(tokenizer.Token.EndPos, position[1]);
    }
    // Blanks at the end are a token that says so.
    EXPECT_FALSE(tokenizer.NextToken());
    EXPECT_EQ(tokenizer.Token.CType, ctSpace);
    EXPECT_FALSE(tokenizer.Eof);
    EXPECT_FALSE(tokenizer.NextToken());
    EXPECT_TRUE(tokenizer.Eof);
}

/// Whatever stands at the end of a text, and wherever the text is cut, each token is at least a unit long.
TEST(css_tokenizer, comes_to_an_end)
{
    const std::u16string text =
        u"url(\"\\\r/*@#\\110000 \\D800 12% -.x e1 \u0142\u00e4 50" + std::u16string(1, u'\0') + u"%'\\";
    for (std::size_t start = 0; start < text.size(); ++start) {
        for (std::size_t end = start; end <= text.size(); ++end) {
            TCSSTokenizer tokenizer(String(std::u16string_view(text).substr(start, end - start)));
            std::int32_t last = 0;
            while (tokenizer.NextToken()) {
                ASSERT_GT(tokenizer.Token.EndPos, last);
                last = tokenizer.Token.EndPos;
            }
        }
    }
}

TEST(token_sequence, colours)
{
    constexpr std::uint32_t kUntouched = 0x12345678;
    struct ColorCase {
        std::string_view css;
        bool result;
        std::uint32_t color;
    };
    const ColorCase cases[] = {
        {"red", true, 0xFFFF0000},
        {"inherit", false, kUntouched},
        {"nocolour", false, kUntouched},
        {"transparent", true, 0x00FFFFFF},
        {"123456", false, 0xFF123456},
        {"hsl(0,0%,0%)", false, kUntouched},
        {"var(--x)", true, kUntouched},
        {"rgb(1,2,3)", true, 0xFF010203},
        {"rgba(1,2,3,50%)", true, 0x80010203},
        {"rgba(1,2,3,.5)", true, 0x80010203},
        {"rgba(100%,0%,50%,1)", true, 0xFFFF0080},
        {"rgb(1 2 3 / 0)", true, 0x00010203},
        {"rgba(red, 0.5)", true, 0xFFFF0000}, // the alpha is put into that of red
        {"rgb(300,0,0)", false, kUntouched},
        {"rgb(1e30,0,0)", false, kUntouched},
        {"rgba(1,2,3,2)", false, kUntouched},
        {"rgb(", true, 0},
        {R"(rgba\(300\,0\,0\,0\))", false, kUntouched},
        {"10px", false, kUntouched},
    };
    for (const ColorCase& c : cases) {
        const TCSSTokens tokens = test::ValueTokens(c.css);
        TCSSTokenSequence sequence;
        sequence.Init(&tokens);
        std::uint32_t color = kUntouched;
        EXPECT_EQ(sequence.ReadColor(color), c.result) << c.css;
        EXPECT_EQ(color, c.color) << c.css;
    }
}

TEST(token_sequence, a_hash_needs_its_cached_colour_and_a_function_ends_at_its_parenthesis)
{
    const TCSSTokens hash = test::ValueTokens("#fff");
    TCSSTokenSequence sequence;
    sequence.Init(&hash);
    std::uint32_t color = 7;
    EXPECT_FALSE(sequence.ReadColor(color));
    hash[0].Color = 0xFFFFFFFF;
    EXPECT_TRUE(sequence.ReadColor(color));
    EXPECT_EQ(color, 0xFFFFFFFF);

    TCSSTokenSequence stored;
    stored.InitStore(test::ValueTokens("rgb(1,2,3) x"));
    EXPECT_TRUE(stored.ReadColor(color));
    EXPECT_EQ(stored.T->CType, ctClosePar);
    EXPECT_TRUE(stored.Next());
    EXPECT_FALSE(stored.Next());
    EXPECT_EQ(stored.Position(), stored.Count - 1);
}

}
