// Where a sheet files its selectors, and how repeated rules for every element become one.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/style_map.h>

#include <hearth/foundation/hash.h>
#include <hearth/foundation/hash_table.h>
#include <hearth/markup/attributes.h>
#include <hearth/styling/css/css_section.h>

#include <algorithm>
#include <utility>

namespace ht {

namespace {

/// Slots of a map of more than one key. The sheet of a single element has one.
constexpr std::int32_t kCapacity = 255;

/// Of the conditions that a missing attribute passes.
constexpr unsigned kAlwaysBit = 63;

std::uint64_t NameBit(std::u16string_view name) noexcept
{
    if (name.empty())
        return 1;
    const unsigned mixed =
        5U * FoldAscii(name.front()) + 3U * FoldAscii(name.back()) + static_cast<unsigned>(name.size());
    return std::uint64_t{1} << (mixed % kAlwaysBit);
}

/// A missing attribute decides at the first condition.
std::uint64_t ConditionBits(const TCSSSelector& selector)
{
    const bool isTold = !selector.Conditions.IsEmpty() && selector.Conditions[0].Compare != acNotEq;
    return isTold ? NameBit(selector.Conditions[0].Name) : std::uint64_t{1} << kAlwaysBit;
}

/// A rule that is nothing but "*".
bool IsBareUniversal(const TCSSSelector& selector)
{
    return selector.Universal && !selector.Previous && selector.ID.IsEmpty() && selector.Classes.IsEmpty()
        && selector.Condition.IsEmpty() && selector.Pseudo.IsEmpty() && selector.Nots.IsEmpty()
        && selector.Section && selector.Section->Selectors->Count() <= 1;
}

template <class Proc> void ForEachCompound(const TCSSFiledSelectors& list, Proc proc)
{
    for (const TCSSFiledSelectors::TItem& item : list) {
        for (const TCSSSelector* compound = item.Selector; compound; compound = compound->Previous.get())
            proc(*compound);
    }
}

template <class Maps, class Proc> void ForEachMap(Maps& maps, Proc proc)
{
    proc(maps.TagMap);
    for (auto* map : {&maps.IDMap, &maps.ClassMap, &maps.ConditionMap, &maps.PseudoMap}) {
        if (*map)
            proc(**map);
    }
}

}

TCSSFiledSelectors::TCSSFiledSelectors(const String& key, TCSSPseudoClass pseudo)
    : Key(key)
    , Pseudo(pseudo)
{
}

TCSSFiledSelectors::~TCSSFiledSelectors()
{
    if (FItems != &FFirst)
        memory::Free(FItems);
}

void TCSSFiledSelectors::Add(const TItem& item)
{
    if (FCount == FCapacity)
        Grow();
    FItems[FCount++] = item;
}

void TCSSFiledSelectors::Grow()
{
    const std::int32_t capacity = CheckedMul(FCapacity, 2);
    auto* items = static_cast<TItem*>(memory::Allocate(static_cast<std::size_t>(capacity) * sizeof(TItem)));
    std::copy_n(FItems, FCount, items);
    if (FItems != &FFirst)
        memory::Free(FItems);
    FItems = items;
    FCapacity = capacity;
}

void TCSSFiledSelectors::RemoveSection(const TCSSSection& Section)
{
    TItem* const last = std::remove_if(FItems, FItems + FCount,
        [&Section](const TItem& item) { return item.Selector->Section == &Section; });
    FCount = static_cast<std::int32_t>(last - FItems);
}

/// The rule that others melt into. An index of its declarations keeps this linear in what melts.
class TCSSStyleMap::TFold {
public:
    explicit TFold(TCSSSection& section)
        : Section(section)
        , FPlaces(section.Values.Length())
    {
        FPlaces.SetNames(
            [](std::intptr_t fold, std::int32_t place) {
                return SeededHashOf(reinterpret_cast<const TFold*>(fold)->NameAt(place));
            },
            reinterpret_cast<std::intptr_t>(this));
        for (std::int32_t i = 0; i < Section.Values.Length(); ++i)
            Note(i);
    }
    TFold(const TFold&) = delete;
    TFold& operator=(const TFold&) = delete;

    void Take(TCSSSection& source)
    {
        const std::int32_t count = Section.Values.Length();
        for (const TCSSValue& value : source.Values) {
            const std::int32_t slot = FPlaces.Find(RSHash(value.Name), Match{*this, value.Name});
            const std::int32_t place = slot >= 0 ? FPlaces.ValueAt(slot) : count;
            if (place < count) {
                Replace(Section.Values[place], value);
            } else {
                Section.AddValue(value);
                Note(Section.Values.Length() - 1);
            }
        }
        source.Values.Clear();
    }

    TCSSSection& Section;

private:
    struct Match {
        const TFold& Fold;
        std::u16string_view Name;

        bool Same(std::int32_t place) const { return Fold.NameAt(place) == Name; }
        std::uint32_t Seeded() const { return SeededHashOf(Name); }
    };

    static std::uint32_t SeededHashOf(std::u16string_view name) noexcept
    {
        return detail::SeededHash(name.data(), name.size() * sizeof(char16_t));
    }
    std::u16string_view NameAt(std::int32_t place) const { return Section.Values[place].Name; }

    /// The last value of a name is the one that counts.
    void Note(std::int32_t place)
    {
        FPlaces.Store(RSHash(NameAt(place)), Match{*this, NameAt(place)}, place);
    }

    void Replace(TCSSValue& value, const TCSSValue& by)
    {
        value.Tokens = by.Tokens;
        value.Measure.Value1 = by.Measure.Value1;
        PrepareValue(value, Section);
    }

    detail::HashTable<std::int32_t> FPlaces;
};

TCSSStyleMap::TCSSStyleMap(TKind kind)
    : THtObjectDictionary(0, false, HtClassFieldOffset(&TCSSFiledSelectors::Key), &RSHash)
    , FKind(kind)
{
}

TCSSStyleMap::~TCSSStyleMap() = default;

const TCSSFiledSelectors* TCSSStyleMap::FindList(std::u16string_view Key) const
{
    return FindList(Key, HashOf(Key));
}

TCSSFiledSelectors* TCSSStyleMap::FindOwn(const String& key, std::uint32_t hash, TCSSPseudoClass pseudo) const
{
    if (FKind != mkPseudo)
        return static_cast<TCSSFiledSelectors*>(GetHashed(hash, key));
    const auto found = std::find_if(
        FLists.begin(), FLists.end(), [pseudo](const TEntry& entry) { return entry.List->Pseudo == pseudo; });
    return found == FLists.end() ? nullptr : found->List.get();
}

TCSSFiledSelectors& TCSSStyleMap::NeedList(
    const String& key, TCSSPseudoClass pseudo, const TCSSSelector& selector)
{
    const std::uint32_t hash = FKind == mkPseudo ? 0 : HashOf(key);
    if (TCSSFiledSelectors* list = FindOwn(key, hash, pseudo))
        return *list;
    TEntry entry{0, std::make_unique<TCSSFiledSelectors>(key, pseudo)};
    TCSSFiledSelectors& list = *entry.List;
    if (FKind == mkPseudo)
        entry.Bits = TCSSPseudo{pseudo}.Bits();
    else if (FKind == mkConditions)
        entry.Bits = ConditionBits(selector);
    FLists.Add(std::move(entry));
    if (FKind != mkPseudo) {
        if (FLists.Length() == 2)
            SetCapacity(kCapacity);
        AddHashed(hash, key, &list);
    }
    return list;
}

void TCSSStyleMap::AddSelector(
    const String& Key, TCSSSelector* S, TCSSPseudoClass Pseudo, TCSSFolding folding, std::uint32_t Order)
{
    FAllPseudo += S->Pseudo;
    TCSSFiledSelectors& list = NeedList(Key, Pseudo, *S);
    if (folding == foKeep || !DistinctAdd(list, *S))
        list.Add({S, Order, folding});
}

bool TCSSStyleMap::DistinctAdd(const TCSSFiledSelectors& list, TCSSSelector& S)
{
    if (list.Count() == 0 || list.begin()->Folding != foDistinct)
        return false;
    const TCSSSelector& first = *list.GetSelector(0);
    if (!IsBareUniversal(first) || !IsBareUniversal(S) || first.Section == S.Section
        || first.Weight != S.Weight || first.Section->MediaSet != S.Section->MediaSet)
        return false;
    if (!FFold || &FFold->Section != first.Section)
        FFold = std::make_unique<TFold>(*first.Section);
    FFold->Take(*S.Section);
    return true;
}

void TCSSStyleMap::CompileFolded()
{
    if (!FFold)
        return;
    FFold->Section.Compile();
    FFold.reset();
}

void TCSSStyleMap::Clear()
{
    FFold.reset();
    THtObjectDictionary::Clear();
    FLists.Clear();
    FAllPseudo = {};
}

void TCSSStyleMap::RemoveSection(const TCSSSection& Section)
{
    if (FFold && &FFold->Section == &Section)
        FFold.reset();
    for (const TEntry& entry : FLists) {
        entry.List->RemoveSection(Section);
        if (entry.List->Count() == 0 && FKind != mkPseudo)
            Extract(entry.List->Key);
    }
    const auto end = std::remove_if(
        FLists.begin(), FLists.end(), [](const TEntry& entry) { return entry.List->Count() == 0; });
    const auto kept = static_cast<std::int32_t>(end - FLists.begin());
    FLists.Delete(kept, FLists.Length() - kept);
    FAllPseudo = {};
    for (const TEntry& entry : FLists) {
        for (const TCSSFiledSelectors::TItem& item : *entry.List)
            FAllPseudo += item.Selector->Pseudo;
    }
}

void TCSSStyleMap::GetAllClasses(THtStringList& L) const
{
    for (const TEntry& entry : FLists) {
        ForEachCompound(*entry.List, [&L](const TCSSSelector& compound) {
            for (const TCSSClassRec& name : compound.Classes)
                L.AddKey(name.s);
        });
    }
}

void TCSSStyleMap::GetAllIds(THtStringList& L) const
{
    for (const TEntry& entry : FLists) {
        ForEachCompound(*entry.List, [&L](const TCSSSelector& compound) {
            if (!compound.ID.IsEmpty())
                L.AddKey(compound.ID);
        });
    }
}

std::uint64_t TCSSStyleMap::NameBits(const THtAttributes& attributes)
{
    std::uint64_t bits = std::uint64_t{1} << kAlwaysBit;
    for (const THtAttribute& attribute : attributes)
        bits |= NameBit(attribute.Name);
    return bits;
}

void TCSSStyleMaps::AddSelector(TCSSSelector* S, TCSSFolding folding, std::uint32_t Order)
{
    const auto need = [](std::unique_ptr<TCSSStyleMap>& map, TCSSStyleMap::TKind kind) -> TCSSStyleMap& {
        if (!map)
            map = std::make_unique<TCSSStyleMap>(kind);
        return *map;
    };
    if (!S->Tag.IsEmpty())
        TagMap.AddSelector(S->Tag, S, pcNone, folding, Order);
    else if (!S->ID.IsEmpty())
        need(IDMap, TCSSStyleMap::mkNames).AddSelector(S->ID, S, pcNone, foKeep, Order);
    else if (!S->Classes.IsEmpty())
        need(ClassMap, TCSSStyleMap::mkNames).AddSelector(S->Classes[0].s, S, pcNone, foKeep, Order);
    else if (!S->Condition.IsEmpty())
        need(ConditionMap, TCSSStyleMap::mkConditions)
            .AddSelector(S->Condition.ToLowerAscii(), S, pcNone, foKeep, Order);
    else if (!(S->Pseudo - kPseudoElements).IsEmpty())
        need(PseudoMap, TCSSStyleMap::mkPseudo).AddSelector(String(), S, S->FirstPseudo, foKeep, Order);
}

void TCSSStyleMaps::Clear()
{
    TagMap.Clear();
    IDMap.reset();
    ClassMap.reset();
    ConditionMap.reset();
    PseudoMap.reset();
}

void TCSSStyleMaps::RemoveSection(const TCSSSection& Section)
{
    ForEachMap(*this, [&Section](TCSSStyleMap& map) { map.RemoveSection(Section); });
}

void TCSSStyleMaps::GetAllClasses(THtStringList& L) const
{
    ForEachMap(*this, [&L](const TCSSStyleMap& map) { map.GetAllClasses(L); });
}

void TCSSStyleMaps::GetAllIds(THtStringList& L) const
{
    ForEachMap(*this, [&L](const TCSSStyleMap& map) { map.GetAllIds(L); });
}

}
