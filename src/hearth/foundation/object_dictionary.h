// Dictionaries of objects, by integer and by name.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/named_dictionary.h>

namespace ht {

/// Called with the context of the traversal and a value.
using THtTraverseProc = std::function<void(TObject* context, TObject* value)>;

/// Objects by integer key, owned where the dictionary was created so.
class HT_API THtIdObjectDictionary : public detail::IdDictionary<TObject*> {
public:
    /// Throws EOutOfMemory for a capacity above 2^30.
    explicit THtIdObjectDictionary(std::int32_t capacity = 0, bool ownsObjects = false);
    ~THtIdObjectDictionary() override;

    bool OwnsObjects() const noexcept { return FOwnsObjects; }
    /// Empties the table, frees owned objects and sizes the table for `capacity` entries.
    void Clear(std::int32_t capacity = 0);

    /// The new slot; for a present key the complement of its slot, and then nothing is changed or taken over.
    std::int32_t Add(std::uint32_t key, TObject* value);
    /// Adds or replaces; an owned object that is replaced by another one is freed.
    void Put(std::uint32_t key, TObject* value);
    /// Takes the object out without freeing it; null for an absent key.
    TObject* Extract(std::uint32_t key) { return ExtractSlot(InternalFind(key)); }
    /// Takes the object out and frees it if owned.
    void Remove(std::uint32_t key) { Discard(Extract(key)); }

protected:
    void Discard(TObject* value)
    {
        if (FOwnsObjects)
            delete value;
    }

private:
    bool FOwnsObjects;
};

namespace detail {

/// Names that are a String at a byte offset in the value.
struct StringFieldNames {
    std::ptrdiff_t Offset;

    std::u16string_view NameOf(const void* value) const noexcept
    {
        return reinterpret_cast<const String*>(static_cast<const char*>(value) + Offset)->View();
    }
};

using NamedObjects = NamedDictionary<THtIdObjectDictionary, StringFieldNames>;

}

/// Objects by a name that each of them holds in a String field.
class HT_API THtObjectDictionary : public detail::NamedObjects {
public:
    /// `nameOffset` tells where the name stands, see HtClassFieldOffset; ShaPerfectHash without a `hashFunc`.
    THtObjectDictionary(std::int32_t capacity, bool ownsObjects, std::int32_t nameOffset,
        THtStringHashFunc hashFunc = nullptr);
    ~THtObjectDictionary() override;

    /// Adds under the name that the object holds; returns the slot. Throws EAssertionFailed for null.
    std::int32_t AddObject(TObject* value) { return AddNamed(value); }
};

}
