// What hostile markup costs, and what twice as much of it costs: one row each for the inputs that once made
// parsers crash, hang or crawl.
// SPDX-License-Identifier: MIT
#include "corpus.h"

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/htmlpars.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <unordered_map>

namespace {

using ht::String;
using ht::THtmlNode;
using ht::THtNode;

String Repeat(std::u16string_view part, std::int64_t count)
{
    std::u16string text;
    text.reserve(part.size() * static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i)
        text += part;
    return String(text);
}

/// A step that is measured, with what it needs made before.
using Step = std::function<void()>;

Step ParseOf(const String& text)
{
    return [text] {
        THtmlNode document;
        document.Parse(text);
    };
}

Step ParagraphsInTables(std::int64_t n)
{
    return ParseOf(Repeat(u"<table><p>", n));
}

Step ParagraphsAtDepthCap(std::int64_t n)
{
    return ParseOf(ht::Concat({Repeat(u"<b>", 254), Repeat(u"<table><p>", n)}));
}

Step OpenDivs(std::int64_t n)
{
    return ParseOf(Repeat(u"<div>", n));
}

/// A tree far deeper than the parser's cap: built, printed, searched and destroyed.
Step DeepFragments(std::int64_t n)
{
    return [n, levels = Repeat(u"<div>", 200)] {
        THtmlNode root;
        THtmlNode* node = &root;
        for (std::int64_t i = 0; i < n; ++i) {
            node->SetInnerHTML(levels);
            node = static_cast<THtmlNode*>(node->Last());
        }
        static_cast<void>(root.GetOuterHTML());
        static_cast<void>(root.GetInnerText());
        static_cast<void>(root.FindNode(u"nowhere"));
    };
}

Step ChainOfChildren(std::int64_t n)
{
    return [n] {
        THtmlNode root;
        THtNode* node = &root;
        for (std::int64_t i = 0; i < n; ++i)
            node = node->AddChild(ht::THtNodeClass::Of<THtmlNode>());
    };
}

Step CutReferences(std::int64_t n)
{
    return ParseOf(Repeat(u"&quo &am &amp &nbs &# &#x & ", n));
}

Step ZeroUnits(std::int64_t n)
{
    return ParseOf(Repeat(std::u16string_view(u"a\0<b\0c d\0=\0>\0", 13), n));
}

Step OddNumbers(std::int64_t n)
{
    return ParseOf(Repeat(u"&#99999999999999999999;&#-1;&#xFFFFFFFFFFFFFFFFF;&#xD800;", n));
}

Step AttributesOutOfOrder(std::int64_t n)
{
    std::vector<std::int64_t> numbers;
    for (std::int64_t i = 0; i < n; ++i)
        numbers.push_back(i);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937_64(7));
    std::string text = "<p";
    for (const std::int64_t number : numbers)
        text += " a" + std::to_string(number) + "=x";
    return ParseOf(String::FromLatin1(text + ">"));
}

/// Parts of names that may stand for each other without changing the hash of the whole: the hash multiplies
/// what it has so far and adds what comes, so two parts that collide alone collide at that place in any name.
class CollidingNames {
public:
    static constexpr int kPlaces = 17;
    static constexpr int kPartSize = 8; // shorter ones do not collide at every place

    CollidingNames()
    {
        std::u16string prefix = u"x";
        for (auto& place : FParts) {
            place = Pair(prefix);
            prefix += place.first;
        }
    }

    std::u16string Name(std::int64_t number) const
    {
        std::u16string name = u"x";
        for (int i = 0; i < kPlaces; ++i)
            name += (number >> i & 1) != 0 ? FParts[i].first : FParts[i].second;
        return name;
    }

private:
    using Parts = std::pair<std::u16string, std::u16string>;

    static Parts Pair(const std::u16string& prefix)
    {
        std::mt19937 random(7);
        std::unordered_map<std::uint32_t, std::u16string> seen;
        for (;;) {
            std::u16string part;
            for (int i = 0; i < kPartSize; ++i)
                part.push_back(static_cast<char16_t>(u'a' + random() % 26));
            const auto [at, isNew] = seen.emplace(ht::RSHash(prefix + part), part);
            if (!isNew && at->second != part)
                return {at->second, part};
        }
    }

    Parts FParts[kPlaces];
};

Step NamesOfOneHash(std::int64_t n)
{
    static const CollidingNames names;
    std::u16string text;
    for (std::int64_t i = 0; i < n; ++i)
        text.append(u"<").append(names.Name(i)).append(u"/>");
    return ParseOf(String(text));
}

/// The last unit of a name is added to its hash: two groups in neighbouring places, the second one first.
Step NamesOfTwoHashes(std::int64_t n)
{
    static const CollidingNames names;
    std::u16string text;
    for (std::int64_t i = 0; i < n; ++i)
        text.append(u"<").append(names.Name(i)).append(i < n / 2 ? u"b/>" : u"a/>");
    return ParseOf(String(text));
}

/// The same number of names of the same length, to compare with.
Step OrdinaryNames(std::int64_t n)
{
    std::mt19937 random(7);
    std::u16string text;
    for (std::int64_t i = 0; i < n; ++i) {
        std::u16string name = u"x";
        for (int k = 0; k < CollidingNames::kPlaces * CollidingNames::kPartSize; ++k)
            name.push_back(static_cast<char16_t>(u'a' + random() % 26));
        text.append(u"<").append(name).append(u"/>");
    }
    return ParseOf(String(text));
}

Step CommentsInStyle(std::int64_t n)
{
    return ParseOf(ht::Concat({u"<style>", Repeat(u"<!--", n)}));
}

Step UnknownClosingTags(std::int64_t n)
{
    return ParseOf(ht::Concat({Repeat(u"<div>", 250), Repeat(u"</x>", n)}));
}

Step FormattingReopened(std::int64_t n)
{
    const String value = Repeat(u"long", 50);
    const String open = Repeat(ht::Concat({u"<b a=", value, u">"}), 250);
    return ParseOf(ht::Concat({u"<p>", open, Repeat(u"</p><p>x", n)}));
}

Step ImagesInTableBodies(std::int64_t n)
{
    return [text = Repeat(u"<table><tbody><img></table>", n)] {
        THtmlNode document;
        document.Parse(text);
        document.DeleteChild(document.NodebyName(u"img"));
        for (const THtNode* node = document.FirstChild(); node; node = node->NextSibling())
            static_cast<void>(node->NodeIndex());
    };
}

Step MetaInTheMiddle(std::int64_t n)
{
    const String half = Repeat(u"<p>\u00C3\u00A9</p>", n);
    return ParseOf(ht::Concat({half, u"<meta charset=utf-8>", half}));
}

Step DeepText(std::int64_t n)
{
    const auto document = std::make_shared<THtmlNode>();
    document->Parse(ht::Concat({Repeat(u"<div>", 250), Repeat(u"text <p>", n)}));
    return [document] { static_cast<void>(document->GetInnerText()); };
}

/// Blanks in front of an end tag fill a chunk of their own, which the printer of indented markup takes back.
Step BlanksBeforeEndTags(std::int64_t n)
{
    const auto document = std::make_shared<THtmlNode>();
    const String block = ht::Concat({u"<div><b>x</b>", Repeat(u" ", 66'000), u"</div>"});
    document->Parse(ht::Concat({u"<p>", Repeat(u"text ", 13'000 * n), u"</p>", Repeat(block, n)}));
    return [document] {
        bool afterBlock = false;
        ht::TFastString text(65'500);
        document->FastFormattedHTML(text, 0, 2, afterBlock);
    };
}

Step HalfPairs(std::int64_t n)
{
    const auto document = std::make_shared<THtmlNode>();
    const String half(static_cast<std::size_t>(n), char16_t{0xD83D});
    document->Parse(ht::Concat({u"<p title='", half, u"'>", half}));
    return [document] { static_cast<void>(document->GetOuterHTML().ToUtf8()); };
}

struct Row {
    const char* Name;
    Step (*Make)(std::int64_t n);
    std::int64_t Size;
};

constexpr Row kRows[] = {
    {"paragraphs in nested tables", ParagraphsInTables, 20'000},
    {"the same at the depth cap", ParagraphsAtDepthCap, 20'000},
    {"open divs", OpenDivs, 1'000'000},
    {"fragments in fragments", DeepFragments, 100},
    {"chain of children", ChainOfChildren, 1'000'000},
    {"cut references", CutReferences, 100'000},
    {"zero units", ZeroUnits, 100'000},
    {"numbers without an end", OddNumbers, 50'000},
    {"attributes in random order", AttributesOutOfOrder, 500'000},
    {"names of one hash", NamesOfOneHash, 65'536},
    {"names of two hashes", NamesOfTwoHashes, 65'536},
    {"as many ordinary names", OrdinaryNames, 65'536},
    {"comments in a style", CommentsInStyle, 1'000'000},
    {"unknown closing tags", UnknownClosingTags, 500'000},
    {"formatting opened again", FormattingReopened, 1'000},
    {"images in table bodies", ImagesInTableBodies, 20'000},
    {"meta in the middle", MetaInTheMiddle, 200'000},
    {"deep text", DeepText, 300'000},
    {"blanks in front of end tags", BlanksBeforeEndTags, 200},
    {"half pairs", HalfPairs, 500'000},
};

void Measure(const Row& row, std::int64_t size)
{
    constexpr int kRuns = 3;
    const Step once = row.Make(size);
    const Step twice = row.Make(2 * size);
    once();
    std::printf("row=%s\n", row.Name);
    bench::Report("size", static_cast<double>(size));
    bench::Report("seconds", bench::Shortest(kRuns, once));
    bench::Report("seconds2", bench::Shortest(kRuns, twice));
    std::fflush(stdout);
}

}

/// With a word: only the rows that hold it; with a number too: in that size.
int main(int argc, char** argv)
{
    for (const Row& row : kRows) {
        if (argc < 2 || std::strstr(row.Name, argv[1]))
            Measure(row, argc > 2 ? std::atoll(argv[2]) : row.Size);
    }
    return 0;
}
