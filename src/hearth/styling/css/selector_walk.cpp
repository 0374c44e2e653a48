// The way from an element through its surroundings, along the compounds of a selector.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/selector_walk_p.h>

#include <hearth/runtime/checked.h>

#include <algorithm>

namespace ht::detail {

namespace {

constexpr std::int64_t kWordBits = 32;

bool IsTagged(const THtNode& node)
{
    return !node.Tag().IsEmpty();
}

const THtNode* PreviousTagged(const THtNode& node)
{
    const THtNode* parent = node.Parent();
    std::int32_t index = node.NodeIndex();
    while (--index >= 0) {
        const THtNode* sibling = parent->Children()[static_cast<std::size_t>(index)];
        if (IsTagged(*sibling))
            return sibling;
    }
    return nullptr;
}

bool LeadsAside(const TCSSSelector& compound)
{
    return compound.Previous && (compound.Position == spSibling || compound.Position == spAllSiblings);
}

}

bool IsExcluded(const TCSSSelector& compound, const TStyledHTMLNode& element, TCSSPseudo pseudo)
{
    return std::any_of(compound.Nots.begin(), compound.Nots.end(),
        [&](const std::unique_ptr<TCSSSelector>& inner) { return inner->Test(element, pseudo); });
}

bool SelectorWalk::Matches()
{
    for (Outcome outcome = Start(); outcome != ocFound; outcome = Look()) {
        if (outcome == ocNothing && !NextChoice())
            return false;
    }
    return true;
}

SelectorWalk::Outcome SelectorWalk::Start()
{
    const THtNode* parent = FElement.THtNode::Parent();
    FAt = {&FSelector, parent, 0, 1};
    switch (FSelector.Position) {
    case spDescendant:
    case spChild:
        return parent ? ocGoesOn : ocNothing;
    case spSibling:
        FAt = {&FSelector, PreviousTagged(FElement), 0, 0};
        return FAt.Node ? ocGoesOn : ocNothing;
    case spAllSiblings:
        if (parent)
            OpenSiblings({&FSelector, parent, 0, 0}, FElement.NodeIndex() - 1, ckAll);
        break;
    }
    return ocNothing;
}

SelectorWalk::Outcome SelectorWalk::Look()
{
    if (++FLooks == FLooksToRemember) [[unlikely]]
        StartRemembering();
    const TCSSSelector& compound = *FAt.Right->Previous;
    const auto* element = As<TStyledHTMLNode>(FAt.Node);
    const TCSSPseudo pseudo = element ? FPseudo + element->CurrentPC() : FPseudo;
    const bool fits = element && compound.Test(*element, pseudo);
    if (fits && IsExcluded(compound, *element, pseudo))
        return ocNothing;
    if (fits && !compound.Previous)
        return ocFound;
    if (!fits && FAt.Right->Position == spChild)
        return ocNothing;
    if (LeadsAside(compound))
        return GoAside(compound);
    if (!FAt.Node->Parent())
        return ocNothing;
    if (!fits)
        return GoUp(*FAt.Right, FAt.Step);
    Push({{FAt.Right, FAt.Node->Parent(), FAt.Step, FAt.Up + 1}, 0, 0, ckNode});
    return GoUp(compound, FAt.Step + 1);
}

SelectorWalk::Outcome SelectorWalk::GoUp(const TCSSSelector& right, std::int32_t step)
{
    FAt = {&right, FAt.Node->Parent(), step, FAt.Up + 1};
    return WasHere() ? ocNothing : ocGoesOn;
}

SelectorWalk::Outcome SelectorWalk::GoAside(const TCSSSelector& right)
{
    const THtNode& node = *FAt.Node;
    if (right.Position == spSibling) {
        FAt = {&right, PreviousTagged(node), FAt.Step + 1, FAt.Up};
        return FAt.Node ? ocGoesOn : ocNothing;
    }
    if (node.Parent())
        OpenSiblings({&right, node.Parent(), FAt.Step + 1, FAt.Up}, node.NodeIndex(), ckTagged);
    return ocNothing;
}

/// The walk remembers for each compound and level how many of the children there, from the first on, it has
/// begun to try.
void SelectorWalk::OpenSiblings(const Place& at, std::int32_t index, ChoiceKind kind)
{
    std::int32_t low = 0;
    if (IsRemembering()) {
        std::uint32_t& begun = FMemory[CheckedCast<std::int32_t>(FSiblingsAt + PlaceNumber(at))];
        low = static_cast<std::int32_t>(begun);
        begun = std::max(begun, static_cast<std::uint32_t>(index + 1));
    }
    if (index >= low)
        Push({at, index, low, kind});
}

/// Goes to the latest place that has not been tried; false when there is none.
bool SelectorWalk::NextChoice()
{
    while (FCount > 0) {
        Choice& choice = Top();
        if (choice.Kind != ckNode) {
            if (NextSibling(choice))
                return true;
            Pop();
            continue;
        }
        FAt = choice.At;
        Pop();
        if (!WasHere())
            return true;
    }
    return false;
}

bool SelectorWalk::NextSibling(Choice& choice)
{
    const auto siblings = choice.At.Node->Children();
    while (choice.Index >= choice.Low) {
        const THtNode& sibling = *siblings[static_cast<std::size_t>(choice.Index--)];
        if (choice.Kind == ckAll ? IsRepeated(choice, sibling) : !IsTagged(sibling))
            continue;
        FAt = choice.At;
        FAt.Node = &sibling;
        return true;
    }
    return false;
}

/// Nodes without a tag that stand side by side have the same sibling in front of them.
bool SelectorWalk::IsRepeated(const Choice& choice, const THtNode& sibling) const
{
    const TCSSSelector& compound = *choice.At.Right->Previous;
    const THtNode* behind = sibling.NextSibling();
    return LeadsAside(compound) && !IsTagged(sibling) && behind != &FElement && !IsTagged(*behind);
}

void SelectorWalk::Push(const Choice& choice)
{
    if (FCount < kFew) {
        FFew[static_cast<std::size_t>(FCount)] = choice;
    } else {
        if (FMore.IsEmpty()) {
            std::int32_t compounds = 0;
            for (const TCSSSelector* compound = &FSelector; compound; compound = compound->Previous.get())
                ++compounds;
            FMore.Reserve(compounds);
        }
        FMore.Add(choice);
    }
    ++FCount;
}

void SelectorWalk::Pop()
{
    if (FCount > kFew)
        FMore.Delete(FMore.Length() - 1);
    --FCount;
}

/// True when the compound has been looked for at this ancestor before.
bool SelectorWalk::WasHere()
{
    if (!IsRemembering())
        return false;
    const std::int64_t number = PlaceNumber(FAt);
    std::uint32_t& word = FMemory[CheckedCast<std::int32_t>(number / kWordBits)];
    const std::uint32_t bit = 1U << static_cast<unsigned>(number % kWordBits);
    const bool wasHere = (word & bit) != 0;
    word |= bit;
    return wasHere;
}

/// Waits until the walk has cost as much as its memory will.
void SelectorWalk::StartRemembering()
{
    std::int32_t compounds = 0;
    bool leadsAside = false;
    for (const TCSSSelector* compound = &FSelector; compound->Previous; compound = compound->Previous.get()) {
        ++compounds;
        leadsAside = leadsAside || compound->Position == spAllSiblings;
    }
    FLevels = 1;
    for (const THtNode* node = &FElement; node->Parent(); node = node->Parent())
        ++FLevels;
    const std::int64_t places = std::int64_t{compounds} * FLevels;
    FSiblingsAt = places / kWordBits + 1;
    const std::int64_t words = FSiblingsAt + (leadsAside ? places : 0);
    if (words <= FLooks)
        FMemory.SetLength(CheckedCast<std::int32_t>(words));
    else
        FLooksToRemember = words;
}

}
