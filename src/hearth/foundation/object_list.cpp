// Lists of objects and pointers.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/object_list.h>

namespace ht {

THtObjectList::THtObjectList(bool AOwnsObjects)
    : FOwnsObjects(AOwnsObjects)
{
}

THtObjectList::~THtObjectList()
{
    Clear();
}

void THtObjectList::Notify(void* item, TListNotification action)
{
    if (action == lnDeleted && FOwnsObjects)
        delete static_cast<TObject*>(item);
}

THtPointerList::~THtPointerList() = default;

}
