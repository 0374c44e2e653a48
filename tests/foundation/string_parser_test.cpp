// The character cursor: moves, pieces and numbers, each with its ends of text.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/string_parser.h>

#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace ht;

/// Result and rest, as "result|rest".
std::string WithRest(std::string result, const TStringParser& parser)
{
    EXPECT_LE(parser.p, parser.pend);
    return std::move(result) + "|" + parser.Tail().ToUtf8();
}

using TReader = std::function<std::string(TStringParser&)>;

struct ReaderRow {
    std::u16string Text;
    std::string Expected; // the pieces and the rest
};

void ExpectReads(const TReader& read, const std::vector<ReaderRow>& rows, bool raise = false)
{
    for (const ReaderRow& row : rows) {
        const String text(row.Text);
        TStringParser parser(text);
        parser.RaiseException = raise;
        std::string found;
        try {
            found = read(parser);
        } catch (const EConvertError& error) {
            found = error.what();
        }
        EXPECT_EQ(WithRest(found, parser), row.Expected) << "text: " << text.ToUtf8();
    }
}

TEST(string_parser, cursor_never_leaves_the_text)
{
    TStringParser parser(u"ab\ncd"_s);
    EXPECT_TRUE(parser.First());
    parser.Skip(-1);
    EXPECT_EQ(parser.Pos(), 1);
    parser.Skip(3);
    EXPECT_EQ(parser.Line(), 1);
    EXPECT_EQ(parser.CharPos(u'd'), 2);
    EXPECT_EQ(parser.CharPos(u'a'), 0);
    EXPECT_EQ(parser.Next(), u'd');
    EXPECT_EQ(parser.Next(), 0);
    EXPECT_EQ(parser.Next(), 0);
    EXPECT_EQ(parser.Pos(), 6);
    parser.Skip(INT32_MIN);
    parser.Skipto(u'x');
    EXPECT_TRUE(parser.Empty());
    parser.Skip(INT32_MAX);
    EXPECT_EQ(parser.Pos(), 6);

    TStringParser empty;
    empty.Skip(5);
    empty.SkipBlanks();
    empty.SkipEndBlanks();
    EXPECT_EQ(empty.Next(), 0);
    EXPECT_EQ(empty.p, &empty.fNull);
    empty.Init(u"z"_s);
    EXPECT_EQ(empty.GetCurrent(), u'z');
}

TEST(string_parser, end_blanks_go_and_the_cursor_keeps_its_offset)
{
    struct Row {
        std::u16string_view Text;
        std::int32_t Offset;
        std::string Rest;
    };
    for (const Row& row : {Row{u"ab \r\n ", 1, "b"}, Row{u"ab\t ", 0, "ab\t"}, Row{u" \n", 2, ""},
             Row{u"ab  ", 4, ""}, Row{u"ab", 2, ""}}) {
        TStringParser parser{String(row.Text)};
        parser.Skip(row.Offset);
        parser.SkipEndBlanks();
        EXPECT_EQ(parser.Tail().ToUtf8(), row.Rest);
        EXPECT_LE(parser.p, parser.pend);
    }
}

TEST(string_parser, starts_with_folds_the_text_only)
{
    const TStringParser parser(u"</SCRIPT>"_s);
    EXPECT_TRUE(parser.StartsWith(u"</script>"));
    EXPECT_FALSE(parser.StartsWith(u"</SCRIPT>"));
    EXPECT_FALSE(parser.StartsWith(u"</script> "));
    EXPECT_FALSE(parser.StartsWith(u""));
    EXPECT_FALSE(TStringParser().StartsWith(u"a"));
}

TEST(string_parser, words_parameters_and_lines)
{
    const auto words = [](TStringParser& parser) {
        String word;
        parser.ReadWord(word, true);
        return word.ToUtf8();
    };
    ExpectReads(words, {{u"  ab,c", "ab|,c"}, {u"(ab)", "(ab|)"}, {u",,", ",|,"}, {u"", "|"}, {u"  ", "|"}});
    const auto parameters = [](TStringParser& parser) {
        std::string all;
        String piece;
        while (parser.ReadParam(piece))
            all += "[" + piece.ToUtf8() + "]";
        return all;
    };
    ExpectReads(parameters,
        {{u"f(a, b)c", "[f][a][ b]|c"}, {u"a,,b", "[a][][b]|"}, {u"()x", "[]|x"}, {u" ) x", "| x"},
            {u"", "|"}});
    const auto lines = [](TStringParser& parser) {
        std::string all;
        String piece;
        while (!parser.Empty()) {
            parser.ReadLn(piece);
            all += "[" + piece.ToUtf8() + "]";
        }
        return all;
    };
    ExpectReads(lines, {{u"a\r\nb\nc\rd", "[a][b][c][d]|"}, {u"\n\r", "[][]|"}, {u"a\r", "[a]|"}});
}

TEST(string_parser, reading_to_characters)
{
    const auto trimmed = [](TStringParser& parser) {
        String piece;
        parser.ReadtoChar(u';', piece, true);
        return piece.ToUtf8();
    };
    ExpectReads(
        trimmed, {{u" a b ;c", "a b|c"}, {u";;a;b", ";;a|b"}, {u" a ", "a|"}, {u";;", ";;|"}, {u"  ", "|"}});
    const auto exact = [](TStringParser& parser) {
        String piece;
        parser.ReadtoChar(u';', piece, false);
        return piece.ToUtf8();
    };
    ExpectReads(exact, {{u" a ;c", " a |;c"}, {u";a", ";a|"}, {u"", "|"}});
    const auto anyOf = [](TStringParser& parser) {
        String piece;
        TStringParser::TByteChars ends;
        ends.set(u';').set(u'}');
        parser.ReadtoChars(ends, piece);
        return piece.ToUtf8();
    };
    // U+017D ends with the byte of "}".
    ExpectReads(anyOf, {{u" a }b;", "a |}b;"}, {u"\u017D;", "\u017D|;"}, {u"ab", "ab|"}});
}

TEST(string_parser, ideographs_may_break_but_not_in_front_of_closing_marks)
{
    const auto pieces = [](TStringParser& parser) {
        std::string all;
        String piece;
        while (!parser.Empty()) {
            const char16_t* before = parser.p;
            parser.ReadtoWordBreak(piece);
            if (parser.p == before)
                return all + "stuck";
            all += "[" + piece.ToUtf8() + "]";
        }
        return all;
    };
    ExpectReads(pieces,
        {{u"ab cd", "[ab][ cd]|"}, {u"a-b/c", "[a][-b][/c]|"}, {u"  a ", "[  a][ ]|"},
            {u"\u4E00\u4E01\u4E02", "[\u4E00][\u4E01][\u4E02]|"},
            {u"a\u4E00,b\u4E01", "[a\u4E00,b][\u4E01]|"},
            {u"a\u4E00\u3002\u4E01", "[a\u4E00\u3002][\u4E01]|"}, {u"a\u4E00", "[a][\u4E00]|"},
            {u"-", "[-]|"}});
}

template <class Value> std::string Shown(Value value)
{
    std::string text = std::to_string(value);
    if (text.find('.') != std::string::npos)
        text.erase(text.find_last_not_of('0') + 1);
    return text;
}

TEST(string_parser, integers)
{
    const auto readInt = [](TStringParser& parser) { return Shown(parser.ReadInt()); };
    ExpectReads(readInt,
        {{u" , 12x", "12|x"}, {u"-7", "-7|"}, {u"+7", "7|"}, {u",,7", "0|,7"}, {u"x", "0|x"}, {u"", "0|"},
            {u",", "0|"}, {u"-", "0|"}, {u"2147483639", "2147483639|"}, {u"2147483640", "214748364|0"},
            {u"99999999999", "999999999|99"}});
    ExpectReads(readInt,
        {{u"12", "12|"}, {u"x", "Incorrect number|x"}, {u"-", "Incorrect number|"}, {u"", "0|"}}, true);
    const auto readInt1 = [](TStringParser& parser) { return Shown(parser.ReadInt1()); };
    ExpectReads(readInt1, {{u"12", "1|2"}, {u"-3", "-3|"}, {u"A", "17|"}, {u"", "0|"}});
    ExpectReads(readInt1, {{u"A", "Incorrect number|A"}}, true);
    const auto readHex = [](TStringParser& parser) { return Shown(parser.ReadHex()); };
    ExpectReads(readHex,
        {{u"fFg", "255|g"}, {u"+-10", "-16|"}, {u"-+10", "0|+10"}, {u", 1", "1|"},
            {u"7FFFFFFFFFFFFFFF", "9223372036854775807|"}, {u"FFFFFFFFFFFFFFFFFF", "9223372036854775807|"},
            {u"-8000000000000000", "-9223372036854775808|"},
            {u"-8000000000000001", "-9223372036854775808|"}});
    const auto readBin = [](TStringParser& parser) { return Shown(parser.ReadBin()); };
    ExpectReads(readBin, {{u" 1012", "5|2"}, {u"-11", "-3|"}, {u",1", "0|,1"}, {u"", "0|"}});
}

TEST(string_parser, plain_floats)
{
    const auto readNum = [](TStringParser& parser) { return Shown(parser.ReadNum()); };
    ExpectReads(readNum,
        {{u"1.5e2", "1.5|e2"}, {u"-.25 ", "-0.25| "}, {u"3.", "3.|"}, {u"1.12345678x", "1.123457|x"},
            {u"+2", "2.|"}, {u".", "0.|"}, {u"", "0.|"}, {u"-", "-0.|"}});
}

TEST(string_parser, floats_with_exponents)
{
    const auto readNumEx = [](TStringParser& parser) { return Shown(parser.ReadNumEx()); };
    ExpectReads(readNumEx,
        {{u"1.5e2x", "150.|x"}, {u"15E-1", "1.5|"}, {u"1em", "1.|em"}, {u"99999999999", "99999999999.|"},
            {u"1e38", "1.|"}, {u"-2e+1", "-20.|"}, {u"", "0.|"}, {u"1.x", "1.|x"}, {u"007", "7.|"}});
    ExpectReads(readNumEx,
        {{u"", "Incorrect number|"}, {u"x", "Incorrect number|x"}, {u"07", "Incorrect number|07"},
            {u"1.x", "Incorrect number|.x"}, {u"-", "Incorrect number|"}, {u"1e+", "Incorrect number|"},
            {u"0.5", "0.5|"}, {u"0", "0.|"}},
        true);
    const std::u16string nines(400, u'9');
    const std::string greatest = Shown(std::numeric_limits<double>::max());
    ExpectReads(readNumEx,
        {{nines, greatest + "|"}, {nines + u"e37", greatest + "|"}, {nines + u"e-37", greatest + "|"},
            {u"0e999", "0.|"}});
    ExpectReads(readNumEx,
        {{u"0e999", "0.|"}, {u"-0.0e-999", "-0.|"}, {u"1e999", "Incorrect number|"}, {u"1e-999", "0.|"},
            {nines + u"e-400x", "Incorrect number|x"}},
        true);
    TStringParser big(u"1e100"_s);
    big.RaiseException = true;
    EXPECT_DOUBLE_EQ(big.ReadNumEx(), 1e100);
}

TEST(string_parser, integers_stay_exact_until_they_turn_into_floats)
{
    const auto read = [](TStringParser& parser) {
        std::int64_t whole = 0;
        double value = 0;
        return parser.ReadIntOrFloat(whole, value) ? "i" + Shown(whole) : "f" + Shown(value);
    };
    ExpectReads(read,
        {{u"12", "i12|"}, {u"-12", "i-12|"}, {u"9223372036854775807", "i9223372036854775807|"},
            {u"9223372036854775808", "f9223372036854775808.|"},
            {u"-9223372036854775808", "i-9223372036854775808|"},
            {u"-9223372036854775809", "f-9223372036854775808.|"}, {u"1..5", "i1|..5"}, {u"1.5", "f1.5|"},
            {u"1.", "f1.|"}, {u"2e3", "f2000.|"}, {u"2e", "i2|e"}, {u"1e300", "f1.|"}, {u",1", "i0|,1"},
            {u"", "i0|"}, {u"0.30000000000000004", "f0.3|"}});
    const std::u16string nines(400, u'9');
    ExpectReads(read, {{nines, "f" + Shown(std::numeric_limits<double>::max()) + "|"}, {u"0e299", "f0.|"}});
    ExpectReads(read,
        {{u"x", "Incorrect number|x"}, {nines, "Incorrect number|"}, {u"01", "Incorrect number|01"},
            {u"-.5", "Incorrect number|.5"}, {u"1.e2", "Incorrect number|.e2"}, {u"1e+", "Incorrect number|"},
            {u"-0", "i0|"}, {u"0.5", "f0.5|"}, {u"1..2", "i1|..2"}},
        true);
    TStringParser tenth(u"0.1 1e299"_s);
    std::int64_t whole = 0;
    double value = 0;
    EXPECT_FALSE(tenth.ReadIntOrFloat(whole, value));
    EXPECT_EQ(value, 0.1);
    EXPECT_FALSE(tenth.ReadIntOrFloat(whole, value));
    EXPECT_DOUBLE_EQ(value, 1e299);
}

}
