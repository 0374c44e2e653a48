// A tree of tables that finds objects by text, unit by unit.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/object.h>

#include <cstdint>
#include <string_view>

namespace ht {

/// One place of a trie: the object of the key that ends here, and the places below.
class HT_API THtStringTrieItem : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtStringTrieItem", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// One pointer for each value of a byte.
    struct Table {
        THtStringTrieItem* Places[256]{};

        static void* operator new(std::size_t size) { return memory::Allocate(size); }
        static void operator delete(void* block) noexcept { memory::Free(block); }
    };

    THtStringTrieItem() = default;
    THtStringTrieItem(const THtStringTrieItem&) = delete;
    THtStringTrieItem& operator=(const THtStringTrieItem&) = delete;
    /// Frees all places below, and the values that are owned there and here.
    ~THtStringTrieItem() override;

    /// The place below at `byte`, made when it is missing.
    THtStringTrieItem& MakePlace(std::uint8_t byte);
    /// Null when it is missing.
    THtStringTrieItem* Place(std::uint8_t byte) const noexcept
    {
        return Items ? Items->Places[byte] : nullptr;
    }
    /// Replaces the value; an owned one is freed unless it is the same.
    void SetValue(TObject* value, bool ownsValue);

    bool OwnsObjects = false; // of the value
    TObject* Value = nullptr;
    Table* Items = nullptr;
};

/// Objects by text. Each unit of a key is two steps down, by its high and by its low byte, through tables of
/// 256 pointers: quick to walk, and large, as every unit that no other key shares takes two tables.
class HT_API THtStringTrie : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtStringTrie", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// With AOwnsObjects the trie frees its objects when they are replaced, and with itself.
    explicit THtStringTrie(bool AOwnsObjects)
        : FOwnsObjects(AOwnsObjects)
    {
    }
    ~THtStringTrie() override;

    /// Sets the object of a key; null takes it away. An object is owned from the return on.
    void Add(std::u16string_view key, TObject* value);
    /// False and null for a key without an object, and always for the empty one, which Add takes though.
    bool Find(std::u16string_view key, TObject*& value) const;
    bool ContainsKey(std::u16string_view key) const;
    /// Find by `length` units; a length below 1 is an empty key.
    bool FindPChar(const char16_t* p, std::int32_t length, TObject*& value) const;

    /// Takes over the keys of another trie, and its objects without owning them: they stay the source's.
    /// Objects of this trie go first. Throws EOutOfMemory and changes nothing then.
    void Assign(const THtStringTrie& source);

private:
    THtStringTrieItem FRoot;
    bool FOwnsObjects;
};

}
