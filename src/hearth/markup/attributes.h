// The attributes of a node, sorted by name.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/object.h>
#include <hearth/runtime/text.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>

namespace ht {

class TFastRawString;
class TFastString;

struct THtAttribute {
    String Name;
    String Value;
};

/// Names and values, sorted by name. Unless CaseSensitive, names are stored with A to Z folded (those with a
/// "{" are not: they hold placeholders of templates) and found whatever their case. Indexes count from 0; one
/// outside the store raises ERangeError.
///
/// attributes.cpp keeps the order, attributes_write.cpp prints.
class HT_API THtAttributes : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtAttributes", &TObject::kClassInfo};

    explicit THtAttributes(bool caseSensitive = false) noexcept;
    ~THtAttributes() override;
    THtAttributes(const THtAttributes&) = delete;
    THtAttributes& operator=(const THtAttributes&) = delete;

    /// A new store with the entries of `source`, which is empty afterwards and keeps its memory. Both stand
    /// in one block.
    static std::unique_ptr<THtAttributes> TakeFrom(THtAttributes& source);
    /// A new store with the entries that `entryAt` gives for the indexes from 0 on: in name order, no two
    /// with one name. It does not throw. Both stand in one block.
    template <std::invocable<std::size_t> EntryAt>
    static std::unique_ptr<THtAttributes> OfSorted(std::size_t count, bool caseSensitive, EntryAt entryAt)
    {
        std::unique_ptr<THtAttributes> made = NewInOneBlock(count, caseSensitive);
        for (std::size_t i = 0; i < count; ++i)
            new (made->FList + i) THtAttribute(entryAt(i));
        made->FCount = made->FCapacity = made->FSortedCount = static_cast<std::int32_t>(count);
        return made;
    }

    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    std::int32_t Count() const noexcept { return FCount; }
    /// All entries in name order. Lifetime: until the next change.
    std::span<const THtAttribute> List() const { return {begin(), end()}; }
    const THtAttribute* begin() const { return Sorted(); }
    const THtAttribute* end() const { return Sorted() + FCount; }

    /// True and the place of the name, or false and the place where it would stand.
    bool Find(std::u16string_view AttrName, std::int32_t& Index) const;
    /// Place of the name, -1 if it is not here.
    std::int32_t Indexof(std::u16string_view AttrName) const;
    bool Contains(std::u16string_view AttrName) const { return Lookup(AttrName) != nullptr; }
    /// The value, empty if the name is not here.
    const String& GetAttribute(std::u16string_view AttrName) const;
    const THtAttribute& GetItem(std::int32_t Index) const;
    const String& GetName(std::int32_t Index) const { return GetItem(Index).Name; }
    const String& GetValue(std::int32_t Index) const { return GetItem(Index).Value; }
    void SetValue(std::int32_t Index, const String& Value);

    /// Inserts without looking for an entry of that name.
    void Add(const String& AttrName, const String& AttrValue);
    /// The form in which a name is stored.
    String StoredName(const String& name) const;
    /// Inserts a name in the form in which it is stored, unless an entry of that name is here.
    void AddNew(const String& AttrName, String AttrValue)
    {
        // Most elements have one attribute.
        if (FCount > 0 || FCapacity == 0)
            return AddNewAnywhere(AttrName, std::move(AttrValue));
        FList[0].Name = AttrName;
        FList[0].Value = std::move(AttrValue);
        FCount = FSortedCount = 1;
    }
    /// Replaces the value of a name, or inserts.
    void SetAttribute(const String& Name, const String& Value) { SetAttributeEx(Name, Value); }
    /// The same; true if something changed.
    bool SetAttributeEx(const String& Name, const String& Value);
    /// Removes one entry of that name, if there is one.
    void ClearAttr(std::u16string_view Name);
    /// Empties the store and keeps its memory for the next use.
    void Clear() noexcept;

    /// name="value" joined by blanks; a bare attribute is written with its value.
    String AsString() const;
    /// A blank and name="value" for each; a bare attribute is written as its value alone unless
    /// CaseSensitive.
    void FastAsString(TFastString& FS) const;
    void FastAsUTF8String(TFastRawString& FS) const;

    /// Set before the first entry comes.
    bool CaseSensitive;

private:
    class TNameIndex;

    static std::unique_ptr<THtAttributes> NewInOneBlock(std::size_t count, bool caseSensitive);
    const THtAttribute* Sorted() const;
    THtAttribute* Lookup(std::u16string_view name) const;
    int Compare(std::u16string_view a, std::u16string_view b) const;
    void AddNewAnywhere(const String& AttrName, String&& AttrValue);
    bool FindSorted(std::u16string_view name, std::int32_t& index) const;
    // By value: what comes in may stand in an entry that moves.
    void InsertSorted(std::int32_t index, String name, String value);
    void InsertAt(std::int32_t index, String name, String value);
    void Append(String name, String value);
    void EnsureCapacity()
    {
        if (FCount == FCapacity)
            Grow();
    }
    void Grow();
    void ReleaseList() noexcept;
    void SortTail() const;
    std::int32_t Checked(std::int32_t index) const;

    bool FInOwnBlock = false; // the list stands in the block of the store, see TakeFrom
    std::int32_t FCount = 0;
    std::int32_t FCapacity = 0;
    mutable std::int32_t FSortedCount = 0; // entries behind these wait to be sorted in
    THtAttribute* FList = nullptr;
    mutable std::unique_ptr<TNameIndex> FIndex; // finds names while entries wait
};

}
