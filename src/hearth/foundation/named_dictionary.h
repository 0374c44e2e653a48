// What dictionaries have in common: the operations by integer key and those by name.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/hash.h>
#include <hearth/foundation/hash_table.h>
#include <hearth/runtime/checked.h>
#include <hearth/runtime/object.h>

#include <bit>
#include <functional>

namespace ht {

/// Marks where the offset of a field in an object is meant.
constexpr std::int32_t HtClassFieldOffset(std::int32_t offset) noexcept
{
    return offset;
}

/// The offset of a text field: `HtClassFieldOffset(&THtStringRec::Value)`. In objects TObject has to be the
/// first base.
template <class T, class Field> std::int32_t HtClassFieldOffset(Field T::*field)
{
    if constexpr (sizeof field == sizeof(std::int64_t))
        return CheckedCast<std::int32_t>(std::bit_cast<std::int64_t>(field));
    else
        return std::bit_cast<std::int32_t>(field);
}

namespace detail {

/// `length` units; nothing for a length below 1.
inline std::u16string_view ViewOf(const char16_t* src, std::int32_t length) noexcept
{
    return length < 1 ? std::u16string_view() : std::u16string_view(src, static_cast<std::size_t>(length));
}

[[noreturn]] HT_API void RaiseNoValue();

/// A table by integer key; V is a pointer.
template <class V> class IdDictionary : public TObject {
public:
    using Value = V;

    std::int32_t Count() const noexcept { return FTable.Count(); }
    /// Number of slots, a power of two up to 2^30.
    std::int32_t SlotCount() const noexcept { return static_cast<std::int32_t>(FTable.SlotCount()); }
    /// The value of a slot that a search or an addition returned; null for an empty slot. Throws ERangeError.
    V ValueAt(std::int32_t slot) const
    {
        if (static_cast<std::uint32_t>(slot) >= FTable.SlotCount()) [[unlikely]]
            RaiseRangeError();
        return FTable.ValueAt(slot);
    }

    /// Makes room for `capacity` entries; a filled table never shrinks. Throws EOutOfMemory above 2^30.
    void SetCapacity(std::int32_t capacity) { FTable.SetCapacity(capacity); }

    bool ContainsKey(std::uint32_t key) const { return InternalFind(key) >= 0; }
    /// False and null for an absent key.
    bool TryGetValue(std::uint32_t key, V& value) const { return TakeValue(InternalFind(key), value); }
    /// The slot of a hit, or the complement of the slot where the entry would go.
    std::int32_t InternalFind(std::uint32_t key) const { return FTable.Find(key, KeyOnly{}); }
    /// Null for an absent key.
    V Get(std::uint32_t key) const { return ValueOrNull(InternalFind(key)); }

    /// Walks the slots: start with index 0; null at the end. A null that was added as a value ends the walk
    /// too; what stands behind it comes when the walk goes on with the same index.
    V GetNext(std::int32_t& index) const
    {
        const std::int32_t slot = FTable.NextSlot(index);
        return slot >= 0 ? FTable.ValueAt(slot) : nullptr;
    }

protected:
    explicit IdDictionary(std::int32_t capacity)
        : FTable(capacity)
    {
    }
    IdDictionary(const IdDictionary&) = delete;
    IdDictionary& operator=(const IdDictionary&) = delete;

    V ValueOrNull(std::int32_t slot) const { return slot >= 0 ? FTable.ValueAt(slot) : nullptr; }
    bool TakeValue(std::int32_t slot, V& value) const
    {
        value = ValueOrNull(slot);
        return slot >= 0;
    }
    V ExtractSlot(std::int32_t slot) { return slot >= 0 ? FTable.RemoveAt(slot) : nullptr; }

    HashTable<V> FTable;
};

/// A name that is looked for among values whose names `Names` reads.
template <class Names> struct NameMatch {
    const Names& Reader;
    std::u16string_view Name;

    bool Same(const void* value) const noexcept
    {
        const std::u16string_view other = Reader.NameOf(value);
        return other.size() == Name.size()
            && (other.data() == Name.data() || SameUnits(other.data(), Name.data(), Name.size()));
    }
    /// Computed once: an addition asks when it searches and when it inserts.
    std::uint32_t Seeded() const noexcept
    {
        if (!Known)
            Hash = SeededHash(Name.data(), Name.size() * sizeof(char16_t));
        Known = true;
        return Hash;
    }

    mutable std::uint32_t Hash = 0;
    mutable bool Known = false;
};

/// The operations by name over a dictionary by integer key, whose keys become the hashes. Names are read out
/// of the values and must not change while a value is in the dictionary. `Base` frees a replaced or removed
/// value in `Discard`.
template <class Base, class Names> class NamedDictionary : public Base {
public:
    using V = typename Base::Value;
    using TraverseProc = std::function<void(TObject* context, V value)>;

    /// The hash that this dictionary was made with.
    THtStringHashFunc HashFunc() const noexcept { return FHashFunc; }
    std::uint32_t HashOf(std::u16string_view name) const
    {
        return FDefaultHash ? ShaPerfectHash(name) : FHashFunc(name.data(), CheckedLength(name.size()));
    }

    /// False and null for an absent name.
    bool Find(std::u16string_view name, V& value) const
    {
        return this->TakeValue(FindHashed(HashOf(name), name), value);
    }
    bool Find(const char16_t* src, std::int32_t length, V& value) const
    {
        return Find(ViewOf(src, length), value);
    }
    /// The slot of a hit, or the complement of the slot where the entry would go.
    std::int32_t FindHashed(std::uint32_t hash, std::u16string_view name) const
    {
        return this->FTable.Find(hash, MatchOf(name));
    }
    std::int32_t FindHashed(std::uint32_t hash, const char16_t* src, std::int32_t length) const
    {
        return FindHashed(hash, ViewOf(src, length));
    }
    bool ContainsKey(std::u16string_view name) const { return FindHashed(HashOf(name), name) >= 0; }
    /// Null for an absent name.
    V Get(std::u16string_view name) const { return GetHashed(HashOf(name), name); }
    V GetHashed(std::uint32_t hash, std::u16string_view name) const
    {
        return this->ValueOrNull(FindHashed(hash, name));
    }

    /// Adds, or replaces the value of an equal name; returns the slot. Throws EAssertionFailed for a null
    /// value, which has no name.
    std::int32_t Add(std::u16string_view name, V value) { return AddHashed(HashOf(name), name, value); }
    std::int32_t AddHashed(std::uint32_t hash, std::u16string_view name, V value)
    {
        if (!value) [[unlikely]]
            RaiseNoValue();
        const auto stored = this->FTable.Store(hash, MatchOf(name), value);
        if (stored.Replaced != value)
            this->Discard(stored.Replaced);
        return stored.Slot;
    }
    void Put(std::u16string_view name, V value) { Add(name, value); }
    void PutHashed(std::uint32_t hash, std::u16string_view name, V value) { AddHashed(hash, name, value); }

    /// Takes the value out without freeing it; null for an absent name.
    V Extract(std::u16string_view name) { return ExtractHashed(HashOf(name), name); }
    V ExtractHashed(std::uint32_t hash, std::u16string_view name)
    {
        return this->ExtractSlot(FindHashed(hash, name));
    }
    void Remove(std::u16string_view name) { RemoveHashed(HashOf(name), name); }
    void RemoveHashed(std::uint32_t hash, std::u16string_view name)
    {
        this->Discard(ExtractHashed(hash, name));
    }

    /// Calls `proc` for every value in slot order.
    void Traverse(TObject* context, const TraverseProc& proc) const
    {
        std::int32_t index = 0;
        for (std::int32_t slot = 0; (slot = this->FTable.NextSlot(index)) >= 0;)
            proc(context, this->FTable.ValueAt(slot));
    }

protected:
    template <class... Arguments>
    NamedDictionary(Names names, THtStringHashFunc hashFunc, Arguments... arguments)
        : Base(arguments...)
        , FNames(names)
        , FHashFunc(hashFunc ? hashFunc : &ShaPerfectHashAsm)
        , FDefaultHash(!hashFunc)
    {
        this->FTable.SetNames(
            [](std::intptr_t reader, V value) {
                const std::u16string_view name = reinterpret_cast<const Names*>(reader)->NameOf(value);
                return SeededHash(name.data(), name.size() * sizeof(char16_t));
            },
            reinterpret_cast<std::intptr_t>(&FNames));
    }

    NameMatch<Names> MatchOf(std::u16string_view name) const noexcept { return {FNames, name}; }
    /// AddObject and AddPointer: the name comes from the value.
    std::int32_t AddNamed(V value)
    {
        if (!value) [[unlikely]]
            RaiseNoValue();
        return Add(FNames.NameOf(value), value);
    }

    Names FNames;

private:
    THtStringHashFunc FHashFunc;
    bool FDefaultHash;
};

}

}
