// Where a sheet files its selectors.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/string_list.h>
#include <hearth/styling/css/selector.h>

namespace ht {

/// Selectors by one kind of key: tags, ids, classes, conditions, or pseudo-classes. The selectors are not
/// owned.
class HT_API TCSSStyleMap : public THtObjectDictionary {
public:
    enum TKind : std::uint8_t { mkNames, mkPseudo };
    enum TFolding : std::uint8_t { foKeep, foDistinct };

    explicit TCSSStyleMap(TKind kind = mkNames);
    ~TCSSStyleMap() override;

    /// Appends to the list of the key. foDistinct melts a bare universal rule into an earlier one of its
    /// weight.
    void AddSelector(const String& Key, TCSSSelector* S, TCSSPseudoClass Pseudo, TFolding folding);
    void Clear();
    /// Takes out the selectors of a rule.
    void RemoveSection(const TCSSSection& Section);
    /// Null when there is none. The hash is RSHash of the key.
    TCSSSelectors* FindList(std::u16string_view Key) const;
    TCSSSelectors* FindList(std::u16string_view Key, std::uint32_t hash) const;
    TCSSSelectors* GetSelectors(std::int32_t Index) const;
    std::int32_t Count() const noexcept;
    /// Of a map of pseudo-classes: its keys, and all pseudo-classes of its selectors.
    TCSSPseudoClass GetPseudo(std::int32_t Index) const;
    TCSSPseudo AllPseudo() const noexcept { return FAllPseudo; }
    /// Adds the names of all compounds, each once.
    void GetAllClasses(THtStringList& L) const;
    void GetAllIds(THtStringList& L) const;

private:
    TKind FKind;
    TCSSPseudo FAllPseudo;
};

/// The five maps of one group of selectors; all but the first are made on first use.
class HT_API TCSSStyleMaps : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSStyleMaps", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Files under one key alone: the tag, or else the id, the first class, the condition, or the first
    /// pseudo-class. A selector without any is filed nowhere.
    void AddSelector(TCSSSelector* S);
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
