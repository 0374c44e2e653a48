// Character classes of the tokenizer.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <array>
#include <cstdint>
#include <string_view>

namespace ht {

/// Classes inside a tag; outside one only "<" has a class of its own.
enum TCharClass : std::uint8_t {
    ccOther,
    ccIdentifier,
    ccSpace,
    ccQuote,
    ccTagStart,
    ccTagEnd,
    ccTagClose,
    ccEquals,
};

namespace detail {

consteval std::array<TCharClass, 256> MakeClassesInTag()
{
    std::array<TCharClass, 256> classes{};
    const auto set = [&classes](std::u16string_view characters, TCharClass charClass) {
        for (char16_t c : characters)
            classes[c] = charClass;
    };
    set(u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789:_%-.#", ccIdentifier);
    set(u"\t\n\r ", ccSpace);
    set(u"\"'", ccQuote);
    set(u"<", ccTagStart);
    set(u">", ccTagEnd);
    set(u"/", ccTagClose);
    set(u"=", ccEquals);
    return classes;
}

inline constexpr std::array<TCharClass, 256> kClassesInTag = MakeClassesInTag();

}

constexpr TCharClass ClassInTag(char16_t c) noexcept
{
    return c < 256 ? detail::kClassesInTag[c] : ccOther;
}

/// True for what may stand behind a "<" that opens or closes a tag.
constexpr bool OpensTag(char16_t c) noexcept
{
    constexpr std::u16string_view kMarks = u"_:-./";
    return c >= 0x80 || IsAsciiUpper(c) || IsAsciiLower(c) || kMarks.find(c) != std::u16string_view::npos;
}

}
