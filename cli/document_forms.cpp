// Options and run of the commands that read a document.
// SPDX-License-Identifier: MIT
#include "document_forms.h"

#include "input.h"
#include "output.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <vector>

namespace hearth_cli {

namespace {

struct DocumentOptions {
    hearth_cli::Input Input;
    hearth_cli::Output Output;
    std::string As;
    bool OtherWay = false;
};

std::vector<std::string> NamesOf(std::span<const DocumentForm> forms)
{
    std::vector<std::string> names;
    for (const DocumentForm& form : forms)
        names.emplace_back(form.Name);
    return names;
}

void Run(const DocumentOptions& options, std::span<const DocumentForm> forms)
{
    const ht::String text = options.Input.ReadText();
    for (const DocumentForm& form : forms) {
        if (options.As == form.Name)
            options.Output.WriteText(form.Print(text));
    }
}

}

void AddDocumentForms(
    CLI::App& command, std::span<const DocumentForm> forms, const char* help, const DocumentSwitch& otherWay)
{
    const auto options = std::make_shared<DocumentOptions>();
    options->As = forms.front().Name;
    options->Input.AddTo(command);
    command.add_option("--as", options->As, help)
        ->type_name("FORM")
        ->check(CLI::IsMember(NamesOf(forms)))
        ->capture_default_str();
    command.add_flag(otherWay.Flag, options->OtherWay, otherWay.Help);
    options->Input.AddEncodingTo(command);
    options->Output.AddTo(command);
    command.callback(
        [options, forms, others = otherWay.Forms] { Run(*options, options->OtherWay ? others : forms); });
}

}
