// Items: attributes, the strict mode, and texts that turn out to be encoded otherwise.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_parser.h>

#include <hearth/runtime/exceptions.h>
#include <markup/trees.h>

#include <fstream>
#include <random>

namespace {

using namespace ht;
using namespace trees;

TEST(html_parser, attribute_values)
{
    ExpectTrees({
        {u"<p z=1 b=2>", R"(<body>{<p b="2" z="1">})"},
        {u"<p a='x\"y' b=\"x'y\">", R"(<body>{<p a="x\"y" b="x'y">})"},
        {u"<p a = b  c=\n'd'>", R"(<body>{<p a="b" c="d">})"},
        {u"<p a=\"1\"b=\"2\"c=3>", R"(<body>{<p a="1" b="2" c="3">})"},
        {u"<p a=/b/c>", R"(<body>{<p a="/b/c">})"},
        {u"<p a=b/>c", R"(<body>{<p a="b/">{"c"}})"},
        {u"<p a=/>c", R"(<body>{<p>{"c"}})"},
        {u"<p a=x=y>", R"(<body>{<p a="xxy">})"},
        {u"<p a=x=y=z>", R"(<body>{<p a="xxyyz">})"},
        {u"<p a=b\"c\"d>", R"(<body>{<p a="bcd">})"},
        {u"<p a=&lt;>", R"(<body>{<p a="&lt;">})"},
        {u"<p a='&lt;'>", R"(<body>{<p a="<">})"},
        {u"<p a='' b=\"\">", R"(<body>{<p a="" b="">})"},
        {u"<p a <!--x--> = <!--y--> b>", R"(<body>{<p a="b">})"},
        {u"<p a=<?x?> b>", R"(<body>{<p a="b">})"},
        {u"<p a=<?x?>/>b", R"(<body>{<p> "b"})"},
        {u"<p a=<?x?>/b>", R"(<body>{<p b="b">})"},
        {u"<p a==b>", R"(<body>{<p b="b">})"},
        {u"<p =a>", R"(<body>{<p a="a">})"},
        {u"<p \"a\" 'b>", R"(<body>{<p a="a" b="b">})"},
        {u"<p a=1 / b=2>c", R"(<body>{<p a="1" b="2"> "c"})"},
        {u"<p a=1></p a=2>b", R"(<body>{<p a="1"> "b"})"},
    });
}

TEST(html_parser, attribute_names)
{
    ExpectTrees({
        {u"<p AB=Cd>", R"(<body>{<p ab="Cd">})"},
        {u"<p a=1 A=2>", R"(<body>{<p a="1">})"},
        {u"<p a a=2>", R"(<body>{<p a="a">})"},
        {u"<p a=2 a>", R"(<body>{<p a="a">})"},
        {u"<p {A}=1 B{c}>", R"(<body>{<p B{c}="B{c}" {A}="1">})"},
        {u"<p A-name-of-more-than-fifteen=1>", R"(<body>{<p a-name-of-more-than-fifteen="1">})"},
        {u"<p a:b.c_d#e%f=1 @g=2 (h)=3>", R"(<body>{<p (h)="3" @g="2" a:b.c_d#e%f="1">})"},
        {u"<p \u00C4=1>", "<body>{<p \u00C4=\"1\">}"},
    });
}

/// Tags and attributes of all items, as in the text.
std::string Items(THtmlParser& parser)
{
    std::string items;
    while (parser.NextItem()) {
        items += parser.IsCloseTag ? "</" : parser.Tag.IsEmpty() ? "(" : "<";
        items += parser.Tag.IsEmpty() ? parser.Value.ToUtf8() : parser.Tag.Name.ToUtf8();
        for (std::int32_t i = 0; parser.Attributes() && i < parser.Attributes()->Count(); ++i)
            items += " " + parser.Attributes()->GetName(i).ToUtf8() + "="
                + parser.Attributes()->GetValue(i).ToUtf8();
        items += parser.Tag.IsEmpty() ? ")" : parser.TagClosed ? "/>" : ">";
    }
    return items;
}

TEST(html_parser, case_is_kept_on_request)
{
    THtmlParser folding(u"<Div Abc=1>t</DIV>"_s);
    EXPECT_EQ(Items(folding), "<div abc=1>(t)</div>");
    THtmlParser keeping(u"<Div B=1 b=2 a=3></DIV>"_s);
    keeping.SetCaseSensitive(true);
    EXPECT_EQ(Items(keeping), "<Div B=1 a=3 b=2></DIV>");
}

TEST(html_parser, an_item_repeats_until_the_text_has_ended)
{
    THtmlParser parser(u"<p a=1>x"_s);
    ASSERT_TRUE(parser.NextItem());
    parser.RepeatCurrent = true;
    ASSERT_TRUE(parser.NextItem());
    EXPECT_EQ(parser.Tag.Name, u"p");
    EXPECT_FALSE(parser.RepeatCurrent);
    ASSERT_TRUE(parser.NextItem());
    EXPECT_EQ(parser.Value, u"x");
    EXPECT_FALSE(parser.NextItem());
    parser.RepeatCurrent = true;
    EXPECT_FALSE(parser.NextItem());
}

TEST(html_parser, xml_wants_strings_as_values)
{
    struct {
        std::u16string_view Text;
        std::string Expected;
    } const rows[] = {
        {u"<a B='1' c/>", "<a B=1 c=c/>"},
        {u"<script>a&lt;b</script>", "<script>(a<b)</script>"},
        {u"<a b=c>", "Attribute b value expected but c found. Line 0 position 7"},
        {u"<a\n b=>", "Attribute b value expected but b found. Line 1 position 8"},
        {u"<a>\n<1>", "Invalid tag name 1. Line 1 position 5"},
    };
    for (const auto& row : rows) {
        THtmlParser parser(String(row.Text), true);
        parser.SetCaseSensitive(true);
        std::string found;
        try {
            found = Items(parser);
        } catch (const EHtmlParserException& error) {
            found = error.what();
        }
        EXPECT_EQ(found, row.Expected);
    }
}

// --- Encodings. The texts hold one unit a byte, as files read without a known encoding do.

TEST(html_parser, a_meta_tag_decodes_the_rest_of_the_text_once)
{
    ExpectTrees({
        {u"<meta charset=utf-8>\u00C3\u00A9", "<body>{<meta charset=\"utf-8\"> \"\u00E9\"}"},
        {u"<meta charset=UTF-8><p a='\u00E2\u0082\u00AC'>",
            "<body>{<meta charset=\"UTF-8\"> <p a=\"\u20AC\">}"},
        {u"<meta charset=windows-1251>\u00C0", "<body>{<meta charset=\"windows-1251\"> \"\u0410\"}"},
        {u"<meta http-equiv=Content-Type content='a; charset=KOI8-R'>\u00C1",
            "<body>{<meta content=\"a; charset=KOI8-R\" http-equiv=\"Content-Type\"> \"\u0430\"}"},
        {u"<meta charset=windows-1251><meta charset=koi8-r>\u00C1",
            "<body>{<meta charset=\"windows-1251\"> <meta charset=\"koi8-r\"> \"\u0411\"}"},
        {u"<meta name=x><meta charset=iso-8859-1>\u0080",
            "<body>{<meta name=\"x\"> <meta charset=\"iso-8859-1\"> \"\u20AC\"}"},
        // No UTF-8, or not read one unit a byte: as it was.
        {u"<meta charset=utf-8>\u00C3(", "<body>{<meta charset=\"utf-8\"> \"\u00C3(\"}"},
        {u"<meta charset=utf-8>\u00C3\u00A9\u0410",
            "<body>{<meta charset=\"utf-8\"> \"\u00C3\u00A9\u0410\"}"},
        {u"<meta charset=unheard-of>\u00C0", "<body>{<meta charset=\"unheard-of\"> \"\u00C0\"}"},
        {u"<meta charset=windows-9999>\u00C0", "<body>{<meta charset=\"windows-9999\"> \"\u00C0\"}"},
        {u"<meta charset=windows-1251>", "<body>{<meta charset=\"windows-1251\">}"},
        {u"<meta charset=utf-8>", "<body>{<meta charset=\"utf-8\">}"},
        // The body tells, if there is an end of the head.
        {u"<meta charset=utf-8></head>\u00C3\u00A9", "<body>{<meta charset=\"utf-8\"> \"\u00E9\"}"},
        {u"<meta charset=utf-8><i b='\u00C3\u00A9'/></head>c",
            "<body>{<meta charset=\"utf-8\"> <i b=\"\u00C3\u00A9\"> \"c\"}"},
    });
}

TEST(html_parser, the_meta_tag_can_be_ignored)
{
    THtmlNode root;
    root.Parse(u"<meta charset=utf-8>\u00C3\u00A9"_s, true);
    EXPECT_EQ(Tree(root), "<body>{<meta charset=\"utf-8\"> \"\u00C3\u00A9\"}");
}

TEST(html_parser, what_a_fragment_read_before_its_meta_tag_is_decoded_too)
{
    THtmlNode root(u"body"_s);
    root.AddHTML(u"<p a='\u00C3\u00A9'>\u00C3\u00A8</p><meta charset=utf-8>\u00C3\u00A9"_s);
    EXPECT_EQ(Tree(root), "<body>{<p a=\"\u00E9\">{\"\u00E8\"} <meta charset=\"utf-8\"> \"\u00E9\"}");
}

TEST(html_parser, byte_order_marks_are_skipped)
{
    THtmlParser plain(u"\uFEFF<p>"_s);
    EXPECT_EQ(Items(plain), "<p>");
    THtmlParser misread(u"\u043F\u00BB\u0457<p>\u00C3\u00A9"_s);
    EXPECT_EQ(misread.Encoding, heUTF8);
    EXPECT_EQ(Items(misread), "<p>(\u00E9)");
    THtmlParser lone(u"\uFEFF"_s);
    EXPECT_EQ(Items(lone), "(\uFEFF)");
    THtmlParser empty(u""_s);
    EXPECT_EQ(Items(empty), "");
}

TEST(html_parser, names_of_charsets)
{
    struct {
        std::u16string_view Charset;
        std::uint32_t CodePage;
    } const rows[] = {{u"iso-8859-1", 1252}, {u"text/html; charset=iso-8859-15", 1252},
        {u"iso-8859-2", 28592}, {u"iso-8859-9", 1254}, {u"iso-8859-8-i", 1255}, {u"koi8-u", 20866},
        {u"windows-1251", 1251}, {u"windows-874", 874}, {u"windows-", 0}, {u"windows-x", 0},
        {u"windows--125", 0}, {u"gb2312", 936}, {u"utf-8", 65001}, {u"big5-hkscs", 950}, {u"UTF-8", 0},
        {u"", 0}};
    for (const auto& row : rows)
        EXPECT_EQ(THtmlParser::CharsettoCodepage(row.Charset), row.CodePage) << String(row.Charset).ToUtf8();
}

TEST(html_parser, utf8_is_told_by_its_multi_byte_sequences)
{
    struct {
        std::string_view Bytes;
        bool Expected;
    } const rows[] = {{"abc", false}, {"", false}, {"a\xC3\xA9", true}, {"\xC3", false},
        {"\xC3\xA9\xC3", false}, {"\xC3\xA9\xC0\x80", false}, {"\xE2\x82\xAC", true}, {"\xE0\x80\x80", false},
        {"\xED\xA0\x80", false},
        // A 4-byte or a broken 3-byte sequence ends the test with what was seen.
        {"\xC3\xA9\xF0\x9F\x98\x80", true}, {"\xF0\x9F\x98\x80\xC3\xA9", false}, {"\xC3\xA9\xE2\x82", true},
        {"\xC3\xA9\xE2\x82(\xC0", true}, {"\x80", false}};
    for (const auto& row : rows) {
        EXPECT_EQ(IsUTF8Bytes(row.Bytes), row.Expected);
        EXPECT_EQ(IsUTF8(String::FromLatin1(row.Bytes)), row.Expected);
    }
    EXPECT_TRUE(IsUTF8Bytes(std::string_view("\xC3\xA9\0\x43\xC3\xA9", 6)));
    EXPECT_TRUE(IsUTF8(std::u16string_view(u"\u00C3\u00A9\0\u00C0", 4)));
    EXPECT_FALSE(IsUTF8(u"\u00C3\u00A9\u0100"));
}

class EncodingFile {
public:
    explicit EncodingFile(std::string_view bytes)
        : FName(testing::TempDir() + "hearth_encoding_test.html")
    {
        std::ofstream(FName, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    ~EncodingFile() { std::remove(FName.c_str()); }
    EncodingFile(const EncodingFile&) = delete;
    EncodingFile& operator=(const EncodingFile&) = delete;

    String Name() const { return String::FromUtf8(FName); }

private:
    std::string FName;
};

TEST(html_parser, of_two_attributes_the_first_stays_however_each_is_read)
{
    // Known and unknown names, capital letters and missing quotes take different ways through the reader.
    for (const std::u16string_view text : {u"<a href='1' href='2'>", u"<a HREF='1' href='2'>",
             u"<a href=1 HREF='2'>", u"<a href = '1' href='2' href=3>"}) {
        THtmlParser parser{String(text)};
        ASSERT_TRUE(parser.NextItem());
        ASSERT_NE(parser.Attributes(), nullptr);
        EXPECT_EQ(parser.Attributes()->AsString(), u"href=\"1\""_s) << String(text);
    }
    THtmlParser parser(u"<a foo='1' foo='2'>"_s);
    ASSERT_TRUE(parser.NextItem());
    EXPECT_EQ(parser.Attributes()->GetAttribute(u"foo"), u"1"_s);
}

TEST(html_parser, case_of_attribute_names_can_change_on_the_way)
{
    THtmlParser parser(u"<p AB=1><p AB=2 ab=3>"_s);
    parser.SetCaseSensitive(true);
    ASSERT_TRUE(parser.NextItem());
    EXPECT_EQ(parser.Attributes()->AsString(), u"AB=\"1\""_s);
    parser.SetCaseSensitive(false);
    ASSERT_TRUE(parser.NextItem());
    EXPECT_EQ(parser.Attributes()->AsString(), u"ab=\"2\""_s);
}

TEST(html_parser, the_last_text_of_a_broken_tag_decides_where_a_raw_body_ends)
{
    ExpectTrees({
        {u"<script <p>a</p><p>b</p>", R"(<body>{<script> "a" <p>{"b"}})"},
        {u"<style\n<p>a</p><p>b</p></style>c", R"(<body>{<style> "a" <p>{"b"} "c"})"},
        {u"<script src=/x id=\"script\" class=\"z\"><i>a</i></script>b",
            R"(<body>{<script class="z" id="script" src="/x"> = "a" "b"})"},
        {u"<script c=\"script\"class=\"\"<b>", "<body>"},
        // An empty "<!" brings the text in front of it once more.
        {u"<p>a<!", R"(<body>{<p>{"a" "a"}})"},
        {u"<i b=c><p>a<!", R"(<body>{<i b="c">{<p>{"a" "a"}}})"},
    });
}

TEST(html_parser, what_is_no_plain_tag_follows_every_known_tag)
{
    for (const TKnownName& tag : kKnownTags) {
        const String name = String::OfStatic(tag.Text);
        THtmlNode node;
        node.Parse(Concat({u"<", name, u"></", name, u"><!--a-->"}));
        EXPECT_NE(node.FindNode(u"!"), nullptr) << name;
    }
}

/// Capitals lead names past the short cuts of the reader, and fold to the same.
TEST(html_parser, short_cuts_read_what_the_long_way_reads)
{
    constexpr std::u16string_view kNames[] = {u"<p", u"</p", u"<script", u"</script", u"<style", u"<b",
        u"</b", u"<section", u"<meta", u" a", u"\nclass", u" href", u"id", u"<h1", u"<unknown-name",
        u" unknownname"};
    constexpr std::u16string_view kOthers[] = {u">", u">", u">", u"=\"x\"", u"='script'", u"=\"\"", u"=y",
        u"/", u"/>", u" ", u"  \t", u"text", u"<!", u"<!-- c -->", u"<?d?>", u"&amp;", u"<", u"=", u"'",
        u"\"", u"\u00E9", std::u16string_view(u"\0", 1), u"\x01"};
    std::mt19937 random(4);
    for (int round = 0; round < 20'000; ++round) {
        std::u16string lower;
        std::u16string capitals;
        for (std::size_t count = random() % 16; count > 0; --count) {
            const bool isName = random() % 2 == 0;
            const auto piece =
                isName ? kNames[random() % std::size(kNames)] : kOthers[random() % std::size(kOthers)];
            lower += piece;
            capitals += isName ? String(piece).ToUpperAscii().View() : piece;
        }
        // Names also end up in texts and values, where they keep their case.
        const String quick = String::FromUtf8(ParsedTree(lower)).ToLowerAscii();
        ASSERT_EQ(quick, String::FromUtf8(ParsedTree(capitals)).ToLowerAscii()) << String(lower).ToUtf8();
    }
}

TEST(html_parser, files_tell_their_encoding_by_their_first_bytes)
{
    using namespace std::string_view_literals;
    const std::string late(4096, ' ');
    const std::string cut = late.substr(13) + "charset=utf-8\">";
    struct {
        std::string_view Bytes;
        THtmlEncoding Encoding;
        std::uint32_t CodePage;
    } const rows[] = {
        {"", heDefault, 0},
        {"a", heDefault, 0},
        {"\xEF\xBB\xBF", heUTF8, 0},
        {"\xEF\xBB\xBF<p>", heUTF8, 0},
        {"\xFF\xFE<\0"sv, heUTF16, 0},
        {"<\0p\0>\0<\0"sv, heUTF16, 0},
        {"<p>\xC3\xA9", heUTF8, 0},
        {"<META CHARSET=\"Windows-1251\">\xC0", heDefault, 1251},
        {"charset =  koi8-r>", heDefault, 20866},
        {"charset>", heDefault, 0},
        {"charset=>", heDefault, 0},
        {"charset=unheard\"", heDefault, 0},
    };
    for (const auto& row : rows) {
        std::uint32_t page = 77;
        const EncodingFile file(row.Bytes);
        EXPECT_EQ(THtmlParser::GetFileEncoding(file.Name(), page), row.Encoding) << row.Bytes;
        EXPECT_EQ(page, row.CodePage) << row.Bytes;
    }
    std::uint32_t page = 77;
    for (const std::string_view ends :
        {"charset="sv, "charset= \""sv, "charset=koi8"sv, std::string_view(cut)})
        EXPECT_THROW(THtmlParser::GetBytesEncoding(ends, page), ERangeError) << ends;
    EXPECT_EQ(THtmlParser::GetBytesEncoding(late.substr(7) + "charset", page), heDefault);
    EXPECT_EQ(THtmlParser::GetBytesEncoding(late + "\xC3\xA9", page), heDefault);
    EXPECT_THROW(THtmlParser::GetFileEncoding(u"/no/such/file"_s, page), Exception);
}

TEST(html_parser, a_page_is_decoded_by_mark_then_server_then_itself)
{
    using namespace std::string_view_literals;
    struct Row {
        std::string_view bytes;
        std::u16string_view charset;
        std::u16string_view text;
        bool isDecoded = true;
    };
    const Row rows[] = {
        {"\xEF\xBB\xBF\xC3\xA9"sv, u"koi8-r", u"\u00E9"},
        {"\xFE\xFF\x04\x1F"sv, u"", u"\u041F"},
        {"<meta charset=windows-1251>\xF0"sv, u"\"KOI8-R\"", u"<meta charset=windows-1251>\u041F"},
        {"<meta charset=windows-1251>\xCF"sv, u"klingon", u"<meta charset=windows-1251>\u041F"},
        {"\0<\0p"sv, u"", u"<p"},
        {"<p>\xC3\xA9"sv, u"", u"<p>\u00E9"},
        {"\xE9"sv, u"", u"\u00E9", false},
        {"\xE9 charset=koi8"sv, u"", u"\u00E9 charset=koi8", false},
        {""sv, u"", u"", false},
    };
    for (const Row& row : rows) {
        const THtmlPageText page = THtmlParser::DecodePage(row.bytes, row.charset);
        EXPECT_EQ(page.Text, row.text) << row.bytes;
        EXPECT_EQ(page.IsDecoded, row.isDecoded) << row.bytes;
    }
}

}
