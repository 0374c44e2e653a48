// The commands: each registers itself with the parser through one function of its own file.
// SPDX-License-Identifier: MIT
#pragma once

namespace CLI {
class App;
}

namespace hearth_cli {

void AddHtml(CLI::App& hearth);
void AddXml(CLI::App& hearth);
void AddJson(CLI::App& hearth);
void AddXPath(CLI::App& hearth);
void AddEncode(CLI::App& hearth);
void AddDecode(CLI::App& hearth);
void AddEncoding(CLI::App& hearth);
void AddCss(CLI::App& hearth);
void AddColor(CLI::App& hearth);
void AddMeasure(CLI::App& hearth);
void AddFetch(CLI::App& hearth);
void AddZip(CLI::App& hearth);
void AddCompletions(CLI::App& hearth);
void AddMan(CLI::App& hearth);

/// A new command is one file and one name here. The help lists the commands in this order.
inline constexpr void (*kCommands[])(CLI::App& hearth) = {
    AddHtml,
    AddXml,
    AddJson,
    AddXPath,
    AddEncode,
    AddDecode,
    AddEncoding,
    AddCss,
    AddColor,
    AddMeasure,
#if defined(HEARTH_NET)
    AddFetch,
#endif
    AddZip,
    AddCompletions,
    AddMan,
};

/// Makes the command that an Add function fills. `example` is a shell line and, on the lines behind it, what
/// it prints.
CLI::App& AddCommand(CLI::App& parent, const char* name, const char* description, const char* example);

}
