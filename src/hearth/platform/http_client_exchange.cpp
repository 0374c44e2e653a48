// How a call goes out and comes back: connections, headers, redirects, certificates, bodies.
// SPDX-License-Identifier: MIT
#include <hearth/platform/http_client.h>

#include <hearth/platform/transport_curl_p.h>
#include <hearth/runtime/text_format.h>

#include <algorithm>

namespace ht {

namespace {

/// Letters that tell "http:" from "https".
constexpr std::size_t kSchemeUnits = 5;
constexpr std::int64_t kStrictBody = THtLimits{}.HttpBody;
constexpr std::int32_t kStrictRedirects = THtLimits{}.HttpRedirects;
/// Bytes for which room is made because a server said that so many come. What is not touched costs nothing.
constexpr std::int64_t kMaxReserved = std::int64_t{256} << 20U;
/// Bytes of a redirect's own body that are read to save a connection.
constexpr std::int64_t kSmallBody = std::int64_t{64} << 10U;
/// Milliseconds: for resolving and for connecting, of clients that set a time-out.
constexpr std::int32_t kConnectTimeOut = 5000;
constexpr std::int64_t kStrictWindow = 30'000;

constexpr char kAuthorization[] = "Authorization:";
constexpr char kContentType[] = "Content-Type:";
constexpr char kContentLength[] = "Content-Length:";

std::u16string_view SchemeOf(const String& URL) noexcept
{
    return URL.View().substr(0, kSchemeUnits);
}

void RemoveLine(detail::HeaderLines& lines, const char* name)
{
    std::erase_if(lines, [name](const std::string& line) { return line.starts_with(name); });
}

/// 303 makes everything a GET, 301 and 302 a POST only; other verbs are not to be changed without being
/// asked.
bool BecomesGet(const std::string& verb, std::uint32_t status) noexcept
{
    return status == 303 || (verb == "POST" && (status == 301 || status == 302));
}

void MakeGet(detail::InetCall& call)
{
    call.Verb = "GET";
    call.Body = {};
    RemoveLine(call.Headers, kContentType);
    RemoveLine(call.Headers, kContentLength);
}

/// Certificates of a list that owns nothing, freed at the end of the scope.
class OwnedCertificates {
public:
    OwnedCertificates() = default;
    OwnedCertificates(const OwnedCertificates&) = delete;
    OwnedCertificates& operator=(const OwnedCertificates&) = delete;
    ~OwnedCertificates()
    {
        for (void* item : List)
            delete static_cast<THtClientCertificate*>(item);
    }

    TList List;
};

}

std::int64_t THtInetClient::BodyLimit() const noexcept
{
    return SecurityPolicy == spStrict && Limits.HttpBody == 0 ? kStrictBody : Limits.HttpBody;
}

std::int32_t THtInetClient::RedirectLimit() const noexcept
{
    if (SecurityPolicy != spStrict)
        return Limits.HttpRedirects;
    return Limits.HttpRedirects == 0 ? kStrictRedirects : std::min(Limits.HttpRedirects, kStrictRedirects);
}

/// Silence alone is no measure: a server that sends a byte now and then would never be done.
std::int64_t THtInetClient::RateWindow() const noexcept
{
    const std::int64_t timeOut = TimeOut > 0 ? TimeOut : detail::TransferRules{}.TimeOut;
    return SecurityPolicy == spStrict ? std::max(kStrictWindow, 2 * timeOut) : 0;
}

detail::TransferRules THtInetClient::Rules() const
{
    using Rules = detail::TransferRules;
    Rules rules;
    rules.Trust = SecurityPolicy == spStrict ? Rules::trVerified : Rules::trAnyone;
    rules.Protocol = SecurityPolicy == spStrict ? Rules::prFromTls12 : Rules::prFromTls10;
    if (TimeOut > 0) {
        rules.ResolveTimeOut = kConnectTimeOut;
        rules.ConnectTimeOut = kConnectTimeOut;
        rules.TimeOut = TimeOut;
    }
    rules.RateWindow = RateWindow();
    rules.MaxBody = BodyLimit();
    rules.TrustedCertificates = TrustedCertificates;
    return rules;
}

/// Connection and request stay where they can, at the host and port and with the verb for which they were
/// opened. A strict client looks at the server each time: a compatible one may have opened the connection.
void THtInetClient::OpenRequest(const String& URL, std::string_view verb)
{
    const bool strict = SecurityPolicy == spStrict;
    if (strict && Request && Request->Verb() != verb)
        Request.reset();
    if (!strict && Request && URL == LastURL)
        return;
    const detail::InetAddress address = detail::CrackAddress(URL);
    const String host = String::FromUtf8(address.Host);
    bool stays = Connect && host == LastHost && SchemeOf(URL) == SchemeOf(LastURL);
    if (strict)
        stays = stays && address.IsSameServer(Connect->Server());
    if (!stays) {
        Request.reset();
        Connect = std::make_unique<detail::InetConnection>(address);
        LastHost = host;
    }
    const String path = String::FromUtf8(address.Path);
    if (!Request || path != LastPath) {
        Request.reset();
        Request = std::make_unique<detail::InetRequest>(*Connect, std::string(verb));
        LastPath = path;
    }
    LastURL = URL;
}

/// The password would go over the wire as it is.
bool THtInetClient::MayRepeatInClear(const String& URL) const
{
    return SecurityPolicy == spCompatible && Password.IsEmpty() && SameText(SchemeOf(URL), u"https");
}

void THtInetClient::SendGetRequest(const String& URL, std::string_view Verb, std::string_view Body)
{
    OpenRequest(URL, Verb);
    detail::InetCall call{Request->Verb(), Connect->Server(), {}, Body};
    call.Address.Path = LastPath.ToUtf8();
    call.OffersCertificate = OffersCertificate(call.Address);
    if (!Password.IsEmpty())
        call.Headers.push_back(detail::AuthorizationLine(User, Password));
    if (!Referer.IsEmpty())
        call.Headers.push_back(detail::HeaderLine("Referer", Referer));
    if (!ContentType.IsEmpty())
        call.Headers.push_back(detail::HeaderLine("Content-Type", ContentType));
    if (!Body.empty())
        call.Headers.push_back(kContentLength + (" " + std::to_string(Body.size())));
    call.Headers.emplace_back(detail::kUserAgentLine);
    call.Headers.emplace_back("Connection: keep-alive");

    Request->SetRules(Rules());
    if (FCertificateStore != CertificateStore) // the host has taken it back
        Request->SetCertificate(nullptr);
    const bool sent = Request->Send(call);
    if (!sent && Request->Failure() == ifSecureChannel && MayRepeatInClear(URL))
        return SendGetRequest(u"http" + URL.View().substr(kSchemeUnits), Verb, Body);
    ReceiveHead(call);
    FollowRedirects(*Request, call);
    TakeHead(*Request, call);
}

void THtInetClient::ReceiveHead(const detail::InetCall& call)
{
    if (Request->Receive())
        return;
    if (Request->Failure() != ifCertificateWanted)
        Request->Raise();
    SendWithCertificate(call);
}

/// A certificate says who somebody is, to whoever asks.
bool THtInetClient::OffersCertificate(const detail::InetAddress& server) const
{
    return !CertificateStore.IsEmpty()
        && (SecurityPolicy == spCompatible || server.IsSameServer(Connect->Server()));
}

void THtInetClient::SendWithCertificate(const detail::InetCall& call)
{
    OwnedCertificates certificates;
    GetClientCertificates(certificates.List);
    if (certificates.List.Count() == 0)
        throw EHtInetException(u"No SSL certificates found"_s);
    if (!call.OffersCertificate)
        Request->Raise();
    Request->SetCertificate(static_cast<const THtClientCertificate*>(certificates.List.First()));
    FCertificateStore = CertificateStore;
    if (!Request->Send(call) || !Request->Receive()) {
        Request->SetCertificate(nullptr);
        Request->Raise();
    }
}

void THtInetClient::FollowRedirects(detail::InetRequest& request, detail::InetCall& call)
{
    const std::int32_t limit = RedirectLimit();
    for (std::int32_t hops = 0;; ++hops) {
        const String location = request.Location();
        if (location.IsEmpty())
            return;
        if (limit > 0 && hops >= limit)
            throw EHtInetException(Format(u"More than %d redirects, the limit HttpRedirects", {limit}));
        if (BecomesGet(call.Verb, request.Status()))
            MakeGet(call);
        const detail::InetAddress from = call.Address;
        Redirect(call, location);
        request.SkipBody(kSmallBody); // an unread one costs the connection
        if (!from.IsSameServer(call.Address))
            request.SetCertificate(nullptr);
        if (&request == Request.get()) {
            call.OffersCertificate = OffersCertificate(call.Address);
            request.Send(call);
            ReceiveHead(call);
        } else if (!request.Send(call) || !request.Receive()) {
            request.Raise();
        }
    }
}

void THtInetClient::Redirect(detail::InetCall& call, const String& location) const
{
    const detail::InetAddress from = call.Address;
    const String target = detail::ResolveAddress(String::FromUtf8(from.Text()), location);
    try {
        call.Address = detail::CrackAddress(target);
    } catch (const EHtInetException&) {
        throw EHtInetException(ifRedirectFailed, u"The redirect leads to what cannot be read");
    }
    if (OnRedirect && !OnRedirect(target))
        throw EHtInetException(ifRedirectFailed, u"The redirect is not allowed");
    const bool leavesTls = from.Secure && !call.Address.Secure;
    if (leavesTls && SecurityPolicy == spStrict)
        throw EHtInetException(ifRedirectFailed, u"The redirect leads from https to http");
    if (leavesTls || (SecurityPolicy == spStrict && !from.IsSameServer(call.Address)))
        RemoveLine(call.Headers, kAuthorization);
}

void THtInetClient::TakeHead(const detail::InetRequest& request, const detail::InetCall& call)
{
    ResponseCode = request.Status();
    ResponseContentType = request.ContentType();
    ResponseURL = String::FromUtf8(call.Address.Text());
}

TBytes THtInetClient::ReadBody(detail::InetRequest& request) const
{
    const std::int64_t length = request.ContentLength();
    request.CheckBody(length);
    TBytes bytes;
    bytes.Reserve(static_cast<std::int32_t>(std::clamp<std::int64_t>(length, 0, kMaxReserved)));
    while (request.ReadData(bytes)) { }
    return bytes;
}

}
