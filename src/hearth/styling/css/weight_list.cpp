// What applies to an element, weakest first.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/weight_list.h>

#include <hearth/foundation/hash_table.h>

#include <algorithm>

namespace ht {

namespace {

/// So many values of one weight are looked through one by one.
constexpr std::int32_t kShortRun = 64;

std::uint32_t WeightOf(const TIDItem& item) noexcept
{
    return static_cast<std::uint32_t>(item.FID);
}

}

/// Values by weight and address.
class TCSSWeightList::TIndex {
public:
    explicit TIndex(std::int32_t capacity)
        : FTable(capacity)
    {
    }

    bool Contains(std::uint32_t weight, PCSSValue value) const
    {
        return FTable.Find(KeyOf(weight, value), Same(value)) >= 0;
    }
    void Add(std::uint32_t weight, PCSSValue value)
    {
        FTable.Store(KeyOf(weight, value), Same(value), value);
    }

private:
    struct Match {
        PCSSValue Value;

        bool Same(PCSSValue other) const noexcept { return other == Value; }
    };
    static Match Same(PCSSValue value) noexcept { return {value}; }

    /// The keys of one value differ as its weights do, so an equal key and an equal value are an equal
    /// weight.
    static std::uint32_t KeyOf(std::uint32_t weight, PCSSValue value) noexcept
    {
        constexpr std::uint64_t kMix = 0x9E3779B97F4A7C15;
        return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(value) * kMix >> 32U) + weight;
    }

    detail::HashTable<PCSSValue> FTable;
};

TCSSWeightList::TCSSWeightList(std::int32_t capacity)
    : TIDList(capacity)
{
}

TCSSWeightList::~TCSSWeightList() = default;

void TCSSWeightList::AddValue(std::uint32_t Weight, std::uint32_t Order, PCSSValue Value)
{
    if (!Holds(Weight, Value))
        AddNewValue(Weight, Order, Value);
}

bool TCSSWeightList::Holds(std::uint32_t weight, PCSSValue value)
{
    const TIDItem* const items = Items();
    const std::int32_t count = Count();
    if (count == 0 || WeightOf(items[count - 1]) < weight || weight < WeightOf(items[0]))
        return false;
    if (FIndex)
        return FIndex->Contains(weight, value);
    std::int32_t first = 0;
    if (!FindCardinal(weight, first))
        return false;
    std::int32_t at = first;
    for (; at < count && WeightOf(items[at]) == weight; ++at) {
        if (items[at].FObject == value)
            return true;
    }
    if (at - first >= kShortRun)
        MakeIndex();
    return false;
}

void TCSSWeightList::Place(std::uint32_t weight, std::uint32_t order, PCSSValue value)
{
    const TIDItem* const items = Items();
    const TIDItem* const behind = std::upper_bound(items, items + Count(), order,
        [weight](std::uint32_t wanted, const TIDItem& item) { return IsBefore(weight, wanted, item); });
    TIDItem& item = InsertItem(static_cast<std::int32_t>(behind - items), static_cast<std::int32_t>(weight));
    item.FTag = order;
    item.FObject = const_cast<TCSSValue*>(value);
    if (FIndex)
        FIndex->Add(weight, value);
}

void TCSSWeightList::MakeIndex()
{
    FIndex = std::make_unique<TIndex>(2 * Count());
    for (const TIDItem* item = Items(); item != Items() + Count(); ++item)
        FIndex->Add(WeightOf(*item), static_cast<PCSSValue>(item->FObject));
}

void TCSSWeightList::Clear()
{
    FIndex.reset();
    DropItems();
}

void TCSSWeightList::Put(std::int32_t index, std::int32_t id)
{
    FIndex.reset();
    TIDList::Put(index, id);
}

void TCSSWeightList::PutObject(std::int32_t index, void* object)
{
    FIndex.reset();
    TIDList::PutObject(index, object);
}

std::int32_t TCSSWeightList::Add(std::int32_t id)
{
    FIndex.reset();
    return TIDList::Add(id);
}

void TCSSWeightList::Delete(std::int32_t index)
{
    FIndex.reset();
    TIDList::Delete(index);
}

void TCSSWeightList::Insert(std::int32_t index, std::int32_t id)
{
    FIndex.reset();
    TIDList::Insert(index, id);
}

}
