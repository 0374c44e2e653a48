// Reading addresses.
// SPDX-License-Identifier: MIT
#include "address.h"

#include "errors.h"

#include <hearth/runtime/text.h>

#if defined(HEARTH_NET)
#include <hearth/foundation/resource_loader.h>
#include <hearth/platform/http_client.h>
#endif

#include <string_view>

namespace hearth_cli {

bool IsAddress(const std::string& place)
{
    const ht::String start = ht::String::FromLatin1(std::string_view(place).substr(0, 8)).ToLowerAscii();
    return start.View().starts_with(u"http://") || start.View().starts_with(u"https://");
}

#if defined(HEARTH_NET)

Fetched Fetch(const std::string& address)
{
    ht::THtInetClient client;
    client.SecurityPolicy = ht::spStrict;
    return Fetch(address, client);
}

Fetched Fetch(const std::string& address, ht::THtInetClient& client)
{
    const ht::String text = ht::String::FromUtf8(address);
    if (text.Length() > ht::THtInetClient::kMaxBytesAddress)
        throw FileError(address.substr(0, 60) + "...", "the address is too long");
    try {
        const ht::TBytes bytes = client.GetBytes(text);
        RequireSuccess(address, client);
        return {std::string(bytes.begin(), bytes.end()),
            ht::CharsetOfContentType(client.ResponseContentType).ToUtf8()};
    } catch (const ht::EHtInetException& error) {
        throw FileError(address, error.what());
    }
}

void RequireSuccess(const std::string& address, const ht::THtInetClient& client)
{
    if (client.ResponseCode >= 400)
        throw FileError(address, "the server answers with status " + std::to_string(client.ResponseCode));
}

#else

Fetched Fetch(const std::string&)
{
    throw UsageError("addresses need the HTTP client");
}

#endif

}
