// The operations of the HTTP client; how a call goes out and comes back is http_client_exchange.cpp.
// SPDX-License-Identifier: MIT
#include <hearth/platform/http_client.h>

#include <hearth/platform/pipe_signal_p.h>
#include <hearth/platform/transport_curl_p.h>

#include <algorithm>

namespace ht {

/// Ends the transfer however the call ends; a reply that was read to its end keeps its connection. Another
/// call out of this one, from OnRedirect, would replace the request under its feet.
class THtInetClient::Call {
public:
    explicit Call(THtInetClient& client)
        : FClient(client)
    {
        if (client.FBusy)
            throw EHtInetException(u"The client is busy"_s);
        client.FBusy = true;
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call()
    {
        if (FClient.Request)
            FClient.Request->Stop();
        FClient.FBusy = false;
    }

private:
    const detail::PipeSignalBlock FQuiet; // one for all steps of the call
    THtInetClient& FClient;
};

THtInetClient::THtInetClient()
{
    detail::OpenInetSession();
}

THtInetClient::~THtInetClient()
{
    Request.reset(); // in front of its connection
}

String THtInetClient::Get(const String& AURL)
{
    const Call call(*this);
    ResponseContentType = {};
    try {
        return GetGuarded(AURL);
    } catch (const Exception& error) {
        const std::u16string_view message = error.Message;
        const bool hasFallback =
            message.find(u"12175") != message.npos || message.find(u"12157") != message.npos;
        if (!hasFallback || SecurityPolicy == spStrict)
            throw;
    }
    return GetFallback(AURL);
}

String THtInetClient::GetGuarded(const String& AURL)
{
    SendGetRequest(AURL, "GET", {});
    String text;
    GetResponse(text);
    return text;
}

TBytes THtInetClient::GetBytes(const String& AURL)
{
    if (AURL.Length() > kMaxBytesAddress)
        return {};
    const Call call(*this);
    SendGetRequest(AURL, "GET", {});
    return ReadBody(*Request);
}

String THtInetClient::Post(const String& AURL, std::string_view query, const String& AContentType)
{
    return SendBody(AURL, "POST", query, AContentType);
}

String THtInetClient::Delete(const String& AURL, std::string_view query, const String& AContentType)
{
    return SendBody(AURL, "DELETE", query, AContentType);
}

String THtInetClient::SendBody(
    const String& AURL, std::string_view verb, std::string_view query, const String& contentType)
{
    const Call call(*this);
    ContentType = contentType.IsEmpty() ? u"text/html; charset=utf-8"_s : contentType;
    SendGetRequest(AURL, verb, query);
    String text;
    GetResponse(text);
    return text;
}

void THtInetClient::GetResponse(String& Text)
{
    Text = detail::DecodeBody(ReadBody(*Request), ResponseContentType);
    if (ResponseCode == 401)
        throw EHtInetException(u"401: " + Text);
}

void THtInetClient::GetClientCertificates(TList& List) const
{
    if (!Connect || !Connect->CertificateAsked.Asked)
        return;
    detail::CertificateList found =
        detail::FindCertificates(CertificateStore, CertificatePassword, Connect->CertificateAsked.Issuers);
    for (auto& certificate : found) {
        List.Add(certificate.get());
        certificate.release();
    }
}

/// An own session with an own connection: no proxy, no headers of this client, certificates verified.
String THtInetClient::GetFallback(const String& AURL)
{
    detail::InetCall call{"GET", detail::CrackAddress(AURL), {detail::kUserAgentLine}, {}};
    detail::InetConnection connection(call.Address);
    detail::InetRequest request(connection, call.Verb);
    detail::TransferRules rules = Rules();
    rules.Trust = detail::TransferRules::trVerified;
    rules.Way = detail::TransferRules::wrDirect;
    request.SetRules(rules);
    if (!request.Send(call) || !request.Receive())
        request.Raise();
    FollowRedirects(request, call);
    TakeHead(request, call);
    if (ResponseCode != 200)
        return {};
    TBytes bytes;
    request.ReadData(bytes); // what the first look finds; the rest is left
    return detail::DecodeBody(bytes, ResponseContentType);
}

}
