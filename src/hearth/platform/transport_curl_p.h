// Connections and requests on libcurl: the operations that the HTTP client makes its decisions over.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/platform/address_p.h>
#include <hearth/platform/certificates_p.h>
#include <hearth/platform/http_headers_p.h>
#include <hearth/platform/inet_error.h>
#include <hearth/runtime/array.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

typedef void CURL;
typedef void CURLM;
struct curl_slist;

namespace ht::detail {

/// Opens the session that all clients of the process share, once; it is closed when the process ends. Throws
/// EHtInetException.
void OpenInetSession();

/// How a request is carried.
struct TransferRules {
    enum TrustRule : std::uint8_t { trAnyone, trVerified };
    enum WayRule : std::uint8_t { wrSystemProxy, wrDirect };
    enum ProtocolRule : std::uint8_t { prFromTls10, prFromTls12 };

    TrustRule Trust = trAnyone;
    WayRule Way = wrSystemProxy;
    ProtocolRule Protocol = prFromTls10;
    // Milliseconds.
    std::int32_t ResolveTimeOut = 60'000;
    std::int32_t ConnectTimeOut = 60'000; // until TLS is agreed upon
    std::int32_t TimeOut = 30'000; // without a byte sent or received
    std::int64_t RateWindow = 0; // in which a kilobyte must move; 0 is no bound
    std::int64_t MaxBody = 0; // bytes; 0 is no bound
    String TrustedCertificates; // file of authorities, in place of the system's; those when empty

    bool operator==(const TransferRules&) const = default;
};

/// What is asked of a server.
struct InetCall {
    std::string Verb;
    InetAddress Address;
    HeaderLines Headers;
    std::string_view Body;
    /// Ends the handshake of a connection whose server asks for a certificate when none is set: the call
    /// fails with ifCertificateWanted, and nothing of it was sent.
    bool OffersCertificate = false;
};

/// An open connection, and those that redirects led to. Requests on it end before it does.
class InetConnection {
public:
    explicit InetConnection(const InetAddress& server);
    InetConnection(const InetConnection&) = delete;
    InetConnection& operator=(const InetConnection&) = delete;
    ~InetConnection();

    const InetAddress& Server() const noexcept { return FServer; }
    CURLM* Handle() const noexcept { return FHandle; }

    /// What the server last asked for.
    CertificateRequest CertificateAsked;

private:
    InetAddress FServer; // its path means nothing
    CURLM* FHandle;
};

/// One request, which can be sent any number of times. What fails is told by Send and Receive and raised by
/// Raise; everything else throws EHtInetException.
class InetRequest {
public:
    /// Lifetime: `connection` outlives the request.
    InetRequest(InetConnection& connection, std::string verb);
    InetRequest(const InetRequest&) = delete;
    InetRequest& operator=(const InetRequest&) = delete;
    ~InetRequest();

    const std::string& Verb() const noexcept { return FVerb; }

    void SetRules(const TransferRules& rules);
    /// Null for none.
    void SetCertificate(const THtClientCertificate* certificate);

    /// Sends; false when no connection came about. Lifetime: the body lives until Stop.
    bool Send(const InetCall& call);
    /// Waits for the head of the reply; false when it did not come.
    bool Receive();
    THtInetFailure Failure() const noexcept { return FFailure; }
    [[noreturn]] void Raise() const;

    std::uint32_t Status() const;
    /// -1 when it was not told.
    std::int64_t ContentLength() const;
    String ContentType() const;
    /// Where a redirect leads, as it was told; empty when the reply is none.
    String Location() const;

    /// Throws EHtInetException for more bytes of a body than the rules allow.
    void CheckBody(std::int64_t bytes) const;
    /// Appends what is available of the body, and waits while that is nothing; false at its end. Nothing of
    /// the body of a redirect.
    bool ReadData(TBytes& bytes);
    /// Reads the body of a redirect to its end, unless more than `most` bytes are announced or come.
    void SkipBody(std::int64_t most);
    /// Ends the transfer; the connection can be used again when the reply was read to its end.
    void Stop() noexcept;

private:
    enum Stage : std::uint8_t { stResolving, stConnecting, stTransferring };
    using Clock = std::chrono::steady_clock;

    /// What moves when a transfer does.
    struct Progress {
        Stage stage = stResolving;
        std::int64_t bytes = 0; // sent and received
        bool operator==(const Progress&) const = default;
    };
    /// A stretch of time in which a least number of bytes must move.
    struct Window {
        Clock::time_point since;
        std::int64_t bytes = 0; // that had moved in front of it
    };
    struct FreeHandle {
        void operator()(CURL* handle) const noexcept;
    };
    struct FreeList {
        void operator()(curl_slist* list) const noexcept;
    };

    static std::size_t TakeHead(char* bytes, std::size_t size, std::size_t count, void* request) noexcept;
    static std::size_t TakeBody(char* bytes, std::size_t size, std::size_t count, void* request) noexcept;
    static int WatchContext(CURL* handle, void* context, void* request) noexcept;

    template <class Done> void Drive(Done done);
    Progress CurrentProgress() const;
    std::int32_t Allowance(Stage stage) const noexcept;
    /// Milliseconds until the transfer counts as dead.
    std::int64_t TimeLeft();
    std::int64_t WindowLeft(Clock::time_point now, std::int64_t bytes);
    void TakeResult();
    THtInetFailure FailureOf(int code) const;
    /// Those of the rules.
    void SetOptions();
    void SetHeaders(const HeaderLines& lines);
    void SetCall(const InetCall& call);
    bool IsRedirect() const;
    void TakeHeadLine(std::string_view line);
    void TakeBodyPiece(std::string_view piece);
    std::int64_t Number(int info) const;

    InetConnection& FConnection;
    std::string FVerb;
    std::unique_ptr<CURL, FreeHandle> FHandle;
    std::unique_ptr<curl_slist, FreeList> FHeaders;
    TransferRules FRules;
    bool FHasRules = false;
    std::string FSystemAuthorities; // a file
    std::string FSystemAuthorityFolder;
    bool FRunning = false;
    bool FFinished = false;
    bool FHeadDone = false;
    THtInetFailure FFailure = ifNone;
    String FFailureText;
    std::exception_ptr FRaised; // in a callback, which must not throw
    std::string FLocation;
    TBytes FPending; // of the body, before anybody reads
    TBytes* FTarget = nullptr; // where the body goes while somebody does
    std::int64_t FHeadBytes = 0;
    std::int64_t FBodyBytes = 0;
    Progress FProgress;
    Clock::time_point FSince;
    Window FWindow;
    char FErrorText[256]; // CURL_ERROR_SIZE
};

}
