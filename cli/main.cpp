// The command `hearth`: reads the command line, runs one command, turns what happens into an exit status.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "errors.h"
#include "output.h"

#include <hearth/version.h>

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

namespace hearth_cli {

namespace {

void Describe(CLI::App& hearth)
{
    hearth.set_version_flag("--version", "hearth " HEARTH_VERSION, "Print the version and exit");
    hearth.set_help_flag("-h,--help", "Print this help and exit");
    hearth.get_formatter()->column_width(28);
    hearth.get_formatter()->label("SUBCOMMAND", "COMMAND");
    hearth.require_subcommand(1);
    for (const auto& add : kCommands)
        add(hearth);
    hearth.footer("hearth COMMAND --help tells more and shows an example.");
}

int ShowHelp(const CLI::App& hearth)
{
    std::fputs(hearth.help().c_str(), stderr);
    return esUsage;
}

/// The names of the command that was begun, for people who look for its help.
std::string BegunCommand(const CLI::App& hearth)
{
    std::string name = hearth.get_name();
    for (auto parsed = hearth.get_subcommands(); !parsed.empty(); parsed = parsed.front()->get_subcommands())
        name += " " + parsed.front()->get_name();
    return name;
}

/// True when the last command that was named has commands of its own and none of them was named.
bool IsIncomplete(const CLI::App& hearth)
{
    const CLI::App* command = &hearth;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    return command->get_require_subcommand_min() > 0;
}

int RefuseCommandLine(const CLI::App& hearth, const CLI::ParseError& error)
{
    std::string message = error.what();
    if (IsIncomplete(hearth)) {
        const std::vector<std::string> unknown = hearth.remaining(true);
        if (unknown.empty())
            return ShowHelp(hearth);
        message = "there is no command or option " + unknown.front();
    }
    std::fprintf(stderr, "hearth: %s\nTry: %s --help\n", message.c_str(), BegunCommand(hearth).c_str());
    return esUsage;
}

int Run(int argc, char** argv)
{
    CLI::App hearth("Runs the Hearth library on files and pipes: each command prints what the library "
                    "gives to a program.",
        "hearth");
    Describe(hearth);
    try {
        hearth.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        Output().WriteText(hearth.help());
    } catch (const CLI::CallForVersion& version) {
        Output().WriteText(version.what());
    } catch (const CLI::ParseError& error) {
        return RefuseCommandLine(hearth, error);
    } catch (const HelpWanted&) {
        return ShowHelp(hearth);
    }
    return esDone;
}

}

CLI::App& AddCommand(CLI::App& parent, const char* name, const char* description, const char* example)
{
    CLI::App& command = *parent.add_subcommand(name, description);
    command.group("Commands");
    std::string footer = "Example:\n  $ ";
    for (const char* c = example; *c; ++c) {
        footer += *c;
        if (*c == '\n')
            footer += "  ";
    }
    command.footer(footer);
    return command;
}

}

int main(int argc, char** argv)
{
    // A closed pipe and a full quota are errors of writing, not the end of the program.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return hearth_cli::Run(argc, argv);
    } catch (...) {
        return hearth_cli::ReportException();
    }
}
