// What applies to an element, weakest first.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/id_list.h>
#include <hearth/styling/css/css_value.h>

#include <memory>

namespace ht {

/// Weights of the style attribute and of "!important" have these bits.
inline constexpr std::uint32_t kImportantWeight = 0xFF000000;

/// Values by weight, without sign, and by order within a weight: to be applied front to back. FID is the
/// weight, FTag the order. The values are not owned.
class HT_API TCSSWeightList : public TIDList {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSWeightList", &TIDList::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    explicit TCSSWeightList(std::int32_t capacity = 0);
    ~TCSSWeightList() override;

    /// Puts a value behind those of its weight and order; one that is there with this weight already is not
    /// added again.
    void AddValue(std::uint32_t Weight, std::uint32_t Order, PCSSValue Value);
    /// The same for a value that is known not to be there with this weight.
    void AddNewValue(std::uint32_t Weight, std::uint32_t Order, PCSSValue Value)
    {
        if (!FIndex && (Count() == 0 || !IsBefore(Weight, Order, Items()[Count() - 1]))) [[likely]]
            AppendItem({static_cast<std::int32_t>(Weight), Order, const_cast<TCSSValue*>(Value)});
        else
            Place(Weight, Order, Value);
    }
    PCSSValue GetValue(std::int32_t Index) const { return static_cast<PCSSValue>(Item(Index).FObject); }
    std::uint32_t GetWeight(std::int32_t Index) const { return static_cast<std::uint32_t>(Item(Index).FID); }
    std::uint32_t GetOrder(std::int32_t Index) const { return Item(Index).FTag; }

    /// Keeps the memory, so that one list may serve element after element without asking for more.
    void Clear() override;

    // What changes the list behind its back.

    void Put(std::int32_t index, std::int32_t id) override;
    void PutObject(std::int32_t index, void* object) override;
    std::int32_t Add(std::int32_t id) override;
    void Delete(std::int32_t index) override;
    void Insert(std::int32_t index, std::int32_t id) override;

private:
    class TIndex;

    static bool IsBefore(std::uint32_t weight, std::uint32_t order, const TIDItem& item) noexcept
    {
        const auto itemWeight = static_cast<std::uint32_t>(item.FID);
        return weight != itemWeight ? weight < itemWeight : order < item.FTag;
    }
    bool Holds(std::uint32_t weight, PCSSValue value);
    void Place(std::uint32_t weight, std::uint32_t order, PCSSValue value);
    void MakeIndex();

    std::unique_ptr<TIndex> FIndex; // of a list with many values of one weight
};

}
