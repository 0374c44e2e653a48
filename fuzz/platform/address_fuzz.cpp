// Any address as a page and as what a page or a redirect names, and any header value.
// SPDX-License-Identifier: MIT
#include "../require.h"

#include <hearth/platform/address_p.h>
#include <hearth/platform/http_headers_p.h>
#include <hearth/platform/inet_error.h>
#include <hearth/platform/inet_resource_loader.h>

#include <cstdint>
#include <string_view>

namespace {

using fuzz::Require;

/// An address that was let through goes over the wire as it is: no blanks, no line ends, and it means the
/// same again.
void CheckAddress(const ht::String& text)
{
    try {
        const std::string asked = ht::detail::CrackAddress(text).Text();
        Require(asked.starts_with("http://") || asked.starts_with("https://"), "other schemes are refused");
        for (const unsigned char c : asked)
            Require(c > ' ' && c != 0x7F, "no unit ends the line");
        Require(ht::detail::CrackAddress(ht::String::FromUtf8(asked)).Text() == asked,
            "an address means the same again");
    } catch (const ht::EHtInetException&) {
        return;
    }
}

void CheckHeader(const ht::String& value)
{
    try {
        Require(ht::detail::HeaderLine("Referer", value).find_first_of("\r\n") == std::string::npos,
            "a header is one line");
    } catch (const ht::EHtInetException&) {
        return;
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::size_t middle = bytes.find('\n');
    const ht::String base = ht::String::FromUtf8(bytes.substr(0, middle));
    const ht::String named =
        middle == bytes.npos ? ht::String() : ht::String::FromUtf8(bytes.substr(middle + 1));
    CheckAddress(base);
    CheckAddress(ht::detail::ResolveAddress(base, named));
    CheckHeader(named);
    ht::THtInetResourceLoader loader;
    loader.Allow(ht::String::FromUtf8("http://a.example/pages/"));
    const ht::String address = loader.Resolve(base, named);
    Require(!loader.Allows(address)
            || ht::detail::CrackAddress(address).Text().starts_with("http://a.example/pages/"),
        "only what is allowed");
    return 0;
}
