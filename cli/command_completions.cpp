// hearth completions: scripts by which a shell completes commands, options and values.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "description.h"
#include "output.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace hearth_cli {

namespace {

using Texts = std::vector<std::string>;

std::string Join(const Texts& texts, const std::string& between)
{
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : between) + text;
    return joined;
}

std::string Replaced(std::string text, const std::string& what, const std::string& by)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
    return text;
}

/// One word for all three shells.
std::string InQuotes(const std::string& text)
{
    return "'" + Replaced(text, "'", "'\"'\"'") + "'";
}

Texts CommandNames(const CommandDescription& command)
{
    Texts names;
    for (const CommandDescription& child : command.Commands)
        names.push_back(child.Name);
    return names;
}

// --- bash

std::string BashValues(const CommandDescription& command, const OptionDescription& option)
{
    Texts patterns;
    for (const std::string& name : option.Names)
        patterns.push_back(InQuotes(command.Path + " " + name));
    std::string action = "return";
    if (!option.Values.empty())
        action = "words=" + InQuotes(Join(option.Values, " "));
    else if (!option.TakesFile())
        action = "compopt +o default; return";
    return "    " + Join(patterns, " | ") + ") " + action + " ;;\n";
}

std::string BashWords(const CommandDescription& command)
{
    Texts options;
    Texts words = CommandNames(command);
    for (const OptionDescription& option : command.Options) {
        std::copy(option.Names.begin(), option.Names.end(), std::back_inserter(options));
        if (option.IsArgument())
            std::copy(option.Values.begin(), option.Values.end(), std::back_inserter(words));
    }
    return "        " + InQuotes(command.Path + " -") + "*) words=" + InQuotes(Join(options, " ")) + " ;;\n"
        + "        " + InQuotes(command.Path + " ") + "*) words=" + InQuotes(Join(words, " ")) + " ;;\n";
}

std::string BashScript(const CommandDescription& top)
{
    Texts paths;
    std::string values;
    std::string words;
    for (const CommandDescription* command : All(top)) {
        if (command != &top)
            paths.push_back(InQuotes(command->Path));
        words = BashWords(*command) + words; // the deepest command first: its pattern is the narrowest
        for (const OptionDescription& option : command->Options)
            values += option.IsArgument() || option.Argument.empty() ? "" : BashValues(*command, option);
    }
    return "# Completion of " + top.Name + " for bash.\n"
        + "_hearth() {\n"
          "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
          "    local command="
        + top.Name
        + " words='' word\n"
          "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
          "        case \"$command $word\" in\n"
          "        "
        + Join(paths, " | ")
        + ") command+=\" $word\" ;;\n"
          "        esac\n"
          "    done\n"
          "    case \"$command $previous\" in\n"
        + values
        + "    *)\n"
          "        case \"$command $current\" in\n"
        + words
        + "        esac\n"
          "        ;;\n"
          "    esac\n"
          "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
          "}\n"
          "complete -o default -F _hearth "
        + top.Name + "\n";
}

// --- zsh

std::string ZshAction(const OptionDescription& option)
{
    if (!option.Values.empty())
        return "(" + Join(option.Values, " ") + ")";
    return option.TakesFile() ? "_files" : "";
}

/// In descriptions brackets and colons have a meaning of their own.
std::string ZshText(const std::string& text)
{
    return Replaced(Replaced(Replaced(text, "[", "\\["), "]", "\\]"), ":", "\\:");
}

std::string ZshOption(const OptionDescription& option)
{
    if (option.IsArgument()) {
        const std::string count = option.Repeats ? "*:" : option.Required ? ":" : "::";
        return InQuotes(count + option.Argument + ":" + ZshAction(option));
    }
    std::string rest = "[" + ZshText(option.Text) + "]";
    if (!option.Argument.empty())
        rest += ":" + option.Argument + ":" + ZshAction(option);
    Texts forms;
    for (const std::string& name : option.Names) {
        const bool takesEqualsSign = name.starts_with("--") && !option.Argument.empty();
        forms.push_back(
            InQuotes("(" + Join(option.Names, " ") + ")" + name + (takesEqualsSign ? "=" : "") + rest));
    }
    return Join(forms, " \\\n        ");
}

std::string ZshFunctionName(const CommandDescription& command)
{
    return "_" + Replaced(Replaced(command.Path, " ", "_"), "-", "_");
}

std::string ZshFunction(const CommandDescription& command)
{
    std::string text = ZshFunctionName(command) + "() {\n    local context state state_descr line\n"
        + "    typeset -A opt_args\n    _arguments -C -s";
    for (const OptionDescription& option : command.Options)
        text += " \\\n        " + ZshOption(option);
    if (command.Commands.empty())
        return text + "\n}\n";
    text += " \\\n        '1: :->command' '*:: :->arguments'\n    case $state in\n    command)\n"
            "        local -a names=(";
    for (const CommandDescription& child : command.Commands)
        text += "\n            " + InQuotes(child.Name + ":" + child.Text);
    text += ")\n        _describe command names\n        ;;\n    arguments)\n        case $line[1] in\n";
    for (const CommandDescription& child : command.Commands)
        text += "        " + child.Name + ") " + ZshFunctionName(child) + " ;;\n";
    return text + "        esac\n        ;;\n    esac\n}\n";
}

std::string ZshScript(const CommandDescription& top)
{
    std::string script = "#compdef " + top.Name + "\n";
    for (const CommandDescription* command : All(top))
        script += ZshFunction(*command);
    // Loaded from a file of the function path the body is the first call; sourced, it only registers.
    return script + "if [ \"$funcstack[1]\" = _" + top.Name + " ]; then\n    _" + top.Name
        + " \"$@\"\nelse\n    compdef _" + top.Name + " " + top.Name + "\nfi\n";
}

// --- fish

std::string FishText(const std::string& text)
{
    return "'" + Replaced(Replaced(text, "\\", "\\\\"), "'", "\\'") + "'";
}

std::string FishOption(const OptionDescription& option, const std::string& start)
{
    const std::string values = option.Values.empty() ? "" : " -a " + FishText(Join(option.Values, " "));
    if (option.IsArgument())
        return option.TakesFile() ? start + " -F\n" : values.empty() ? "" : start + values + "\n";
    std::string line = start;
    for (const std::string& name : option.Names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!option.Argument.empty())
        line += option.TakesFile() ? " -r -F" : " -x" + values;
    return line + " -d " + FishText(option.Text) + "\n";
}

/// The condition under which a command's words are offered: all of its path was typed and nothing below it.
std::string FishCondition(const CommandDescription& command)
{
    Texts parts;
    const Texts path = CLI::detail::split(command.Path, ' ');
    for (std::size_t i = 1; i < path.size(); ++i)
        parts.push_back("__fish_seen_subcommand_from " + path[i]);
    if (!command.Commands.empty())
        parts.push_back("not __fish_seen_subcommand_from " + Join(CommandNames(command), " "));
    return Join(parts, "; and ");
}

std::string FishScript(const CommandDescription& top)
{
    std::string script = "# Completion of " + top.Name + " for fish.\ncomplete -c " + top.Name + " -f\n";
    for (const CommandDescription* command : All(top)) {
        const std::string start = "complete -c " + top.Name + " -n " + FishText(FishCondition(*command));
        for (const CommandDescription& child : command->Commands)
            script += start + " -a " + child.Name + " -d " + FishText(child.Text) + "\n";
        for (const OptionDescription& option : command->Options)
            script += FishOption(option, start);
    }
    return script;
}

struct Shell {
    const char* Name;
    std::string (*Script)(const CommandDescription& top);
};

constexpr Shell kShells[] = {{"bash", BashScript}, {"zsh", ZshScript}, {"fish", FishScript}};

struct CompletionsOptions {
    std::string Shell;
    hearth_cli::Output Output;
};

}

void AddCompletions(CLI::App& hearth)
{
    CLI::App& command =
        AddCommand(hearth, "completions", "Print a script by which a shell completes this command",
            "hearth completions bash | head -n 1\n"
            "# Completion of hearth for bash.");
    const auto options = std::make_shared<CompletionsOptions>();
    Texts names;
    for (const Shell& shell : kShells)
        names.emplace_back(shell.Name);
    command.add_option("SHELL", options->Shell, "The shell to print it for")
        ->type_name("")
        ->check(CLI::IsMember(names))
        ->required();
    options->Output.AddTo(command);
    command.callback([options, &hearth] {
        const CommandDescription top = Describe(hearth);
        for (const Shell& shell : kShells) {
            if (options->Shell == shell.Name)
                options->Output.WriteText(shell.Script(top));
        }
    });
}

}
