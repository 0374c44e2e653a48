// Where a command prints to: standard output, or a file that is replaced as a whole.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace hearth_cli {

/// The output of one command. Writing throws FileError; a pipe that nobody reads any more is no error.
class Output {
public:
    /// Adds -o. Lifetime: this object outlives the parsing.
    void AddTo(CLI::App& command);

    /// Writes UTF-8 text, and one LF if it does not end in one.
    void WriteText(std::string_view text) const;
    void WriteBytes(std::string_view bytes) const;

private:
    void Write(std::string_view bytes, std::string_view end) const;

    std::string FFile;
};

}
