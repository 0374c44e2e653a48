// Colours as text: every form that is read, what is refused, and the odd ones.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/colors.h>
#include <hearth/runtime/exceptions.h>

#include <gtest/gtest.h>

#include <string>

namespace ht {
namespace {

struct ColorRow {
    std::u16string_view text;
    std::uint32_t color;
};

void ExpectColors(std::initializer_list<ColorRow> rows)
{
    for (const ColorRow& row : rows)
        EXPECT_EQ(htmlHextoColor(row.text), row.color) << String(row.text);
}

TEST(colors, digits)
{
    ExpectColors({{u"#fff", 0xFFFFFFFF}, {u"#8000", 0x88000000}, {u"#1a2B3c", 0xFF1A2B3C},
        {u"#1a2b3c4", 0xFF1A2B3C}, {u"#12345678", 0x12345678}, {u"#123456789abcdef", 0x12345678},
        {u"", 0xFF000000}, {u"#", kNoColor}, {u"#1", kNoColor}, {u"#12", kNoColor}, {u"#12345", kNoColor},
        {u"#ffg", kNoColor}, {u"#12345678x", kNoColor}, {u"#fff ", kNoColor}, {u"##fff", kNoColor},
        {u"abc", 0xFFAABBCC}, {u"12", kNoColor}, {u"12345678", 0x12345678}, {u"xyz", kNoColor},
        {u"#\uff11\uff11\uff11", kNoColor}});
    EXPECT_EQ(htmlHextoColor(std::u16string(1'000'000, u'f')), 0xFFFFFFFFU);
}

TEST(colors, names)
{
    ExpectColors({{u"red", 0xFFFF0000}, {u"LightGoldenRodYELLOW", 0xFFFAFAD2}, {u"aliceblue", 0xFFF0F8FF},
        {u"YellowGreen", 0xFF9ACD32}, {u"grey", 0xFF808080}, {u"black", 0xFF000000}, {u"indianred", kNoColor},
        {u"indigo", kNoColor}, {u"indianred ", 0xFFCD5C5C}, {u"darkgrey", kNoColor}, {u" red", kNoColor},
        {u"transparent", 0x00FFFFFF}, {u"Transparent", kNoColor}, {u"none", kNoneColor}, {u"None", kNoColor},
        {u"window", 0xFFFFFFFF}, {u"windowtext", 0xFF000000}, {u"ButtonFace", 0xFFF0F0F0},
        {u"highlight", 0xFF0078D7}, {u"activeborder", 0xFFB4B4B4}, {u"c3dhilight", 0xFFFFFFFF}});
    EXPECT_EQ(HtStringtoColor(u"black"), 0xFF000000U);
    EXPECT_EQ(HtStringtoColor(u"none"), 0U);
    EXPECT_EQ(HtStringtoColor(std::u16string(1'000'000, u'a')), 0U);
}

TEST(colors, rgba)
{
    ExpectColors({{u"rgba(255, 128,0, 0.5)", 0x80FF8000}, {u"rgba( 1,2,3,1)", 0xFF010203},
        {u"rgba(1,2,3)", 0x00010203}, {u"rgba(red,0.5)", 0x80FF0000}, {u"rgba( red , 1)", 0xFFFF0000},
        {u"rgba(#12345678,0)", 0x00345678}, {u"rgba(window,1)", 0xFFFFFFFF}, {u"rgba(,1)", 0xFF000000},
        {u"rgba(xyz,1)", 0xFF000001}, {u"rgba()", kNoColor}, {u"rgba(", 0x00000000},
        {u"rgba(1,2,3,0.1)", 0x1A010203}, {u"rgba(0,0,0,0.3)", 0x4C000000},
        {u"rgba(rgba(red,0.5),1)", 0x80FF0000}, {u"rgba(rgba(7 8 9,0.2)", 0x33070000},
        {u"RGBA(1,2,3,1)", kNoColor}, {u"rgb(1,2,3)", kNoColor}, {u"rgba (1,2,3,1)", kNoColor}});
    for (const std::u16string_view text : {u"rgba(256,0,0,1)", u"rgba(0,-1,0,1)", u"rgba(0,0,0,1.01)",
             u"rgba(red,-1)", u"rgba(9999999999,0,0,1)", u"rgba(rgba(300", u"rgba(0,0,0,9999999999999999)"})
        EXPECT_THROW(htmlHextoColor(text), ERangeError) << String(text);
    std::u16string nested;
    for (int i = 0; i < 200'000; ++i)
        nested += u"rgba( ";
    EXPECT_EQ(htmlHextoColor(nested + u"red,1"), 0xFFFF0000U);
    EXPECT_EQ(htmlHextoColor(nested), 0U);
}

TEST(colors, system_colours_are_told)
{
    std::int32_t isSystem = 7;
    EXPECT_EQ(htmlHextoColorSys(u"red", isSystem), 0xFFFF0000U);
    EXPECT_EQ(isSystem, 0);
    EXPECT_EQ(htmlHextoColorSys(u"HotLight", isSystem), 0xFF0066CCU);
    EXPECT_EQ(isSystem, 1);
    EXPECT_EQ(htmlHextoColorSys(u"rgba(hotlight,1)", isSystem), 0xFF0066CCU);
    EXPECT_EQ(isSystem, 0);
}

TEST(colors, written_with_the_alpha_at_the_end)
{
    EXPECT_EQ(htmlColortoHex(0x80FF00AB), u"ff00ab");
    EXPECT_EQ(htmlColortoHex(0), u"000000");
    EXPECT_EQ(htmlColortoStr(0xFF00FF0A), u"#00ff0a");
    EXPECT_EQ(htmlColortoStr(0x80FF0000), u"#ff000080");
    EXPECT_EQ(htmlColortoStr(0x05000001), u"#00000105");
}

}
}
