// What an exception says.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

namespace ht {

/// The message that `work` raises in an exception of the kind asked for; other kinds pass through.
template <class Error, class Work> String MessageOf(Work work)
{
    try {
        work();
    } catch (const Error& error) {
        return error.Message;
    }
    return u"nothing was raised"_s;
}

}
