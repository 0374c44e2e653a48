// Style sheets: how they are filled and emptied.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/style_sheet.h>

#include <hearth/foundation/text_words.h>
#include <hearth/foundation/url_text.h>
#include <hearth/styling/css/css_parser.h>
#include <hearth/styling/css/custom_font.h>

namespace ht {

namespace {

/// Orders below are those of built-in sheets, and stay what they are in every sheet.
constexpr std::uint32_t kFirstOwnOrder = 10000;

template <class T> T& Need(std::unique_ptr<T>& object)
{
    if (!object)
        object = std::make_unique<T>();
    return *object;
}

/// Custom properties belong to the whole sheet, wherever they stand.
void CollectVariables(const TCSSSection& section, TCSSStyleSheet& sheet)
{
    for (const TCSSValue& value : section.Values) {
        if (value.Name.View().starts_with(u"--"))
            sheet.AddVariable(value.Name, value.Tokens);
    }
}

std::uint32_t WeightOf(const TCSSSelector& selector, std::int64_t setWeight)
{
    return static_cast<std::uint32_t>(setWeight == kOwnWeight ? selector.CalcWeight() : setWeight);
}

/// True when something of a rule may still be asked for.
bool HoldsValues(const TCSSSection& section)
{
    return !section.Values.IsEmpty() || section.FCalcValues;
}

}

TCSSStyleSheet::TCSSStyleSheet() = default;

TCSSStyleSheet::~TCSSStyleSheet() = default;

void TCSSStyleSheet::Parse(const String& s, std::int64_t SetWeight, bool Custom)
{
    if (BlankString(s))
        return;
    TCSSParser parser(s);
    while (parser.NextSection()) {
        std::unique_ptr<TCSSSection> section = std::move(parser.CurrentSection);
        if (section->Selectors->Count() == 0)
            continue;
        section->URL = URL;
        if (section->FontFace) {
            AddCustomFont(*section);
            Keep(std::move(section));
        } else if (!parser.KeyFramesName.IsEmpty()) {
            Need(KeyFrames).AddSection(parser.KeyFramesName, std::move(section));
        } else {
            section->Custom = Custom;
            AddRule(std::move(section), SetWeight);
        }
    }
    CompileFolded();
    TakeImports(parser);
    TakeMediaSets(parser);
}

void TCSSStyleSheet::ParseValues(const String& s, std::int64_t SetWeight)
{
    TCSSParser parser(s);
    parser.CurrentSection = std::make_unique<TCSSSection>();
    parser.CurrentSection->MediaSet = &TCSSMediaSet::All();
    parser.ReadSectionValues();
    std::unique_ptr<TCSSSection> section = std::move(parser.CurrentSection);
    section->URL = URL;
    section->Compile();
    auto everything = std::make_unique<TCSSSelector>();
    everything->SetTag(u"*"_s);
    everything->Universal = true;
    section->AddSelector(everything.get());
    everything.release();
    AddRule(std::move(section), SetWeight);
    CompileFolded();
}

/// Files the selectors of a rule and keeps it, unless nothing is left of it: an empty rule is not filed, and
/// one that melted into another has given its values away.
void TCSSStyleSheet::AddRule(std::unique_ptr<TCSSSection> section, std::int64_t weight)
{
    if (!HoldsValues(*section))
        return;
    CollectVariables(*section, *this);
    TCSSSection& rule = *section;
    Keep(std::move(section));
    for (std::int32_t i = 0; i < rule.Selectors->Count(); ++i) {
        TCSSSelector& selector = *rule.Selectors->GetSelector(i);
        selector.Weight = WeightOf(selector, weight);
        File(selector);
    }
    if (!HoldsValues(rule))
        FSections.Remove(&rule);
}

void TCSSStyleSheet::Keep(std::unique_ptr<TCSSSection> section)
{
    FSections.Add(section.get());
    section.release();
}

void TCSSStyleSheet::TakeImports(const TCSSParser& parser)
{
    for (const TCSSImport& import : parser.Imports)
        Imports().Add(URL.IsEmpty() ? import.Token.Name : CombineUrl(URL, import.Token.Name));
}

void TCSSStyleSheet::TakeMediaSets(TCSSParser& parser)
{
    for (std::int32_t i = parser.MediaSets.Count() - 1; i >= 0; --i) {
        auto* set = static_cast<TCSSMediaSet*>(parser.MediaSets.Last());
        FOwnMediaSets.Add(set);
        parser.MediaSets.Extract(set);
        MediaSets.Add(set);
        set->HasSizeQuery =
            set->MinWidth != 0 || set->MaxWidth != 0 || set->MinDeviceWidth != 0 || set->MaxDeviceWidth != 0;
        HasMediaSizeQueries = HasMediaSizeQueries || set->HasSizeQuery;
        HasMediaQueries = HasMediaQueries || set->HasSizeQuery || set->Medias != TCSSMedias{cmAll};
    }
}

void TCSSStyleSheet::Assign(TCSSStyleSheet& Source)
{
    for (std::int32_t i = 0; i < Source.FSections.Count(); ++i) {
        const auto& section = static_cast<const TCSSSection&>(*Source.FSections[i]);
        for (std::int32_t k = 0; k < section.Selectors->Count(); ++k) {
            TCSSSelector* selector = section.Selectors->GetSelector(k);
            MapsOf(*selector).AddSelector(selector, foKeep, NextOrder(*selector));
        }
    }
    HasMediaQueries = HasMediaQueries || Source.HasMediaQueries;
    HasMediaSizeQueries = HasMediaSizeQueries || Source.HasMediaSizeQueries;
    for (std::int32_t i = 0; i < Source.MediaSets.Count(); ++i)
        MediaSets.Add(Source.MediaSets[i]);
    AssignFonts(Source);
    if (Source.KeyFrames) {
        Source.KeyFrames->Traverse(nullptr, [this](TObject*, TObject* list) {
            Need(KeyFrames).AddList(static_cast<TCSSKeyFrameList&>(*list));
        });
    }
    if (Source.Variables) {
        Source.Variables->Traverse(nullptr, [this](TObject*, TObject* object) {
            const auto& variable = static_cast<const TCSSVariable&>(*object);
            AddVariable(variable.Name, variable.Tokens);
        });
    }
}

void TCSSStyleSheet::AddSelector(TCSSSelector* S)
{
    File(*S);
    CompileFolded();
}

void TCSSStyleSheet::File(TCSSSelector& selector)
{
    selector.Order = NextOrder(selector);
    MapsOf(selector).AddSelector(&selector, foDistinct, selector.Order);
}

void TCSSStyleSheet::CompileFolded()
{
    ForEachMaps([](TCSSStyleMaps& maps) { maps.CompileFolded(); });
}

std::uint32_t TCSSStyleSheet::NextOrder(const TCSSSelector& S)
{
    ++SelectorCounter;
    return S.Order == 0 || S.Order >= kFirstOwnOrder ? SelectorCounter : S.Order;
}

TCSSStyleMaps& TCSSStyleSheet::MapsOf(const TCSSSelector& S)
{
    if (S.Pseudo.Contains(pcBefore))
        return Need(Before);
    if (S.Pseudo.Contains(pcAfter))
        return Need(After);
    if (S.Pseudo.Contains(pcMarker))
        return Need(Marker);
    return Main;
}

void TCSSStyleSheet::AddVariable(const String& Name, const TCSSTokens& Tokens)
{
    if (!Variables)
        Variables = std::make_unique<THtObjectDictionary>(0, true, HtClassFieldOffset(&TCSSVariable::Name));
    auto variable = std::make_unique<TCSSVariable>(Name, Tokens);
    Variables->AddObject(variable.get());
    variable.release();
}

void TCSSStyleSheet::AddInlineValue(const String& PropName, const String& PropValue)
{
    const auto* property = static_cast<const TCSSPropRec*>(CSSPropDictionary().Get(PropName));
    if (FSections.Count() == 0 || !property)
        return;
    TCSSTokenizer tokenizer(PropValue);
    tokenizer.NextToken();
    if (tokenizer.Eof)
        return;
    TCSSValue value;
    value.Name = PropName;
    value.NameToken.CType = ctIdent;
    value.NameToken.Name = PropName;
    value.PropRec = property;
    value.Tokens = TCSSTokens(std::span(&tokenizer.Token, 1));
    static_cast<TCSSSection&>(*FSections[0]).AddValue(value);
}

void TCSSStyleSheet::Clear()
{
    ForEachMaps([](TCSSStyleMaps& maps) { maps.Clear(); });
    FSections.Clear();
    if (KeyFrames)
        KeyFrames->Clear();
}

void TCSSStyleSheet::ClearSection(const String& Selector)
{
    for (std::int32_t i = FSections.Count() - 1; i >= 0; --i) {
        auto& section = static_cast<TCSSSection&>(*FSections[i]);
        if (section.Selectors->Count() == 0 || section.Selectors->GetSelector(0)->AsString() != Selector)
            continue;
        ForEachMaps([&section](TCSSStyleMaps& maps) { maps.RemoveSection(section); });
        FSections.Delete(i);
    }
}

void TCSSStyleSheet::ClearProp(std::u16string_view Name)
{
    for (std::int32_t i = 0; i < FSections.Count(); ++i) {
        auto& section = static_cast<TCSSSection&>(*FSections[i]);
        const std::int32_t before = section.Values.Length();
        for (std::int32_t k = before - 1; k >= 0; --k) {
            if (SameText(section.Values[k].Name, Name))
                section.DeleteValue(k);
        }
        if (section.Values.Length() != before)
            section.Compile();
    }
}

TStringList& TCSSStyleSheet::Imports()
{
    return Need(FImports);
}

bool TCSSStyleSheet::TestMediaSets(TCSSMedia M, std::int64_t AMediaWidth, std::int64_t AMediaDeviceWidth)
{
    bool changed = false;
    for (std::int32_t i = 0; i < MediaSets.Count(); ++i) {
        auto& set = static_cast<TCSSMediaSet&>(*MediaSets[i]);
        const bool disabled = !set.CheckMedia(M, AMediaWidth, AMediaDeviceWidth);
        changed = changed || set.Disabled != disabled;
        set.Disabled = disabled;
    }
    return changed;
}

TCSSTokens TCSSStyleSheet::ValuebyName(std::u16string_view PropName) const
{
    for (std::int32_t i = 0; i < FSections.Count(); ++i) {
        const auto& section = static_cast<const TCSSSection&>(*FSections[i]);
        TCSSTokens tokens = section.ValuebyName(PropName);
        if (!tokens.IsEmpty())
            return tokens;
    }
    return {};
}

void TCSSStyleSheet::GetAllClasses(THtStringList& L) const
{
    ForEachMaps([&L](const TCSSStyleMaps& maps) { maps.GetAllClasses(L); });
}

void TCSSStyleSheet::GetAllIds(THtStringList& L) const
{
    ForEachMaps([&L](const TCSSStyleMaps& maps) { maps.GetAllIds(L); });
}

}
