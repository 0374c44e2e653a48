// Lists of integer ids, each with a pointer and a tag.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/object.h>
#include <hearth/runtime/storage.h>
#include <hearth/runtime/strings.h>

#include <cstdint>
#include <functional>

namespace ht {

/// One entry of an id list.
struct TIDItem {
    std::int32_t FID = 0;
    std::uint32_t FTag = 0; // in front of the pointer, so that an entry takes 16 bytes and not 24
    void* FObject = nullptr;

    friend bool operator==(const TIDItem&, const TIDItem&) = default;
};

using PIDItemList = TIDItem*;

/// Negative, 0 or positive.
using TIDListSortCompare = std::function<int(const TIDItem& a, const TIDItem& b)>;

/// Ids in the order of adding or, when sorted, ascending; equal ids then stand in the order of adding. The
/// pointers are not owned. Operations that take an index throw EListError "SListIndexError" outside the list;
/// what would make the list longer than kMaxIndex + 1 throws ERangeError.
class HT_API TIDList : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TIDList", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    static constexpr std::int32_t kMaxIndex = 10'000'000;

    explicit TIDList(std::int32_t capacity = 0);
    TIDList(const TIDList&) = delete;
    TIDList& operator=(const TIDList&) = delete;
    ~TIDList() override;

    // What descendants may override comes first, in its fixed order.

    virtual void* GetObject(std::int32_t index) const;
    /// Throws EListError "SSortedListError" on a sorted list.
    virtual void Put(std::int32_t index, std::int32_t id);
    virtual void PutObject(std::int32_t index, void* object);
    /// Throws ERangeError below the count and above kMaxIndex + 1.
    virtual void SetCapacity(std::int32_t capacity);
    /// Adds an entry with a null pointer and returns its index: at the end, or where the order of a sorted
    /// list wants it, behind all equal ids. Throws EListError "SDuplicateString" for an id that a sorted list
    /// has already, where duplicates are an error; dupIgnore adds like dupAccept.
    virtual std::int32_t Add(std::int32_t id);
    virtual void Clear();
    virtual void Delete(std::int32_t index);
    virtual void Exchange(std::int32_t index1, std::int32_t index2);
    /// Search a sorted list: the first of equal ids, or the place where the id belongs. FindCardinal is for
    /// lists that are ordered without regard to sign.
    virtual bool Find(std::int32_t id, std::int32_t& index) const;
    virtual bool FindCardinal(std::uint32_t id, std::int32_t& index) const;
    /// Index of the first entry with this id, -1 when there is none.
    virtual std::int32_t IndexOf(std::int32_t id) const;
    /// Throws EListError "SSortedListError" on a sorted list.
    virtual void Insert(std::int32_t index, std::int32_t id);
    /// Sorts by id in place: a quicksort by the middle entry, which is not stable. Ids that are arranged
    /// against it cost no more than N log N; the order of equal ids is then any.
    virtual void Sort();

    std::int32_t Count() const noexcept { return static_cast<std::int32_t>(FItems.size()); }
    std::int32_t Capacity() const noexcept { return static_cast<std::int32_t>(FItems.capacity()); }
    std::int32_t Get(std::int32_t index) const { return FItems[Checked(index)].FID; }
    std::int32_t operator[](std::int32_t index) const { return Get(index); }
    /// Like Add and Insert, with a pointer.
    std::int32_t AddObject(std::int32_t id, void* object);
    void InsertObject(std::int32_t index, std::int32_t id, void* object);
    /// Index of the first entry with this pointer, -1 when there is none.
    std::int32_t IndexOfObject(const void* object) const noexcept;
    /// Sorts stably; any comparison is safe. One that throws, or changes the list, leaves the order alone.
    /// Throws EListError "SSortedListError" on a sorted list.
    void CustomSort(const TIDListSortCompare& compare);
    /// Deletes the objects of all entries. Their pointers must have been put in as TObject*, each at one id
    /// only.
    void FreeObjects();

    bool Sorted() const noexcept { return FSorted; }
    /// Sorts at once; false leaves the order.
    void SetSorted(bool value);
    TDuplicates Duplicates() const noexcept { return FDuplicates; }
    void SetDuplicates(TDuplicates value) noexcept { FDuplicates = value; }

    std::int32_t Tag = 0; // for the user

protected:
    /// The entries side by side. Lifetime: until the list changes.
    const TIDItem* Items() const noexcept { return FItems.data(); }
    PIDItemList Items() noexcept { return FItems.data(); }
    TIDItem& Item(std::int32_t index) { return FItems[Checked(index)]; }
    const TIDItem& Item(std::int32_t index) const { return FItems[Checked(index)]; }
    /// Puts an entry in front of `index`, which may be the count, whatever the order. Lifetime: until the
    /// list changes.
    TIDItem& InsertItem(std::int32_t index, std::int32_t id);
    /// Appends an entry, whatever the order.
    void AppendItem(const TIDItem& item)
    {
        if (FItems.size() == FItems.capacity()) [[unlikely]]
            Grow();
        FItems.push_back(item);
    }
    /// Drops all entries and keeps their memory.
    void DropItems() noexcept { FItems.clear(); }

private:
    std::size_t Checked(std::int32_t index) const
    {
        if (static_cast<std::uint32_t>(index) >= static_cast<std::uint32_t>(Count())) [[unlikely]]
            RaiseIndex();
        return static_cast<std::size_t>(index);
    }
    [[noreturn]] static void RaiseIndex();
    void RequireUnsorted() const;
    std::int32_t PlaceOf(std::int32_t id) const;
    void Grow();
    void StoreCapacity(std::int32_t capacity);

    detail::Items<TIDItem> FItems;
    bool FSorted = false;
    TDuplicates FDuplicates = dupIgnore;
};

}
