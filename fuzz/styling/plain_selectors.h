// The rules of selectors written down plainly, for tests and fuzz targets to compare with.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/styling/css/style_sheet.h>
#include <hearth/styling/nodes/styled_node.h>

#include <algorithm>
#include <tuple>
#include <vector>

namespace ht::plain {

struct TooMuch { };

/// Whole selectors as plain recursion, without any memory of where the walk has been. Throws TooMuch behind
/// `budget` looks at a node.
class Selectors {
public:
    explicit Selectors(long budget)
        : FBudget(budget)
    {
    }

    bool TestElement(const TStyledHTMLNode& element, const TCSSSelector& selector, TCSSPseudo pseudo)
    {
        const TCSSPseudo active = element.CurrentPC() + pseudo;
        if (!pseudo.IsSubsetOf(selector.Pseudo) || !selector.Test(element, active))
            return false;
        if (NotHolds(selector, element, active))
            return false;
        if (!selector.Previous)
            return true;
        const TCSSSelector& left = *selector.Previous;
        const THtNode* parent = element.THtNode::Parent();
        switch (selector.Position) {
        case spDescendant:
        case spChild:
            return parent && Walk(left, parent, selector.Position, pseudo);
        case spSibling: {
            const THtNode* sibling = PreviousTagged(element);
            return sibling && Walk(left, sibling, spSibling, pseudo);
        }
        case spAllSiblings:
            for (const THtNode* sibling = element.PreviousSibling(); sibling;
                 sibling = sibling->PreviousSibling()) {
                if (Walk(left, sibling, spAllSiblings, pseudo))
                    return true;
            }
            return false;
        }
        return false;
    }

    long Looks() const { return FLooks; }

private:
    bool Walk(const TCSSSelector& selector, const THtNode* node, TSelectorPosition via, TCSSPseudo pseudo)
    {
        for (;;) {
            if (++FLooks > FBudget)
                throw TooMuch();
            const auto& element = static_cast<const TStyledHTMLNode&>(*node);
            const TCSSPseudo active = element.CurrentPC() + pseudo;
            const bool pass = selector.Test(element, active);
            if (pass) {
                if (NotHolds(selector, element, active))
                    return false;
                if (!selector.Previous)
                    return true;
                if (node->Parent() && (selector.Position == spDescendant || selector.Position == spChild)
                    && Walk(*selector.Previous, node->Parent(), selector.Position, pseudo))
                    return true;
            }
            if (!pass && via == spChild)
                return false;
            if (selector.Previous && selector.Position == spSibling) {
                const THtNode* sibling = PreviousTagged(*node);
                return sibling && Walk(*selector.Previous, sibling, spSibling, pseudo);
            }
            if (selector.Previous && selector.Position == spAllSiblings) {
                if (!node->Parent())
                    return false;
                for (const THtNode* sibling = node; sibling; sibling = sibling->PreviousSibling()) {
                    if (!sibling->Tag().IsEmpty() && Walk(*selector.Previous, sibling, spAllSiblings, pseudo))
                        return true;
                }
                return false;
            }
            node = node->Parent();
            if (!node)
                return false;
        }
    }

    static bool NotHolds(const TCSSSelector& selector, const TStyledHTMLNode& element, TCSSPseudo active)
    {
        return std::any_of(selector.Nots.begin(), selector.Nots.end(),
            [&](const auto& inner) { return inner->Test(element, active); });
    }

    static const THtNode* PreviousTagged(const THtNode& node)
    {
        const THtNode* sibling = node.PreviousSibling();
        while (sibling && sibling->Tag().IsEmpty())
            sibling = sibling->PreviousSibling();
        return sibling;
    }

    long FBudget;
    long FLooks = 0;
};

/// One compound without what hangs on it. The place in front of the first compound says nothing.
inline bool SameCompound(const TCSSSelector& a, const TCSSSelector& b)
{
    const auto parts = [](const TCSSSelector& s) {
        return std::tie(s.Tag, s.TagHash, s.Universal, s.ID, s.Condition, s.Pseudo, s.FirstPseudo,
            s.PseudoCount, s.NthChild, s.Classes, s.TestProc);
    };
    return parts(a) == parts(b) && (!a.Previous || a.Position == b.Position) && !a.Previous == !b.Previous
        && a.Nots.Length() == b.Nots.Length();
}

/// All of two selectors but where they stood in their texts.
inline bool SameSelector(const TCSSSelector& left, const TCSSSelector& right)
{
    std::vector<std::pair<const TCSSSelector*, const TCSSSelector*>> pairs{{&left, &right}};
    while (!pairs.empty()) {
        const auto [a, b] = pairs.back();
        pairs.pop_back();
        if (!SameCompound(*a, *b))
            return false;
        if (a->Previous)
            pairs.emplace_back(a->Previous.get(), b->Previous.get());
        for (std::int32_t i = 0; i < a->Nots.Length(); ++i)
            pairs.emplace_back(a->Nots[i].get(), b->Nots[i].get());
    }
    return true;
}

}
