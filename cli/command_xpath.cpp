// hearth xpath: asks a page or an XML document for what a path finds.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "input.h"
#include "output.h"
#include "tree_text.h"

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/html_node.h>
#include <hearth/xml/xml_node.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace hearth_cli {

namespace {

constexpr std::int32_t kBufferUnits = 4096;

std::string OuterText(const ht::THtNode& node)
{
    if (const auto* element = ht::As<ht::THtmlNode>(&node))
        return element->GetOuterHTML().ToUtf8();
    ht::TFastString text(kBufferUnits);
    static_cast<const ht::THtXMLNode&>(node).FastCode(text);
    return text.GetAsString().ToUtf8();
}

/// Without the line break that the text of a block begins with.
std::string ReadableText(const ht::THtNode& node)
{
    const auto* element = ht::As<ht::THtmlNode>(&node);
    return (element ? element->GetInnerText() : node.TextContent()).Trim().ToUtf8();
}

struct Form {
    const char* Name;
    std::string (*Print)(const ht::THtNode& node);
};

constexpr Form kForms[] = {
    {"outer", OuterText},
    {"text", ReadableText},
    {"tree", TreeText},
    {"path", [](const ht::THtNode& node) { return node.Path().ToUtf8(); }},
};

std::vector<std::string> FormNames()
{
    std::vector<std::string> names;
    std::transform(std::begin(kForms), std::end(kForms), std::back_inserter(names),
        [](const Form& form) { return form.Name; });
    return names;
}

struct XPathOptions {
    hearth_cli::Input Input;
    hearth_cli::Output Output;
    std::string Path;
    std::string As = kForms[0].Name;
    bool Xml = false;
    bool First = false;
    bool Value = false;
};

std::unique_ptr<ht::THtNode> ReadTree(const XPathOptions& options)
{
    if (options.Xml)
        return std::make_unique<ht::THtXMLNode>(options.Input.ReadText());
    const ht::THtmlPageText page = options.Input.ReadPage();
    auto root = std::make_unique<ht::THtmlNode>();
    root->Parse(page.Text, page.IsDecoded);
    return root;
}

/// Each match on a line of its own.
std::string PrintMatches(ht::THtNode& root, const ht::String& path, const XPathOptions& options)
{
    const auto form = std::find_if(std::begin(kForms), std::end(kForms),
        [&](const Form& candidate) { return options.As == candidate.Name; });
    std::string lines;
    const auto found = root.XPath(path, options.First);
    for (const ht::THtNode* node : *found) {
        const std::string text = form->Print(*node);
        lines += text;
        if (!text.ends_with('\n'))
            lines += '\n';
    }
    return lines;
}

void Run(const XPathOptions& options)
{
    const std::unique_ptr<ht::THtNode> root = ReadTree(options);
    const ht::String path = ht::String::FromUtf8(options.Path);
    if (options.Value)
        options.Output.WriteText(root->XPathValue(path).ToUtf8());
    else
        options.Output.WriteBytes(PrintMatches(*root, path, options));
}

}

void AddXPath(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "xpath", "Print what a path finds in a page",
        "echo '<ul><li id=a>one<li>two' | hearth xpath '//li[@id]' --as text\n"
        "one");
    const auto options = std::make_shared<XPathOptions>();
    command.add_option("PATH", options->Path, "Steps parted by /, as in //li[@id='a']/b")->required();
    options->Input.AddTo(command);
    command.add_flag("--xml", options->Xml, "The input is XML, not HTML");
    command.add_flag("--first", options->First, "Stop at the first match");
    command.add_flag("--value", options->Value, "Print the first text or attribute value that is not empty");
    command
        .add_option("--as", options->As,
            "What to print of each match"
            "\nouter: its markup; text: what people read of it; tree: one node a line;"
            "\npath: the tags from it up to the root.")
        ->type_name("FORM")
        ->check(CLI::IsMember(FormNames()))
        ->capture_default_str();
    options->Input.AddEncodingTo(command);
    options->Output.AddTo(command);
    command.callback([options] { Run(*options); });
}

}
