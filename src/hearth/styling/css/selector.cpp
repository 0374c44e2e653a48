// Selectors: how they are built, what they weigh, and how long ones go away.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/selector.h>

#include <hearth/foundation/hash.h>
#include <hearth/foundation/text_words.h>
#include <hearth/markup/tag_names.h>
#include <hearth/runtime/text_number.h>

#include <algorithm>
#include <limits>

namespace ht {

namespace {

constexpr std::int32_t kTagWeight = 1;
constexpr std::int32_t kClassWeight = 16; // of pseudo-classes and of the conditions too
constexpr std::int32_t kIDWeight = 256;
constexpr std::int32_t kMaxWeight = 0x00FFFFFF; // the byte above says "important"

/// The nearest whole number that fits, halves to the even one.
std::int32_t Saturated(float value)
{
    constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(BankersRound(std::clamp(double{value}, kLowest, kHighest)));
}

/// Puts a selector and all on its left in front of `chain`.
void Prepend(std::unique_ptr<TCSSSelector>& chain, std::unique_ptr<TCSSSelector> selector) noexcept
{
    TCSSSelector* last = selector.get();
    while (last->Previous)
        last = last->Previous.get();
    last->Previous = std::move(chain);
    chain = std::move(selector);
}

void TakeNots(TCSSSelector& selector, std::unique_ptr<TCSSSelector>& chain) noexcept
{
    for (std::unique_ptr<TCSSSelector>& inner : selector.Nots) {
        if (inner)
            Prepend(chain, std::move(inner));
    }
    selector.Nots.Clear();
}

TCSSCondition ConditionOf(std::u16string_view text)
{
    const std::size_t equals = text.find(u'=');
    if (equals == std::u16string_view::npos)
        return {String(text), String(), acMatch};
    std::u16string_view name = TrimView(text.substr(0, equals));
    const String value(TrimView(text.substr(equals + 1)));
    // ORDER TAttrCompare, behind acMatch
    constexpr std::u16string_view kMarks = u"^$*~|!";
    const std::size_t mark = name.empty() ? kMarks.npos : kMarks.find(name.back());
    if (mark == kMarks.npos)
        return {String(name), value, acMatch};
    name.remove_suffix(1);
    return {String(name), value, static_cast<TAttrCompare>(acStarts + static_cast<int>(mark))};
}

}

TCSSSelector::TCSSSelector(std::unique_ptr<TCSSSelector> APrevious)
    : Previous(std::move(APrevious))
{
}

TCSSSelector::~TCSSSelector()
{
    // All that hangs here becomes one chain, whose compounds die one by one with nothing left to them.
    std::unique_ptr<TCSSSelector> chain = std::move(Previous);
    TakeNots(*this, chain);
    while (chain) {
        const std::unique_ptr<TCSSSelector> first = std::move(chain);
        chain = std::move(first->Previous);
        TakeNots(*first, chain);
    }
}

void TCSSSelector::SetTag(const String& Name)
{
    const THtTagName name(Name.ToLowerAscii());
    Tag = name.Name;
    TagHash = name.Hash;
}

void TCSSSelector::AddClass(const String& Name)
{
    const String name = Name.Trim().ToLowerAscii();
    if (Classes.IsEmpty())
        Classes.Reserve(1);
    Classes.Add({name, RSHash(name)});
}

void TCSSSelector::AddPseudo(std::u16string_view Name, const TCSSToken* Arg)
{
    TCSSPseudoClass pseudo = pcUnknown;
    IsEnum2(u"pc", Name, pseudo);
    if (Pseudo.Contains(pseudo))
        return;
    Pseudo.Include(pseudo);
    ++PseudoCount;
    if (FirstPseudo == pcNone)
        FirstPseudo = pseudo;
    if (Arg)
        NthChild = Arg->Name == u"odd" ? kNthOdd : Arg->Name == u"even" ? kNthEven : Saturated(Arg->AsFloat);
}

void TCSSSelector::ParseCondition()
{
    Conditions.Clear();
    std::u16string_view rest = Condition;
    for (;;) {
        const std::size_t end = rest.find(kConditionSeparator);
        Conditions.Add(ConditionOf(rest.substr(0, end)));
        if (end == rest.npos)
            return;
        rest.remove_prefix(end + 1);
    }
}

void TCSSSelector::DetermineTestProc()
{
    for (TCSSSelector* compound = this; compound; compound = compound->Previous.get()) {
        compound->ChooseTest();
        for (const std::unique_ptr<TCSSSelector>& inner : compound->Nots) {
            if (!inner->Condition.IsEmpty())
                inner->ParseCondition();
        }
    }
}

void TCSSSelector::ChooseTest()
{
    constexpr unsigned kTag = 1;
    constexpr unsigned kID = 2;
    constexpr unsigned kCondition = 4;
    constexpr unsigned kClasses = 8;
    constexpr unsigned kPseudo = 16;
    const unsigned parts = (Tag.IsEmpty() || Universal ? 0 : kTag) | (ID.IsEmpty() ? 0 : kID)
        | (Condition.IsEmpty() ? 0 : kCondition) | (Classes.IsEmpty() ? 0 : kClasses)
        | ((Pseudo - kPseudoElements).IsEmpty() ? 0 : kPseudo);
    if (parts & kCondition)
        ParseCondition();
    TestProc = &TCSSSelector::TestAll;
    if (Universal) {
        if (parts == 0)
            TestProc = &TCSSSelector::TestUniversal;
        return;
    }
    switch (parts) {
    case kTag:
        TestProc = &TCSSSelector::TestTag;
        break;
    case kID:
        TestProc = &TCSSSelector::TestID;
        break;
    case kClasses:
        TestProc = &TCSSSelector::TestClass;
        break;
    case kTag | kClasses:
        TestProc = &TCSSSelector::TestTagClass;
        break;
    case kCondition | kPseudo:
        TestProc = &TCSSSelector::TestPCCondition;
        break;
    case kCondition:
        TestProc = &TCSSSelector::TestCondition;
        break;
    case kClasses | kPseudo:
        TestProc = &TCSSSelector::TestPCClass;
        break;
    default:
        break;
    }
}

std::int32_t TCSSSelector::CalcWeight() const
{
    std::int64_t weight = 0;
    for (const TCSSSelector* compound = this; compound; compound = compound->Previous.get()) {
        const std::int64_t classes = std::int64_t{compound->Classes.Length()} + compound->PseudoCount
            + (compound->Condition.IsEmpty() ? 0 : 1);
        weight += classes * kClassWeight + (compound->ID.IsEmpty() ? 0 : kIDWeight)
            + (compound->Tag.IsEmpty() || compound->Universal ? 0 : kTagWeight);
    }
    return static_cast<std::int32_t>(std::min<std::int64_t>(weight, kMaxWeight));
}

}
