// The platform's exceptions with their texts.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>

namespace ht {

Exception::Exception(String message)
    : Message(std::move(message))
    , FUtf8(Message.ToUtf8())
{
}

Exception::Exception(std::u16string_view message)
    : Exception(String(message))
{
}

Exception::~Exception() = default;

EOutOfMemory::EOutOfMemory()
    : Exception(u"Out of memory"_s)
{
}

ERangeError::ERangeError()
    : Exception(u"Range check error"_s)
{
}

EIntOverflow::EIntOverflow()
    : Exception(u"Integer overflow"_s)
{
}

EAbstractError::EAbstractError()
    : Exception(u"Abstract Error"_s)
{
}

EInvalidCast::EInvalidCast()
    : Exception(u"Invalid class typecast"_s)
{
}

void RaiseRangeError()
{
    throw ERangeError();
}

void RaiseIntOverflow()
{
    throw EIntOverflow();
}

}
