// An exchange of a data file, played between a client and a server of ours on the loopback.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ht {

/// What the file says should be asked and answered, and what was.
struct Played {
    std::string Expected;
    std::string Actual;
    bool IsPossible = true; // false when this machine does not allow what the file needs
};

/// A file is a sequence of sections, "[name words]" and the lines below it.
///
/// call: lines for the client. "new" makes another one; "Field = value" sets a field; then one call: "Get
/// address", "GetBytes address", "Post address|body|type", "Delete address|body|type", "Load address".
///
/// request N NAME: what the server must get, on its connection N, from a client with a certificate of that
/// name.
///
/// reply: what it answers. "close" ends the connection behind it, "reset" in place of it; "stall" sends no
/// more, "endless" goes on for ever, "heads" with heads.
///
/// result: status, content type and the text below them, or the exception. "..." stands for the rest.
///
/// tls: what the secure port speaks. "1.0", "1.2" and "1.3" are versions; "client" asks for a certificate,
/// "optional" does so and needs none, "names" names the authorities of those that are accepted and answers
/// with a page of its own; "once" speaks TLS on the first connection only.
///
/// %HTTP% and %HTTPS% are host and port of the two servers, %HTTPPORT% and %HTTPSPORT% the ports, %AGENT% is
/// the two last header lines, %DIR% a folder with certificates.
Played PlayExchange(const std::string& file);

}
