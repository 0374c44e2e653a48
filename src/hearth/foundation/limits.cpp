// The limits of the process.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/limits.h>

#include <hearth/runtime/zlib_stream.h>

namespace ht {

static_assert(THtLimits{}.InflateRatio == TZDecompressionStream::kDefaultMaxRatio);

THtLimits& HtLimits() noexcept
{
    static THtLimits limits;
    return limits;
}

}
