// Where a command reads from, and how bytes become its text.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/html_parser.h>
#include <hearth/runtime/text.h>

#include <cstddef>
#include <optional>
#include <string>

namespace CLI {
class App;
class Option;
}

namespace hearth_cli {

struct Fetched;

/// The input of one command: a file, an http or https address, or standard input for "-" and for a pipe when
/// nothing is named. Reading throws FileError, UsageError for an address when the command was built without
/// the HTTP client, and HelpWanted when nothing is named and standard input is a terminal.
class Input {
public:
    /// Adds the argument that names the input. Lifetime: this object outlives the parsing.
    CLI::Option* AddTo(CLI::App& command, const char* name = "INPUT");
    /// Adds --encoding.
    void AddEncodingTo(CLI::App& command);

    /// The path when a file that can be read at any place is named; else empty.
    std::string File() const;
    std::string ReadBytes() const;
    /// At most `limit` bytes from the start.
    std::string ReadStart(std::size_t limit) const;
    /// The text in the encoding that was named, by its byte order mark, by the charset that the server told,
    /// or as UTF-8.
    ht::String ReadText() const;
    /// The same without its last line end.
    ht::String ReadLines() const;
    /// The text in the encoding that was named, by its byte order mark, by the charset that the server told,
    /// or by what the parser finds in the first bytes.
    ht::THtmlPageText ReadPage() const;

private:
    Fetched Read(std::size_t limit) const;

    std::optional<std::string> FPlace;
    std::string FEncoding;
};

}
