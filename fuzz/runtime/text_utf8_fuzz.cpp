// Bytes become text and come back: what was repaired once stays as it is.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/text.h>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const ht::String text = ht::String::FromUtf8(bytes);
    const std::string again = text.ToUtf8();
    if (ht::String::FromUtf8(again) != text || again.size() < text.size())
        std::abort();

    char16_t* units = nullptr;
    const ht::String raw = ht::String::Uninitialized(size / 2, units);
    for (std::size_t i = 0; i < size / 2; ++i)
        units[i] = static_cast<char16_t>(data[2 * i] | data[2 * i + 1] << 8);
    if (ht::String::FromUtf8(raw.ToUtf8()).Length() != raw.Length())
        std::abort();
    return 0;
}
