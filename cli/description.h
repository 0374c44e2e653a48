// The commands and their options as plain data, taken from the command line parser itself.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace hearth_cli {

/// An option or, without names, an argument.
struct OptionDescription {
    std::vector<std::string> Names; // as typed: "-o", "--output"
    std::string Argument; // "FILE"; empty for a switch
    std::vector<std::string> Values; // the only values it takes, if there are such
    std::string Default;
    std::string Text; // one line
    std::string Details; // further sentences, for pages with room
    bool Required = false;
    bool Repeats = false; // takes any number of values

    bool IsArgument() const { return Names.empty(); }
    /// True when file names are what to offer.
    bool TakesFile() const;
};

struct CommandDescription {
    std::string Path; // "hearth html"
    std::string Name; // "html"
    std::string Text;
    std::string Footer; // of its help: "Example:", then indented lines
    std::vector<OptionDescription> Options;
    std::vector<CommandDescription> Commands;
};

CommandDescription Describe(const CLI::App& app);

/// All commands that have no commands below them, in the order of the help.
std::vector<const CommandDescription*> Leaves(const CommandDescription& top);
/// The command and all below it, each in front of its own.
std::vector<const CommandDescription*> All(const CommandDescription& top);

}
