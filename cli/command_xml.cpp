// hearth xml: reads XML strictly and prints it in one of the library's forms.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "document_forms.h"
#include "tree_text.h"

#include <hearth/xml/xml_node.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace hearth_cli {

namespace {

template <ht::THtXMLStrictness Strictness> std::unique_ptr<ht::THtXMLNode> Read(const ht::String& text)
{
    return std::make_unique<ht::THtXMLNode>(text, Strictness);
}

template <ht::THtXMLStrictness Strictness>
constexpr DocumentForm kForms[] = {
    {"xml", [](const ht::String& text) { return Read<Strictness>(text)->Code().ToUtf8(); }},
    {"formatted", [](const ht::String& text) { return Read<Strictness>(text)->FormattedCode().ToUtf8(); }},
    {"json", [](const ht::String& text) { return Read<Strictness>(text)->JSON().ToUtf8(); }},
    {"tree", [](const ht::String& text) { return TreeText(*Read<Strictness>(text)); }},
};

}

void AddXml(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "xml", "Read XML strictly and print it",
        "echo '<plots><plot n=\"1\">free</plot></plots>' | hearth xml --as formatted\n"
        "<plots>\n"
        "  <plot n=\"1\">free</plot>\n"
        "</plots>");
    AddDocumentForms(command, kForms<ht::xsTags>,
        "What to print"
        "\nxml: the document without blanks between its tags; formatted: indented."
        "\njson: attributes and elements as members, no texts."
        "\ntree: one node a line, contents and values in quotes.",
        {"--well-formed", "Refuse what XML calls not well-formed, also where the tags nest",
            kForms<ht::xsWellFormed>});
}

}
