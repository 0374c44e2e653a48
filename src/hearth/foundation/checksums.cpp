// CRC-32 by zlib, MD5 and RC4.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/checksums.h>

#include <hearth/runtime/checked.h>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>

namespace ht {

namespace {

using Bytes = std::span<const std::uint8_t>;

// --- MD5

constexpr std::size_t kBlockSize = 64;
constexpr std::size_t kDigestSize = 16;
constexpr std::size_t kLengthSize = sizeof(std::uint64_t);

/// The whole part of 2^32 times |sin(i + 1)|.
constexpr std::uint32_t kSines[64] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501, //
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821, //
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8, //
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A, //
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70, //
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665, //
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1, //
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391, //
};

/// Each round takes its four turns in order.
constexpr int kTurns[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

std::uint32_t WordAt(const std::uint8_t* p) noexcept
{
    return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16
        | std::uint32_t{p[3]} << 24;
}

class MD5 {
public:
    /// Takes in whole blocks and returns what is left behind them.
    Bytes TakeBlocks(Bytes bytes) noexcept
    {
        for (; bytes.size() >= kBlockSize; bytes = bytes.subspan(kBlockSize))
            TakeBlock(bytes.data());
        return bytes;
    }

    /// The state as bytes, lowest first.
    TBytes Digest() const
    {
        TBytes digest;
        digest.Reserve(kDigestSize);
        for (const std::uint32_t word : FState) {
            for (int shift = 0; shift < 32; shift += 8)
                digest.Add(static_cast<std::uint8_t>(word >> shift));
        }
        return digest;
    }

private:
    /// What a round makes of three words, and which word of the block its step reads.
    struct Step {
        std::uint32_t mixed;
        std::size_t word;
    };

    static Step StepOf(std::size_t step, std::uint32_t b, std::uint32_t c, std::uint32_t d) noexcept
    {
        switch (step / 16) {
        case 0:
            return {(b & c) | (~b & d), step};
        case 1:
            return {(d & b) | (~d & c), 5 * step + 1};
        case 2:
            return {b ^ c ^ d, 3 * step + 5};
        default:
            return {c ^ (b | ~d), 7 * step};
        }
    }

    void TakeBlock(const std::uint8_t* block) noexcept
    {
        auto [a, b, c, d] = FState;
        for (std::size_t i = 0; i < 64; ++i) {
            const Step step = StepOf(i, b, c, d);
            const std::uint32_t sum = a + step.mixed + kSines[i] + WordAt(block + 4 * (step.word % 16));
            a = d;
            d = c;
            c = b;
            b += std::rotl(sum, kTurns[i / 16][i % 4]);
        }
        FState = {FState[0] + a, FState[1] + b, FState[2] + c, FState[3] + d};
    }

    std::array<std::uint32_t, 4> FState = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
};

}

std::uint32_t CalcCRC32(const void* p, std::int32_t length) noexcept
{
    return CalcBytesCRC32(
        {static_cast<const std::uint8_t*>(p), static_cast<std::size_t>(std::max(length, 0))});
}

std::uint32_t CalcStrCRC32(std::u16string_view s) noexcept
{
    return CalcBytesCRC32({reinterpret_cast<const std::uint8_t*>(s.data()), s.size() * sizeof(char16_t)});
}

std::uint32_t CalcBytesCRC32(std::span<const std::uint8_t> bytes) noexcept
{
    // Without an address zlib answers with the value to start from.
    if (bytes.empty())
        return 0;
    return static_cast<std::uint32_t>(crc32_z(0, bytes.data(), bytes.size()));
}

TBytes MD5Hash(std::span<const std::uint8_t> bytes)
{
    MD5 md5;
    const Bytes rest = md5.TakeBlocks(bytes);
    // One or two more blocks: the rest, a bit, zeros, and the number of bits at the very end.
    std::array<std::uint8_t, 2 * kBlockSize> last{};
    std::copy(rest.begin(), rest.end(), last.begin());
    last[rest.size()] = 0x80;
    const std::size_t size = rest.size() + 1 + kLengthSize <= kBlockSize ? kBlockSize : 2 * kBlockSize;
    const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
    for (std::size_t i = 0; i < kLengthSize; ++i)
        last[size - kLengthSize + i] = static_cast<std::uint8_t>(bits >> (8 * i));
    md5.TakeBlocks({last.data(), size});
    return md5.Digest();
}

void RC4Init(TRC4Key& key, std::span<const std::uint8_t> password) noexcept
{
    std::iota(std::begin(key.State), std::end(key.State), std::uint8_t{0});
    key.X = 0;
    key.Y = 0;
    if (password.empty())
        return;
    std::uint8_t other = 0;
    for (std::size_t i = 0; i < 256; ++i) {
        other = static_cast<std::uint8_t>(other + key.State[i] + password[i % password.size()]);
        std::swap(key.State[i], key.State[other]);
    }
}

void RC4CryptData(TRC4Key& key, const void* source, void* target, std::int32_t count) noexcept
{
    const auto* from = static_cast<const std::uint8_t*>(source);
    auto* to = static_cast<std::uint8_t*>(target);
    auto x = static_cast<std::uint8_t>(key.X);
    auto y = static_cast<std::uint8_t>(key.Y);
    for (std::int32_t i = 0; i < count; ++i) {
        ++x;
        y = static_cast<std::uint8_t>(y + key.State[x]);
        std::swap(key.State[x], key.State[y]);
        const auto place = static_cast<std::uint8_t>(key.State[x] + key.State[y]);
        to[i] = from[i] ^ key.State[place];
    }
    key.X = x;
    key.Y = y;
}

TBytes RC4Crypt(std::span<const std::uint8_t> password, std::span<const std::uint8_t> bytes)
{
    TRC4Key key;
    RC4Init(key, password);
    const std::int32_t count = CheckedLength(bytes.size());
    TBytes result(count);
    RC4CryptData(key, bytes.data(), result.data(), count);
    return result;
}

}
