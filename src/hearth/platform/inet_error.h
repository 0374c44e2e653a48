// The exception of the HTTP client and the numbers of its failures.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/exceptions.h>

#include <cstdint>

namespace ht {

/// Why a transfer failed. The numbers are part of the messages.
enum THtInetFailure : std::uint32_t {
    ifNone = 0,
    ifTimeOut = 12002,
    ifInternal = 12004,
    ifBadAddress = 12005,
    ifUnknownScheme = 12006,
    ifUnknownHost = 12007,
    ifConnectionLost = 12030,
    ifCertificateWanted = 12044, // the server asks for a client certificate
    ifBadReply = 12152,
    ifRedirectFailed = 12156,
    ifConnectFailed = 12157, // nobody answers, or the proxy does not
    ifSecureChannel = 12175, // TLS could not be agreed upon, or a certificate is refused
};

/// Raised by the HTTP client: for failures of the transfer with "System error", their number and a text, and
/// for refusals of its own without a number.
class HT_API EHtInetException : public Exception {
public:
    using Exception::Exception;
    /// "System error 12002: text".
    EHtInetException(THtInetFailure failure, std::u16string_view text);
    const char16_t* ClassName() const noexcept override { return u"EHtInetException"; }

    THtInetFailure Failure = ifNone;
};

}
