// Searching and freeing of the fast string list.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/fast_string_list.h>

namespace ht {

TFastStringList::~TFastStringList()
{
    if (OwnsObjects)
        FreeListObjects();
}

bool TFastStringList::FindPChar(const char16_t* p, std::int32_t length, std::int32_t& index) const
{
    if (length < 1)
        return false;
    const std::u16string_view wanted(p, static_cast<std::size_t>(length));
    const TStringItem* const items = ItemData();
    std::int32_t low = 0;
    std::int32_t high = Count() - 1;
    while (low <= high) {
        const std::int32_t middle = low + (high - low) / 2;
        const std::u16string_view entry = items[middle].FString.View();
        // Most steps are decided by the first unit.
        const bool sameStart = !entry.empty() && entry[0] == wanted[0];
        const int order = sameStart ? entry.compare(wanted) : entry.empty() || entry[0] < wanted[0] ? -1 : 1;
        if (order == 0) {
            index = middle;
            return true;
        }
        if (order < 0)
            low = middle + 1;
        else
            high = middle - 1;
    }
    return false;
}

void TFastStringList::FreeListObjects()
{
    for (std::int32_t i = 0; i < Count(); ++i) {
        TObject* const object = Objects(i);
        SetObjects(i, nullptr);
        delete object;
    }
    Clear();
}

}
