// Inputs made to hang, crash or exhaust: a tree comes out, in bounded time and stack.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/fast_string.h>
#include <hearth/foundation/hash.h>
#include <markup/hostile.h>
#include <markup/trees.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <random>
#include <utility>
#include <vector>

namespace {

using namespace ht;
using namespace hostile;
using namespace trees;

void ParseAndUse(const String& text)
{
    THtmlNode root;
    root.Parse(text);
    EXPECT_FALSE(root.OuterHTML().IsEmpty());
    root.InnerText();
    root.TextContent();
    root.FindNode(u"none");
}

TEST(html_hostile, paragraphs_in_tables_at_the_depth_cap_do_not_repeat_for_ever)
{
    for (const String& text : {Repeated(u"<table><p>", 86), Repeated(u"<table><p>", 1'000),
             Repeated(u"<b>", 254) + u"<table><p>"_s, Repeated(u"<b>", 256) + u"<table><p>x"_s,
             Repeated(u"<table><tbody><p>", 300), Repeated(u"<table><tr><td></td><p>", 300)}) {
        THtmlNode root;
        root.Parse(text);
        ExpectLinked(root);
        std::int32_t items = 0;
        for (const char16_t c : text.View())
            items += c == u'<' ? 1 : 0;
        EXPECT_LE(CountNodes(root), 4 * items + 2);
    }
}

TEST(html_hostile, a_million_open_divs_stay_at_the_depth_cap)
{
    OnSmallStack([] {
        const double seconds = Seconds([] {
            THtmlNode root;
            root.Parse(Repeated(u"<div>", 1'000'000 / kScale));
            EXPECT_EQ(CountNodes(root), static_cast<std::int32_t>(1'000'000 / kScale) + 1);
            EXPECT_LE(Depth(root), 258);
            EXPECT_GE(Depth(root), 250);
        });
        EXPECT_LT(seconds, 20);
    });
}

TEST(html_hostile, nested_inner_html_gets_as_deep_as_one_likes)
{
    OnSmallStack([] {
        const String levels = Repeated(u"<i>", 200);
        THtmlNode root(u"body"_s);
        auto* node = &root;
        for (int i = 0; i < 100; ++i) {
            node->SetInnerHTML(levels);
            node = static_cast<THtmlNode*>(node->Last());
        }
        node->SetInnerHTML(u"text"_s);
        EXPECT_EQ(Depth(root), 20'001);
        EXPECT_EQ(root.InnerText(), u"text");
        EXPECT_EQ(root.TextContent(), u"text");
        EXPECT_EQ(root.GetRawInnerText(), u"");
        EXPECT_EQ(root.OuterHTML().Length(), 20'000 * 7 + 4 + 13);
        EXPECT_EQ(root.FindNode(u"none"), nullptr);
        EXPECT_EQ(node->Path().Length(), 20'000 * 2 + 4);
        root.EnumerateElements();
        root.ChangeEncoding(heUTF8, 0);
        EXPECT_EQ(node->GetAttribute(u"_id"), u"20000");
        bool afterBlock = false;
        TFastString formatted(4096);
        root.FastFormattedHTML(formatted, 0, 0, afterBlock);
        ExpectLinked(root);
    });
}

TEST(html_hostile, a_chain_of_a_million_children_is_destroyed_on_a_flat_stack)
{
    OnSmallStack([] {
        auto root = std::make_unique<THtmlNode>(u"a"_s);
        THtNode* node = root.get();
        for (std::size_t i = 0; i < 1'000'000 / kScale; ++i)
            node = node->AddChild(root->NodeClass());
        EXPECT_EQ(root->Last(), node);
        std::unique_ptr<THtNode> lower = root->FirstChild()->ExtractChild(root->FirstChild()->FirstChild());
        lower.reset();
        root->DeleteAllChildren();
        EXPECT_EQ(CountNodes(*root), 1);
    });
}

TEST(html_hostile, every_construct_may_be_cut_off)
{
    const std::u16string_view constructs[] = {u"a&quot;", u"a&amp;", u"a&nbsp;", u"a&#65;", u"a&#x41;",
        u"a&lt;", u"a&CounterClockwiseContourIntegral;", u"a<!-->", u"a<!--b-->", u"a<![CDATA[b]]>",
        u"a<!DOCTYPE \"b\" [c]>", u"a<?b?>", u"a</b>", u"a<b c='d' e=f/>", u"a<script b>c</script>",
        u"a<style><!--b--></style>", u"a<meta charset='utf-8'>\u00C3\u00A9",
        u"a<table><tbody><img><p>b</p></tr>"};
    for (const std::u16string_view construct : constructs) {
        for (std::size_t length = 0; length <= construct.size(); ++length) {
            ParseAndUse(String(construct.substr(0, length)));
            ParseAndUse(u"<p a=\""_s + String(construct.substr(0, length)));
            ParseAndUse(u"<p "_s + String(construct.substr(0, length)) + u">"_s);
        }
    }
}

TEST(html_hostile, u0000_moves_the_cursor_like_any_unit)
{
    using namespace std::string_view_literals;
    ExpectTrees({
        {u"a\0b"sv, "<body>{\"a\\u0000b\"}"},
        {u"<a\0b=c>d"sv, "<body>{<a \0b=\"c\">{\"d\"}}"sv},
    });
    for (const std::u16string_view text : {u"<\0>"sv, u"</\0>"sv, u"<a \0\0\0=\0>"sv, u"<a b=\"\0\">"sv,
             u"<script>\0</script>\0"sv, u"<style>\0<!--\0-->"sv, u"<!--\0-->"sv, u"<?\0\0?>"sv,
             u"<![CDATA[\0]]>"sv, u"<!\0>"sv, u"&\0;&#\0;&#x\0;"sv, u"\0"sv, u"<meta charset=\0>"sv})
        ParseAndUse(String(text));
}

TEST(html_hostile, numeric_references_beyond_all_ranges)
{
    ExpectTrees({
        {u"&#99999999999999999999;&#xFFFFFFFFFFFFFFFFF;b", R"(<body>{"    b"})"},
        {u"&#-1;&#x-FFFFFFFFFFFFFFFFF;b", R"(<body>{"&#-1;&#x-FFFFFFFFFFFFFFFFF;b"})"},
    });
    THtmlNode root;
    root.Parse(u"&#xD800;"_s);
    EXPECT_EQ(root.GetNode(0)->Content(), u"\xD800");
    EXPECT_EQ(root.OuterHTML().IsEmpty(), false);
}

std::u16string RandomLetters(std::mt19937& random, std::size_t count)
{
    std::u16string letters(count, u'a');
    for (char16_t& c : letters)
        c = static_cast<char16_t>(u'a' + random() % 26);
    return letters;
}

TEST(html_hostile, many_different_attributes_in_random_order)
{
    std::mt19937 random(8);
    const auto parse = [&random](std::size_t count) {
        std::u16string text = u"<p";
        for (std::size_t i = 0; i < count; ++i)
            text.append(u" ").append(RandomLetters(random, 12)).append(u"=1");
        THtmlNode root;
        root.Parse(String(text + u">"));
        const THtAttributes* attributes = root.GetNode(0)->Attributes();
        ASSERT_EQ(attributes->Count(), static_cast<std::int32_t>(count));
        for (std::int32_t i = 1; i < attributes->Count(); ++i)
            ASSERT_LT(attributes->GetName(i - 1), attributes->GetName(i));
    };
    EXPECT_LT(Seconds([&] { parse(1'000'000 / kScale); }), 30);
}

/// Different names of ten units, short enough to be interned as attributes. Their hashes are `hash` where one
/// is given: eight letters are drawn, and of the last two units the second is sought that leads back from the
/// hash to what the letters and the first make.
std::vector<std::u16string> MakeNames(std::size_t count, std::optional<std::uint32_t> hash)
{
    constexpr std::size_t kDrawn = 8;
    constexpr std::uint32_t kFirst = 0x4E00;
    constexpr std::uint32_t kUnits = 0x5000;
    std::uint32_t factor = RSHasher::kFirstFactor;
    for (std::size_t i = 0; i < kDrawn; ++i)
        factor *= RSHasher::kFactorStep;
    const std::uint32_t lastFactor = factor * RSHasher::kFactorStep;
    std::uint32_t inverse = lastFactor;
    for (int step = 0; step < 4; ++step)
        inverse *= 2 - lastFactor * inverse;
    std::map<std::uint32_t, std::uint32_t> lastUnits; // by the hash before them
    for (std::uint32_t last = kFirst; last < kFirst + kUnits; ++last)
        lastUnits[(hash.value_or(0) - last) * inverse] = last;
    std::mt19937 random(9);
    std::vector<std::u16string> names;
    while (names.size() < count) {
        std::u16string name = RandomLetters(random, kDrawn);
        const std::uint32_t least = RSHash(name) * factor + kFirst;
        const auto found = lastUnits.lower_bound(least);
        if (hash && (found == lastUnits.end() || found->first - least >= kUnits))
            continue;
        name.push_back(static_cast<char16_t>(kFirst + (hash ? found->first - least : random() % kUnits)));
        name.push_back(static_cast<char16_t>(hash ? found->second : kFirst + random() % kUnits));
        names.push_back(std::move(name));
    }
    return names;
}

TEST(html_hostile, equals_signs_repeat_a_long_piece_a_few_times_only)
{
    ExpectLinear(200'000 / kScale, [](std::size_t size) {
        THtmlNode root;
        root.Parse(String(u"<p a=" + std::u16string(size, u'b') + std::u16string(size, u'=') + u">c"));
        EXPECT_EQ(root.FirstChild()->GetAttribute(u"a").size(), 17 * size);
    });
}

/// The names as tags, or as attributes of ten to a tag.
String Markup(const std::vector<std::u16string>& names, bool attributes)
{
    std::u16string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!attributes)
            text.append(u"<").append(names[i]).append(u"/>");
        else
            text.append(i % 10 == 0 ? u"<br " : u" ").append(names[i]).append(i % 10 == 9 ? u">" : u"");
    }
    return String(text);
}

TEST(html_hostile, names_that_share_hashes_cost_what_others_cost)
{
    constexpr std::size_t kCount = 100'000 / kScale;
    const std::vector<std::u16string> ordinary = MakeNames(kCount, {});
    const std::vector<std::u16string> oneHash = MakeNames(kCount, 77);
    // Two groups in neighbouring homes, the second one first.
    std::vector<std::u16string> twoHashes = MakeNames(kCount / 2, 78);
    twoHashes.insert(twoHashes.end(), oneHash.begin(), oneHash.begin() + kCount / 2);
    ASSERT_EQ(RSHash(oneHash.back()), 77U);
    ASSERT_EQ(RSHash(twoHashes.front()), 78U);
    for (const bool attributes : {false, true}) {
        const auto parse = [](const String& text) {
            THtmlNode root;
            root.Parse(text);
            EXPECT_GE(root.Count(), static_cast<std::int32_t>(kCount / 10));
        };
        const String usualText = Markup(ordinary, attributes);
        parse(usualText);
        const double usual = Seconds([&] { parse(usualText); });
        for (const auto* names : {&oneHash, &std::as_const(twoHashes)}) {
            const String text = Markup(*names, attributes);
            EXPECT_LT(Seconds([&] { parse(text); }), usual * 3 + 0.2) << attributes << ", usual " << usual;
            THtmlNode root;
            root.Parse(text);
            for (std::size_t i = 0; i < names->size(); i += 97) {
                const THtNode* node = root.GetNode(static_cast<std::int32_t>(attributes ? i / 10 : i));
                ASSERT_TRUE(attributes ? node->HasAttribute((*names)[i]) : node->Tag() == (*names)[i]);
            }
        }
    }
}

TEST(html_hostile, style_bodies_of_comment_marks)
{
    ExpectLinear(20'000, [](std::size_t count) {
        THtmlNode root;
        root.Parse(u"<style>"_s + Repeated(u"<!--", count) + u"x</style>"_s);
        ASSERT_EQ(root.GetNode(0)->Content(), u"x");
        root.Parse(u"<style>"_s + Repeated(u"<!--", count) + Repeated(u"-->", count) + u"</style>"_s);
        ASSERT_EQ(root.GetNode(0)->Content(), u"");
    });
}

TEST(html_hostile, blanks_in_front_of_end_tags_are_cut_without_a_copy)
{
    constexpr std::int32_t kDelta = 6'550;
    const String block = u"<div><b>x</b>"_s + Repeated(u" ", kDelta + 50) + u"</div>"_s;
    ExpectLinear(100, [&block](std::size_t count) {
        THtmlNode root;
        root.Parse(u"<p>"_s + Repeated(u"text ", 1'300 * count) + u"</p>"_s + Repeated(block, count));
        bool afterBlock = false;
        TFastString formatted(kDelta);
        root.FastFormattedHTML(formatted, 0, 0, afterBlock);
        ASSERT_TRUE(formatted.EndsWith(u"</div>\r\n<div>\r\n<b>x</b>\r\n</div>"));
    });
}

TEST(html_hostile, stray_end_tags_deep_inside)
{
    constexpr std::size_t kCount = 1'000'000 / kScale;
    const double seconds = Seconds([] {
        THtmlNode root;
        root.Parse(Repeated(u"<div>", 250) + Repeated(u"</x>", kCount) + u"y"_s);
        EXPECT_EQ(CountNodes(root), 252);
    });
    EXPECT_LT(seconds, 20);
}

TEST(html_hostile, reopened_formatting_shares_its_attributes)
{
    THtmlNode root;
    const String open = u"<b a=\""_s + Repeated(u"long", 1'000) + u"\">"_s;
    root.Parse(u"<p>"_s + Repeated(open, 250) + Repeated(u"</p><p>x", 1'000 / kScale));
    const THtNode* closed = root.FindNode(u"b");
    const THtNode* reopened = root.GetNode(1);
    ASSERT_EQ(reopened->Tag(), u"b");
    EXPECT_EQ(reopened->GetAttribute(u"a").data(), closed->GetAttribute(u"a").data());
    EXPECT_LE(CountNodes(root), 250 * 3 + 2 * 1'000);
    ExpectLinked(root);
}

TEST(html_hostile, what_was_put_in_front_of_a_table_can_be_deleted)
{
    THtmlNode root;
    root.Parse(u"a<table><tbody><img><br></table>b"_s);
    ExpectLinked(root);
    root.DeleteChild(root.FindNode(u"img"));
    ExpectLinked(root);
    EXPECT_EQ(Tree(root), R"(<body>{"a" <br> <table>{<tbody>} "b"})");
}

TEST(html_hostile, encodings_change_once_and_never_run_away)
{
    ExpectTrees({
        {u"a<meta charset=windows-65001>\u00C0", "<body>{\"a\" <meta charset=\"windows-65001\"> \"\u00C0\"}"},
        {u"a<meta charset=windows-1251>\u4E00\u00C0",
            "<body>{\"a\" <meta charset=\"windows-1251\"> \"?\u0410\"}"},
        {u"a<meta charset=utf-8>", "<body>{\"a\" <meta charset=\"utf-8\">}"},
    });
    ExpectLinear(5'000, [](std::size_t count) {
        ParseAndUse(Repeated(u"<meta charset=koi8-r><meta charset=utf-8>\u00C3\u00A9", count));
    });
}

TEST(html_hostile, lone_surrogates_at_the_end)
{
    for (const String& text : {u"\xD800"_s, u"a\xD83D"_s, u"<p a=\"\xD83D\">\xDC00"_s, u"<!--\xD83D-->"_s})
        ParseAndUse(text);
}

TEST(html_hostile, random_pieces_give_linked_trees_through_every_entry)
{
    constexpr std::u16string_view kPieces[] = {u"<table>", u"</table>", u"<tbody>", u"</tbody>", u"<thead>",
        u"<tfoot>", u"<tr>", u"</tr>", u"<td>", u"</td>", u"<th>", u"<p>", u"</p>", u"<b>", u"</b>",
        u"<i a=1>", u"</i>", u"<a>", u"</a>", u"<div>", u"</div>", u"<span>", u"</span>", u"<ul>", u"</ul>",
        u"<li>", u"<dl>", u"<dd>", u"<dt>", u"<img>", u"<br/>", u"<head>", u"<body>", u"</body>", u"<html>",
        u"<h1>", u"</h1>", u"<font>", u"text", u" ", u"<!--c-->", u"<script>s</script>", u"<style>",
        u"<caption>", u"<col>", u"<meta charset=utf-8>", u"</", u"<", u"<p b='", u"\u00C3\u00A9"};
    std::mt19937 random(16);
    for (std::size_t round = 0; round < 20'000 / kScale; ++round) {
        std::u16string text;
        for (std::size_t count = random() % 60; count > 0; --count)
            text += kPieces[random() % std::size(kPieces)];
        THtmlNode root;
        root.Parse(String(text));
        std::vector<THtmlNode*> nodes;
        for (THtNode* node = &root; node; node = node->NextNode())
            nodes.push_back(static_cast<THtmlNode*>(node));
        THtmlNode* node = nodes[random() % nodes.size()];
        switch (random() % 4) {
        case 0:
            node->SetInnerHTML(String(text));
            break;
        case 1:
            node->AddHTML(String(text));
            break;
        case 2:
            node->SetOuterHTML(String(text));
            break;
        default:
            node->Parse(String(text));
        }
        ASSERT_NO_FATAL_FAILURE(ExpectLinked(root)) << String(text).ToUtf8();
        ASSERT_LE(CountNodes(root), 4'000) << String(text).ToUtf8();
    }
}

// --- Every beginning of the public tree-construction texts.

std::vector<std::string> SuiteTexts(const std::filesystem::path& folder)
{
    std::vector<std::string> texts;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".dat")
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        bool inData = false;
        for (std::string line; std::getline(file, line);) {
            if (line == "#data") {
                texts.emplace_back();
                inData = true;
            } else if (line == "#errors") {
                inData = false;
            } else if (inData) {
                texts.back() += (texts.back().empty() ? "" : "\n") + line;
            }
        }
    }
    return texts;
}

/// Parses a text, and what is printed of it.
void ParseTwice(const String& text)
{
    THtmlNode root;
    root.Parse(text);
    const String html = root.OuterHTML();
    ASSERT_NO_FATAL_FAILURE(ExpectLinked(root)) << text.ToUtf8();
    ASSERT_LE(Depth(root), 300);
    THtmlNode fragment(u"td"_s);
    fragment.SetInnerHTML(html);
    fragment.InnerText();
}

TEST(html_hostile, every_beginning_of_the_public_texts_gives_a_tree)
{
    const std::filesystem::path folder =
        std::filesystem::path(HEARTH_SUITES_DIR) / "html5lib-tests" / "tree-construction";
    if (!std::filesystem::is_directory(folder))
        GTEST_SKIP() << "the public tree-construction texts are not here";
    constexpr std::int32_t kAllBeginnings = 300;
    constexpr std::int32_t kStride = 7;
    std::int32_t parsed = 0;
    for (const std::string& bytes : SuiteTexts(folder)) {
        const String text = String::FromUtf8(bytes);
        const std::int32_t stride = text.Length() > kAllBeginnings ? kStride : 1;
        for (std::int32_t length = 0; length <= text.Length(); length += stride, ++parsed)
            ASSERT_NO_FATAL_FAILURE(ParseTwice(text.Substring(0, length)));
    }
    EXPECT_GT(parsed, 20'000);
}

// --- Real pages, cut anywhere.

std::vector<std::string> Manuals()
{
    std::vector<std::string> pages;
    for (const char* folder :
        {"/usr/share/doc/python3.11/html/library", "/usr/share/doc/postgresql-doc-15/html"}) {
        if (!std::filesystem::is_directory(folder))
            continue;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".html") {
                std::ifstream file(entry.path(), std::ios::binary);
                pages.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
            }
        }
    }
    std::sort(pages.begin(), pages.end());
    return pages;
}

TEST(html_hostile, real_pages_may_be_cut_anywhere)
{
    const std::vector<std::string> pages = Manuals();
    if (pages.empty())
        GTEST_SKIP() << "no manuals in HTML are installed here";
    constexpr std::size_t kPages = 20;
    constexpr std::size_t kBeginning = 4096;
    for (std::size_t i = 0; i < kPages; ++i) {
        const std::string& page = pages[i * pages.size() / kPages];
        for (std::size_t length = 0; length <= std::min(kBeginning, page.size()); length += kScale)
            ASSERT_NO_FATAL_FAILURE(ParseTwice(String::FromUtf8(page.substr(0, length))));
    }
    std::mt19937 random(17);
    for (int cut = 0; cut < 1'000; ++cut) {
        const std::string& page = pages[random() % pages.size()];
        const std::size_t from = random() % page.size();
        ASSERT_NO_FATAL_FAILURE(ParseTwice(String::FromUtf8(page.substr(from, random() % (4 * kBeginning)))));
    }
}

}
