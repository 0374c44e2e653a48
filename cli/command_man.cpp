// hearth man: the manual page, made of the same descriptions as the help.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "description.h"
#include "output.h"

#include <hearth/version.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>

namespace hearth_cli {

namespace {

constexpr const char* kInput = R"(.SH INPUT AND OUTPUT
The input is the named file, or standard input for
.B \-
and where nothing is named.
Without a name, on a terminal, a command prints its help instead of waiting.
.B \-\-
ends the options, so that the name of a file may begin with
.BR \- .
.PP
Text goes out as UTF\-8, with a line end behind it.
HTML is read as its byte order mark says, else as its first 4,096 bytes tell: they are UTF\-8 or UTF\-16, or they
declare a charset.
Other text is read as UTF\-8 unless a byte order mark says otherwise.
.B \-\-encoding
ends all guessing.
)";

constexpr const char* kStatus = R"(.SH EXIT STATUS
.TP
.B 0
Done.
.TP
.B 1
The library refused the input: one line on standard error names the exception and gives its message.
.TP
.B 2
The command line is wrong.
.TP
.B 3
A file cannot be read or written.
)";

/// Text as the formatter prints it unchanged.
std::string Plain(const std::string& text)
{
    std::string plain;
    for (const char c : text) {
        if ((plain.empty() || plain.back() == '\n') && (c == '.' || c == '\''))
            plain += "\\&";
        if (c == '\\')
            plain += "\\e";
        else if (c == '\'')
            plain += "\\(aq";
        else if (c == '-')
            plain += "\\-";
        else
            plain += c;
    }
    return plain;
}

std::string Bold(const std::string& text)
{
    return "\\fB" + Plain(text) + "\\fR";
}

std::string Italic(const std::string& text)
{
    return "\\fI" + Plain(text) + "\\fR";
}

std::string Usage(const CommandDescription& command)
{
    std::string line = Bold(command.Path) + " [" + Italic("OPTIONS") + "]";
    for (const OptionDescription& option : command.Options) {
        if (!option.IsArgument())
            continue;
        const std::string name = Italic(option.Argument) + (option.Repeats ? " ..." : "");
        line += option.Required ? " " + name : " [" + name + "]";
    }
    return line;
}

std::string Sentence(const OptionDescription& option)
{
    std::string text = Plain(option.Text);
    std::string values;
    for (const std::string& value : option.Values)
        values += (values.empty() ? " (" : ", ") + Bold(value);
    text += values.empty() ? "" : values + ")";
    if (!option.Default.empty())
        text += "; " + Bold(option.Default) + " unless told otherwise";
    text += ".";
    return option.Details.empty() ? text : text + "\n" + Plain(option.Details);
}

std::string Option(const OptionDescription& option)
{
    std::string head = option.IsArgument() ? Italic(option.Argument) : "";
    for (const std::string& name : option.Names)
        head += (head.empty() ? "" : ", ") + Bold(name);
    if (!option.IsArgument() && !option.Argument.empty())
        head += " " + Italic(option.Argument);
    return ".TP\n" + head + "\n" + Sentence(option) + "\n";
}

/// The indented lines of the help's last part, as they stand.
std::string Example(const std::string& footer)
{
    std::string example = ".PP\nExample:\n.PP\n.EX\n";
    std::istringstream lines(footer);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("  "))
            example += Plain(line.substr(2)) + "\n";
    }
    return example + ".EE\n";
}

std::string Command(const CommandDescription& command)
{
    std::string text = ".SS " + Usage(command) + "\n" + Plain(command.Text) + ".\n";
    for (const OptionDescription& option : command.Options) {
        const bool isHelp =
            std::find(option.Names.begin(), option.Names.end(), "--help") != option.Names.end();
        text += isHelp ? "" : Option(option);
    }
    return text + Example(command.Footer);
}

std::string ManualPage(const CommandDescription& top)
{
    std::string text = ".TH HEARTH 1 \"\" \"hearth " HEARTH_VERSION "\" \"User Commands\"\n"
                       ".SH NAME\nhearth \\- run the Hearth library on HTML files and pipes\n"
                       ".SH SYNOPSIS\n"
        + Bold(top.Name) + " " + Italic("COMMAND") + " [" + Italic("OPTIONS") + "] [" + Italic("INPUT")
        + "]\n" + ".SH DESCRIPTION\n" + Plain(top.Text) + "\n.SH OPTIONS\n";
    for (const OptionDescription& option : top.Options)
        text += Option(option);
    text += ".SH COMMANDS\n";
    for (const CommandDescription* command : Leaves(top))
        text += Command(*command);
    return text + kInput + kStatus;
}

}

void AddMan(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "man", "Print the manual page",
        "hearth man | sed -n 2,3p\n"
        ".SH NAME\n"
        "hearth \\- run the Hearth library on HTML files and pipes");
    const auto output = std::make_shared<Output>();
    output->AddTo(command);
    command.callback([output, &hearth] { output->WriteText(ManualPage(Describe(hearth))); });
}

}
