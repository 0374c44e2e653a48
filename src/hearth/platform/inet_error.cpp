// The message of a failed transfer.
// SPDX-License-Identifier: MIT
#include <hearth/platform/inet_error.h>

#include <hearth/runtime/text_format.h>

namespace ht {

EHtInetException::EHtInetException(THtInetFailure failure, std::u16string_view text)
    : Exception(Format(u"System error %d: %s", {std::uint32_t{failure}, text}))
    , Failure(failure)
{
}

}
