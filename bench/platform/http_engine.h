// What the measuring programs of HTTP clients share: one address is read again and again, and timed.
// SPDX-License-Identifier: MIT
#pragma once

#include "corpus.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>

namespace bench {

/// Bytes that a client may take at once of a long body; of a short one it takes what it likes.
inline constexpr long kLargeBuffer = 512L << 10U;

/// Time on the wall: a client that waits for its server is no faster for it.
class WallClock {
public:
    double Seconds() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - FStart).count();
    }

private:
    std::chrono::steady_clock::time_point FStart = std::chrono::steady_clock::now();
};

/// Short bodies over one connection, for about half a second.
template <class Client> void MeasureSmall(Client& client, const std::string& address)
{
    constexpr int kWarm = 100;
    constexpr int kBatch = 50;
    constexpr double kSeconds = 0.5;
    for (int i = 0; i < kWarm; ++i)
        client.Get(address);
    double requests = 0;
    const WallClock wall;
    const Clock processor;
    while (wall.Seconds() < kSeconds) {
        for (int i = 0; i < kBatch; ++i)
            client.Get(address);
        requests += kBatch;
    }
    Report("seconds", wall.Seconds());
    Report("processor", processor.Seconds());
    Report("requests", requests);
}

/// One long body: the best of a few, the first of which opens the connection.
template <class Client> void MeasureLarge(Client& client, const std::string& address)
{
    constexpr int kRuns = 4;
    double seconds = 0;
    double processorSeconds = 0;
    std::size_t bytes = 0;
    for (int i = 0; i < kRuns; ++i) {
        const WallClock wall;
        const Clock processor;
        bytes = client.Get(address);
        seconds = i == 0 ? wall.Seconds() : std::min(seconds, wall.Seconds());
        processorSeconds = i == 0 ? processor.Seconds() : std::min(processorSeconds, processor.Seconds());
    }
    Report("seconds", seconds);
    Report("processor", processorSeconds);
    Report("bytes", static_cast<double>(bytes));
}

/// `Client(bufferBytes)` makes a client, 0 for the buffer that it has by itself; `Get(address)` gives the
/// size of a body that was read whole into fresh memory, and throws unless the status is 200. Arguments:
/// small or large, and an address.
template <class Client> int RunClient(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("usage: PROGRAM small|large ADDRESS\n", stderr);
        return 2;
    }
    try {
        const bool isLarge = std::string_view(argv[1]) == "large";
        Client client(isLarge ? kLargeBuffer : 0);
        if (isLarge)
            MeasureLarge(client, argv[2]);
        else
            MeasureSmall(client, argv[2]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

}
