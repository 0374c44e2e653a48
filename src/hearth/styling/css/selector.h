// Compiled selectors.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/object_list.h>
#include <hearth/runtime/array.h>
#include <hearth/runtime/sets.h>
#include <hearth/styling/css/css_token.h>

#include <memory>

namespace ht {

class TCSSSection;
class TStyledHTMLNode;

enum TAttrCompare : std::uint8_t {
    acMatch, // [a], [a=b]
    acStarts, // ^=
    acEnds, // $=
    acContains, // *=
    acWord, // ~=
    acStarts2, // |=
    acNotEq, // !=
};

template <> struct TEnumTraits<TAttrCompare> {
    static constexpr int kCount = 7;
    static constexpr const char16_t* kName = u"TAttrCompare";
};

/// How a compound stands to the one on its left.
enum TSelectorPosition : std::uint8_t { spDescendant, spChild, spSibling, spAllSiblings };

template <> struct TEnumTraits<TSelectorPosition> {
    static constexpr int kCount = 4;
    static constexpr const char16_t* kName = u"TSelectorPosition";
};

/// Before, after and marker are pseudo-elements: they choose a map of the sheet.
enum TCSSPseudoClass : std::uint8_t {
    pcNone,
    pcLink,
    pcHover,
    pcActive,
    pcVisited,
    pcFocus,
    pcBefore,
    pcAfter,
    pcFirstLetter,
    pcFirstChild,
    pcLastChild,
    pcOnlyChild,
    pcNthChild,
    pcNthOfType,
    pcFirstOfType,
    pcLastOfType,
    pcChecked,
    pcEmpty,
    pcTarget,
    pcValid,
    pcInvalid,
    pcSelection,
    pcOnlyOfType,
    pcMarker,
    pcFocusWithin,
    pcUnknown,
};

template <> struct TEnumTraits<TCSSPseudoClass> {
    static constexpr int kCount = 26;
    static constexpr const char16_t* kName = u"TCSSPseudoClass";
};

using TCSSPseudo = TSet<TCSSPseudoClass>;

inline constexpr TCSSPseudo kPseudoElements{pcBefore, pcAfter, pcMarker};

/// A class name in lower case and its RSHash; selectors and elements keep the same form.
struct TCSSClassRec {
    String s;
    std::uint32_t hash = 0;

    friend bool operator==(const TCSSClassRec& a, const TCSSClassRec& b) noexcept
    {
        return a.hash == b.hash && a.s == b.s;
    }
};

using TClassesArray = TArray<TCSSClassRec>;

struct TCSSCondition {
    String Name;
    String Value;
    TAttrCompare Compare = acMatch;
};

/// Separates the conditions in TCSSSelector::Condition.
inline constexpr char16_t kConditionSeparator = 1;
/// TCSSSelector::NthChild for "odd" and "even".
inline constexpr std::int32_t kNthOdd = -1;
inline constexpr std::int32_t kNthEven = -2;

class TCSSSelector;
using TCSSSelectorTestProc = bool (TCSSSelector::*)(const TStyledHTMLNode& E, TCSSPseudo PS) const;

/// One compound; Previous is the one on its left, so the rightmost stands for the whole selector.
/// selector.cpp builds, selector_text.cpp prints, selector_match.cpp tests an element against one compound.
class HT_API TCSSSelector : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSSelector", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Takes the compound on the left over.
    explicit TCSSSelector(std::unique_ptr<TCSSSelector> APrevious = nullptr);
    TCSSSelector(const TCSSSelector&) = delete;
    TCSSSelector& operator=(const TCSSSelector&) = delete;
    /// However long the chain and however deep its Nots, without recursion.
    ~TCSSSelector() override;

    /// Sets Tag, in lower case, and TagHash.
    void SetTag(const String& Name);
    void AddClass(const String& Name);
    /// Unknown names become pcUnknown. `Arg` is the argument in parentheses, null without one. A pseudo-class
    /// that is here already is passed over with its argument.
    void AddPseudo(std::u16string_view Name, const TCSSToken* Arg);
    /// Splits Condition into Conditions.
    void ParseCondition();
    /// Chooses the cheapest test, here and in everything on the left. Nots keep TestAll.
    void DetermineTestProc();
    /// 256 an id, 16 a class, a pseudo-class and the conditions, 1 a tag; summed over all compounds, less
    /// than 2^24.
    std::int32_t CalcWeight() const;
    /// The selector as text that reads back as the same.
    String AsString() const;

    // Tests of this compound alone, Nots apart, on an element in the pseudo-classes PS.

    bool TestUniversal(const TStyledHTMLNode& E, TCSSPseudo PS) const;
    bool TestTag(const TStyledHTMLNode& E, TCSSPseudo PS) const;
    bool TestID(const TStyledHTMLNode& E, TCSSPseudo PS) const;
    bool TestCondition(const TStyledHTMLNode& E, TCSSPseudo PS) const;
    bool TestClass(const TStyledHTMLNode& E, TCSSPseudo PS) const;
    bool TestTagClass(const TStyledHTMLNode& E, TCSSPseudo PS) const;
    /// Knows nothing of pcNthOfType.
    bool TestPCCondition(const TStyledHTMLNode& E, TCSSPseudo PS) const;
    /// Takes the place among the siblings on trust, but for pcNthChild.
    bool TestPCClass(const TStyledHTMLNode& E, TCSSPseudo PS) const;
    bool TestAll(const TStyledHTMLNode& E, TCSSPseudo PS) const;
    /// A missing attribute decides at once: it passes "!=" alone.
    bool XTestCondition(const TStyledHTMLNode& E) const;
    /// The chosen test.
    bool Test(const TStyledHTMLNode& E, TCSSPseudo PS) const { return (this->*TestProc)(E, PS); }

    // What matching reads comes first.

    TSelectorPosition Position = spDescendant;
    bool Universal = false; // the rightmost compound with the tag "*"
    TCSSPseudoClass FirstPseudo = pcNone;
    TCSSSelectorTestProc TestProc = &TCSSSelector::TestAll;
    String Tag; // in lower case; "*" for any
    std::uint32_t TagHash = 0; // RSHash of Tag
    TCSSPseudo Pseudo;
    TClassesArray Classes;
    std::unique_ptr<TCSSSelector> Previous;
    TCSSSection* Section = nullptr; // not owned
    std::uint32_t Weight = 0;
    std::uint32_t Order = 0; // in the sheet of Section
    TArray<std::unique_ptr<TCSSSelector>> Nots;
    TArray<TCSSCondition> Conditions;
    std::int32_t NthChild = 0;
    std::int32_t PseudoCount = 0;
    String ID;
    String Condition; // the text of all brackets
    std::int32_t StartPos = 0; // of the whole selector, from 1
    std::int32_t EndPos = 0;

private:
    void ChooseTest();
    bool HasClassesOf(const TStyledHTMLNode& E) const;
    bool FitsPseudo(const TStyledHTMLNode& E, TCSSPseudo PS, TCSSPseudo places) const;
    bool HasPlace(const TStyledHTMLNode& E, TCSSPseudoClass place) const;
};

/// The selectors of a rule.
class HT_API TCSSSelectors : public THtObjectList {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSSelectors", &THtObjectList::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    using THtObjectList::THtObjectList;

    TCSSSelector* GetSelector(std::int32_t Index) const { return static_cast<TCSSSelector*>(Items(Index)); }

    std::int32_t EndPos = 0;
};

}
