// Reading addresses.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ht {
class THtInetClient;
}

namespace hearth_cli {

/// What an address holds.
struct Fetched {
    std::string Bytes;
    std::string Charset; // that the server told; empty if none
};

/// True for what begins like an http or https address.
bool IsAddress(const std::string& place);

/// Reads an address under the strict policy. Throws FileError, also for statuses from 400 on, and UsageError
/// when the command was built without the HTTP client.
Fetched Fetch(const std::string& address);

/// Reads an address with a client that is made ready. Throws like the other.
Fetched Fetch(const std::string& address, ht::THtInetClient& client);

/// Throws FileError when the last response of `client` has a status from 400 on.
void RequireSuccess(const std::string& address, const ht::THtInetClient& client);

}
