// What a program may know about a class at run time: its name and its parent.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>

namespace ht {

/// One constexpr object a class; classes are the same when their infos are the same object.
struct TClassInfo {
    const char16_t* Name;
    const TClassInfo* Parent;

    /// True for `ancestor` itself and everything derived from it.
    constexpr bool InheritsFrom(const TClassInfo& ancestor) const noexcept
    {
        const TClassInfo* info = this;
        while (info && info != &ancestor)
            info = info->Parent;
        return info != nullptr;
    }
};

}
