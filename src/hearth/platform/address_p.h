// Addresses taken apart and joined, with the rules of the transport.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <cstdint>
#include <string>

namespace ht::detail {

/// An http or https address in its parts, as UTF-8 with everything encoded that must be.
struct InetAddress {
    bool Secure = false;
    std::string Host; // with the brackets of IPv6
    std::uint16_t Port = 0;
    std::string Path; // with the query, without the fragment

    /// The whole address; the port only where it is not that of the scheme.
    std::string Text() const;
    bool IsSameServer(const InetAddress& other) const noexcept;
};

/// Throws EHtInetException for what is no address, has another scheme than http and https, holds control
/// characters or a user.
InetAddress CrackAddress(std::u16string_view address);

/// The absolute address that `address`, met on the page `base`, stands for; empty when it is none. One of
/// another scheme comes back as it is.
String ResolveAddress(std::u16string_view base, std::u16string_view address);

}
