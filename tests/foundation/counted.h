// Objects that tell how many of them live.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/object.h>

namespace ht {

struct Counted : TObject {
    Counted() { ++Alive; }
    ~Counted() override { --Alive; }

    static inline int Alive = 0;
};

}
