// The limits of the process.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/limits.h>

namespace ht {

THtLimits& HtLimits() noexcept
{
    static THtLimits limits;
    return limits;
}

}
