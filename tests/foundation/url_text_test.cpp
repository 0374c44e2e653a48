// Addresses: joining, and escapes that are cut off or broken.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/url_text.h>

#include <gtest/gtest.h>

namespace ht {
namespace {

TEST(url_text, joined_addresses)
{
    struct Row {
        std::u16string_view base;
        std::u16string_view url;
        std::u16string_view result;
    };
    const Row rows[] = {{u"http://a.b/c/d.html", u"/x.png", u"http://a.b/x.png"},
        {u"http://a.b/c/d.html", u"x.png", u"http://a.b/c/x.png"},
        {u"http://a.b/c/d.html", u"//e.f/g", u"http://e.f/g"}, {u"x", u"//http.net/", u"http.net/"},
        {u"https://a.b", u"/x", u"https://a.b/x"}, {u"http://a.b", u"x", u"http://x"},
        {u"a.b/c/d", u"/x", u"a.b/x"}, {u"ftp://a.b/c", u"/x", u"ftp:/x"}, {u"a.b", u"x", u"a.bx"},
        {u"http://a.b/c", u"http://d/", u"http://a.b/http://d/"}, {u"http://a.b/c", u"", u"http://a.b/"},
        {u"", u"/", u"/"}, {u"", u"", u""}, {u"x", u"//", u"http://"}};
    for (const Row& row : rows)
        EXPECT_EQ(CombineUrl(row.base, row.url), row.result) << String(row.base) << ' ' << String(row.url);
}

TEST(url_text, decoding_drops_what_is_broken)
{
    struct Row {
        std::u16string_view text;
        std::u16string_view result;
    };
    const Row rows[] = {{u"a+b%20c%25", u"a b c%"}, {u"%", u""}, {u"%%", u"%"}, {u"%4", u""}, {u"a%", u"a"},
        {u"%%41", u"%41"}, {u"%4x1", u"1"}, {u"%x41", u"1"}, {u"%4%41", u"41"}, {u"%4+1", u"1"},
        {u"%C3%a9", u"é"}, {u"é%e2%82%ac", u"é€"}, {u"%F0%9F%98%80", u"\U0001F600"}, {u"%c3+", u"\uFFFD "},
        {u"", u""}};
    for (const Row& row : rows)
        EXPECT_EQ(HTTPDecode(row.text), row.result) << String(row.text);
    EXPECT_EQ(HTTPDecode(std::u16string(1'000'000, u'%')).Length(), 500'000);
}

TEST(url_text, encoding_takes_each_unit_alone)
{
    struct Row {
        std::u16string_view text;
        std::u16string_view result;
    };
    const Row rows[] = {{u" ", u"+"}, {u"é", u"%c3%a9"}, {u"€", u"%e2%82%ac"}, {u"\x7F\x80", u"%7f%c2%80"},
        {u"\u07ff\u0800", u"%df%bf%e0%a0%80"}, {u"\U0001F600", u"%ed%a0%bd%ed%b8%80"},
        {u"aZ09!()*-.\\_~", u"aZ09!()*-.\\_~"}, {u"'/%+@[`{", u"%27%2f%25%2b%40%5b%60%7b"}, {u"", u""}};
    for (const Row& row : rows)
        EXPECT_EQ(HtEncodeUrl(row.text), row.result) << String(row.text);
}

TEST(url_text, names_of_mail_addresses)
{
    struct Row {
        std::u16string_view text;
        std::u16string_view name;
        std::u16string_view address;
    };
    const Row rows[] = {{u"Ada B. <a@b.c>", u"Ada B.", u"a@b.c"}, {u" a@b.c ", u"", u"a@b.c"},
        {u"\"B, Ada <x>\" < a@b.c >x", u"B, Ada <x>", u"a@b.c"}, {u"<a@b.c", u"", u"a@b.c"},
        {u"\" <>", u"\"", u""}, {u"", u"", u""}};
    for (const Row& row : rows) {
        String name = u"old"_s;
        String address(row.text);
        SplitEmailAdress(address, name, address);
        EXPECT_EQ(name, row.name) << String(row.text);
        EXPECT_EQ(address, row.address) << String(row.text);
    }
}

}
}
