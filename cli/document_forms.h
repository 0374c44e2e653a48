// What the commands that read a document have in common: a choice of forms to print it in.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <span>
#include <string>

namespace CLI {
class App;
}

namespace hearth_cli {

/// A form of output and what makes it of the text of the input.
struct DocumentForm {
    const char* Name;
    std::string (*Print)(const ht::String& text);
};

/// Adds input, output, encoding and --as, and what runs the command. The first form is the default one.
/// Lifetime: `forms` outlives the command.
void AddDocumentForms(CLI::App& command, std::span<const DocumentForm> forms, const char* help);

}
