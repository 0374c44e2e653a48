// Grouping the changes of string lists.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/strings.h>

namespace ht::detail {

/// Runs `work` as one group of changes, whatever happens in it. No guard object: the handler that is told at
/// the end may raise, and an exception must not leave a destructor.
template <class Work> void AsOneUpdate(TStrings& strings, Work work)
{
    strings.BeginUpdate();
    try {
        work();
    } catch (...) {
        strings.EndUpdate();
        throw;
    }
    strings.EndUpdate();
}

}
