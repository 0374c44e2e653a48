// Tests of the property table and its keywords.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/properties.h>

#include <hearth/foundation/text_words.h>
#include <hearth/styling/css/style_enums.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using namespace ht;
using namespace ht::literals;

void ForEachProperty(const std::function<void(const TCSSPropRec&)>& body)
{
    CSSPropDictionary().Traverse(
        nullptr, [&body](TObject*, TObject* record) { body(static_cast<const TCSSPropRec&>(*record)); });
}

TEST(properties, names_hold_for_the_numbers)
{
    int count = 0;
    ForEachProperty([&count](const TCSSPropRec& property) {
        ++count;
        TCSSProperty named = cspUnknown;
        EXPECT_TRUE(IsEnum2(u"csp", property.Name, named)) << property.Name;
        EXPECT_EQ(named, property.Prop) << property.Name;
        EXPECT_EQ(&CSSPropRec(property.Prop), &property) << property.Name;
        EXPECT_EQ(&CSSPropRec(property.Name), &property) << property.Name;
    });
    EXPECT_EQ(count, 150);
    for (std::u16string_view name : {u"fill", u"clip-path", u"Color", u"--a", u""})
        EXPECT_EQ(CSSPropRec(name).Prop, cspUnknown) << String(name);
    EXPECT_EQ(CSSPropRec(cspFill).Prop, cspUnknown);
}

TEST(properties, keywords_have_the_prefix_of_their_enumeration)
{
    ForEachProperty([](const TCSSPropRec& property) {
        EXPECT_TRUE(property.EnumType == nullptr || property.PropType == cptEnum) << property.Name;
        for (std::int32_t i = 0; property.EnumType && i < property.EnumType->Count(); ++i)
            EXPECT_TRUE(property.EnumType->ValueName(i).starts_with(property.EnumPrefix)) << property.Name;
    });
}

TEST(properties, shorthands_know_their_longhands)
{
    struct Case {
        std::u16string_view shorthand;
        std::string longhands;
    };
    const Case cases[] = {
        {u"margin", "margin-top margin-right margin-bottom margin-left "},
        {u"border-radius",
            "border-top-left-radius border-top-right-radius border-bottom-right-radius "
            "border-bottom-left-radius "},
        {u"font", "font-style font-weight font-size font-family "},
        {u"outline", "outline-style outline-color outline-width "},
        {u"background", ""},
    };
    for (const Case& c : cases) {
        std::string names;
        for (const TCSSPropRec* longhand : CSSPropRec(c.shorthand).SubProps)
            names += longhand->Name.ToUtf8() + ' ';
        EXPECT_EQ(names, c.longhands);
    }
    TCSSPropRec record(u"x"_s, cspUnknown, cptComplex);
    record.Add(u"color"_s).Add(u"no-such"_s).Add(u"width"_s);
    EXPECT_EQ(record.SubProps.Length(), 2);
}

TEST(properties, keywords_have_the_numbers_that_others_count_on)
{
    struct Case {
        std::u16string_view property;
        std::u16string_view word;
        std::int32_t ordinal;
    };
    const Case cases[] = {
        {u"display", u"inline", 0},
        {u"display", u"INLINE-block", dsInlineBlock},
        {u"position", u"sticky", 5},
        {u"font-weight", u"bold", 1},
        {u"font-weight", u"lighter", 2},
        {u"font-weight", u"bolder", 3},
        {u"font-weight", u"600", fw600},
        {u"font-weight", u"550", -1},
        {u"flex-wrap", u"wrap", fwWrap},
        {u"word-wrap", u"break-word", 1},
        {u"word-break", u"break-word", 1},
        {u"word-break", u"hyphens", 4},
        {u"hyphens", u"auto", 2},
        {u"text-decoration-line", u"none", 0},
        {u"text-decoration-line", u"underline", 1},
        {u"text-decoration-line", u"line-through", 3},
        {u"background-repeat", u"no-repeat", 3},
        {u"text-align", u"xcenter", thXCenter},
        {u"direction", u"rtl", cdRTL},
        {u"cursor", u"nwse-resize", ecNwseResize},
        {u"list-style-type", u"lower-alpha", lstLowerAlpha},
        {u"float", u"up", -1},
    };
    for (const Case& c : cases) {
        const TCSSPropRec& property = CSSPropRec(c.property);
        std::int32_t ordinal = -1;
        IsEnum2(property.EnumPrefix, c.word, *property.EnumType, ordinal);
        EXPECT_EQ(ordinal, c.ordinal) << String(c.property) << ": " << String(c.word);
    }
}

}
