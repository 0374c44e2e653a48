// Base64 in its standard alphabet.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/base64.h>

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <array>
#include <string>

namespace ht {

namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char16_t kPadding = u'=';
constexpr std::size_t kGroupBytes = 3;
constexpr std::size_t kGroupUnits = 4;
constexpr std::size_t kLineGroups = 19; // 76 characters, the most that mail allows
constexpr std::u16string_view kLineEnd = u"\r\n";
constexpr std::uint8_t kForeign = 0xFF;

constexpr auto kValues = [] {
    std::array<std::uint8_t, 128> values{};
    values.fill(kForeign);
    for (std::size_t i = 0; i < kAlphabet.size(); ++i)
        values[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
    return values;
}();

/// Up to three bytes as four characters.
char16_t* WriteGroup(std::span<const std::uint8_t> bytes, char16_t* to) noexcept
{
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < kGroupBytes; ++i)
        group = group << 8 | (i < bytes.size() ? bytes[i] : 0U);
    for (std::size_t i = 0; i < kGroupUnits; ++i) {
        const std::size_t value = group >> (18 - 6 * i) & 63U;
        *to++ = i <= bytes.size() ? static_cast<char16_t>(kAlphabet[value]) : kPadding;
    }
    return to;
}

String Encode(std::span<const std::uint8_t> bytes, std::size_t lineGroups)
{
    const std::size_t groups = (bytes.size() + kGroupBytes - 1) / kGroupBytes;
    const std::size_t breaks = lineGroups == 0 || groups == 0 ? 0 : (groups - 1) / lineGroups;
    char16_t* to = nullptr;
    String text = String::Uninitialized(groups * kGroupUnits + breaks * kLineEnd.size(), to);
    for (std::size_t group = 0; group < groups; ++group) {
        if (lineGroups != 0 && group != 0 && group % lineGroups == 0)
            to = std::copy(kLineEnd.begin(), kLineEnd.end(), to);
        const std::span<const std::uint8_t> rest = bytes.subspan(group * kGroupBytes);
        to = WriteGroup(rest.first(std::min(rest.size(), kGroupBytes)), to);
    }
    return text;
}

}

String Base64EncodeBytes(std::span<const std::uint8_t> bytes)
{
    return Encode(bytes, kLineGroups);
}

String Base64EncodeNoLF(std::span<const std::uint8_t> bytes)
{
    return Encode(bytes, 0);
}

String Base64EncodeString(std::u16string_view s)
{
    const std::string utf8 = EncodeUtf8(s);
    return Base64EncodeBytes({reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()});
}

TBytes Base64DecodetoBytes(std::u16string_view s)
{
    TBytes bytes;
    bytes.Reserve(CheckedLength(s.size() / kGroupUnits * kGroupBytes));
    std::uint32_t bits = 0;
    int count = 0;
    for (const char16_t unit : s) {
        if (unit == kPadding)
            break;
        const std::uint8_t value = unit < kValues.size() ? kValues[unit] : kForeign;
        if (value == kForeign)
            continue;
        bits = bits << 6 | value;
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.Add(static_cast<std::uint8_t>(bits >> count));
        }
    }
    return bytes;
}

String Base64DecodeString(std::u16string_view s)
{
    const TBytes bytes = Base64DecodetoBytes(s);
    return String::FromUtf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}
