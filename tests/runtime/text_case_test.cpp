// Case in all scripts.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/text_case.h>

#include <gtest/gtest.h>

namespace ht {
namespace {

TEST(text_case, all_scripts_fold)
{
    EXPECT_EQ(AnsiLowerCase(u"ÄÖ ÉΣЖ"_s), u"äö éσж");
    EXPECT_EQ(AnsiUpperCase(u"straße"_s), u"STRASSE");
    EXPECT_EQ(AnsiUpperCase(u"\xD801\xDC28"_s), u"\xD801\xDC00");
    EXPECT_TRUE(AnsiSameText(u"STRASSE", u"straße"));
    EXPECT_TRUE(AnsiSameText(u"k", u"\x212A"));
    EXPECT_TRUE(AnsiSameText(u"", {}));
    EXPECT_LT(AnsiCompareText(u"Äa", u"äB"), 0);
    EXPECT_GT(AnsiCompareText(u"abc", u"AB"), 0);
    EXPECT_GT(AnsiCompareText(u"\xD83D\xDE00", u"\xFFFD"), 0);
}

}
}
