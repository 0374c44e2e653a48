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

/// A switch with which the forms are made in another way. They have the same names in the same order.
struct DocumentSwitch {
    const char* Flag;
    const char* Help;
    std::span<const DocumentForm> Forms;
};

/// Adds input, output, encoding, --as and the switch, and what runs the command. The first form is the
/// default one. Lifetime: the forms outlive the command.
void AddDocumentForms(
    CLI::App& command, std::span<const DocumentForm> forms, const char* help, const DocumentSwitch& otherWay);

}
