// The encoders against the rules applied unit by unit.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_encode.h>

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/entities.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <random>
#include <string>

namespace {

using namespace ht;

enum TEncoder { enText, enAttr, enXmlAttr };

/// The rules as one reads them, one unit after the other.
std::u16string Expected(TEncoder encoder, std::u16string_view text)
{
    std::u16string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        const THtEntityRow* row = encoder == enText ? HtEntityReverseDictionary().FindEntity(c) : nullptr;
        if (c <= (encoder == enText ? 8 : 9)) {
            out += std::u16string(u"&#") + static_cast<char16_t>(u'0' + c) + u';';
        } else if (c == u'"') {
            out += encoder == enText ? u"\"" : u"&quot;";
        } else if (c == u'&') {
            out += u"&amp;";
        } else if (c == u'<') {
            out += u"&lt;";
        } else if (c == u'>') {
            out += u"&gt;";
        } else if (c == 0xA0) {
            out += encoder == enXmlAttr ? u"&#160;" : u"&nbsp;";
        } else if (encoder == enText && IsHighSurrogate(c)) {
            const int low = i + 1 < text.size() ? text[i + 1] : 0;
            std::array<char, 16> number{};
            std::snprintf(
                number.data(), number.size(), "&#x%06X;", (c - 0xD800) * 0x400 + low - 0xDC00 + 0x10000);
            for (const char* digit = number.data(); *digit; ++digit)
                out += static_cast<char16_t>(*digit);
            ++i;
        } else if (row) {
            out += u"&" + std::u16string(row->Name.View()) + u";";
        } else {
            out += c;
        }
    }
    return out;
}

void ExpectEncoded(const String& text)
{
    using TDirect = String (*)(const String&, std::int32_t);
    using TAppend = void (*)(TFastString&, std::u16string_view);
    static constexpr TDirect kDirect[] = {&HtmlEncode, &HtmlEncodeAttr, &HtmlEncodeXmlAttr};
    static constexpr TAppend kAppend[] = {&HtmlEncodeTo, &HtmlEncodeAttrTo, &HtmlEncodeXmlAttrTo};
    for (const TEncoder encoder : {enText, enAttr, enXmlAttr}) {
        const std::u16string expected = Expected(encoder, text);
        for (const std::int32_t overhead : {-1, 0, 1, 1000})
            ASSERT_EQ(kDirect[encoder](text, overhead), expected) << encoder << ' ' << text;
        EXPECT_EQ(kDirect[encoder](text, -1).IsSame(text), expected == text.View()) << encoder << ' ' << text;
        TFastString buffer(64);
        kAppend[encoder](buffer, text);
        ASSERT_EQ(buffer.GetAsString(), expected) << encoder << ' ' << text;
    }
    EXPECT_EQ(HtmlEncodeNodeOverhead(text) + text.Length(), HtmlEncode(text).Length()) << text;
}

}

TEST(html_encode, text_and_attributes_differ)
{
    struct Row {
        String text;
        String inText;
        String inAttr;
    };
    const Row rows[] = {
        {u""_s, u""_s, u""_s},
        {u"a<b>&c"_s, u"a&lt;b&gt;&amp;c"_s, u"a&lt;b&gt;&amp;c"_s},
        {u"\"\t"_s, u"\"\t"_s, u"&quot;&#9;"_s},
        {u"\u00A0\u00E9"_s, u"&nbsp;\u00E9"_s, u"&nbsp;\u00E9"_s},
        {u"\U0001F600"_s, u"&#x01F600;"_s, u"\U0001F600"_s},
        {u"\u2014\u2665"_s, u"\u2014&hearts;"_s, u"\u2014\u2665"_s},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(HtmlEncode(row.text), row.inText);
        EXPECT_EQ(HtmlEncodeAttr(row.text), row.inAttr);
        ExpectEncoded(row.text);
    }
    EXPECT_EQ(HtmlEncodeXmlAttr(u"\u00A0\""_s), u"&#160;&quot;");
}

TEST(html_encode, a_high_surrogate_takes_whatever_follows)
{
    const char16_t lone[] = {u'a', 0xD83D, u'<', 0xDBFF};
    const String text(std::u16string_view(lone, 4));
    EXPECT_EQ(HtmlEncode(text.Substring(0, 2)), u"a&#x011800;"); // the end counts as U+0000
    EXPECT_EQ(HtmlEncode(text.Substring(0, 3)), u"a&#x01183C;");
    ExpectEncoded(text);
    TFastString cut(16); // a view whose next unit lies behind the end
    HtmlEncodeTo(cut, std::u16string_view(lone, 2));
    EXPECT_EQ(cut.GetAsString(), u"a&#x011800;");
}

TEST(html_encode, every_unit)
{
    for (std::uint32_t c = 0; c <= 0xFFFF; ++c)
        ExpectEncoded(String(12, static_cast<char16_t>(c)));
}

TEST(html_encode, random_texts)
{
    std::mt19937 random(11);
    const std::u16string_view alphabet =
        u"abc \t\"&<>\u0001\u00A0\u00E9\u0414\u2014\u2665\u4E2D\uFB01\uFF01\U0001F600\u2500";
    for (int i = 0; i < 3000; ++i) {
        std::u16string text;
        for (std::size_t length = random() % 60; length > 0; --length)
            text += random() % 3 == 0 ? alphabet[random() % alphabet.size()] : u'x';
        ExpectEncoded(String(text));
    }
}
