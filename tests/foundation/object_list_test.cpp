// Who frees what: lists of objects that own, and lists that do not.
// SPDX-License-Identifier: MIT
#include "foundation/counted.h"

#include <hearth/foundation/object_list.h>

#include <gtest/gtest.h>

#include <memory>

namespace ht {
namespace {

TEST(object_list, frees_what_leaves_it_if_it_owns)
{
    {
        THtObjectList list(true);
        for (int i = 0; i < 6; ++i)
            list.Add(new Counted);
        list.Delete(0);
        list.SetItems(0, nullptr);
        const std::unique_ptr<TObject> extracted(list.Extract(list.Last()));
        EXPECT_EQ(Counted::Alive, 4);
        list.Remove(list.Last());
        EXPECT_EQ(Counted::Alive, 3);
        list.SetCount(2);
        EXPECT_EQ(Counted::Alive, 2);
        list.Clear();
        EXPECT_EQ(Counted::Alive, 1);
        list.Add(new Counted);
    }
    EXPECT_EQ(Counted::Alive, 0);
    const auto kept = std::make_unique<Counted>();
    THtObjectList other(false);
    other.Add(kept.get());
    THtPointerList pointers;
    pointers.Add(kept.get());
    pointers.Clear();
    other.Clear();
    EXPECT_EQ(Counted::Alive, 1);
}

}
}
