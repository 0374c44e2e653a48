// Bytes of text and of numbers.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/bytes.h>

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <cstring>

namespace ht {

std::string HtUTF8Encode(std::u16string_view s)
{
    return EncodeUtf8(s);
}

std::string HtUTF8EncodePtr(const char16_t* p, std::int32_t length)
{
    return EncodeUtf8({p, static_cast<std::size_t>(std::max(length, 0))});
}

TBytes HtUTF8EncodetoBytes(std::u16string_view s)
{
    const std::string utf8 = EncodeUtf8(s);
    TBytes bytes(CheckedLength(utf8.size()));
    std::copy(utf8.begin(), utf8.end(), bytes.begin());
    return bytes;
}

void HtFillLong(void* target, std::int32_t count, std::uint32_t value) noexcept
{
    auto* to = static_cast<unsigned char*>(target);
    for (std::int32_t i = 0; i < count; ++i, to += sizeof(value))
        std::memcpy(to, &value, sizeof(value));
}

}
