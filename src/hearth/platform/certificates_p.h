// Finding the client certificates that a server would accept.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/platform/certificates.h>

#include <memory>
#include <string>
#include <vector>

namespace ht::detail {

/// What a server said when it asked for a client certificate.
struct CertificateRequest {
    bool EndsHandshake = false; // the caller's answer: to come back with a certificate
    bool Asked = false;
    std::vector<std::string> Issuers; // encoded names (DER); none means any
};

using CertificateList = std::vector<std::unique_ptr<THtClientCertificate>>;

/// The certificates of a store, a folder or one file, whose chain one of the issuers signed, in the order of
/// the file names. Files that are no certificate with a key, or have another password, are passed over.
CertificateList FindCertificates(
    const String& store, const String& password, const std::vector<std::string>& issuers);

/// Lets a TLS context fill `request` when its server asks for a certificate. Lifetime: `request` outlives
/// the context. `context` is an SSL_CTX.
void WatchCertificateRequest(void* context, CertificateRequest& request);

}
