// Walking the tree of the command line parser.
// SPDX-License-Identifier: MIT
#include "description.h"

#include <CLI/CLI.hpp>

namespace hearth_cli {

namespace {

/// What stands behind the name of a value's type: "FORM:{outer,inner}" gives two values.
std::vector<std::string> ValuesOf(const std::string& type)
{
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}', open == std::string::npos ? 0 : open);
    if (open == std::string::npos || close == std::string::npos)
        return {};
    return CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
}

OptionDescription Describe(const CLI::Option& option)
{
    OptionDescription description;
    for (const std::string& name : option.get_snames())
        description.Names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        description.Names.push_back("--" + name);
    const std::string type = option.get_type_name();
    description.Values = ValuesOf(type);
    if (option.get_positional())
        description.Argument = option.get_name(true, false);
    else if (option.get_expected_max() > 0 && option.get_type_size_max() > 0)
        description.Argument = type.substr(0, type.find(':'));
    description.Default = option.get_default_str();
    const std::string text = option.get_description();
    const std::size_t line = text.find('\n');
    description.Text = text.substr(0, line);
    description.Details = line == std::string::npos ? "" : text.substr(line + 1);
    description.Required = option.get_required();
    description.Repeats = option.get_expected_max() > 1;
    return description;
}

void AddTo(std::vector<const CommandDescription*>& list, const CommandDescription& command)
{
    list.push_back(&command);
    for (const CommandDescription& child : command.Commands)
        AddTo(list, child);
}

}

bool OptionDescription::TakesFile() const
{
    const bool isPlace = Argument == "INPUT" || Argument == "ARCHIVE" || Argument == "FOLDER";
    return Values.empty() && (isPlace || Argument.find("FILE") != std::string::npos);
}

CommandDescription Describe(const CLI::App& app)
{
    CommandDescription description;
    description.Name = app.get_name();
    description.Path = description.Name;
    for (const CLI::App* parent = app.get_parent(); parent; parent = parent->get_parent())
        description.Path = parent->get_name() + " " + description.Path;
    description.Text = app.get_description();
    description.Footer = app.get_footer();
    for (const CLI::Option* option : app.get_options())
        description.Options.push_back(Describe(*option));
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        description.Commands.push_back(Describe(*command));
    return description;
}

std::vector<const CommandDescription*> All(const CommandDescription& top)
{
    std::vector<const CommandDescription*> list;
    AddTo(list, top);
    return list;
}

std::vector<const CommandDescription*> Leaves(const CommandDescription& top)
{
    std::vector<const CommandDescription*> list = All(top);
    std::erase_if(list, [](const CommandDescription* command) { return !command->Commands.empty(); });
    return list;
}

}
