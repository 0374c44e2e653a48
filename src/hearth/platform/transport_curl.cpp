// Connections and requests on libcurl: their options, and the head and body of a reply.
// SPDX-License-Identifier: MIT
#include <hearth/platform/transport_curl_p.h>

#include <hearth/platform/pipe_signal_p.h>
#include <hearth/runtime/text_format.h>

#include <curl/curl.h>

#include <algorithm>

namespace ht::detail {

namespace {

/// Heads before the real one, and lines behind the body, count too.
constexpr std::int64_t kMaxHeadBytes = std::int64_t{256} << 10U;

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

/// No request here asks for a coding, so none may come; the transport would undo it all the same, and a few
/// bytes could become any number of them.
void RequireNoCoding(std::string_view transferEncoding)
{
    const String value = String::FromLatin1(transferEncoding);
    if (!SameText(value, u"chunked") && !SameText(value, u"identity"))
        throw EHtInetException(ifBadReply, u"The reply has a transfer encoding that nobody asked for");
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
    SetOption(FHandle.get(), CURLOPT_ERRORBUFFER, &FErrorText[0]);
    SetOption(FHandle.get(), CURLOPT_NOSIGNAL, 1L);
    SetOption(FHandle.get(), CURLOPT_HEADERFUNCTION, &InetRequest::TakeHead);
    SetOption(FHandle.get(), CURLOPT_HEADERDATA, this);
    SetOption(FHandle.get(), CURLOPT_WRITEFUNCTION, &InetRequest::TakeBody);
    SetOption(FHandle.get(), CURLOPT_WRITEDATA, this);
    SetOption(FHandle.get(), CURLOPT_BUFFERSIZE, kBufferBytes);
    SetOption(FHandle.get(), CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    SetOption(FHandle.get(), CURLOPT_PROTOCOLS_STR, "http,https");
    // The end of a transfer would wait for a name server that does not answer.
    SetOption(FHandle.get(), CURLOPT_QUICK_EXIT, 1L);
    const char* authorities = nullptr;
    if (curl_easy_getinfo(FHandle.get(), CURLINFO_CAINFO, &authorities) == CURLE_OK && authorities)
        FSystemAuthorities = authorities;
    if (curl_easy_getinfo(FHandle.get(), CURLINFO_CAPATH, &authorities) == CURLE_OK && authorities)
        FSystemAuthorityFolder = authorities;
}

InetRequest::~InetRequest()
{
    Stop();
}

void InetRequest::FreeHandle::operator()(CURL* handle) const noexcept
{
    const PipeSignalBlock quiet;
    curl_easy_cleanup(handle);
}

void InetRequest::FreeList::operator()(curl_slist* list) const noexcept
{
    curl_slist_free_all(list);
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
    SetOption(FHandle.get(), CURLOPT_SSL_VERIFYPEER, verified ? 1L : 0L);
    SetOption(FHandle.get(), CURLOPT_SSL_VERIFYHOST, verified ? 2L : 0L);
    const bool old = rules.Protocol == TransferRules::prFromTls10;
    // This names the oldest version; the newest stays the newest that the TLS library has.
    SetOption(FHandle.get(), CURLOPT_SSLVERSION,
        static_cast<long>(old ? CURL_SSLVERSION_TLSv1_0 : CURL_SSLVERSION_TLSv1_2));
    // An empty name means no proxy, null the one of the system.
    SetOption(FHandle.get(), CURLOPT_PROXY, rules.Way == TransferRules::wrDirect ? "" : nullptr);
    const bool own = !rules.TrustedCertificates.IsEmpty();
    const std::string file = own ? rules.TrustedCertificates.ToUtf8() : FSystemAuthorities;
    const std::string folder = own ? std::string() : FSystemAuthorityFolder;
    SetOption(FHandle.get(), CURLOPT_CAINFO, file.empty() ? nullptr : file.c_str());
    SetOption(FHandle.get(), CURLOPT_CAPATH, folder.empty() ? nullptr : folder.c_str());
    if (!IsOnOpenSsl())
        return;
    // Versions below 1.2 need hashes that the library's own level refuses.
    SetOption(FHandle.get(), CURLOPT_SSL_CIPHER_LIST, old ? "DEFAULT@SECLEVEL=0" : nullptr);
    SetOption(FHandle.get(), CURLOPT_SSL_CTX_FUNCTION, &InetRequest::WatchContext);
    SetOption(FHandle.get(), CURLOPT_SSL_CTX_DATA, this);
}

void InetRequest::SetCertificate(const THtClientCertificate* certificate)
{
    const bool given = certificate != nullptr;
    SetOption(FHandle.get(), CURLOPT_SSLCERT, given ? certificate->FileName.ToUtf8().c_str() : nullptr);
    SetOption(FHandle.get(), CURLOPT_SSLCERTTYPE, given && certificate->IsPkcs12 ? "P12" : "PEM");
    const bool locked = given && !certificate->Password.IsEmpty();
    SetOption(FHandle.get(), CURLOPT_KEYPASSWD, locked ? certificate->Password.ToUtf8().c_str() : nullptr);
}

void InetRequest::SetHeaders(const HeaderLines& lines)
{
    std::unique_ptr<curl_slist, FreeList> list;
    const auto add = [&list](const char* line) {
        curl_slist* const longer = curl_slist_append(list.get(), line);
        if (!longer)
            throw EOutOfMemory();
        static_cast<void>(list.release()); // a part of the longer one
        list.reset(longer);
    };
    for (const std::string& line : lines)
        add(line.c_str());
    // What the transport would add by itself.
    add("Accept:");
    add("Expect:");
    if (std::none_of(lines.begin(), lines.end(),
            [](const std::string& line) { return line.starts_with("Content-Type:"); }))
        add("Content-Type:");
    SetOption(FHandle.get(), CURLOPT_HTTPHEADER, list.get());
    FHeaders = std::move(list);
}

void InetRequest::SetCall(const InetCall& call)
{
    SetHeaders(call.Headers);
    SetOption(FHandle.get(), CURLOPT_URL, call.Address.Text().c_str());
    const bool posts = !call.Body.empty() || call.Verb == "POST";
    SetOption(FHandle.get(), posts ? CURLOPT_POST : CURLOPT_HTTPGET, 1L);
    SetOption(FHandle.get(), CURLOPT_CUSTOMREQUEST, call.Verb.c_str());
    if (!posts)
        return;
    SetOption(FHandle.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(call.Body.size()));
    SetOption(FHandle.get(), CURLOPT_POSTFIELDS, call.Body.empty() ? "" : call.Body.data());
}

void InetRequest::Stop() noexcept
{
    if (!FRunning)
        return;
    const PipeSignalBlock quiet;
    curl_multi_remove_handle(FConnection.Handle(), FHandle.get());
    FRunning = false;
}

void InetRequest::Raise() const
{
    throw EHtInetException(FFailure, FFailureText);
}

std::int64_t InetRequest::Number(int info) const
{
    curl_off_t value = 0;
    curl_easy_getinfo(FHandle.get(), static_cast<CURLINFO>(info), &value);
    return value;
}

std::uint32_t InetRequest::Status() const
{
    long status = 0;
    curl_easy_getinfo(FHandle.get(), CURLINFO_RESPONSE_CODE, &status);
    return static_cast<std::uint32_t>(status);
}

std::int64_t InetRequest::ContentLength() const
{
    return Number(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
}

String InetRequest::ContentType() const
{
    const char* text = nullptr;
    curl_easy_getinfo(FHandle.get(), CURLINFO_CONTENT_TYPE, &text);
    return text ? String::FromUtf8(text) : String();
}

bool InetRequest::IsRedirect() const
{
    return !FLocation.empty() && IsRedirectStatus(Status());
}

String InetRequest::Location() const
{
    return IsRedirect() ? String::FromUtf8(FLocation) : String();
}

void InetRequest::CheckBody(std::int64_t bytes) const
{
    if (FRules.MaxBody > 0 && bytes > FRules.MaxBody)
        throw EHtInetException(
            Format(u"The body is longer than %d bytes, the limit HttpBody", {FRules.MaxBody}));
}

void InetRequest::TakeHeadLine(std::string_view line)
{
    if (line.starts_with("HTTP/")) {
        FLocation.clear();
        return;
    }
    const std::size_t colon = std::min(line.find(':'), line.size());
    const String name = String::FromLatin1(line.substr(0, colon));
    const std::string_view value = TrimBytes(line.substr(std::min(colon + 1, line.size())));
    if (SameText(name, u"location"))
        FLocation = value;
    else if (SameText(name, u"transfer-encoding"))
        RequireNoCoding(value);
    if (TrimBytes(line).empty() && Status() >= 200)
        FHeadDone = true;
}

std::size_t InetRequest::TakeHead(char* bytes, std::size_t size, std::size_t count, void* request) noexcept
{
    InetRequest& self = *static_cast<InetRequest*>(request);
    try {
        self.FHeadBytes += static_cast<std::int64_t>(size * count);
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

/// A piece may hold far more than what moved on the wire, so each is looked at by itself.
void InetRequest::TakeBodyPiece(std::string_view piece)
{
    FBodyBytes += static_cast<std::int64_t>(piece.size());
    if (IsRedirect()) // of no use
        return;
    CheckBody(FBodyBytes);
    TBytes& target = FTarget ? *FTarget : FPending;
    target.Append({reinterpret_cast<const std::uint8_t*>(piece.data()), piece.size()});
}

std::size_t InetRequest::TakeBody(char* bytes, std::size_t size, std::size_t count, void* request) noexcept
{
    InetRequest& self = *static_cast<InetRequest*>(request);
    try {
        self.TakeBodyPiece({bytes, size * count});
        return size * count;
    } catch (...) {
        self.FRaised = std::current_exception();
        return 0;
    }
}

int InetRequest::WatchContext(CURL*, void* context, void* request) noexcept
{
    WatchCertificateRequest(context, static_cast<InetRequest*>(request)->FConnection.CertificateAsked);
    return CURLE_OK;
}

}
