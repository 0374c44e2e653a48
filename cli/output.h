// Where a command prints to: standard output, or a file that is replaced as a whole.
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace CLI {
class App;
class Option;
}

namespace hearth_cli {

/// The output of one command. Writing throws FileError; a pipe that nobody reads any more is no error.
class Output {
public:
    /// Takes bytes, each behind those before.
    using Sink = std::function<void(std::string_view bytes)>;

    Output() = default;
    /// Standard output for "-".
    explicit Output(std::string file)
        : FFile(std::move(file))
    {
    }
    /// Adds -o. Lifetime: this object outlives the parsing.
    CLI::Option* AddTo(CLI::App& command);

    /// True when nothing that was written is seen before all of it was.
    bool IsFile() const { return !FFile.empty() && FFile != "-"; }

    /// Writes UTF-8 text, and one LF if it does not end in one.
    void WriteText(std::string_view text) const;
    void WriteBytes(std::string_view bytes) const;
    /// Writes what `make` gives to the sink that it is called with. A file is replaced once `make` is done,
    /// and stays as it was when it throws.
    void WriteBy(const std::function<void(const Sink& sink)>& make) const;

private:
    std::string FFile;
};

}
