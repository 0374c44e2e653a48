// The dictionaries that make their own value objects.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/string_list.h>

#include <memory>

namespace ht {

THtStringRec::THtStringRec(const String& value, std::uint32_t hash)
    : Value(value)
    , Hash(hash)
{
}

THtNameObjectPair::THtNameObjectPair(const String& name, TObject* object, bool ownsObject)
    : OwnsObject(ownsObject)
    , Name(name)
    , Object(object)
{
}

THtNameObjectPair::~THtNameObjectPair()
{
    if (OwnsObject)
        delete Object;
}

THtStringList::THtStringList(std::int32_t capacity, bool ownsObjects)
    : THtObjectDictionary(capacity, true, HtClassFieldOffset(&THtNameObjectPair::Name))
    , FOwnsPairObjects(ownsObjects)
{
}

THtStringList::~THtStringList() = default;

void THtStringList::Add(const String& name, TObject* value)
{
    const std::uint32_t hash = HashOf(name);
    const auto* present = static_cast<const THtNameObjectPair*>(GetHashed(hash, name));
    if (present && present->Object == value)
        return;
    auto pair = std::make_unique<THtNameObjectPair>(name, value, false);
    AddHashed(hash, name, pair.get());
    // Owned only now: an addition that fails leaves the object with the caller.
    pair->OwnsObject = FOwnsPairObjects;
    pair.release();
}

void THtStringList::AddKey(const String& name)
{
    if (!HasKey(name))
        Add(name, nullptr);
}

TObject* THtStringList::GetObject(std::u16string_view name) const
{
    const auto* pair = static_cast<const THtNameObjectPair*>(Get(name));
    return pair ? pair->Object : nullptr;
}

THtSingleRec::THtSingleRec(const String& name, float value)
    : Name(name)
    , Value(value)
{
}

THtSingleList::THtSingleList()
    : THtObjectDictionary(16, true, HtClassFieldOffset(&THtSingleRec::Name))
{
}

THtSingleList::~THtSingleList() = default;

void THtSingleList::AddWidth(const String& name, float value)
{
    auto rec = std::make_unique<THtSingleRec>(name, value);
    Add(name, rec.get());
    rec.release();
}

float THtSingleList::GetWidth(std::u16string_view name) const
{
    const auto* rec = static_cast<const THtSingleRec*>(Get(name));
    return rec ? rec->Value : -1.0F;
}

}
