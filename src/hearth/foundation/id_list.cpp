// Lists of integer ids.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/id_list.h>

#include <hearth/runtime/checked.h>
#include <hearth/runtime/stable_sort.h>

#include <algorithm>
#include <bit>
#include <utility>

namespace ht {

namespace {

bool Before(const TIDItem& a, const TIDItem& b) noexcept
{
    return a.FID < b.FID;
}

/// Quicksort by the middle entry, which makes the order of equal ids. `budget` bounds its depth: ids that
/// were arranged to split badly, over and over, end in a sort that cannot be slowed down and has its own
/// order.
void SortById(TIDItem* first, TIDItem* last, int budget)
{
    while (last - first > 1) {
        if (--budget < 0) {
            std::make_heap(first, last, Before);
            std::sort_heap(first, last, Before);
            return;
        }
        const std::int32_t middle = first[(last - 1 - first) / 2].FID;
        TIDItem* left = first;
        TIDItem* right = last - 1;
        while (left <= right) {
            while (left->FID < middle)
                ++left;
            while (right->FID > middle)
                --right;
            if (left <= right)
                std::swap(*left++, *right--);
        }
        // The smaller part by a call, so that calls nest no deeper than the logarithm.
        if (right - first < last - left) {
            SortById(first, right + 1, budget);
            first = left;
        } else {
            SortById(left, last, budget);
            last = right + 1;
        }
    }
}

/// First entry of `items` whose id, as a number of the type asked for, is not below `id`.
template <class Id> bool Search(const TIDItem* items, std::int32_t count, Id id, std::int32_t& index) noexcept
{
    bool found = false;
    std::int32_t low = 0;
    std::int32_t high = count - 1;
    while (low <= high) {
        const std::int32_t middle = low + (high - low) / 2;
        const auto seen = static_cast<Id>(items[middle].FID);
        found = found || seen == id;
        if (seen < id)
            low = middle + 1;
        else
            high = middle - 1;
    }
    index = low;
    return found;
}

}

TIDList::TIDList(std::int32_t capacity)
{
    StoreCapacity(capacity);
}

TIDList::~TIDList() = default;

void TIDList::RaiseIndex()
{
    throw EListError(u"SListIndexError"_s);
}

void TIDList::RequireUnsorted() const
{
    if (FSorted)
        throw EListError(u"SSortedListError"_s);
}

void* TIDList::GetObject(std::int32_t index) const
{
    return Item(index).FObject;
}

void TIDList::Put(std::int32_t index, std::int32_t id)
{
    RequireUnsorted();
    Item(index).FID = id;
}

void TIDList::PutObject(std::int32_t index, void* object)
{
    Item(index).FObject = object;
}

void TIDList::SetCapacity(std::int32_t capacity)
{
    StoreCapacity(capacity);
}

void TIDList::StoreCapacity(std::int32_t capacity)
{
    if (capacity < Count() || capacity > kMaxIndex + 1)
        RaiseRangeError();
    if (capacity >= Capacity()) {
        FItems.reserve(static_cast<std::size_t>(capacity));
        return;
    }
    detail::Items<TIDItem> smaller;
    smaller.reserve(static_cast<std::size_t>(capacity));
    smaller.assign(FItems.begin(), FItems.end());
    FItems.swap(smaller);
}

void TIDList::Grow()
{
    const std::int32_t capacity = Capacity();
    const std::int32_t step = capacity > 64 ? capacity / 4 : capacity > 8 ? 16 : 4;
    SetCapacity(std::max(std::min(capacity + step, kMaxIndex + 1), Count() + 1));
}

std::int32_t TIDList::Add(std::int32_t id)
{
    const std::int32_t index = PlaceOf(id);
    InsertItem(index, id);
    return index;
}

std::int32_t TIDList::PlaceOf(std::int32_t id) const
{
    if (!FSorted || FItems.empty())
        return Count();
    if (id < FItems.front().FID)
        return 0;
    if (id > FItems.back().FID)
        return Count();
    std::int32_t index = 0;
    if (!Find(id, index))
        return index;
    if (FDuplicates == dupError)
        throw EListError(u"SDuplicateString"_s);
    // Behind the equal ones, of which there may be very many.
    const auto first = FItems.begin() + static_cast<std::ptrdiff_t>(Checked(index));
    const auto place = std::upper_bound(first, FItems.end(), TIDItem{id, 0, nullptr}, Before);
    return static_cast<std::int32_t>(place - FItems.begin());
}

TIDItem& TIDList::InsertItem(std::int32_t index, std::int32_t id)
{
    if (index != Count())
        Checked(index);
    if (FItems.size() == FItems.capacity())
        Grow();
    return *FItems.insert(FItems.begin() + index, TIDItem{id, 0, nullptr});
}

void TIDList::Clear()
{
    detail::Items<TIDItem>().swap(FItems);
}

void TIDList::Delete(std::int32_t index)
{
    FItems.erase(FItems.begin() + static_cast<std::ptrdiff_t>(Checked(index)));
}

void TIDList::Exchange(std::int32_t index1, std::int32_t index2)
{
    std::swap(Item(index1), Item(index2));
}

bool TIDList::Find(std::int32_t id, std::int32_t& index) const
{
    return Search(Items(), Count(), id, index);
}

bool TIDList::FindCardinal(std::uint32_t id, std::int32_t& index) const
{
    return Search(Items(), Count(), id, index);
}

std::int32_t TIDList::IndexOf(std::int32_t id) const
{
    if (FSorted) {
        std::int32_t index = 0;
        return Find(id, index) ? index : -1;
    }
    const auto found =
        std::find_if(FItems.begin(), FItems.end(), [id](const TIDItem& item) { return item.FID == id; });
    return found == FItems.end() ? -1 : static_cast<std::int32_t>(found - FItems.begin());
}

void TIDList::Insert(std::int32_t index, std::int32_t id)
{
    RequireUnsorted();
    InsertItem(index, id);
}

void TIDList::Sort()
{
    // Random ids were never seen to go three times as deep as even splits would, and short lists may split as
    // badly as they can.
    constexpr int kShort = 64;
    const auto levels = static_cast<int>(std::bit_width(FItems.size()));
    SortById(FItems.data(), FItems.data() + FItems.size(), std::max(kShort, 4 * levels));
}

std::int32_t TIDList::AddObject(std::int32_t id, void* object)
{
    const std::int32_t index = Add(id);
    PutObject(index, object);
    return index;
}

void TIDList::InsertObject(std::int32_t index, std::int32_t id, void* object)
{
    Insert(index, id);
    PutObject(index, object);
}

std::int32_t TIDList::IndexOfObject(const void* object) const noexcept
{
    const auto found = std::find_if(
        FItems.begin(), FItems.end(), [object](const TIDItem& item) { return item.FObject == object; });
    return found == FItems.end() ? -1 : static_cast<std::int32_t>(found - FItems.begin());
}

void TIDList::CustomSort(const TIDListSortCompare& compare)
{
    RequireUnsorted();
    const detail::Items<TIDItem> before = FItems;
    const detail::Items<TIDItem> sorted = StableSorted(before, compare);
    // A comparison that changed the list has sorted something else.
    if (!FSorted && FItems == before)
        std::copy(sorted.begin(), sorted.end(), FItems.begin());
}

void TIDList::FreeObjects()
{
    // By index: a destructor may change the list.
    for (std::int32_t i = 0; i < Count(); ++i)
        delete static_cast<TObject*>(std::exchange(Item(i).FObject, nullptr));
}

void TIDList::SetSorted(bool value)
{
    if (value && !FSorted)
        Sort();
    FSorted = value;
}

}
