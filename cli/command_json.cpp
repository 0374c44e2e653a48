// hearth json: reads JSON strictly and prints it in one of the library's forms.
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

std::unique_ptr<ht::THtXMLNode> Read(const ht::String& text)
{
    return ht::THtXMLNode::CreatefromJSON(text);
}

std::unique_ptr<ht::THtXMLNode> ReadLossless(const ht::String& text)
{
    return ht::THtXMLNode::CreateFromLosslessJSON(text);
}

/// One token a line: its type and its text.
std::string Tokens(const ht::String& text)
{
    std::string lines;
    ht::THtJSONTokenizer tokens(text);
    while (tokens.NextToken()) {
        const ht::THtJSONToken& token = tokens.Token();
        lines += ht::String(ht::EnumName(token.CType)).ToUtf8() + " " + Quoted(token.Name) + "\n";
    }
    return lines;
}

constexpr DocumentForm kForms[] = {
    {"json", [](const ht::String& text) { return Read(text)->JSON().ToUtf8(); }},
    {"xml", [](const ht::String& text) { return Read(text)->Code().ToUtf8(); }},
    {"tree", [](const ht::String& text) { return TreeText(*Read(text)); }},
    {"tokens", Tokens},
};

constexpr DocumentForm kLosslessForms[] = {
    {"json", [](const ht::String& text) { return ReadLossless(text)->LosslessJSON().ToUtf8(); }},
    {"xml", [](const ht::String& text) { return ReadLossless(text)->Code().ToUtf8(); }},
    {"tree", [](const ht::String& text) { return TreeText(*ReadLossless(text)); }},
    {"tokens", Tokens},
};

}

void AddJson(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "json", "Read JSON strictly and print it",
        "echo '{\"plot\": {\"n\": 1, \"beds\": [\"beans\", \"kale\"]}}' | hearth json --as tree\n"
        "<object>\n"
        "  <plot n=\"1\">\n"
        "    <beds>\n"
        "      <value> = \"beans\"\n"
        "      <value> = \"kale\"");
    AddDocumentForms(command, kForms,
        "What to print"
        "\njson: all values as strings, those of arrays as empty objects."
        "\nxml: members as attributes, or as elements where they hold more."
        "\ntree: one node a line, contents and values in quotes; tokens: one token a line.",
        {"--lossless", "Keep kinds, order and all members: json prints what was read", kLosslessForms});
}

}
