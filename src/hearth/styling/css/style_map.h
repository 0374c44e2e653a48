// Where a sheet files its selectors.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/string_list.h>
#include <hearth/styling/css/selector.h>

namespace ht {

class THtAttributes;

/// Whether a rule may melt into an earlier one of this map, and later ones into it.
enum TCSSFolding : std::uint8_t { foKeep, foDistinct };

/// The selectors of one key in the order of filing, not owned. Most keys have one, which stands in the list
/// itself, so that a look-up goes from the table to the list and from there to the selector.
class HT_API TCSSFiledSelectors : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSFiledSelectors", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    struct TItem {
        TCSSSelector* Selector;
        std::uint32_t Order; // in the sheet that files; that of the selector may be another sheet's
        TCSSFolding Folding;
    };

    explicit TCSSFiledSelectors(const String& key, TCSSPseudoClass pseudo = pcNone);
    TCSSFiledSelectors(const TCSSFiledSelectors&) = delete;
    TCSSFiledSelectors& operator=(const TCSSFiledSelectors&) = delete;
    ~TCSSFiledSelectors() override;

    std::int32_t Count() const noexcept { return FCount; }
    /// Throw ERangeError outside the list.
    TCSSSelector* GetSelector(std::int32_t Index) const { return Item(Index).Selector; }
    std::uint32_t GetOrder(std::int32_t Index) const { return Item(Index).Order; }
    const TItem* begin() const noexcept { return FItems; }
    const TItem* end() const noexcept { return FItems + FCount; }

    void Add(const TItem& item);
    /// Takes out the selectors of a rule.
    void RemoveSection(const TCSSSection& Section);

private:
    const TItem& Item(std::int32_t index) const
    {
        if (static_cast<std::uint32_t>(index) >= static_cast<std::uint32_t>(FCount)) [[unlikely]]
            RaiseRangeError();
        return FItems[index];
    }
    void Grow();

    std::int32_t FCount = 0;

public:
    const String Key; // empty for a pseudo-class

private:
    TItem* FItems = &FFirst;
    TItem FFirst{};
    std::int32_t FCapacity = 1;

public:
    const TCSSPseudoClass Pseudo;
};

/// Selectors by one kind of key: names (tags, ids, classes), conditions, or pseudo-classes.
class HT_API TCSSStyleMap : public THtObjectDictionary {
public:
    enum TKind : std::uint8_t { mkNames, mkConditions, mkPseudo };

    explicit TCSSStyleMap(TKind kind = mkNames);
    ~TCSSStyleMap() override;

    /// Appends to the list of the key. With foDistinct a rule that is a bare "*" melts into the first rule of
    /// the list instead, if that is such a rule too, of equal weight and media. Its declarations then stand
    /// in that rule, which wants CompileFolded; a later value has replaced the earlier one of its name.
    void AddSelector(
        const String& Key, TCSSSelector* S, TCSSPseudoClass Pseudo, TCSSFolding folding, std::uint32_t Order);
    /// Compiles the rule that others were melted into, all of them at once.
    void CompileFolded();
    void Clear();
    /// Takes out the selectors of a rule.
    void RemoveSection(const TCSSSection& Section);
    /// Null when there is none. The hash is RSHash of the key.
    const TCSSFiledSelectors* FindList(std::u16string_view Key) const;
    const TCSSFiledSelectors* FindList(std::u16string_view Key, std::uint32_t hash) const
    {
        return static_cast<const TCSSFiledSelectors*>(GetHashed(hash, Key));
    }
    /// Lists in the order in which their keys came.
    const TCSSFiledSelectors& GetSelectors(std::int32_t Index) const { return *FLists[Index].List; }
    std::int32_t Count() const noexcept { return FLists.Length(); }
    /// Of a map of pseudo-classes: all pseudo-classes of its selectors.
    TCSSPseudo AllPseudo() const noexcept { return FAllPseudo; }
    /// Adds the names of all compounds, each once.
    void GetAllClasses(THtStringList& L) const;
    void GetAllIds(THtStringList& L) const;

    /// What the attributes of an element let through: a list of conditions that begin with one of these
    /// names. Different names may look the same; "!=" passes whatever the names.
    static std::uint64_t NameBits(const THtAttributes& attributes);
    /// Calls `visit` with the lists of a map of conditions or pseudo-classes of which one bit is wanted,
    /// until it answers true; answers whether it did. Bits of pseudo-classes are those of the set.
    template <class Visit> bool VisitLists(std::uint64_t bits, Visit visit) const
    {
        for (const TEntry& entry : FLists) {
            if ((entry.Bits & bits) != 0 && visit(*entry.List))
                return true;
        }
        return false;
    }

private:
    class TFold;

    struct TEntry {
        std::uint64_t Bits; // see VisitLists
        std::unique_ptr<TCSSFiledSelectors> List;
    };

    TCSSFiledSelectors* FindOwn(const String& key, std::uint32_t hash, TCSSPseudoClass pseudo) const;
    TCSSFiledSelectors& NeedList(const String& key, TCSSPseudoClass pseudo, const TCSSSelector& selector);
    bool DistinctAdd(const TCSSFiledSelectors& list, TCSSSelector& S);

    TArray<TEntry> FLists; // owns what the table points at
    TKind FKind;
    TCSSPseudo FAllPseudo;
    std::unique_ptr<TFold> FFold;
};

/// The five maps of one group of selectors; all but the first are made on first use.
class HT_API TCSSStyleMaps : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSStyleMaps", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Files under one key alone: the tag, or else the id, the first class, the condition, or the first
    /// pseudo-class. A selector without any is filed nowhere. For folding see TCSSStyleMap.
    void AddSelector(TCSSSelector* S, TCSSFolding folding, std::uint32_t Order);
    void CompileFolded() { TagMap.CompileFolded(); }
    void Clear();
    void RemoveSection(const TCSSSection& Section);
    void GetAllClasses(THtStringList& L) const;
    void GetAllIds(THtStringList& L) const;

    TCSSStyleMap TagMap;
    std::unique_ptr<TCSSStyleMap> IDMap;
    std::unique_ptr<TCSSStyleMap> ClassMap;
    std::unique_ptr<TCSSStyleMap> ConditionMap;
    std::unique_ptr<TCSSStyleMap> PseudoMap;
};

}
