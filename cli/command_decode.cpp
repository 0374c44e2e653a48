// hearth decode: reads a text back from the form in which it was sent.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "input.h"
#include "output.h"

#include <hearth/foundation/url_text.h>

#include <CLI/CLI.hpp>

#include <memory>

namespace hearth_cli {

namespace {

struct DecodeOptions {
    hearth_cli::Input Input;
    hearth_cli::Output Output;
    bool Url = false;
};

}

void AddDecode(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "decode", "Decode a text; its last line end is left out",
        "echo 'caf%c3%a9+au+lait' | hearth decode --url\n"
        "caf\xC3\xA9 au lait");
    const auto options = std::make_shared<DecodeOptions>();
    options->Input.AddTo(command);
    command.add_flag("--url", options->Url, "The text is part of an address: + is a blank, %20 a byte")
        ->required();
    options->Input.AddEncodingTo(command);
    options->Output.AddTo(command);
    command.callback(
        [options] { options->Output.WriteText(ht::HTTPDecode(options->Input.ReadLines()).ToUtf8()); });
}

}
