// The way from an element through its surroundings, along the compounds of a selector.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/styling/nodes/styled_node.h>

#include <array>

namespace ht::detail {

/// True when one of the ":not" of a compound holds for the element.
bool IsExcluded(const TCSSSelector& compound, const TStyledHTMLNode& element, TCSSPseudo pseudo);

/// Asks once whether what stands on the left of a selector's last compound matches around an element that the
/// last compound matches.
///
/// The rules. A compound is looked for at a node. Where it fits, and none of its ":not" does, the one on its
/// left is looked for: at the parent, at the nearest sibling in front that has a tag, or at the node itself
/// and all such siblings in front. Where that leads nowhere, or the compound does not fit, it is looked for
/// at the parent; but one that a ">" follows must fit where it is looked for first, and one that is behind a
/// "+" or "~" goes on to the siblings whether it fits or not, and to no parent.
///
/// Only a match ends the walk early. So what has been looked at before leads nowhere now, and after some
/// hundred looks the walk begins to remember where it was: each compound looks at each node once from then
/// on. Ordinary selectors never come so far.
class SelectorWalk {
public:
    /// `selector` has a compound on its left.
    SelectorWalk(const TStyledHTMLNode& element, const TCSSSelector& selector, TCSSPseudo pseudo) noexcept
        : FElement(element)
        , FSelector(selector)
        , FPseudo(pseudo)
    {
    }

    bool Matches();

private:
    /// The compound on the left of `Right` is looked for at a node. `Step` counts compounds from the right,
    /// `Up` the levels from the element's to the node's.
    struct Place {
        const TCSSSelector* Right;
        const THtNode* Node;
        std::int32_t Step;
        std::int32_t Up;
    };

    enum ChoiceKind : std::uint8_t {
        ckNode, // the place itself
        ckTagged, // children of the place's node that have a tag, from Index down to Low
        ckAll, // all of these children
    };
    struct Choice {
        Place At;
        std::int32_t Index;
        std::int32_t Low;
        ChoiceKind Kind;
    };

    enum Outcome : std::uint8_t { ocFound, ocGoesOn, ocNothing };

    Outcome Start();
    Outcome Look();
    Outcome GoUp(const TCSSSelector& right, std::int32_t step);
    Outcome GoAside(const TCSSSelector& right);
    void OpenSiblings(const Place& at, std::int32_t index, ChoiceKind kind);
    bool NextChoice();
    bool NextSibling(Choice& choice);
    bool IsRepeated(const Choice& choice, const THtNode& sibling) const;

    void Push(const Choice& choice);
    Choice& Top() { return FCount <= kFew ? FFew[static_cast<std::size_t>(FCount - 1)] : FMore.Last(); }
    void Pop();

    bool WasHere();
    bool IsRemembering() const noexcept { return !FMemory.IsEmpty(); }
    void StartRemembering();
    std::int64_t PlaceNumber(const Place& at) const noexcept
    {
        return std::int64_t{at.Step} * FLevels + at.Up;
    }

    static constexpr std::int32_t kFew = 16;
    static constexpr std::int64_t kPlainLooks = 128;

    const TStyledHTMLNode& FElement;
    const TCSSSelector& FSelector;
    TCSSPseudo FPseudo;
    Place FAt{};

    // What is left to be tried where this way leads nowhere: one for each compound at most.
    std::int32_t FCount = 0;
    std::array<Choice, kFew> FFew;
    TArray<Choice> FMore;

    std::int64_t FLooks = 0;
    std::int64_t FLooksToRemember = kPlainLooks;
    std::int32_t FLevels = 0; // of the tree, down to the element
    TArray<std::uint32_t> FMemory; // ancestors looked at, a bit each; behind them siblings, see OpenSiblings
    std::int64_t FSiblingsAt = 0;
};

}
