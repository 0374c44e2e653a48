// Checksums, a digest and a stream cipher that file formats ask for; none of them keeps a secret today.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/text.h>

#include <cstdint>
#include <span>

namespace ht {

/// The standard CRC-32 of `length` bytes; 0 for a length below 1.
HT_API std::uint32_t CalcCRC32(const void* p, std::int32_t length) noexcept;
/// The CRC-32 of the units as they stand in memory, two bytes each.
HT_API std::uint32_t CalcStrCRC32(std::u16string_view s) noexcept;
HT_API std::uint32_t CalcBytesCRC32(std::span<const std::uint8_t> bytes) noexcept;

/// The 16 bytes of the MD5 digest.
HT_API TBytes MD5Hash(std::span<const std::uint8_t> bytes);

/// The state of an RC4 stream, made by RC4Init and moved on by RC4CryptData.
struct TRC4Key {
    std::uint8_t State[256]{};
    std::int32_t X = 0;
    std::int32_t Y = 0;
};

/// Starts a stream by a password, of which 256 bytes count.
HT_API void RC4Init(TRC4Key& key, std::span<const std::uint8_t> password) noexcept;
/// Encrypts, or decrypts, `count` bytes and moves the stream on; both places may be the same. A count below 1
/// does nothing.
HT_API void RC4CryptData(TRC4Key& key, const void* source, void* target, std::int32_t count) noexcept;
/// Encrypts, or decrypts, all bytes with a stream of their own.
HT_API TBytes RC4Crypt(std::span<const std::uint8_t> password, std::span<const std::uint8_t> bytes);

}
