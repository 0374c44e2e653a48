// Time: what a transfer may take at each of its stages.
// SPDX-License-Identifier: MIT
#include <hearth/platform/transport_curl_p.h>

#include "platform/local_server.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <netdb.h>
#include <poll.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace {

/// Keeps questions for names without an answer while it lives.
class SilentNameServer {
public:
    SilentNameServer() { FSilent = true; }
    SilentNameServer(const SilentNameServer&) = delete;
    SilentNameServer& operator=(const SilentNameServer&) = delete;
    ~SilentNameServer()
    {
        std::unique_lock lock(FLock);
        FSilent = false;
        FChanged.notify_all();
        FChanged.wait(lock, [] { return FWaiting == 0; });
    }

    static void Wait()
    {
        std::unique_lock lock(FLock);
        ++FWaiting;
        FChanged.wait_for(lock, std::chrono::seconds(30), [] { return !FSilent; });
        --FWaiting;
        FChanged.notify_all();
    }

private:
    static inline std::mutex FLock;
    static inline std::condition_variable FChanged;
    static inline bool FSilent = false;
    static inline int FWaiting = 0;
};

}

/// In front of the system's, which the transport calls in a thread of its own.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(
    const char* name, const char* service, const addrinfo* hints, addrinfo** found)
{
    SilentNameServer::Wait();
    using Resolve = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const auto next = reinterpret_cast<Resolve>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return next(name, service, hints, found);
}

namespace ht {
namespace {

using detail::InetConnection;
using detail::InetRequest;
using detail::TransferRules;

constexpr std::int32_t kShort = 150; // milliseconds

/// How a call ends that reads all there is.
THtInetFailure FailureOf(const std::string& address, const TransferRules& rules)
{
    const auto start = std::chrono::steady_clock::now();
    THtInetFailure failure = ifNone;
    {
        detail::OpenInetSession();
        const detail::InetCall call{"GET", detail::CrackAddress(String::FromUtf8(address)), {}, {}};
        InetConnection connection(call.Address);
        InetRequest request(connection, call.Verb);
        request.SetRules(rules);
        try {
            TBytes bytes;
            if (!request.Send(call) || !request.Receive())
                request.Raise();
            while (request.ReadData(bytes)) { }
        } catch (const EHtInetException& error) {
            failure = error.Failure;
        }
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << address;
    return failure;
}

TEST(transport, a_name_server_without_an_answer_does_not_hold_the_call)
{
    const SilentNameServer silent;
    TransferRules rules;
    rules.ResolveTimeOut = kShort;
    EXPECT_EQ(FailureOf("http://nowhere.example/", rules), ifTimeOut);
}

TEST(transport, a_handshake_that_stalls_counts_as_connecting)
{
    const LocalServer server(1, [](int connection) {
        char piece[4096];
        while (recv(connection, piece, sizeof piece, 0) > 0) { }
    });
    TransferRules rules;
    rules.ConnectTimeOut = kShort;
    EXPECT_EQ(FailureOf("https://" + server.Host() + "/", rules), ifTimeOut);
}

TEST(transport, a_server_that_drips_comes_to_an_end)
{
    const std::string heads[] = {"HTTP/1.1 200 ", "HTTP/1.1 200 OK\r\nX: ", "HTTP/1.1 200 OK\r\n\r\n"};
    for (const std::string& head : heads) {
        const LocalServer server(1, [&head](int connection) {
            LocalServer::ReadHead(connection);
            pollfd hangup{connection, POLLRDHUP, 0};
            for (bool heard = LocalServer::Write(connection, head); heard && poll(&hangup, 1, 10) == 0;)
                heard = LocalServer::Write(connection, "x");
        });
        TransferRules rules;
        rules.RateWindow = 2 * kShort;
        EXPECT_EQ(FailureOf("http://" + server.Host() + "/", rules), ifTimeOut) << head;
    }
}

TEST(transport, a_slow_server_may_go_on_while_enough_comes)
{
    constexpr int kPieces = 20;
    const LocalServer server(1, [](int connection) {
        LocalServer::ReadHead(connection);
        LocalServer::Write(connection, "HTTP/1.1 200 OK\r\n\r\n");
        pollfd hangup{connection, POLLRDHUP, 0};
        for (int i = 0; i < kPieces && poll(&hangup, 1, kShort / 5) == 0; ++i)
            LocalServer::Write(connection, std::string(2000, 'x'));
    });
    TransferRules rules;
    rules.RateWindow = 2 * kShort;
    EXPECT_EQ(FailureOf("http://" + server.Host() + "/", rules), ifNone);
}

}
}
