// hearth encode: escapes a text for the place where it will stand.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "input.h"
#include "output.h"

#include <hearth/foundation/url_text.h>
#include <hearth/markup/html_encode.h>
#include <hearth/xml/xml_encode.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <vector>

namespace hearth_cli {

namespace {

using Encoder = ht::String (*)(const ht::String& text);

/// A switch that asks for another encoder than that of text in HTML.
struct Form {
    const char* Switch;
    const char* Text;
    Encoder Encode;
};

constexpr Form kForms[] = {
    {"--attr", "Escape for the value of an attribute",
        [](const ht::String& text) { return ht::HtmlEncodeAttr(text); }},
    {"--xml", "Escape for XML", [](const ht::String& text) { return ht::XMLEncode(text); }},
    {"--json", "Escape for a string of JSON", [](const ht::String& text) { return ht::JSONEncode(text); }},
    {"--url", "Encode for the query of an address, a blank as +",
        [](const ht::String& text) { return ht::HtEncodeUrl(text); }},
};

struct EncodeOptions {
    hearth_cli::Input Input;
    hearth_cli::Output Output;
    Encoder Encode = [](const ht::String& text) { return ht::HtmlEncode(text); };
};

void AddForms(CLI::App& command, const std::shared_ptr<EncodeOptions>& options)
{
    std::vector<CLI::Option*> earlier;
    for (const Form& form : kForms) {
        CLI::Option* const option = command.add_flag_callback(
            form.Switch, [options, &form] { options->Encode = form.Encode; }, form.Text);
        for (CLI::Option* other : earlier)
            option->excludes(other);
        earlier.push_back(option);
    }
}

}

void AddEncode(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "encode", "Escape a text, without its last line end",
        "echo 'a < b & \"c\"' | hearth encode --attr\n"
        "a &lt; b &amp; &quot;c&quot;");
    const auto options = std::make_shared<EncodeOptions>();
    options->Input.AddTo(command);
    AddForms(command, options);
    options->Input.AddEncodingTo(command);
    options->Output.AddTo(command);
    command.callback(
        [options] { options->Output.WriteText(options->Encode(options->Input.ReadLines()).ToUtf8()); });
}

}
