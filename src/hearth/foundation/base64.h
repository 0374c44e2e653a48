// Base64 in its standard alphabet.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/text.h>

#include <cstdint>
#include <span>

namespace ht {

/// Lines of 76 characters with CR LF between them; Base64EncodeNoLF writes one line. Base64EncodeString
/// encodes the UTF-8 of a text. Throw EIntOverflow.
HT_API String Base64EncodeBytes(std::span<const std::uint8_t> bytes);
HT_API String Base64EncodeNoLF(std::span<const std::uint8_t> bytes);
HT_API String Base64EncodeString(std::u16string_view s);

/// Read up to the first "=" and pass over everything else that is not of the alphabet. A lone last character,
/// which is less than a byte, is dropped. Base64DecodeString takes the bytes as UTF-8.
HT_API TBytes Base64DecodetoBytes(std::u16string_view s);
HT_API String Base64DecodeString(std::u16string_view s);

}
