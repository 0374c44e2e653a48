// Addresses taken apart and joined by the address parser of the transport.
// SPDX-License-Identifier: MIT
#include <hearth/platform/address_p.h>

#include <hearth/platform/inet_error.h>

#include <curl/curl.h>

#include <algorithm>
#include <memory>

namespace ht::detail {

namespace {

struct FreeAddress {
    void operator()(CURLU* address) const noexcept { curl_url_cleanup(address); }
};
using CurlAddress = std::unique_ptr<CURLU, FreeAddress>;

constexpr std::uint16_t kPlainPort = 80;
constexpr std::uint16_t kSecurePort = 443;

/// Blanks and letters beyond ASCII are encoded; other schemes are told apart later.
constexpr unsigned kReading = CURLU_URLENCODE | CURLU_NON_SUPPORT_SCHEME;

bool HasControls(std::u16string_view text) noexcept
{
    return std::any_of(text.begin(), text.end(), [](char16_t c) { return c < u' ' || c == 0x7F; });
}

/// The parser takes "data:x" for a path.
bool HasOwnScheme(std::u16string_view address) noexcept
{
    const std::size_t length = address.find(u':');
    if (length == address.npos || length == 0)
        return false;
    const std::u16string_view scheme = address.substr(0, length);
    const auto belongs = [](char16_t c) {
        const char16_t lower = FoldAscii(c);
        return IsAsciiLower(lower) || IsAsciiDigit(c) || c == u'+' || c == u'-' || c == u'.';
    };
    return IsAsciiLower(FoldAscii(scheme.front())) && std::all_of(scheme.begin(), scheme.end(), belongs)
        && !SameText(scheme, u"http") && !SameText(scheme, u"https");
}

CurlAddress NewAddress()
{
    CurlAddress made(curl_url());
    if (!made)
        throw EOutOfMemory();
    return made;
}

bool Set(CURLU* address, std::u16string_view text)
{
    return !HasControls(text)
        && curl_url_set(address, CURLUPART_URL, EncodeUtf8(text).c_str(), kReading) == CURLUE_OK;
}

/// Empty when the address has no such part.
std::string PartOf(CURLU* address, CURLUPart part, unsigned flags = 0)
{
    char* text = nullptr;
    const CURLUcode code = curl_url_get(address, part, &text, flags);
    const std::unique_ptr<char, void (*)(void*)> owner(text, curl_free);
    if (code == CURLUE_OUT_OF_MEMORY)
        throw EOutOfMemory();
    return code == CURLUE_OK ? std::string(text) : std::string();
}

[[noreturn]] void RefuseAddress(THtInetFailure failure, std::u16string_view text)
{
    throw EHtInetException(failure, text);
}

}

std::string InetAddress::Text() const
{
    std::string text = (Secure ? "https://" : "http://") + Host;
    if (Port != (Secure ? kSecurePort : kPlainPort))
        text += ":" + std::to_string(Port);
    return text + Path;
}

bool InetAddress::IsSameServer(const InetAddress& other) const noexcept
{
    return Secure == other.Secure && Port == other.Port && Host == other.Host;
}

InetAddress CrackAddress(std::u16string_view address)
{
    const CurlAddress parts = NewAddress();
    if (!Set(parts.get(), address))
        RefuseAddress(ifBadAddress, u"This is no address");
    const std::string scheme = PartOf(parts.get(), CURLUPART_SCHEME);
    InetAddress result;
    result.Secure = scheme == "https";
    if (!result.Secure && scheme != "http")
        RefuseAddress(ifUnknownScheme, u"Only http and https addresses can be read");
    // Whoever prints or keeps an address would print and keep the password.
    if (!PartOf(parts.get(), CURLUPART_USER).empty() || !PartOf(parts.get(), CURLUPART_PASSWORD).empty())
        RefuseAddress(ifBadAddress, u"The address holds a user");
    result.Host = String::FromUtf8(PartOf(parts.get(), CURLUPART_HOST)).ToLowerAscii().ToUtf8();
    const std::string port = PartOf(parts.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
    if (result.Host.empty() || port.empty() || port == "0")
        RefuseAddress(ifBadAddress, u"This is no address");
    result.Port = static_cast<std::uint16_t>(std::stoul(port)); // the parser lets no more than 65535 through
    result.Path = PartOf(parts.get(), CURLUPART_PATH);
    const std::string query = PartOf(parts.get(), CURLUPART_QUERY);
    if (!query.empty())
        result.Path += "?" + query;
    return result;
}

String ResolveAddress(std::u16string_view base, std::u16string_view address)
{
    if (HasOwnScheme(address))
        return String(address);
    const CurlAddress joined = NewAddress();
    if (!base.empty() && !Set(joined.get(), base))
        return {};
    if (!Set(joined.get(), address))
        return {};
    return String::FromUtf8(PartOf(joined.get(), CURLUPART_URL));
}

}
