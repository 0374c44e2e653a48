// Narrowing by runs: units that are bytes, and units that a code page made of bytes.
// SPDX-License-Identifier: MIT
#include <hearth/markup/narrow_p.h>

#include <hearth/runtime/encoding.h>

#include <algorithm>

namespace ht {

std::string NarrowText(std::u16string_view text)
{
    const auto isByte = [](char16_t c) { return c <= 0xFF; };
    std::string bytes;
    bytes.reserve(text.size());
    for (const char16_t *p = text.data(), *end = p + text.size(); p < end;) {
        const char16_t* wide = std::find_if_not(p, end, isByte);
        std::transform(p, wide, std::back_inserter(bytes), [](char16_t c) { return static_cast<char>(c); });
        p = std::find_if(wide, end, isByte);
        bytes += EncodeBytes({wide, static_cast<std::size_t>(p - wide)}, SystemCodePage());
    }
    return bytes;
}

}
