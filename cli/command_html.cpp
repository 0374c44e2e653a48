// hearth html: parses a page and prints its tree in one of the library's forms.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "input.h"
#include "output.h"
#include "tree_text.h"

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/html_node.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace hearth_cli {

namespace {

using ht::operator""_s;

constexpr std::int32_t kBufferUnits = 4096;
constexpr std::int32_t kMaxIndent = 1000;

struct Form {
    const char* Name;
    std::string (*Print)(const ht::THtmlNode& page, std::int32_t indent);
};

std::string Formatted(const ht::THtmlNode& page, std::int32_t indent)
{
    ht::TFastString text(kBufferUnits);
    bool afterBlock = false;
    page.FastFormattedHTML(text, 0, indent, afterBlock);
    return text.GetAsString().ToUtf8();
}

std::string FastText(const ht::THtmlNode& page, std::int32_t)
{
    ht::TFastString text(kBufferUnits);
    page.FastInnerText(text);
    return text.GetAsString().ToUtf8();
}

constexpr Form kForms[] = {
    {"outer", [](const ht::THtmlNode& page, std::int32_t) { return page.GetOuterHTML().ToUtf8(); }},
    {"inner", [](const ht::THtmlNode& page, std::int32_t) { return page.GetInnerHTML().ToUtf8(); }},
    {"formatted", Formatted},
    {"text", [](const ht::THtmlNode& page, std::int32_t) { return page.GetInnerText().ToUtf8(); }},
    {"fast-text", FastText},
    {"content", [](const ht::THtmlNode& page, std::int32_t) { return page.TextContent().ToUtf8(); }},
    {"tree", [](const ht::THtmlNode& page, std::int32_t) { return TreeText(page); }},
};

struct HtmlOptions {
    hearth_cli::Input Input;
    hearth_cli::Output Output;
    std::string As = kForms[0].Name;
    std::int32_t Indent = 2;
    bool Fragment = false;
};

std::vector<std::string> FormNames()
{
    std::vector<std::string> names;
    std::transform(std::begin(kForms), std::end(kForms), std::back_inserter(names),
        [](const Form& form) { return form.Name; });
    return names;
}

void Run(const HtmlOptions& options)
{
    const ht::THtmlPageText page = options.Input.ReadPage();
    const auto form = std::find_if(std::begin(kForms), std::end(kForms),
        [&](const Form& candidate) { return options.As == candidate.Name; });
    if (options.Fragment) {
        ht::THtmlNode body(u"body"_s);
        body.ParseFragment(page.Text, page.IsDecoded);
        return options.Output.WriteText(form->Print(body, options.Indent));
    }
    ht::THtmlNode root;
    root.Parse(page.Text, page.IsDecoded);
    options.Output.WriteText(form->Print(root, options.Indent));
}

}

void AddHtml(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "html", "Parse HTML, repair it and print it",
        "echo '<ul><li>one<li>two' | hearth html --as tree\n"
        "<body>\n"
        "  <ul>\n"
        "    <li>\n"
        "      \"one\"\n"
        "    <li>\n"
        "      \"two\\n\"");
    const auto options = std::make_shared<HtmlOptions>();
    options->Input.AddTo(command);
    command
        .add_option("--as", options->As,
            "What to print"
            "\nouter: the repaired page; inner: without its outermost element; formatted: indented."
            "\ntext: as people read it; fast-text: with addresses and titles of links, for search;"
            "\ncontent: all contents joined as they stand, comments and scripts too."
            "\ntree: one node a line, contents and values in quotes.")
        ->type_name("FORM")
        ->check(CLI::IsMember(FormNames()))
        ->capture_default_str();
    command.add_option("--indent", options->Indent, "Blanks for each level of --as formatted")
        ->type_name("N")
        ->check(CLI::Range(0, kMaxIndent))
        ->capture_default_str();
    command.add_flag(
        "--fragment", options->Fragment, "The input is the content of a body element, not a document");
    options->Input.AddEncodingTo(command);
    options->Output.AddTo(command);
    command.callback([options] { Run(*options); });
}

}
