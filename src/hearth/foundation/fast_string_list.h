// The string list that is searched without making a string.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/strings.h>

namespace ht {

/// A string list for words that a tokenizer looks up by pointer and length.
class HT_API TFastStringList : public TStringList {
public:
    static constexpr TClassInfo kClassInfo{u"TFastStringList", &TStringList::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    TFastStringList() = default;
    ~TFastStringList() override;

    /// Searches a list whose texts stand in the order of their units and are not empty. Sets `index` on a
    /// hit; a miss leaves it as it is.
    bool FindPChar(const char16_t* p, std::int32_t length, std::int32_t& index) const;
    /// Frees the attached objects and empties the list.
    void FreeListObjects();

    /// The destructor frees the attached objects. Hides the property of the base, whose ownership also frees
    /// what Delete and Clear drop; where both are set, each object is freed once.
    bool OwnsObjects = false;
};

}
