// Our HTTP client.
// SPDX-License-Identifier: MIT
#include "platform/http_engine.h"

#include <hearth/platform/http_client.h>

#include <stdexcept>

namespace {

class Hearth {
public:
    /// It has one buffer for all bodies.
    explicit Hearth(long) { }

    std::size_t Get(const std::string& address)
    {
        const ht::TBytes body = FClient.GetBytes(ht::String::FromUtf8(address));
        if (FClient.ResponseCode != 200)
            throw std::runtime_error("status " + std::to_string(FClient.ResponseCode));
        return body.size();
    }

private:
    ht::THtInetClient FClient;
};

}

int main(int argc, char** argv)
{
    return bench::RunClient<Hearth>(argc, argv);
}
