// Base64 against its published examples, where lines break, and what decoding passes over.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/base64.h>

#include <gtest/gtest.h>

namespace ht {
namespace {

TEST(base64, groups_and_padding)
{
    struct Row {
        std::u16string_view text;
        std::u16string_view encoded;
    };
    const Row rows[] = {{u"", u""}, {u"f", u"Zg=="}, {u"fo", u"Zm8="}, {u"foo", u"Zm9v"},
        {u"foob", u"Zm9vYg=="}, {u"\u07ff~", u"379+"}, {u"~~?", u"fn4/"}, {u"€", u"4oKs"}};
    for (const Row& row : rows) {
        EXPECT_EQ(Base64EncodeString(row.text), row.encoded) << String(row.text);
        EXPECT_EQ(Base64DecodeString(row.encoded), row.text) << String(row.encoded);
    }
}

TEST(base64, lines_break_between_groups_only)
{
    TBytes bytes(57);
    EXPECT_EQ(Base64EncodeBytes(bytes), String(76, u'A'));
    bytes.Add(0);
    const String broken = Base64EncodeBytes(bytes);
    EXPECT_EQ(broken, String(76, u'A') + u"\r\nAA==");
    EXPECT_EQ(Base64EncodeNoLF(bytes), String(78, u'A') + u"==");
    EXPECT_EQ(Base64DecodetoBytes(broken), bytes);
}

TEST(base64, decoding_passes_over_what_is_foreign)
{
    const TBytes man = {0x4D, 0x61, 0x6E};
    EXPECT_EQ(Base64DecodetoBytes(u" T-W\u00e9\u4e00_F\nu"), man);
    EXPECT_EQ(Base64DecodetoBytes(u"TWE=bu"), (TBytes{0x4D, 0x61}));
    EXPECT_EQ(Base64DecodetoBytes(u"T"), TBytes());
    EXPECT_EQ(Base64DecodetoBytes(u"TWFuT"), man);
    EXPECT_EQ(Base64DecodetoBytes(u"="), TBytes());
}

}
}
