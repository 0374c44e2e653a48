// Dictionaries of plain pointers: by integer, by name, by callbacks, by bytes in a block.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/named_dictionary.h>

namespace ht {

/// Pointers by integer key; nothing is owned.
class HT_API THtIdPointerDictionary : public detail::IdDictionary<void*> {
public:
    /// Throws EOutOfMemory for a capacity above 2^30.
    explicit THtIdPointerDictionary(std::int32_t capacity = 0);
    ~THtIdPointerDictionary() override;

    /// Empties the table and sizes it for `capacity` entries.
    void Clear(std::int32_t capacity = 0);

    /// Adds, or replaces the value of a present key; returns the slot.
    std::int32_t Add(std::uint32_t key, void* value);
    void Put(std::uint32_t key, void* value) { Add(key, value); }
    /// Takes the pointer out; null for an absent key.
    void* Extract(std::uint32_t key) { return ExtractSlot(InternalFind(key)); }
    void Remove(std::uint32_t key) { Extract(key); }

protected:
    static void Discard(void*) noexcept { }
};

/// A name as records of a THtVirtualStringDictionary hold it: the offset given to the dictionary is that of
/// `Chars`, and one word before it stands the length.
struct THtVirtualString {
    std::int32_t Length;
    const char16_t* Chars;
};

namespace detail {

/// Names in records: a String, or characters and their length.
struct RecordNames {
    std::ptrdiff_t Offset;
    bool Virtual;

    std::u16string_view NameOf(const void* value) const noexcept
    {
        const char* const field = static_cast<const char*>(value) + Offset;
        if (!Virtual)
            return reinterpret_cast<const String*>(field)->View();
        const auto* length = reinterpret_cast<const std::int32_t*>(field - sizeof(void*));
        return ViewOf(*reinterpret_cast<const char16_t* const*>(field), *length);
    }
};

using NamedPointers = NamedDictionary<THtIdPointerDictionary, RecordNames>;

}

/// Pointers to records by a name that each record holds in a String field.
class HT_API THtPointerDictionary : public detail::NamedPointers {
public:
    /// `nameOffset` tells where the name stands in a record; ShaPerfectHashAsm without a `hashFunc`.
    THtPointerDictionary(
        std::int32_t capacity, std::int32_t nameOffset, THtStringHashFunc hashFunc = nullptr);
    ~THtPointerDictionary() override;

    /// Adds under the name that the record holds; returns the slot. Throws EAssertionFailed for null.
    std::int32_t AddPointer(void* value) { return AddNamed(value); }

protected:
    THtPointerDictionary(std::int32_t capacity, detail::RecordNames names, THtStringHashFunc hashFunc);
};

/// Pointers to records whose names are characters that somebody else keeps, see THtVirtualString.
class HT_API THtVirtualStringDictionary : public THtPointerDictionary {
public:
    THtVirtualStringDictionary(
        std::int32_t capacity, std::int32_t nameOffset, THtStringHashFunc hashFunc = nullptr);
    ~THtVirtualStringDictionary() override;

    /// The slot of a hit, or the complement of the slot where the entry would go.
    std::int32_t FindHashedVirtual(std::uint32_t hash, const char16_t* src, std::int32_t length) const
    {
        return FindHashed(hash, src, length);
    }
    /// Adds or replaces where the search made just before has ended (`findResult`); searches again only if
    /// the table had to grow. Throws ERangeError for a result that is no place in this table.
    std::int32_t AddHashedVirtual(
        std::uint32_t hash, std::int32_t findResult, void* value, std::int32_t length, const char16_t* src);
};

using THtVirtualHashFunc = std::uint32_t (*)(const void* item);
using THtVirtualCompareFunc = bool (*)(const void* a, const void* b);

/// Items that are compared and hashed by callbacks. Equal hashes are walked, however many there are.
class HT_API THtVirtualDictionary : public THtIdPointerDictionary {
public:
    THtVirtualDictionary(THtVirtualHashFunc hashFunc, THtVirtualCompareFunc compareFunc);
    ~THtVirtualDictionary() override;

    /// Adds, or replaces an equal item; returns the slot.
    std::int32_t Add(void* item);
    /// The item that equals `item`, or null.
    void* Find(const void* item) const { return ValueOrNull(FindHashed(FHashFunc(item), item)); }
    /// The slot of a hit, or the complement of the slot where the entry would go.
    std::int32_t FindHashed(std::uint32_t hash, const void* item) const;

private:
    THtVirtualHashFunc FHashFunc;
    THtVirtualCompareFunc FCompareFunc;
};

/// Offsets into a block of bytes by the byte string at that offset; the byte before it is its length.
class HT_API THtUTF8Dictionary : public THtIdPointerDictionary {
public:
    using TraverseProc = std::function<void(TObject* context, std::uint32_t offset)>;

    /// Lifetime: `base` outlives the dictionary.
    THtUTF8Dictionary(std::int32_t capacity, const void* base);
    ~THtUTF8Dictionary() override;

    /// False and 0 for an absent name.
    bool Find(std::string_view name, std::uint32_t& offset) const;
    bool Find(const char* src, std::int32_t length, std::uint32_t& offset) const;
    /// The slot of a hit, or the complement of the slot where the entry would go.
    std::int32_t FindHashed(std::uint32_t hash, const char* src, std::int32_t length) const;
    /// The offset of a name; 0 for an absent one.
    std::uint32_t Get(std::string_view name) const;
    std::uint32_t GetHashed(std::uint32_t hash, std::string_view name) const;
    std::uint32_t OffsetAt(std::int32_t slot) const;

    /// Adds the name at `offset`, or replaces the offset of an equal name; returns the slot.
    std::int32_t Add(std::uint32_t offset);
    std::int32_t AddHashed(std::uint32_t hash, std::string_view name, std::uint32_t offset);
    /// Adds behind all entries of the same hash without looking for an equal name.
    std::int32_t AddUnique(std::uint32_t offset);
    /// Adds or replaces where the search made just before has ended (`findResult`). Throws ERangeError for a
    /// result that is no place in this table.
    std::int32_t AddWithIndex(std::int32_t findResult, std::uint32_t hash, std::uint32_t offset);
    void Put(std::string_view name, std::uint32_t offset);
    void PutHashed(std::uint32_t hash, std::string_view name, std::uint32_t offset);

    /// Calls `proc` for every offset in slot order.
    void Traverse(TObject* context, const TraverseProc& proc) const;

private:
    struct Match;

    std::string_view NameAt(std::uint32_t offset) const noexcept;
    Match MatchOf(std::string_view name) const noexcept;

    const char* FBase;
};

}
