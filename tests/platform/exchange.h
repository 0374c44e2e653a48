// An exchange of a data file, played between a client and a server of ours on the loopback.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ht {

/// What the file says should be asked and answered, and what was.
struct Played {
    std::string Expected;
    std::string Actual;
};

/// A file is a sequence of sections, "[name words]" and the lines below it:
/// call: lines for the client, "Field = value" or "Get address", "GetBytes address", "Post
/// address|body|type",
///   "Delete address|body|type", "Load address"; "new" makes another client.
/// request N: what the server must get, on its connection N. reply: what it answers; "close" ends the
/// connection
///   behind it, "stall" sends no more, "endless" goes on for ever, "heads" with heads.
/// result: status, content type and the text below them, or the exception; "..." at its end stands for the
/// rest. tls: what the secure port speaks: 1.0, 1.2 or 1.3; "client" asks for a certificate,
///   "names" names the authorities of those that are accepted and answers with a page of its own. %HTTP% and
/// %HTTPS% are host and port of the two servers, %HTTPPORT% and %HTTPSPORT% the ports, %AGENT% is the two
/// last header lines, %DIR% a folder with certificates.
Played PlayExchange(const std::string& file);

}
