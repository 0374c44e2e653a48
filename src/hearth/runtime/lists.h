// Lists of pointers.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/object.h>
#include <hearth/runtime/storage.h>

#include <cstdint>
#include <functional>

namespace ht {

/// What a list tells its descendants about an item.
enum TListNotification : std::uint8_t { lnAdded, lnExtracted, lnDeleted };

/// An array of pointers that grows. It owns nothing; a descendant may, through Notify. Indexes outside it
/// throw EListError.
class HT_API TList : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TList", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    static constexpr std::int32_t kMaxListSize = INT32_MAX / 16;

    using TCompare = std::function<int(void*, void*)>;

    TList() = default;
    /// A descendant that overrides Notify and wants to hear of the items that are left calls Clear in its
    /// own destructor.
    ~TList() override;

    std::int32_t Count() const noexcept { return static_cast<std::int32_t>(FItems.size()); }
    /// Cuts, or adds null pointers. Throws EListError for a count that no list can have.
    void SetCount(std::int32_t count);
    std::int32_t Capacity() const noexcept { return static_cast<std::int32_t>(FItems.capacity()); }
    /// Throws EListError below the count.
    void SetCapacity(std::int32_t capacity);

    void* Items(std::int32_t index) const { return FItems[Checked(index)]; }
    void* operator[](std::int32_t index) const { return Items(index); }
    void SetItems(std::int32_t index, void* item);
    void* First() const { return Items(0); }
    void* Last() const { return Items(Count() - 1); }
    /// Lifetime: until the list changes.
    void* const* begin() const noexcept { return FItems.data(); }
    void* const* end() const noexcept { return FItems.data() + FItems.size(); }

    /// Appends and returns the index.
    std::int32_t Add(void* item);
    void Insert(std::int32_t index, void* item);
    void Delete(std::int32_t index);
    /// Deletes the first place of `item` and returns its index, -1 when it is not there.
    std::int32_t Remove(void* item);
    /// Takes `item` out without a deletion and returns it, null when it is not there.
    void* Extract(void* item);
    virtual void Clear();
    void Exchange(std::int32_t index1, std::int32_t index2);
    void Move(std::int32_t from, std::int32_t to);
    /// Drops the null pointers.
    void Pack();
    /// Index of the first place of `item`, -1 when it is not there.
    std::int32_t IndexOf(const void* item) const noexcept;
    /// Sorts stably; any comparison is safe. One that throws, or changes the list, leaves the order alone.
    void Sort(const TCompare& compare);
    /// Takes over the items of another list.
    void Assign(const TList& source);

protected:
    /// Called after an item that is not null came or went.
    virtual void Notify(void* item, TListNotification action);

private:
    std::size_t Checked(std::int32_t index) const
    {
        if (static_cast<std::uint32_t>(index) >= static_cast<std::uint32_t>(Count())) [[unlikely]]
            RaiseIndex(index);
        return static_cast<std::size_t>(index);
    }
    [[noreturn]] static void RaiseIndex(std::int32_t index);
    void RequireRoom() const;

    detail::Items<void*> FItems;
};

}
