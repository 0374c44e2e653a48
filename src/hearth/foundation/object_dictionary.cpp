// Construction, ownership and integer keys of the object dictionaries.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/object_dictionary.h>

namespace ht {

void detail::RaiseNoValue()
{
    throw EAssertionFailed(u"A dictionary value that has no name");
}

THtIdObjectDictionary::THtIdObjectDictionary(std::int32_t capacity, bool ownsObjects)
    : IdDictionary(capacity)
    , FOwnsObjects(ownsObjects)
{
}

THtIdObjectDictionary::~THtIdObjectDictionary()
{
    if (!FOwnsObjects)
        return;
    std::int32_t index = 0;
    for (std::int32_t slot = 0; (slot = FTable.NextSlot(index)) >= 0;)
        delete FTable.ValueAt(slot);
}

void THtIdObjectDictionary::Clear(std::int32_t capacity)
{
    FTable.Clear(capacity, [this](TObject* value) { Discard(value); });
}

std::int32_t THtIdObjectDictionary::Add(std::uint32_t key, TObject* value)
{
    FTable.GrowIfFull();
    const std::int32_t slot = InternalFind(key);
    return slot >= 0 ? ~slot : FTable.InsertAt(~slot, key, value);
}

void THtIdObjectDictionary::Put(std::uint32_t key, TObject* value)
{
    TObject* const replaced = FTable.Store(key, detail::KeyOnly{}, value).Replaced;
    if (replaced != value)
        Discard(replaced);
}

THtObjectDictionary::THtObjectDictionary(
    std::int32_t capacity, bool ownsObjects, std::int32_t nameOffset, THtStringHashFunc hashFunc)
    : NamedDictionary(detail::StringFieldNames{nameOffset}, hashFunc, capacity, ownsObjects)
{
}

THtObjectDictionary::~THtObjectDictionary() = default;

}
