// The parts of a rule, found, changed and printed.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/css_section.h>

#include <hearth/styling/css/selector.h>
#include <hearth/styling/css/token_text_p.h>

#include <algorithm>
#include <array>

namespace ht {

namespace {

constexpr std::int32_t kTextStep = 1024; // units by which printed text grows

template <class Values> TCSSTokens TokensOf(const Values& values, std::u16string_view name)
{
    for (const TCSSValue& value : values) {
        if (value.Name == name)
            return value.Tokens;
    }
    return {};
}

/// The same words, of the same weight.
bool SameWords(const TCSSValue& a, const TCSSValue& b)
{
    return a.Important == b.Important
        && std::equal(a.Tokens.begin(), a.Tokens.end(), b.Tokens.begin(), b.Tokens.end(),
            [](const TCSSToken& left, const TCSSToken& right) { return left.Name == right.Name; });
}

/// A shorthand and its four sides, top first.
struct Sides {
    String Shorthand;
    std::array<std::u16string_view, 4> Names;
};

/// Lets the value of the top stand for all four sides where they are equal.
void GatherSides(TCSSSection& section, const Sides& sides)
{
    std::array<const TCSSValue*, 4> values{};
    std::transform(sides.Names.begin(), sides.Names.end(), values.begin(),
        [&section](std::u16string_view name) { return section.ItembyName(name); });
    const auto equalsTop = [&values](const TCSSValue* side) { return side && SameWords(*values[0], *side); };
    if (!values[0] || section.ItembyName(sides.Shorthand)
        || !std::all_of(values.begin() + 1, values.end(), equalsTop))
        return;
    for (std::int32_t i = section.Values.Length() - 1; i >= 0; --i) {
        TCSSValue& value = section.Values[i];
        if (value.Name == sides.Names[0])
            value.NameToken.Name = sides.Shorthand;
        else if (std::find(sides.Names.begin(), sides.Names.end(), value.Name.View()) != sides.Names.end())
            section.DeleteValue(i);
    }
}

}

TCSSSection::TCSSSection(bool AOwnsSelectors)
    : Selectors(std::make_unique<TCSSSelectors>(AOwnsSelectors))
{
}

TCSSSection::~TCSSSection() = default;

void TCSSSection::AddSelector(TCSSSelector* S)
{
    S->Section = this;
    Selectors->Add(S);
}

void TCSSSection::AddValue(const TCSSValue& V)
{
    TCSSValue value = V;
    value.Section = this;
    // The section that the value comes from may go first.
    for (TMeasure* measure : {&value.Measure.Value1, &value.Measure.Value2}) {
        if (measure->Calc)
            measure->Calc = KeepCalcTokens(value.Tokens);
    }
    Values.Add(std::move(value));
}

void TCSSSection::DeleteValue(std::int32_t Index)
{
    Values.Delete(Index);
}

PCSSTokens TCSSSection::KeepCalcTokens(const TCSSTokens& tokens)
{
    std::unique_ptr<THtObjectList>& list = FCompiling ? FCompiledCalcs : FCalcValues;
    if (!list)
        list = std::make_unique<THtObjectList>(true);
    auto kept = std::make_unique<TCSSCalcValueObject>(tokens);
    list->Add(kept.get());
    return &kept.release()->Tokens;
}

TCSSTokens TCSSSection::ValuebyName(std::u16string_view Name) const
{
    return TokensOf(Values, Name);
}

TCSSTokens TCSSSection::CompiledValuebyName(std::u16string_view Name) const
{
    return TokensOf(CompiledValues, Name);
}

TCSSValue* TCSSSection::ItembyName(std::u16string_view Name)
{
    for (TCSSValue& value : Values) {
        if (value.Name == Name)
            return &value;
    }
    return nullptr;
}

String TCSSSection::AsString(TCSSPrinting printing) const
{
    TFastString text(kTextStep);
    for (std::int32_t i = 0; i < Selectors->Count(); ++i)
        text.Add(i == 0 ? u"" : u", ").Add(Selectors->GetSelector(i)->AsString());
    text.Add(u"\r\n{");
    for (const TCSSValue& value : Values) {
        text.AddSpaces(2);
        detail::WriteValue(text, value, printing);
        text.Add(u"\r\n");
    }
    return text.AddChar(u'}').GetAsString();
}

String TCSSSection::AsInlineString(TCSSPrinting printing) const
{
    TFastString text(kTextStep);
    for (const TCSSValue& value : Values)
        detail::WriteValue(text, value, printing);
    return text.GetAsString().Trim();
}

void TCSSSection::Minify()
{
    static const std::array kGathered = {
        Sides{u"border"_s, {u"border-top", u"border-right", u"border-bottom", u"border-left"}},
        Sides{u"padding"_s, {u"padding-top", u"padding-right", u"padding-bottom", u"padding-left"}},
    };
    for (const Sides& sides : kGathered)
        GatherSides(*this, sides);
}

}
