// The known names of the process, and the names of one parser above them.
// SPDX-License-Identifier: MIT
#include <hearth/markup/name_table.h>

#include <hearth/markup/short_name_p.h>

#include <algorithm>
#include <span>

namespace ht {

namespace {

constexpr TKnownName kKnownAttributes[] = {
#include <hearth/markup/attribute_names_table.inc>
};

THtNameRec& AddName(THtObjectDictionary& names, const String& name, std::uint32_t hash, TTagId id)
{
    auto record = std::make_unique<THtNameRec>(name, hash, id);
    THtNameRec& added = *record;
    names.AddHashed(hash, name, record.release());
    return added;
}

THtObjectDictionary NewTable(std::int32_t capacity)
{
    return {
        capacity, true, HtClassFieldOffset(&THtStringRec::Value), static_cast<THtStringHashFunc>(&RSHash)};
}

const THtNameRec* FindIn(const THtObjectDictionary& names, std::uint32_t hash, std::u16string_view name)
{
    return static_cast<const THtNameRec*>(names.GetHashed(hash, name));
}

std::span<const TKnownName> RowsOf(THtNameTable::TKind kind)
{
    return kind == THtNameTable::ntTags ? std::span<const TKnownName>(kKnownTags)
                                        : std::span<const TKnownName>(kKnownAttributes);
}

}

THtNameTable::KnownNames::KnownNames(TKind kind)
    : All(NewTable(static_cast<std::int32_t>(RowsOf(kind).size())))
{
    TTagId id = 0;
    for (const TKnownName& row : RowsOf(kind)) {
        ++id;
        const std::uint32_t hash = RSHash(row.Text.View());
        const THtNameRec& added =
            AddName(All, String::OfStatic(row.Text), hash, kind == ntTags ? id : TTagId{0});
        Likely[hash % kLikelySlots] = &added;
        if (const TShortName name = ShortNameOf(row.Text.View()); name.Length > 0)
            Short[ShortSlot(name.Key)] = {name.Key, &added};
    }
}

/// Never destroyed: documents with static lifetime may still look names up.
const THtNameTable::KnownNames& THtNameTable::Known(TKind kind)
{
    static const KnownNames& tags = *new KnownNames(ntTags);
    static const KnownNames& attributes = *new KnownNames(ntAttributes);
    return kind == ntTags ? tags : attributes;
}

THtTagName::THtTagName(const String& name)
    : Name(name)
    , Hash(RSHashLower(name))
{
    const THtNameRec* known =
        name.IsEmpty() ? nullptr : THtNameTable::FindKnown(THtNameTable::ntTags, Hash, name);
    if (known) {
        Name = known->Value;
        Id = known->Id;
    }
}

THtNameRec::THtNameRec(const String& value, std::uint32_t hash, TTagId id)
    : THtStringRec(value, hash)
    , LowerHash(RSHashLower(value))
    , Id(id)
    , IsLower(std::none_of(value.begin(), value.end(), IsAsciiUpper))
    , ActsAtEnd(ht::ActsAtEnd(id))
{
}

THtNameTable::THtNameTable(TKind kind, std::int32_t capacity)
    : FKnown(Known(kind))
    , FCapacity(capacity)
{
}

const THtNameRec* THtNameTable::FindRare(std::uint32_t hash, std::u16string_view name) const
{
    const THtNameRec* known = FindIn(FKnown.All, hash, name);
    return known || !FOwn ? known : FindIn(*FOwn, hash, name);
}

const THtNameRec& THtNameTable::Intern(std::uint32_t hash, std::u16string_view name)
{
    if (const THtNameRec* found = Find(hash, name))
        return *found;
    if (!FOwn)
        FOwn.reset(new THtObjectDictionary(NewTable(FCapacity)));
    return AddName(*FOwn, String(name), hash, 0);
}

const THtNameRec* THtNameTable::FindKnown(TKind kind, std::uint32_t hash, std::u16string_view name)
{
    return FindIn(Known(kind).All, hash, name);
}

}
