// Which rules of a sheet apply to an element.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/style_sheet.h>

#include <hearth/foundation/hash.h>
#include <hearth/styling/css/selector_walk_p.h>

#include <algorithm>
#include <array>
#include <span>

namespace ht {

namespace {

/// Rules that match one element, sorted by weight and order, so that a weight list takes their values one
/// behind the other.
class Matches {
public:
    void Add(const TCSSSection& section, std::uint32_t weight, std::uint32_t order)
    {
        const Match match{std::uint64_t{weight} << 32U | order, &section};
        if (FCount == kFew) [[unlikely]] {
            AddMany(match);
            return;
        }
        std::size_t at = FCount++;
        for (; at > 0 && match.Key < FFew[at - 1].Key; --at)
            FFew[at] = FFew[at - 1];
        FFew[at] = match;
    }

    void AddTo(TCSSWeightList& list)
    {
        std::span<const Match> matches(FFew.data(), FCount);
        if (!FMany.IsEmpty()) {
            std::stable_sort(
                FMany.begin(), FMany.end(), [](const Match& a, const Match& b) { return a.Key < b.Key; });
            matches = FMany;
        }
        const bool isFirst = list.Count() == 0;
        bool hasImportant = false;
        for (std::size_t i = 0; i < matches.size(); ++i) {
            const Novelty novelty = isFirst ? NoveltyOf(matches, i) : nvUnknown;
            if (novelty != nvRepeated)
                AddOrdinary(list, matches[i], novelty, hasImportant);
        }
        if (!hasImportant)
            return;
        for (const Match& match : matches)
            AddImportant(list, match);
    }

private:
    struct Match {
        std::uint64_t Key;
        const TCSSSection* Section;

        std::uint32_t Weight() const noexcept { return static_cast<std::uint32_t>(Key >> 32U); }
        std::uint32_t Order() const noexcept { return static_cast<std::uint32_t>(Key); }
    };

    enum Novelty : std::uint8_t { nvNew, nvRepeated, nvUnknown };

    void AddMany(const Match& match)
    {
        if (FMany.IsEmpty()) {
            for (const Match& few : FFew)
                FMany.Add(few);
        }
        FMany.Add(match);
    }

    /// Whether two selectors of one rule match with one weight. They stand side by side most often.
    static Novelty NoveltyOf(std::span<const Match> matches, std::size_t index)
    {
        constexpr std::size_t kNear = 16;
        const std::size_t end = index < kNear ? 0 : index - kNear;
        for (std::size_t i = index; i > end;) {
            const Match& other = matches[--i];
            if (other.Weight() != matches[index].Weight())
                return nvNew;
            if (other.Section == matches[index].Section)
                return nvRepeated;
        }
        return end == 0 ? nvNew : nvUnknown;
    }

    static void AddOrdinary(TCSSWeightList& list, const Match& match, Novelty novelty, bool& hasImportant)
    {
        for (const TCSSValue& value : match.Section->CompiledValues) {
            if (value.Important)
                hasImportant = true;
            else if (novelty == nvNew)
                list.AddNewValue(match.Weight(), match.Order(), &value);
            else
                list.AddValue(match.Weight(), match.Order(), &value);
        }
    }

    static void AddImportant(TCSSWeightList& list, const Match& match)
    {
        for (const TCSSValue& value : match.Section->CompiledValues) {
            if (value.Important)
                list.AddValue(match.Weight() | kImportantWeight, match.Order(), &value);
        }
    }

    static constexpr std::size_t kFew = 48;

    std::size_t FCount = 0;
    std::array<Match, kFew> FFew;
    TArray<Match> FMany; // all of them, where there are more
};

bool IsEnabled(const TCSSSelector& selector)
{
    return selector.Section && !(selector.Section->MediaSet && selector.Section->MediaSet->Disabled);
}

/// What TestElement asks beside the last compound. `active` is what the test of that compound was given.
bool FitsAround(
    const TStyledHTMLNode& element, const TCSSSelector& selector, TCSSPseudo pseudo, TCSSPseudo active)
{
    return pseudo.IsSubsetOf(selector.Pseudo) && !detail::IsExcluded(selector, element, active)
        && (!selector.Previous || detail::SelectorWalk(element, selector, pseudo).Matches());
}

/// Calls `visit` with each list that may hold a selector for the element, until it answers true; answers
/// whether it did.
template <class Visit>
bool VisitLists(const TCSSStyleMaps& maps, const TStyledHTMLNode& element, TCSSPseudo active, Visit visit)
{
    const auto found = [&visit](const TCSSStyleMap& map, std::u16string_view key, std::uint32_t hash) {
        const TCSSFiledSelectors* list = map.FindList(key, hash);
        return list && visit(*list);
    };
    if (const THtAttributes* attributes = element.Attributes()) {
        if (maps.IDMap) {
            const String& id = attributes->GetAttribute(u"id");
            if (!id.IsEmpty() && found(*maps.IDMap, id, RSHash(id)))
                return true;
        }
        if (maps.ClassMap) {
            for (const TCSSClassRec& name : element.ClassHashes()) {
                if (found(*maps.ClassMap, name.s, name.hash))
                    return true;
            }
        }
        if (maps.ConditionMap && maps.ConditionMap->VisitLists(TCSSStyleMap::NameBits(*attributes), visit))
            return true;
    }
    static const std::uint32_t kAnyTagHash = RSHash(u"*");
    if (found(maps.TagMap, element.Tag(), element.TagHash()) || found(maps.TagMap, u"*", kAnyTagHash))
        return true;
    const TCSSPseudo wanted = active + TCSSPseudo{pcNthChild, pcNthOfType};
    return maps.PseudoMap && maps.PseudoMap->VisitLists(wanted.Bits(), visit);
}

}

void TCSSStyleSheet::GetElementSelectors(const TStyledHTMLNode& E, TCSSWeightList& WL,
    const TCSSStyleMaps* Map, TCSSPseudo APseudo, TCSSMedia /*AMedia*/, std::int64_t /*AMediaWidth*/,
    std::int64_t /*AMediaDeviceWidth*/) const
{
    if (!Map)
        return;
    const TCSSPseudo active = E.CurrentPC() + APseudo;
    Matches matches;
    VisitLists(*Map, E, active, [&](const TCSSFiledSelectors& list) {
        for (const TCSSFiledSelectors::TItem& item : list) {
            const TCSSSelector& selector = *item.Selector;
            if (selector.Test(E, active) && IsEnabled(selector) && FitsAround(E, selector, APseudo, active))
                matches.Add(*selector.Section, selector.Weight, item.Order);
        }
        return false;
    });
    matches.AddTo(WL);
}

bool TCSSStyleSheet::TestElement(const TStyledHTMLNode& E, const TCSSSelector& S, TCSSPseudo Pseudo) const
{
    const TCSSPseudo active = E.CurrentPC() + Pseudo;
    return S.Test(E, active) && FitsAround(E, S, Pseudo, active);
}

void TCSSStyleSheet::GetAllSelectors(TCSSWeightList& WL) const
{
    const TCSSFiledSelectors* list = Main.TagMap.FindList(u"*");
    if (!list || list->Count() == 0)
        return;
    const TCSSSelector& selector = *list->GetSelector(0);
    if (!selector.Section)
        return;
    for (const TCSSValue& value : selector.Section->CompiledValues) {
        if (!value.Vendor && value.PropRec->Prop != cspUnknown)
            WL.AddValue(selector.Weight, list->GetOrder(0), &value);
    }
}

void TCSSStyleSheet::GetElementPseudoClasses(const TStyledHTMLNode& E, TCSSPseudo& APseudo) const
{
    const auto search = [&E, &APseudo](const TCSSStyleMaps* maps, TCSSPseudoClass pseudo) {
        const TCSSPseudo active = E.CurrentPC() + TCSSPseudo{pseudo};
        const auto hits = [&E, active](const TCSSFiledSelectors& list) {
            return std::any_of(list.begin(), list.end(), [&E, active](const TCSSFiledSelectors::TItem& item) {
                return item.Selector->Test(E, active) && IsEnabled(*item.Selector);
            });
        };
        if (maps && VisitLists(*maps, E, active, hits))
            APseudo.Include(pseudo);
    };
    search(Before.get(), pcBefore);
    search(After.get(), pcAfter);
    search(Marker.get(), pcMarker);
}

void TCSSStyleSheet::GetAnimationSteps(std::u16string_view KeyFramesName, TArray<std::int32_t>& Steps) const
{
    Steps.Clear();
    const TCSSKeyFrameList* list = KeyFrames ? KeyFrames->GetKeyFrameList(KeyFramesName) : nullptr;
    for (std::int32_t i = 0; list && i < list->Count(); ++i)
        Steps.Add(list->Get(i));
}

/// Frames stand above everything but "!important".
void TCSSStyleSheet::GetAnimationSelectors(
    std::u16string_view KeyFramesName, std::int32_t FrameIndex, TCSSWeightList& WL) const
{
    const TCSSKeyFrameList* list = KeyFrames ? KeyFrames->GetKeyFrameList(KeyFramesName) : nullptr;
    if (!list || FrameIndex < 0 || FrameIndex >= list->Count())
        return;
    for (const TCSSValue& value : static_cast<const TCSSSection*>(list->GetObject(FrameIndex))->Values)
        WL.AddValue(kImportantWeight, 0, &value);
}

}
