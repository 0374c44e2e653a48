// Moving a transfer on libcurl: waiting with bounds, and what went wrong when it ends.
// SPDX-License-Identifier: MIT
#include <hearth/platform/transport_curl_p.h>

#include <hearth/platform/pipe_signal_p.h>

#include <curl/curl.h>

#include <algorithm>
#include <utility>

namespace ht::detail {

namespace {

constexpr std::int64_t kLongestPoll = 1000; // milliseconds
constexpr std::int64_t kWindowBytes = 1024;

bool IsSecureFailure(CURLcode code) noexcept
{
    switch (code) {
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_ENGINE_INITFAILED:
        return true;
    default:
        return false;
    }
}

THtInetFailure FailureOfCode(CURLcode code) noexcept
{
    if (IsSecureFailure(code))
        return ifSecureChannel;
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
        return ifTimeOut;
    case CURLE_COULDNT_RESOLVE_HOST:
        return ifUnknownHost;
    case CURLE_COULDNT_CONNECT:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_PROXY:
        return ifConnectFailed;
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
        return ifConnectionLost;
    case CURLE_URL_MALFORMAT:
        return ifBadAddress;
    default:
        return ifBadReply;
    }
}

template <class Duration> std::int64_t Milliseconds(Duration time) noexcept
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

}

/// With TLS 1.2 the handshake fails where a certificate is missing. With 1.3 it is over when the server finds
/// out, and what is received is an alert, or nothing but a reset. Then the request was sent, and nobody may
/// send it again: it may have been carried out. Calls with a certificate at hand do not come so far.
THtInetFailure InetRequest::FailureOf(int code) const
{
    const auto curlCode = static_cast<CURLcode>(code);
    if (std::string_view(FErrorText).find("certificate required") != std::string_view::npos)
        return ifCertificateWanted;
    const bool refused =
        curlCode == CURLE_SSL_CONNECT_ERROR || curlCode == CURLE_RECV_ERROR || curlCode == CURLE_SEND_ERROR;
    return refused && FConnection.CertificateAsked.Asked && !FHeadDone ? ifCertificateWanted
                                                                       : FailureOfCode(curlCode);
}

template <class Done> void InetRequest::Drive(Done done)
{
    FSince = Clock::now();
    const PipeSignalBlock quiet;
    while (FRunning && !FFinished && !done()) {
        int running = 0;
        if (curl_multi_perform(FConnection.Handle(), &running) != CURLM_OK)
            throw EHtInetException(ifInternal, u"The transport does not move");
        TakeResult();
        if (FRaised)
            std::rethrow_exception(FRaised);
        if (FFinished || done())
            return;
        const std::int64_t left = TimeLeft();
        if (left <= 0) {
            Stop();
            FFailure = ifTimeOut;
            FFailureText = u"The time is over"_s;
            return;
        }
        curl_multi_poll(
            FConnection.Handle(), nullptr, 0, static_cast<int>(std::min(left, kLongestPoll)), nullptr);
    }
}

InetRequest::Progress InetRequest::CurrentProgress() const
{
    Progress progress;
    if (Number(CURLINFO_PRETRANSFER_TIME_T) > 0)
        progress.stage = stTransferring;
    else if (Number(CURLINFO_NAMELOOKUP_TIME_T) > 0)
        progress.stage = stConnecting;
    progress.bytes = Number(CURLINFO_SIZE_UPLOAD_T) + FHeadBytes + FBodyBytes;
    return progress;
}

std::int32_t InetRequest::Allowance(Stage stage) const noexcept
{
    switch (stage) {
    case stResolving:
        return FRules.ResolveTimeOut;
    case stConnecting:
        return FRules.ConnectTimeOut;
    default:
        return FRules.TimeOut;
    }
}

std::int64_t InetRequest::TimeLeft()
{
    const Clock::time_point now = Clock::now();
    const Progress progress = CurrentProgress();
    if (progress != FProgress) {
        FProgress = progress;
        FSince = now;
    }
    const std::int64_t left = Allowance(progress.stage) - Milliseconds(now - FSince);
    const bool hasWindow = FRules.RateWindow > 0 && progress.stage == stTransferring;
    return hasWindow ? std::min(left, WindowLeft(now, progress.bytes)) : left;
}

/// Each window begins when enough has moved in the one before.
std::int64_t InetRequest::WindowLeft(Clock::time_point now, std::int64_t bytes)
{
    const bool first = FWindow.since == Clock::time_point();
    if (first || bytes - FWindow.bytes >= kWindowBytes)
        FWindow = {now, bytes};
    return FRules.RateWindow - Milliseconds(now - FWindow.since);
}

void InetRequest::TakeResult()
{
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(FConnection.Handle(), &left)) {
        if (message->msg != CURLMSG_DONE || message->easy_handle != FHandle.get())
            continue;
        FFinished = true;
        const CURLcode code = message->data.result;
        if (code == CURLE_OK)
            return;
        if (code == CURLE_OUT_OF_MEMORY)
            throw EOutOfMemory();
        FFailure = FailureOf(code);
        // The transport's own words on a connection hold its port, and callers look for numbers in messages.
        const bool tells = FFailure == ifSecureChannel && FErrorText[0] != '\0';
        FFailureText = FFailure == ifCertificateWanted
            ? u"The server asks for a client certificate"_s
            : String::FromUtf8(tells ? &FErrorText[0] : curl_easy_strerror(code));
        return;
    }
}

bool InetRequest::Send(const InetCall& call)
{
    Stop();
    SetCall(call);
    FFinished = false;
    FHeadDone = false;
    FFailure = ifNone;
    FRaised = nullptr;
    FLocation.clear();
    FPending.Clear();
    FHeadBytes = 0;
    FBodyBytes = 0;
    FErrorText[0] = '\0';
    FProgress = {};
    FWindow = {};
    FConnection.CertificateAsked = {call.OffersCertificate, false, {}};
    if (curl_multi_add_handle(FConnection.Handle(), FHandle.get()) != CURLM_OK)
        throw EHtInetException(ifInternal, u"The request cannot be started");
    FRunning = true;
    bool moved = false; // until then the handle tells the times of its last transfer
    Drive([this, &moved] {
        return std::exchange(moved, true) && (FHeadDone || CurrentProgress().stage == stTransferring);
    });
    return FFailure == ifNone;
}

bool InetRequest::Receive()
{
    Drive([this] { return FHeadDone; });
    if (FFailure == ifNone && !FHeadDone) {
        FFailure = ifBadReply;
        FFailureText = u"The reply has no head"_s;
    }
    return FFailure == ifNone;
}

void InetRequest::SkipBody(std::int64_t most)
{
    if (ContentLength() < 0 || ContentLength() > most)
        return;
    Drive([this, most] { return FBodyBytes > most; });
    if (FFailure != ifNone)
        Raise();
}

namespace {

/// Lets the body go to an array until the end of the scope.
class TargetOfBody {
public:
    TargetOfBody(TBytes*& target, TBytes& bytes) noexcept
        : FTarget(target)
    {
        FTarget = &bytes;
    }
    TargetOfBody(const TargetOfBody&) = delete;
    TargetOfBody& operator=(const TargetOfBody&) = delete;
    ~TargetOfBody() { FTarget = nullptr; }

private:
    TBytes*& FTarget;
};

}

bool InetRequest::ReadData(TBytes& bytes)
{
    bytes.Append(FPending);
    const bool hadSome = !FPending.IsEmpty();
    FPending.Clear();
    if (hadSome)
        return true;
    const std::size_t old = bytes.size();
    const TargetOfBody target(FTarget, bytes);
    Drive([&bytes, old] { return bytes.size() > old; });
    if (bytes.size() > old)
        return true;
    if (FFailure != ifNone)
        Raise();
    return false;
}

}
