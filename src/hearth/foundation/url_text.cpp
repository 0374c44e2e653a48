// Addresses: joining, decoding and encoding.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/url_text.h>

#include <hearth/runtime/checked.h>
#include <hearth/runtime/storage.h>

#include <algorithm>
#include <array>

namespace ht {

namespace {

constexpr std::size_t kNone = std::u16string_view::npos;

/// Without "/" behind the host.
std::u16string_view HostOf(std::u16string_view base) noexcept
{
    std::size_t start = 0;
    for (const std::u16string_view scheme : {u"http://", u"https://"}) {
        if (base.starts_with(scheme))
            start = scheme.size();
    }
    return base.substr(0, base.find(u'/', start));
}

/// Decodes the "%" in front of `rest`; returns how many units of it are used up.
std::size_t DecodePercent(std::u16string_view rest, std::string& bytes)
{
    if (rest.starts_with(u'%')) {
        bytes += '%';
        return 1;
    }
    if (rest.size() >= 2) {
        const int high = HexDigitValue(rest[0]);
        const int low = HexDigitValue(rest[1]);
        if (high >= 0 && low >= 0)
            bytes += static_cast<char>(high * 16 + low);
    }
    return std::min<std::size_t>(rest.size(), 2);
}

std::string DecodedBytes(std::u16string_view s)
{
    std::string bytes;
    bytes.reserve(s.size());
    while (!s.empty()) {
        const std::size_t plain = std::min(s.find_first_of(u"%+"), s.size());
        bytes += EncodeUtf8(s.substr(0, plain));
        s.remove_prefix(plain);
        if (s.empty())
            break;
        const char16_t mark = s.front();
        s.remove_prefix(1);
        if (mark == u'+')
            bytes += ' ';
        else
            s.remove_prefix(DecodePercent(s, bytes));
    }
    return bytes;
}

/// "%00" to "%ff" side by side.
constexpr auto kEscapes = [] {
    constexpr char16_t kDigits[] = u"0123456789abcdef";
    std::array<std::array<char16_t, 3>, 256> escapes{};
    for (std::size_t byte = 0; byte < 256; ++byte)
        escapes[byte] = {u'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
    return escapes;
}();

constexpr bool StaysInUrl(char16_t c) noexcept
{
    return IsAsciiUpper(c) || IsAsciiLower(c) || IsAsciiDigit(c)
        || std::u16string_view(u"!()*-.\\_~").find(c) != kNone;
}

std::size_t EncodedLength(char16_t c) noexcept
{
    if (c == u' ' || StaysInUrl(c))
        return 1;
    return kEscapes[0].size() * (c < 0x80 ? 1U : c < 0x800 ? 2U : 3U);
}

char16_t* WriteByte(unsigned byte, char16_t* to) noexcept
{
    return std::copy(kEscapes[byte].begin(), kEscapes[byte].end(), to);
}

char16_t* WriteEncoded(char16_t c, char16_t* to) noexcept
{
    if (c == u' ' || StaysInUrl(c)) {
        *to = c == u' ' ? u'+' : c;
        return to + 1;
    }
    if (c < 0x80)
        return WriteByte(c, to);
    if (c < 0x800) {
        to = WriteByte(0xC0U | c >> 6U, to);
    } else {
        to = WriteByte(0xE0U | c >> 12U, to);
        to = WriteByte(0x80U | (c >> 6U & 0x3FU), to);
    }
    return WriteByte(0x80U | (c & 0x3FU), to);
}

std::u16string_view WithoutQuotes(std::u16string_view s) noexcept
{
    const bool quoted = s.size() >= 2 && (s.front() == u'"' || s.front() == u'\'') && s.back() == s.front();
    return quoted ? TrimView(s.substr(1, s.size() - 2)) : s;
}

}

String CombineUrl(std::u16string_view base, std::u16string_view url)
{
    if (url.starts_with(u"//")) {
        url.remove_prefix(2);
        return url.starts_with(u"http") ? String(url) : u"http://"_s + url;
    }
    if (url.starts_with(u'/'))
        return HostOf(base) + url;
    const std::size_t slash = base.rfind(u'/');
    return base.substr(0, slash == kNone ? kNone : slash + 1) + url;
}

String HTTPDecode(std::u16string_view s)
{
    return String::FromUtf8(detail::WithStorage([s] { return DecodedBytes(s); }));
}

String HtEncodeUrl(std::u16string_view s)
{
    std::size_t length = 0;
    for (const char16_t c : s)
        length += EncodedLength(c);
    char16_t* to = nullptr;
    const String encoded = String::Uninitialized(length, to);
    for (const char16_t c : s)
        to = WriteEncoded(c, to);
    return encoded;
}

void SplitEmailAdress(std::u16string_view s, String& Name, String& Address)
{
    const std::size_t open = s.rfind(u'<');
    const std::u16string_view name = open == kNone ? std::u16string_view() : s.substr(0, open);
    const std::u16string_view rest = open == kNone ? s : s.substr(open + 1);
    const std::u16string_view address = open == kNone ? rest : rest.substr(0, rest.find(u'>'));
    // Made before either is stored: `s` may be the text of one of them.
    const String madeAddress(TrimView(address));
    Name = String(WithoutQuotes(TrimView(name)));
    Address = madeAddress;
}

}
