// Checksums and digests against their published values.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/checksums.h>

#include <gtest/gtest.h>

#include <numeric>
#include <string>

namespace ht {
namespace {

std::span<const std::uint8_t> BytesOf(std::string_view text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string Hex(const TBytes& bytes)
{
    std::string hex;
    for (const std::uint8_t byte : bytes) {
        hex += "0123456789abcdef"[byte >> 4U];
        hex += "0123456789abcdef"[byte & 15U];
    }
    return hex;
}

TEST(checksums, crc32)
{
    EXPECT_EQ(CalcBytesCRC32(BytesOf("123456789")), 0xCBF43926U);
    EXPECT_EQ(CalcCRC32("123456789", 4), 0x9BE3E0A3U);
    EXPECT_EQ(CalcCRC32("1", -1), 0U);
    EXPECT_EQ(CalcCRC32(nullptr, 0), 0U);
    EXPECT_EQ(CalcStrCRC32(u"ab"), CalcBytesCRC32(BytesOf({"a\0b\0", 4})));
}

TEST(checksums, md5)
{
    const std::string digits =
        "12345678901234567890123456789012345678901234567890123456789012345678901234567890";
    EXPECT_EQ(Hex(MD5Hash({})), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Hex(MD5Hash(BytesOf("message digest"))), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(Hex(MD5Hash(BytesOf(digits))), "57edf4a22be3c955ac49da2e2107b67a");
    // Around the length from which the number of bits needs a block of its own.
    EXPECT_EQ(Hex(MD5Hash(BytesOf(digits.substr(0, 55)))), "c9ccf168914a1bcfc3229f1948e67da0");
    EXPECT_EQ(Hex(MD5Hash(BytesOf(digits.substr(0, 56)))), "49f193adce178490e34d1b3a4ec0064c");
    EXPECT_EQ(Hex(MD5Hash(BytesOf(digits.substr(0, 64)))), "eb6c4179c0a7c82cc2828c1e6338e165");
}

TEST(checksums, rc4_goes_on_where_it_stopped)
{
    EXPECT_EQ(Hex(RC4Crypt(BytesOf("Key"), BytesOf("Plaintext"))), "bbf316e8d940af0ad3");
    EXPECT_EQ(Hex(RC4Crypt(BytesOf("Wiki"), BytesOf("pedia"))), "1021bf0420");
    TRC4Key key;
    RC4Init(key, BytesOf("Key"));
    TBytes bytes(9);
    RC4CryptData(key, "Plain", bytes.data(), 5);
    RC4CryptData(key, "text", bytes.data() + 5, 4);
    EXPECT_EQ(Hex(bytes), "bbf316e8d940af0ad3");
    EXPECT_EQ(RC4Crypt({}, RC4Crypt({}, bytes)), bytes);
    RC4Init(key, BytesOf("Key"));
    RC4CryptData(key, bytes.data(), bytes.data(), 9);
    EXPECT_EQ(Hex(bytes), "506c61696e74657874");
    TBytes password(300);
    std::iota(password.begin(), password.end(), std::uint8_t{0});
    const TBytes all = RC4Crypt(password, bytes);
    EXPECT_EQ(RC4Crypt(std::span(password.data(), 256), bytes), all);
    EXPECT_NE(RC4Crypt(std::span(password.data(), 200), bytes), all);
}

}
}
