// XML and JSON made to hang, crash or exhaust: a tree or the stated error comes out, in bounded time.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/fast_raw_string.h>
#include <hearth/foundation/hash.h>
#include <hearth/xml/htxml.h>
#include <markup/hostile.h>
#include <markup/trees.h>
#include <runtime/messages.h>

#include <random>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

using namespace ht;
using namespace hostile;
using namespace trees;

String XmlError(const String& text)
{
    return MessageOf<EHtXML>([&text] { THtXMLNode{text}; });
}

String JsonError(const String& text)
{
    return MessageOf<EHtJSONParserException>([&text] { THtXMLNode::CreatefromJSON(text); });
}

TEST(xml_hostile, nesting_is_refused_at_the_limit)
{
    OnSmallStack([] {
        EXPECT_EQ(XmlError(Repeated(u"<a>", 1'000'000 / kScale)), u"XML contains too many nested nodes");
        EXPECT_EQ(XmlError(Repeated(u"<a b='c'> ", 100'000 / kScale)), u"XML contains too many nested nodes");
        EXPECT_EQ(JsonError(Repeated(u"[", 100'000)), u"JSON contains too many nested nodes");
        EXPECT_EQ(JsonError(Repeated(u"[{\"\":", 50'000)), u"JSON contains too many nested nodes");
    });
}

TEST(xml_hostile, trees_that_a_host_allows_are_as_deep_as_one_likes)
{
    OnSmallStack([] {
        constexpr std::size_t kDepth = 1'000'000 / kScale;
        THtmlParser parser(Repeated(u"<a> ", kDepth) + Repeated(u" </a>", kDepth), true);
        parser.SetCaseSensitive(true);
        parser.Limits.XmlDepth = 0;
        parser.NextItem();
        THtXMLNode root;
        root.Parse(parser);
        EXPECT_EQ(Depth(root), static_cast<std::int32_t>(kDepth) - 1);
        EXPECT_EQ(root.Code().size(), 7 * kDepth + 2); // the innermost element keeps its blanks
        EXPECT_EQ(root.JSON().size(), kDepth * 4 + (kDepth - 1) * 4);
        TFastRawString bytes(4096);
        root.FastUTF8FormatCode(bytes, 0, 0);
        const auto copy = root.Clone();
        copy->RemoveNamespaces();
        root.Assign(*copy->GetNode(0));
        EXPECT_EQ(Depth(root), static_cast<std::int32_t>(kDepth) - 2);
    });
}

TEST(xml_hostile, blanks_between_many_children)
{
    ExpectLinear(100'000 / kScale, [](std::size_t size) {
        const THtXMLNode root(u"<a>"_s + Repeated(u" <b/>", size) + u"</a>"_s);
        EXPECT_EQ(root.Content().size(), size);
    });
    ExpectLinear(20'000 / kScale, [](std::size_t size) {
        const THtXMLNode root(u"<a>x"_s + Repeated(u"<b/> &#32;", size) + u"</a>"_s);
        EXPECT_EQ(root.Content().size(), 1 + 2 * size);
    });
}

TEST(xml_hostile, document_types_are_passed_over)
{
    std::u16string entities = u"<!DOCTYPE a [<!ENTITY e0 \"lol\">";
    for (char16_t level = u'1'; level <= u'9'; ++level) {
        const std::u16string below = std::u16string(u"&e") + static_cast<char16_t>(level - 1) + u";";
        entities.append(u"<!ENTITY e").append(1, level).append(u" \"");
        for (int i = 0; i < 10; ++i)
            entities += below;
        entities += u"\">";
    }
    const THtXMLNode root(String(entities + u"]><a>&e9;</a>"));
    EXPECT_EQ(root.Code(), u"<a>&amp;9;</a>"); // an unknown reference loses its first letter
    for (const std::u16string_view start : {u"<!DOCTYPE a [", u"<!DOCTYPE a [\"", u"<!DOCTYPE a ['\"]>"}) {
        ExpectLinear(2'000'000 / kScale, [start](std::size_t size) {
            const THtXMLNode unended{String(start) + String(size, u'"') + u"<a/>"_s};
            static_cast<void>(unended.Code());
        });
    }
}

TEST(xml_hostile, every_construct_may_be_cut_off)
{
    for (const std::u16string_view construct : {u"<a>&quot;&#x41;&nbsp;</a>", u"<a><!--b--></a>",
             u"<a><![CDATA[b]]></a>", u"<!DOCTYPE \"b\" [c]><a/>", u"<?b?><a>\n</a>", u"<a b='c' d=\"e\"/>",
             u"<a:b>c</a:b>", u"<a><b></b > </a>"}) {
        for (std::size_t length = 0; length <= construct.size(); ++length) {
            const String text(construct.substr(0, length));
            try {
                const THtXMLNode root(text);
                static_cast<void>(root.FormattedCode());
            } catch (const EHtmlParserException&) {
                EXPECT_TRUE(text.View().ends_with(u"<")) << text;
            }
        }
    }
    for (const std::u16string_view text : {u"{\"a\":[1,-2.5e3,\"x\\u0041\\n\",true,null,{}],'b':{c:d}}"}) {
        for (std::size_t length = 0; length < text.size(); ++length)
            EXPECT_ANY_THROW(THtXMLNode::CreatefromJSON(String(text.substr(0, length)))) << length;
    }
}

TEST(xml_hostile, half_a_pair_at_the_end_of_everything)
{
    THtXMLNode root(u"<a b='c'>d<!--e--><f>g</f></a>"_s);
    const String half = u"x\xD800"_s;
    root.SetTag(half);
    root.SetContent(half);
    root.SetAttr(half, half);
    root.GetNode(0)->SetContent(half);
    root.GetNode(1)->SetTag(half);
    for (const String& text : {root.Code(), root.FormattedCode(), root.JSON()})
        EXPECT_EQ(String::FromUtf8(text.ToUtf8()).size(), text.size());
    EXPECT_EQ(root.UTF8Code(), root.Code().ToUtf8());
}

TEST(xml_hostile, numbers_of_a_million_digits)
{
    ExpectLinear(250'000 / kScale, [](std::size_t size) {
        const String digits(size, u'9');
        EXPECT_EQ(MessageOf<EConvertError>([&] { THtXMLNode::CreatefromJSON(digits); }), u"Incorrect number");
        const auto fraction = THtXMLNode::CreatefromJSON(u"0."_s + digits);
        EXPECT_EQ(fraction->Content().size(), size + 2);
    });
}

std::u16string RandomLetters(std::mt19937& random, std::size_t count)
{
    std::u16string letters(count, u'a');
    for (char16_t& c : letters)
        c = static_cast<char16_t>(u'a' + random() % 26);
    return letters;
}

String Members(const std::vector<std::u16string>& names, std::u16string_view value)
{
    std::u16string text = u"{";
    for (const std::u16string& name : names)
        text.append(u"\"").append(name).append(u"\":").append(value).append(u",");
    text.back() = u'}';
    return String(text);
}

TEST(xml_hostile, a_million_members_in_whatever_order)
{
    std::mt19937 random(25);
    std::vector<std::u16string> names;
    for (std::size_t i = 0; i < 1'000'000 / kScale; ++i)
        names.push_back(RandomLetters(random, 12));
    const auto read = [](const String& text, std::size_t count) {
        const auto root = THtXMLNode::CreatefromJSON(text);
        const THtAttributes& members = *root->Attributes();
        ASSERT_EQ(members.Count(), static_cast<std::int32_t>(count));
        for (std::int32_t i = 1; i < members.Count(); ++i)
            ASSERT_LT(members.GetName(i - 1), members.GetName(i));
    };
    const String mixed = Members(names, u"1");
    EXPECT_LT(Seconds([&] { read(mixed, names.size()); }), 30);
    names.resize(100'000 / kScale);
    std::sort(names.begin(), names.end());
    const String rising = Members(names, u"1");
    std::reverse(names.begin(), names.end());
    const String falling = Members(names, u"1");
    const double inOrder = Seconds([&] { read(rising, names.size()); });
    EXPECT_LT(Seconds([&] { read(falling, names.size()); }), inOrder * 10 + 0.5);
}

/// Names made of two blocks each, one for a 0 and one for a 1 of their number. Where the blocks share a hash,
/// so do the names.
std::vector<std::u16string> NumberedNames(
    const std::u16string& zero, const std::u16string& one, std::size_t count)
{
    std::vector<std::u16string> names;
    for (std::size_t i = 0; i < count; ++i) {
        std::u16string name;
        for (std::size_t bit = 1; bit < count; bit *= 2)
            name += (i & bit) != 0 ? one : zero;
        names.push_back(std::move(name));
    }
    return names;
}

/// Two blocks that share a hash: among some hundred thousand there are such. Of letters alone none are.
std::pair<std::u16string, std::u16string> BlocksOfOneHash()
{
    std::mt19937 random(9);
    std::unordered_map<std::uint32_t, std::u16string> seen;
    for (;;) {
        std::u16string block(6, u'\0');
        for (char16_t& c : block)
            c = static_cast<char16_t>(0x4E00 + random() % 0x5000);
        const auto [found, isNew] = seen.try_emplace(ShaPerfectHash(block), block);
        if (!isNew && found->second != block)
            return {found->second, block};
    }
}

TEST(xml_hostile, member_names_that_share_one_hash_cost_what_others_cost)
{
    constexpr std::size_t kCount = 100'000 / kScale;
    const auto [zero, one] = BlocksOfOneHash();
    const std::vector<std::u16string> crowded = NumberedNames(zero, one, kCount);
    const std::vector<std::u16string> ordinary = NumberedNames(u"ordina", u"rynine", kCount);
    ASSERT_EQ(ShaPerfectHash(crowded.front()), ShaPerfectHash(crowded.back()));
    ASSERT_NE(ShaPerfectHash(ordinary.front()), ShaPerfectHash(ordinary.back()));
    for (const std::u16string_view value : {u"1", u"{}"}) {
        const auto read = [](const String& text) { return THtXMLNode::CreatefromJSON(text); };
        const String usualText = Members(ordinary, value);
        const String text = Members(crowded, value);
        read(usualText);
        const double usual = Seconds([&] { read(usualText); });
        EXPECT_LT(Seconds([&] { read(text); }), usual * 3 + 0.2) << "usual " << usual;
        const auto root = read(text);
        for (std::size_t i = 0; i < kCount; i += 97) {
            ASSERT_TRUE(value == u"1" ? root->HasAttribute(crowded[i])
                                      : root->GetNode(static_cast<std::int32_t>(i))->Tag() == crowded[i]);
        }
    }
}

}
