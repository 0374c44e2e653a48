// Lists of pointers.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/lists.h>

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/stable_sort.h>
#include <hearth/runtime/text_format.h>

#include <algorithm>

namespace ht {

TList::~TList() = default;

void TList::RaiseIndex(std::int32_t index)
{
    throw EListError(Format(u"List index out of bounds (%d)", {index}));
}

void TList::RequireRoom() const
{
    if (Count() >= kMaxListSize)
        throw EListError(Format(u"List capacity out of bounds (%d)", {Count() + 1}));
}

void TList::SetCount(std::int32_t count)
{
    if (count < 0 || count > kMaxListSize)
        throw EListError(Format(u"List count out of bounds (%d)", {count}));
    while (Count() > count)
        Delete(Count() - 1);
    FItems.resize(static_cast<std::size_t>(count));
}

void TList::SetCapacity(std::int32_t capacity)
{
    if (capacity < Count() || capacity > kMaxListSize)
        throw EListError(Format(u"List capacity out of bounds (%d)", {capacity}));
    if (capacity >= Capacity()) {
        FItems.reserve(static_cast<std::size_t>(capacity));
        return;
    }
    detail::Items<void*> smaller;
    smaller.reserve(static_cast<std::size_t>(capacity));
    smaller.assign(FItems.begin(), FItems.end());
    FItems.swap(smaller);
}

void TList::SetItems(std::int32_t index, void* item)
{
    void*& place = FItems[Checked(index)];
    if (place == item)
        return;
    void* const old = std::exchange(place, item);
    if (old)
        Notify(old, lnDeleted);
    if (item)
        Notify(item, lnAdded);
}

std::int32_t TList::Add(void* item)
{
    RequireRoom();
    const std::int32_t index = Count();
    FItems.push_back(item);
    if (item)
        Notify(item, lnAdded);
    return index;
}

void TList::Insert(std::int32_t index, void* item)
{
    if (index != Count())
        Checked(index);
    RequireRoom();
    FItems.insert(FItems.begin() + index, item);
    if (item)
        Notify(item, lnAdded);
}

void TList::Delete(std::int32_t index)
{
    void* const old = FItems[Checked(index)];
    FItems.erase(FItems.begin() + index);
    if (old)
        Notify(old, lnDeleted);
}

std::int32_t TList::Remove(void* item)
{
    const std::int32_t index = IndexOf(item);
    if (index >= 0)
        Delete(index);
    return index;
}

void* TList::Extract(void* item)
{
    const std::int32_t index = IndexOf(item);
    if (index < 0)
        return nullptr;
    FItems.erase(FItems.begin() + index);
    if (item)
        Notify(item, lnExtracted);
    return item;
}

void TList::Clear()
{
    // Notify may look at the list: the items leave it first.
    const detail::Items<void*> old = std::exchange(FItems, {});
    for (void* item : old) {
        if (item)
            Notify(item, lnDeleted);
    }
}

void TList::Exchange(std::int32_t index1, std::int32_t index2)
{
    std::swap(FItems[Checked(index1)], FItems[Checked(index2)]);
}

void TList::Move(std::int32_t from, std::int32_t to)
{
    void* const item = FItems[Checked(from)];
    Checked(to);
    FItems.erase(FItems.begin() + from);
    FItems.insert(FItems.begin() + to, item);
}

void TList::Pack()
{
    std::erase(FItems, nullptr);
}

std::int32_t TList::IndexOf(const void* item) const noexcept
{
    const auto found = std::find(FItems.begin(), FItems.end(), item);
    return found == FItems.end() ? -1 : static_cast<std::int32_t>(found - FItems.begin());
}

void TList::Sort(const TCompare& compare)
{
    const detail::Items<void*> before = FItems;
    const detail::Items<void*> sorted = StableSorted(before, compare);
    // A comparison that changed the list has sorted something else, perhaps objects that are freed by now.
    if (FItems == before)
        std::copy(sorted.begin(), sorted.end(), FItems.begin());
}

void TList::Assign(const TList& source)
{
    if (&source == this)
        return;
    Clear();
    SetCapacity(source.Count());
    for (void* item : source)
        Add(item);
}

void TList::Notify(void*, TListNotification) { }

}
