// Connections and requests on libcurl: their options, and the head and body of a reply.
// SPDX-License-Identifier: MIT
#include <hearth/platform/transport_curl_p.h>

#include <hearth/platform/pipe_signal_p.h>

#include <curl/curl.h>

#include <algorithm>

namespace ht::detail {

namespace {

/// Heads before the real one, and lines behind the body, count too.
constexpr std::size_t kMaxHeadBytes = std::size_t{256} << 10U;

/// What is taken from the system at once.
constexpr long kBufferBytes = 512L << 10U;

class Session {
public:
    Session()
    {
        if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
            throw EHtInetException(ifInternal, u"The transport cannot be started");
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() { curl_global_cleanup(); }
};

/// Contexts and cipher lists are those of one TLS library.
bool IsOnOpenSsl()
{
    static const bool answer = [] {
        const char* const library = curl_version_info(CURLVERSION_NOW)->ssl_version;
        return library && std::string_view(library).starts_with("OpenSSL/");
    }();
    return answer;
}

template <class Value> void SetOption(CURL* handle, CURLoption option, Value value)
{
    const CURLcode code = curl_easy_setopt(handle, option, value);
    if (code == CURLE_OUT_OF_MEMORY)
        throw EOutOfMemory();
    if (code != CURLE_OK)
        throw EHtInetException(ifInternal, String::FromUtf8(curl_easy_strerror(code)));
}

std::string_view TrimBytes(std::string_view text) noexcept
{
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    return start == std::string_view::npos ? std::string_view()
                                           : text.substr(start, text.find_last_not_of(" \t\r\n") - start + 1);
}

bool IsRedirectStatus(std::uint32_t status) noexcept
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

}

void OpenInetSession()
{
    static const Session session;
}

InetConnection::InetConnection(const InetAddress& server)
    : FServer(server)
    , FHandle(curl_multi_init())
{
    if (!FHandle)
        throw EOutOfMemory();
}

InetConnection::~InetConnection()
{
    const PipeSignalBlock quiet;
    curl_multi_cleanup(FHandle);
}

InetRequest::InetRequest(InetConnection& connection, std::string verb)
    : FConnection(connection)
    , FVerb(std::move(verb))
    , FHandle(curl_easy_init())
{
    static_assert(sizeof FErrorText >= CURL_ERROR_SIZE);
    if (!FHandle)
        throw EOutOfMemory();
    FErrorText[0] = '\0';
    SetOption(FHandle, CURLOPT_ERRORBUFFER, &FErrorText[0]);
    SetOption(FHandle, CURLOPT_NOSIGNAL, 1L);
    SetOption(FHandle, CURLOPT_HEADERFUNCTION, &InetRequest::TakeHead);
    SetOption(FHandle, CURLOPT_HEADERDATA, this);
    SetOption(FHandle, CURLOPT_WRITEFUNCTION, &InetRequest::TakeBody);
    SetOption(FHandle, CURLOPT_WRITEDATA, this);
    SetOption(FHandle, CURLOPT_BUFFERSIZE, kBufferBytes);
    SetOption(FHandle, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    SetOption(FHandle, CURLOPT_PROTOCOLS_STR, "http,https");
    const char* authorities = nullptr;
    if (curl_easy_getinfo(FHandle, CURLINFO_CAINFO, &authorities) == CURLE_OK && authorities)
        FSystemAuthorities = authorities;
}

InetRequest::~InetRequest()
{
    Stop();
    const PipeSignalBlock quiet;
    curl_easy_cleanup(FHandle);
    curl_slist_free_all(FHeaders);
}

void InetRequest::SetRules(const TransferRules& rules)
{
    if (FHasRules && rules == FRules) // most calls: each of the options below is copied
        return;
    FHasRules = false;
    FRules = rules;
    SetOptions();
    FHasRules = true;
}

void InetRequest::SetOptions()
{
    const TransferRules& rules = FRules;
    const bool verified = rules.Trust == TransferRules::trVerified;
    SetOption(FHandle, CURLOPT_SSL_VERIFYPEER, verified ? 1L : 0L);
    SetOption(FHandle, CURLOPT_SSL_VERIFYHOST, verified ? 2L : 0L);
    const bool old = rules.Protocol == TransferRules::prFromTls10;
    // This names the oldest version; the newest stays the newest that the TLS library has.
    SetOption(FHandle, CURLOPT_SSLVERSION,
        static_cast<long>(old ? CURL_SSLVERSION_TLSv1_0 : CURL_SSLVERSION_TLSv1_2));
    // An empty name means no proxy, null the one of the system.
    SetOption(FHandle, CURLOPT_PROXY, rules.Way == TransferRules::wrDirect ? "" : nullptr);
    const std::string authorities =
        rules.TrustedCertificates.IsEmpty() ? FSystemAuthorities : rules.TrustedCertificates.ToUtf8();
    if (!authorities.empty())
        SetOption(FHandle, CURLOPT_CAINFO, authorities.c_str());
    if (!IsOnOpenSsl())
        return;
    // Versions below 1.2 need hashes that the library's own level refuses.
    SetOption(FHandle, CURLOPT_SSL_CIPHER_LIST, old ? "DEFAULT@SECLEVEL=0" : nullptr);
    SetOption(FHandle, CURLOPT_SSL_CTX_FUNCTION, &InetRequest::WatchContext);
    SetOption(FHandle, CURLOPT_SSL_CTX_DATA, this);
}

void InetRequest::SetCertificate(const THtClientCertificate* certificate)
{
    const bool given = certificate != nullptr;
    SetOption(FHandle, CURLOPT_SSLCERT, given ? certificate->FileName.ToUtf8().c_str() : nullptr);
    SetOption(FHandle, CURLOPT_SSLCERTTYPE, given && certificate->IsPkcs12 ? "P12" : "PEM");
    const bool locked = given && !certificate->Password.IsEmpty();
    SetOption(FHandle, CURLOPT_KEYPASSWD, locked ? certificate->Password.ToUtf8().c_str() : nullptr);
}

void InetRequest::SetHeaders(const HeaderLines& lines)
{
    const std::unique_ptr<curl_slist, void (*)(curl_slist*)> old(FHeaders, curl_slist_free_all);
    FHeaders = nullptr;
    const auto add = [this](const char* line) {
        curl_slist* const longer = curl_slist_append(FHeaders, line);
        if (!longer)
            throw EOutOfMemory();
        FHeaders = longer;
    };
    for (const std::string& line : lines)
        add(line.c_str());
    // What the transport would add by itself.
    add("Accept:");
    add("Expect:");
    SetOption(FHandle, CURLOPT_HTTPHEADER, FHeaders);
}

void InetRequest::SetCall(const InetCall& call)
{
    SetHeaders(call.Headers);
    SetOption(FHandle, CURLOPT_URL, call.Address.Text().c_str());
    const bool posts = !call.Body.empty() || call.Verb == "POST";
    SetOption(FHandle, posts ? CURLOPT_POST : CURLOPT_HTTPGET, 1L);
    SetOption(FHandle, CURLOPT_CUSTOMREQUEST, call.Verb.c_str());
    if (!posts)
        return;
    SetOption(FHandle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(call.Body.size()));
    SetOption(FHandle, CURLOPT_POSTFIELDS, call.Body.empty() ? "" : call.Body.data());
}

void InetRequest::Stop() noexcept
{
    if (!FRunning)
        return;
    const PipeSignalBlock quiet;
    curl_multi_remove_handle(FConnection.Handle(), FHandle);
    FRunning = false;
}

void InetRequest::Raise() const
{
    throw EHtInetException(FFailure, FFailureText);
}

std::int64_t InetRequest::Number(int info) const
{
    curl_off_t value = 0;
    curl_easy_getinfo(FHandle, static_cast<CURLINFO>(info), &value);
    return value;
}

std::uint32_t InetRequest::Status() const
{
    long status = 0;
    curl_easy_getinfo(FHandle, CURLINFO_RESPONSE_CODE, &status);
    return static_cast<std::uint32_t>(status);
}

std::int64_t InetRequest::ContentLength() const
{
    return Number(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
}

String InetRequest::ContentType() const
{
    const char* text = nullptr;
    curl_easy_getinfo(FHandle, CURLINFO_CONTENT_TYPE, &text);
    return text ? String::FromUtf8(text) : String();
}

String InetRequest::Location() const
{
    return IsRedirectStatus(Status()) ? String::FromUtf8(FLocation) : String();
}

void InetRequest::TakeHeadLine(std::string_view line)
{
    constexpr std::u16string_view kLocation = u"location";
    if (line.starts_with("HTTP/")) {
        FLocation.clear();
        return;
    }
    const std::size_t colon = line.find(':');
    if (colon != std::string_view::npos && SameText(String::FromLatin1(line.substr(0, colon)), kLocation))
        FLocation = TrimBytes(line.substr(colon + 1));
    if (TrimBytes(line).empty() && Status() >= 200)
        FHeadDone = true;
}

std::size_t InetRequest::TakeHead(char* bytes, std::size_t size, std::size_t count, void* request) noexcept
{
    InetRequest& self = *static_cast<InetRequest*>(request);
    try {
        ++self.FPieces;
        self.FHeadBytes += size * count;
        if (self.FHeadBytes > kMaxHeadBytes)
            throw EHtInetException(ifBadReply, u"The head of the reply does not end");
        if (!self.FHeadDone) // later lines are trailers
            self.TakeHeadLine({bytes, size * count});
        return size * count;
    } catch (...) {
        self.FRaised = std::current_exception();
        return 0;
    }
}

std::size_t InetRequest::TakeBody(char* bytes, std::size_t size, std::size_t count, void* request) noexcept
{
    InetRequest& self = *static_cast<InetRequest*>(request);
    try {
        ++self.FPieces;
        TBytes& target = self.FTarget ? *self.FTarget : self.FPending;
        target.Append({reinterpret_cast<const std::uint8_t*>(bytes), size * count});
        return size * count;
    } catch (...) {
        self.FRaised = std::current_exception();
        return 0;
    }
}

int InetRequest::WatchContext(CURL*, void* context, void* request) noexcept
{
    WatchQuestion(context, static_cast<InetRequest*>(request)->FConnection.Question);
    return CURLE_OK;
}

}
