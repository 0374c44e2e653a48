// What applies to an element, weakest first.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/id_list.h>
#include <hearth/styling/css/css_value.h>

namespace ht {

/// Weights of the style attribute and of "!important" have these bits.
inline constexpr std::uint32_t kImportantWeight = 0xFF000000;

/// Values by weight, without sign, and by order within a weight: to be applied front to back. FID is the
/// weight, FTag the order. The values are not owned.
class HT_API TCSSWeightList : public TIDList {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSWeightList", &TIDList::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    using TIDList::TIDList;

    /// Puts a value behind those of its weight and order; one that is there with this weight already is not
    /// added again.
    void AddValue(std::uint32_t Weight, std::uint32_t Order, PCSSValue Value);
    PCSSValue GetValue(std::int32_t Index) const { return static_cast<PCSSValue>(GetObject(Index)); }
};

}
