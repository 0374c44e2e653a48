// hearth encode: escapes a text for the place where it will stand.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "input.h"
#include "output.h"

#include <hearth/markup/html_encode.h>

#include <CLI/CLI.hpp>

#include <memory>

namespace hearth_cli {

namespace {

struct EncodeOptions {
    hearth_cli::Input Input;
    hearth_cli::Output Output;
    bool Attr = false;
};

ht::String WithoutLineEnd(const ht::String& text)
{
    const std::u16string_view view = text;
    const std::int32_t end = view.ends_with(u"\r\n") ? 2 : view.ends_with(u'\n') ? 1 : 0;
    return text.Substring(0, text.Length() - end);
}

void Run(const EncodeOptions& options)
{
    const ht::String text = WithoutLineEnd(options.Input.ReadText());
    options.Output.WriteText((options.Attr ? ht::HtmlEncodeAttr(text) : ht::HtmlEncode(text)).ToUtf8());
}

}

void AddEncode(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "encode", "Escape a text for HTML; its last line end is left out",
        "echo 'a < b & \"c\"' | hearth encode --attr\n"
        "a &lt; b &amp; &quot;c&quot;");
    const auto options = std::make_shared<EncodeOptions>();
    options->Input.AddTo(command);
    command.add_flag("--attr", options->Attr, "Escape for the value of an attribute");
    options->Input.AddEncodingTo(command);
    options->Output.AddTo(command);
    command.callback([options] { Run(*options); });
}

}
