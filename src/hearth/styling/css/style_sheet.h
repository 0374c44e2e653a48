// Parsed style sheets.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/strings.h>
#include <hearth/styling/css/css_section.h>
#include <hearth/styling/css/key_frames.h>
#include <hearth/styling/css/media_set.h>
#include <hearth/styling/css/style_map.h>
#include <hearth/styling/css/weight_list.h>

namespace ht {

class TCSSCustomFontFamily;
class TCSSParser;
class TStyledHTMLNode;

/// A custom property: its name and the tokens of its value.
class HT_API TCSSVariable : public TObject {
public:
    TCSSVariable(const String& name, const TCSSTokens& tokens)
        : Name(name)
        , Tokens(tokens)
    {
    }

    String Name;
    TCSSTokens Tokens;
};

/// Weight of each selector: computed from its text.
inline constexpr std::int64_t kOwnWeight = -1;

/// One source of style. It owns the rules that it parsed; those of another sheet come in by Assign, and that
/// sheet must then outlive this one. Not locked: one thread fills a sheet, and whoever only matches may do so
/// in several. style_sheet.cpp fills, style_sheet_fonts.cpp reads "@font-face", style_sheet_match.cpp
/// matches, style_sheet_write.cpp prints, dark_colors.cpp turns light into dark.
class HT_API TCSSStyleSheet : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSStyleSheet", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    TCSSStyleSheet();
    TCSSStyleSheet(const TCSSStyleSheet&) = delete;
    TCSSStyleSheet& operator=(const TCSSStyleSheet&) = delete;
    ~TCSSStyleSheet() override;

    // Filling.

    /// Adds the rules of a text; malformed ones are dropped. `SetWeight` replaces the weight of each
    /// selector.
    void Parse(const String& s, std::int64_t SetWeight = kOwnWeight, bool Custom = false);
    /// Adds declarations alone, for every element.
    void ParseValues(const String& s, std::int64_t SetWeight);
    /// Files the selectors of another sheet here, behind those of this one.
    void Assign(TCSSStyleSheet& Source);
    /// Files a selector of one of the sheet's own rules, which may melt into another.
    void AddSelector(TCSSSelector* S);
    void AddVariable(const String& Name, const TCSSTokens& Tokens);
    /// Appends an unprepared value of one token to the first rule; unknown properties are passed over.
    void AddInlineValue(const String& PropName, const String& PropValue);
    /// Drops rules and key frames; fonts, variables and imports stay.
    void Clear();
    /// Drops the rules whose first selector prints so.
    void ClearSection(const String& Selector);
    /// Drops all values of that name.
    void ClearProp(std::u16string_view Name);

    // Asking.

    /// Addresses of "@import", in order.
    TStringList& Imports();
    /// Switches media sets on and off for a medium; true when that changed one, and computed styles are
    /// stale.
    bool TestMediaSets(TCSSMedia M, std::int64_t AMediaWidth, std::int64_t AMediaDeviceWidth);
    /// The tokens of a property in the first rule that has it.
    TCSSTokens ValuebyName(std::u16string_view PropName) const;
    void GetAllClasses(THtStringList& L) const;
    void GetAllIds(THtStringList& L) const;

    // Matching. TestMediaSets decides over media beforehand; the arguments here do not.

    /// Adds the values that apply to an element in its current pseudo-classes and `APseudo`.
    void GetElementSelectors(const TStyledHTMLNode& E, TCSSWeightList& WL, const TCSSStyleMaps* Map,
        TCSSPseudo APseudo, TCSSMedia AMedia, std::int64_t AMediaWidth, std::int64_t AMediaDeviceWidth) const;
    /// True when the whole selector matches.
    bool TestElement(const TStyledHTMLNode& E, const TCSSSelector& S, TCSSPseudo Pseudo) const;
    /// Adds all values of the first universal rule, for self style sheets.
    void GetAllSelectors(TCSSWeightList& WL) const;
    /// Adds pcBefore, pcAfter and pcMarker where a selector generates such a box.
    void GetElementPseudoClasses(const TStyledHTMLNode& E, TCSSPseudo& APseudo) const;
    /// The percentages of an animation, and the values of one of its frames.
    void GetAnimationSteps(std::u16string_view KeyFramesName, TArray<std::int32_t>& Steps) const;
    void GetAnimationSelectors(
        std::u16string_view KeyFramesName, std::int32_t FrameIndex, TCSSWeightList& WL) const;

    // Writing and changing.

    String AsString(TCSSPrinting printing = cpPlain) const;
    String AsInlineString(TCSSPrinting printing = cpPlain) const;
    void Minify();
    /// Rewrites colours for a dark scheme.
    void ConvertLighttoDark();
    static String LighttoDark(const String& s, TCSSPrinting printing = cpPlain);

    THtObjectList& Sections() noexcept { return FSections; }
    const THtObjectList& Sections() const noexcept { return FSections; }

private:
    void AddRule(std::unique_ptr<TCSSSection> section, std::int64_t weight);
    void Keep(std::unique_ptr<TCSSSection> section);
    void AddCustomFont(const TCSSSection& section);
    TCSSCustomFontFamily& NeedFamily(const String& name);
    void AssignFonts(const TCSSStyleSheet& source);
    void TakeImports(const TCSSParser& parser);
    void TakeMediaSets(TCSSParser& parser);

    /// Files a selector; CompileFolded follows when all of them are.
    void File(TCSSSelector& selector);
    void CompileFolded();
    /// Calls `proc` with each group of maps that there is.
    template <class Proc> void ForEachMaps(Proc proc)
    {
        for (TCSSStyleMaps* maps : {&Main, Before.get(), After.get(), Marker.get()}) {
            if (maps)
                proc(*maps);
        }
    }
    template <class Proc> void ForEachMaps(Proc proc) const
    {
        for (const auto* maps :
            std::initializer_list<const TCSSStyleMaps*>{&Main, Before.get(), After.get(), Marker.get()}) {
            if (maps)
                proc(*maps);
        }
    }
    /// Counts a selector and answers its order in this sheet: its own where that is a low one.
    std::uint32_t NextOrder(const TCSSSelector& S);
    /// The maps that a selector is filed in.
    TCSSStyleMaps& MapsOf(const TCSSSelector& S);

    THtObjectList FSections{true};
    THtObjectList FOwnMediaSets{true};

public:
    String Key; // free for the owner
    TCSSStyleMaps Main;
    std::unique_ptr<TCSSStyleMaps> Before; // made on first use, as all that may be null
    std::unique_ptr<TCSSStyleMaps> After;
    std::unique_ptr<TCSSStyleMaps> Marker;
    std::unique_ptr<TCSSKeyFrameMap> KeyFrames;

private:
    std::unique_ptr<TStringList> FImports;

public:
    std::unique_ptr<THtObjectDictionary> CustomFonts; // of TCSSCustomFontFamily by name in lower case
    bool HasMediaQueries = false;
    bool HasMediaSizeQueries = false;
    /// Further owners of a shared self style sheet; above 0 means copy before a change.
    std::int32_t RefCounter = 0;
    std::uint32_t SelectorCounter = 10000; // the last Order given
    String URL; // relative imports are combined with it
    THtObjectList MediaSets{false}; // own and assigned
    std::unique_ptr<THtObjectDictionary> Variables; // of TCSSVariable by name
};

}
