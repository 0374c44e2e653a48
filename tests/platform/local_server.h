// A server of the test's own on the loopback.
// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <string_view>
#include <thread>

namespace ht {

/// Takes so many connections, one after the other, and hands each to a function. Ends when it has had them.
class LocalServer {
public:
    LocalServer(int connections, std::function<void(int connection)> serve)
        : FListener(socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const plain = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(FListener, plain, size), 0);
        EXPECT_EQ(listen(FListener, 16), 0);
        EXPECT_EQ(getsockname(FListener, plain, &size), 0);
        FHost = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
        FThread = std::thread([this, connections, serve = std::move(serve)] {
            for (int i = 0; i < connections; ++i) {
                const int connection = accept(FListener, nullptr, nullptr);
                serve(connection);
                close(connection);
            }
        });
    }
    LocalServer(const LocalServer&) = delete;
    LocalServer& operator=(const LocalServer&) = delete;
    ~LocalServer()
    {
        FThread.join();
        close(FListener);
    }

    /// With the port.
    const std::string& Host() const noexcept { return FHost; }

    /// The head of one request; less when the connection ends.
    static std::string ReadHead(int connection)
    {
        std::string request;
        char piece[4096];
        while (request.find("\r\n\r\n") == std::string::npos) {
            const ssize_t count = recv(connection, piece, sizeof piece, 0);
            if (count <= 0)
                break;
            request.append(piece, static_cast<std::size_t>(count));
        }
        return request;
    }
    /// False when nobody listens any more.
    static bool Write(int connection, std::string_view bytes)
    {
        return send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL)
            == static_cast<ssize_t>(bytes.size());
    }

private:
    int FListener;
    std::string FHost;
    std::thread FThread;
};

}
