// hearth encoding: says how a page was encoded.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "errors.h"
#include "input.h"
#include "output.h"

#include <hearth/markup/html_parser.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace hearth_cli {

namespace {

struct EncodingOptions {
    hearth_cli::Input Input;
    hearth_cli::Output Output;
};

std::string NameOf(ht::THtmlEncoding encoding)
{
    switch (encoding) {
    case ht::heUTF8:
        return "utf-8";
    case ht::heUTF16:
        return "utf-16";
    default:
        return "default";
    }
}

void Run(const EncodingOptions& options)
{
    std::uint32_t page = 0;
    const std::string start = options.Input.ReadStart(ht::THtmlParser::kDetectionBytes);
    ht::THtmlEncoding encoding = ht::heDefault;
    try {
        encoding = ht::THtmlParser::GetBytesEncoding(start, page);
    } catch (const ht::ERangeError&) {
        throw InputError("the charset declaration is cut off by the end of the text, or of its first "
            + std::to_string(ht::THtmlParser::kDetectionBytes) + " bytes");
    }
    const std::string name = NameOf(encoding);
    options.Output.WriteText(page == 0 ? name : name + " " + std::to_string(page));
}

}

void AddEncoding(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "encoding",
        "Say how a page is encoded: utf-8, utf-16 or default (neither), and the code page that it declares",
        "echo '<meta charset=\"windows-1251\">' | hearth encoding\n"
        "default 1251");
    const auto options = std::make_shared<EncodingOptions>();
    options->Input.AddTo(command, "FILE");
    options->Output.AddTo(command);
    command.callback([options] { Run(*options); });
}

}
