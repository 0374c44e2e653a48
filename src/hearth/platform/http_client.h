// The HTTP client.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/platform/inet_error.h>
#include <hearth/runtime/array.h>
#include <hearth/runtime/lists.h>
#include <hearth/runtime/object.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace ht {

namespace detail {
class InetConnection;
class InetRequest;
struct InetAddress;
struct InetCall;
struct TransferRules;
}

/// What a client trusts. spCompatible reads from every server that answers at all, spStrict from those whose
/// certificate is verified, within bounds, and gives credentials to no other. All that they do differently
/// stands in docs/behaviour.md, "HTTP".
enum THtSecurityPolicy : std::uint8_t { spCompatible, spStrict };

/// Fetches and posts over HTTP and HTTPS; calls block. It keeps the connection while the host stays the same,
/// and the request, its verb included, while path and query do too. A client belongs to one thread at a time;
/// clients of different threads may work at the same time. What fails raises EHtInetException, EOutOfMemory
/// or EIntOverflow; the client can be used again.
class HT_API THtInetClient : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtInetClient", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    /// GetBytes reads no longer address.
    static constexpr std::int32_t kMaxBytesAddress = 4096;

    THtInetClient();
    THtInetClient(const THtInetClient&) = delete;
    THtInetClient& operator=(const THtInetClient&) = delete;
    ~THtInetClient() override;

    /// The text of an address: UTF-8 when the server names that charset, else by the system's code page.
    /// Status 401 raises "401: " and the text, other statuses raise nothing. When nobody answers, or TLS
    /// fails, a compatible client falls back to asking without a proxy, with certificates verified; that
    /// gives no more than the first piece that arrives, and nothing for a status other than 200.
    String Get(const String& AURL);
    /// The bytes; nothing for an address longer than kMaxBytesAddress, which is not asked for. No status
    /// raises.
    TBytes GetBytes(const String& AURL);
    /// Send `query` as "text/html; charset=utf-8" unless told otherwise. The result is that of Get. Redirects
    /// 307 and 308 take `query` along, to another host too.
    String Post(const String& AURL, std::string_view query, const String& AContentType = {});
    String Delete(const String& AURL, std::string_view query, const String& AContentType = {});
    /// Adds the certificates of the store that the server of the last call would accept, none when it did not
    /// ask. Lifetime: THtClientCertificate, to be deleted by the caller.
    void GetClientCertificates(TList& List) const;

    String LastHost; // of the open connection
    String LastPath; // path and query of the open request
    String LastURL;
    std::unique_ptr<detail::InetConnection> Connect;
    std::unique_ptr<detail::InetRequest> Request;
    /// Milliseconds without a byte sent or received; resolving and connecting then have 5,000 each. 0 leaves
    /// the default: 30,000, and 60,000 for resolving and connecting. A strict client also gives up when less
    /// than a kilobyte moves within twice that time, or within 30,000 where that is longer.
    std::int32_t TimeOut = 0;
    String User; // of basic authentication, used when Password is set
    String Password;
    String Referer; // sent when set
    String ContentType; // sent when set; Post and Delete set it
    String ResponseContentType; // as the server told it
    std::uint32_t ResponseCode = 0; // status of the last response
    String ResponseURL; // the address of the last response, behind all redirects

    THtSecurityPolicy SecurityPolicy = spCompatible;
    THtLimits Limits = HtLimits(); // HttpBody and HttpRedirects count
    /// File of the authorities (PEM) that verified certificates go back to, and no others; the system's when
    /// empty.
    String TrustedCertificates;
    /// Where client certificates are: a PKCS#12 file, a PEM file with certificate and key, or a folder of
    /// such files (.p12, .pfx, .pem). The password is that of their keys. A server that asks gets the first
    /// that one of its authorities signed, also when it needs none. Files that cannot be read are passed
    /// over, among them PKCS#12 files encrypted with RC2, which OpenSSL 3 reads with its legacy provider
    /// only.
    String CertificateStore;
    String CertificatePassword;
    /// Asked before a redirect is followed, with its absolute address; false ends the call with an error.
    /// SIGPIPE of the thread is held back meanwhile, and calls of the same client are refused.
    std::function<bool(const String& address)> OnRedirect;

private:
    class Call;

    void SendGetRequest(const String& URL, std::string_view Verb, std::string_view Body);
    void GetResponse(String& Text);

    String GetGuarded(const String& AURL);
    String GetFallback(const String& AURL);
    String SendBody(
        const String& AURL, std::string_view verb, std::string_view query, const String& contentType);

    void OpenRequest(const String& URL, std::string_view verb);
    bool MayRepeatInClear(const String& URL) const;
    detail::TransferRules Rules() const;
    bool OffersCertificate(const detail::InetAddress& server) const;
    void SendWithCertificate(const detail::InetCall& call);
    void ReceiveHead(const detail::InetCall& call);
    void FollowRedirects(detail::InetRequest& request, detail::InetCall& call);
    void Redirect(detail::InetCall& call, const String& location) const;
    void TakeHead(const detail::InetRequest& request, const detail::InetCall& call);
    TBytes ReadBody(detail::InetRequest& request) const;
    std::int64_t BodyLimit() const noexcept;
    std::int64_t RateWindow() const noexcept;
    std::int32_t RedirectLimit() const noexcept;

    String FCertificateStore; // of the certificate that the request has
    bool FBusy = false;
};

}
