// Any bytes as a style sheet: read, printed exactly, and read again as the same values.
// SPDX-License-Identifier: MIT
#include "../require.h"

#include <hearth/styling/css/css_parser.h>
#include <hearth/styling/css/selector.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

namespace {

using ht::String;
using ht::TCSSSection;

/// The bits of the first byte.
constexpr unsigned kBytesAsUnits = 1; // else UTF-8
constexpr unsigned kDeclarations = 2; // as in a style attribute

bool SameTokens(const ht::TCSSTokens& a, const ht::TCSSTokens& b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [](const ht::TCSSToken& left, const ht::TCSSToken& right) {
            return left.CType == right.CType && left.Name == right.Name && left.AsFloat == right.AsFloat
                && left.Color == right.Color && left.MUnit == right.MUnit && left.Flags == right.Flags;
        });
}

bool SameLengths(ht::TMeasure a, ht::TMeasure b)
{
    return a.FValue == b.FValue && a.FMUnit == b.FMUnit && a.Flags == b.Flags && !a.Calc == !b.Calc
        && (!a.Calc || SameTokens(*a.Calc, *b.Calc)) && a.GetFPixels() == b.GetFPixels();
}

bool SameValues(const ht::TCSSValue& a, const ht::TCSSValue& b)
{
    return a.Name == b.Name && a.PropRec == b.PropRec && a.Important == b.Important && a.Vendor == b.Vendor
        && a.Inherit == b.Inherit && a.ApplyProc == b.ApplyProc && SameTokens(a.Tokens, b.Tokens)
        && SameLengths(a.Measure.Value1, b.Measure.Value1) && SameLengths(a.Measure.Value2, b.Measure.Value2);
}

template <class Values> bool AllSame(const Values& a, const Values& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), SameValues);
}

std::unique_ptr<TCSSSection> ReadDeclarations(const String& text)
{
    ht::TCSSParser parser(text);
    parser.CurrentSection = std::make_unique<TCSSSection>();
    parser.ReadSectionValues();
    parser.CurrentSection->Compile();
    return std::move(parser.CurrentSection);
}

void CheckValues(TCSSSection& section)
{
    for (const ht::TCSSValue& value : section.Values) {
        fuzz::Require(value.PropRec != nullptr, "each value has a property");
        fuzz::Require(!value.Tokens.IsEmpty(), "each value has tokens");
        fuzz::Require(section.ItembyName(value.Name) != nullptr, "each value is found by its name");
        static_cast<void>(value.Hash());
        static_cast<void>(CSSValuetoString(value));
    }
    const std::unique_ptr<TCSSSection> again = ReadDeclarations(section.AsInlineString(ht::cpExact));
    fuzz::Require(AllSame(section.Values, again->Values), "printed values read back");
    fuzz::Require(
        AllSame(section.CompiledValues, again->CompiledValues), "values that read back compile alike");
    static_cast<void>(section.AsString());
    section.Minify();
    static_cast<void>(section.AsInlineString(ht::cpExact));
}

void CheckRule(TCSSSection& section)
{
    if (section.Selectors->Count() == 0)
        return;
    ht::TCSSParser parser(section.AsString(ht::cpExact));
    fuzz::Require(parser.NextSection(), "a printed rule is a rule");
    const TCSSSection& again = *parser.CurrentSection;
    fuzz::Require(again.Selectors->Count() == section.Selectors->Count(), "its selectors read back");
    fuzz::Require(AllSame(section.CompiledValues, again.CompiledValues), "and its values");
}

void ReadSheet(const String& text)
{
    ht::TCSSParser parser(text);
    while (parser.NextSection()) {
        TCSSSection& section = *parser.CurrentSection;
        fuzz::Require(section.MediaSet != nullptr, "each rule has media");
        CheckRule(section);
        CheckValues(section);
    }
    for (std::int32_t i = 0; i < parser.MediaSets.Count(); ++i) {
        const auto& media = static_cast<const ht::TCSSMediaSet&>(*parser.MediaSets.Items(i));
        fuzz::Require(!media.Medias.IsEmpty(), "a block that ended has media");
        static_cast<void>(media.AsString());
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const unsigned mode = data[0];
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const String text = (mode & kBytesAsUnits) != 0 ? String::FromLatin1(bytes) : String::FromUtf8(bytes);
    if ((mode & kDeclarations) != 0)
        CheckValues(*ReadDeclarations(text));
    else
        ReadSheet(text);
    return 0;
}
