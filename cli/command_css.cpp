// hearth css: reads a style sheet and prints it in one of the library's forms.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "input.h"
#include "numbers.h"
#include "output.h"
#include "tree_text.h"

#include <hearth/styling/css/css_tokenizer.h>
#include <hearth/styling/css/style_sheet.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace hearth_cli {

namespace {

template <class Proc> void ForEachSection(ht::TCSSStyleSheet& sheet, Proc proc)
{
    for (std::int32_t i = 0; i < sheet.Sections().Count(); ++i)
        proc(static_cast<const ht::TCSSSection&>(*sheet.Sections()[i]));
}

template <class Proc> void ForEachSelector(const ht::TCSSSection& section, Proc proc)
{
    for (std::int32_t i = 0; i < section.Selectors->Count(); ++i)
        proc(*section.Selectors->GetSelector(i));
}

/// Type, text and place; then the number and the unit where there are such.
std::string TokenLine(const ht::TCSSToken& token)
{
    const bool hasUnit = token.CType == ht::ctPercentage || token.CType == ht::ctDimension;
    std::string line = ht::String(ht::EnumName(token.CType)).ToUtf8() + " " + Quoted(token.Name) + " "
        + std::to_string(token.StartPos) + "-" + std::to_string(token.EndPos);
    if (hasUnit || token.CType == ht::ctNumber)
        line += " " + DecimalOf(token.AsFloat);
    if (hasUnit)
        line += " " + ht::String(ht::EnumName(token.MUnit)).ToUtf8();
    return line + "\n";
}

std::string Tokens(const ht::String& text)
{
    std::string lines;
    ht::TCSSTokenizer tokenizer(text);
    while (!tokenizer.Eof) {
        tokenizer.NextToken();
        if (!tokenizer.Eof)
            lines += TokenLine(tokenizer.Token);
    }
    return lines;
}

std::string Selectors(ht::TCSSStyleSheet& sheet)
{
    std::string lines;
    ForEachSection(sheet, [&](const ht::TCSSSection& section) {
        ForEachSelector(section, [&](const ht::TCSSSelector& selector) {
            lines += std::to_string(selector.Weight) + "\t" + selector.AsString().ToUtf8() + "\n";
        });
    });
    return lines;
}

std::string Compiled(ht::TCSSStyleSheet& sheet)
{
    std::string lines;
    ForEachSection(sheet, [&](const ht::TCSSSection& section) {
        const char* separator = "";
        ForEachSelector(section, [&](const ht::TCSSSelector& selector) {
            lines += separator + selector.AsString().ToUtf8();
            separator = ", ";
        });
        lines += " {\n";
        for (const ht::TCSSValue& value : section.CompiledValues)
            lines += "  " + ht::CSSValuetoString(value, ht::cpExact).ToUtf8() + "\n";
        lines += "}\n";
    });
    return lines;
}

std::string MediaLine(const ht::TCSSMediaSet& set)
{
    std::string line;
    for (ht::TCSSMedia medium : set.Medias)
        line +=
            (line.empty() ? "" : "+") + ht::String(ht::EnumName(medium).substr(2)).ToLowerAscii().ToUtf8();
    const auto addLimit = [&line](const char* name, std::int64_t limit) {
        if (limit != 0)
            line += std::string(" ") + name + "=" + std::to_string(limit);
    };
    addLimit("min-width", set.MinWidth);
    addLimit("max-width", set.MaxWidth);
    addLimit("min-device-width", set.MinDeviceWidth);
    addLimit("max-device-width", set.MaxDeviceWidth);
    return line + "\n";
}

/// In the order of the text; the sheet keeps the last one first.
std::string Media(ht::TCSSStyleSheet& sheet)
{
    std::string lines;
    for (std::int32_t i = sheet.MediaSets.Count() - 1; i >= 0; --i)
        lines += MediaLine(static_cast<const ht::TCSSMediaSet&>(*sheet.MediaSets[i]));
    return lines;
}

struct Form {
    const char* Name;
    std::string (*Print)(ht::TCSSStyleSheet& sheet, ht::TCSSPrinting printing);
};

constexpr Form kForms[] = {
    {"sheet",
        [](ht::TCSSStyleSheet& sheet, ht::TCSSPrinting printing) {
            return sheet.AsString(printing).ToUtf8();
        }},
    {"inline",
        [](ht::TCSSStyleSheet& sheet, ht::TCSSPrinting printing) {
            return sheet.AsInlineString(printing).ToUtf8();
        }},
    {"minified",
        [](ht::TCSSStyleSheet& sheet, ht::TCSSPrinting printing) {
            sheet.Minify();
            return sheet.AsString(printing).ToUtf8();
        }},
    {"dark",
        [](ht::TCSSStyleSheet& sheet, ht::TCSSPrinting printing) {
            sheet.ConvertLighttoDark();
            return sheet.AsString(printing).ToUtf8();
        }},
    {"selectors", [](ht::TCSSStyleSheet& sheet, ht::TCSSPrinting) { return Selectors(sheet); }},
    {"compiled", [](ht::TCSSStyleSheet& sheet, ht::TCSSPrinting) { return Compiled(sheet); }},
    {"media", [](ht::TCSSStyleSheet& sheet, ht::TCSSPrinting) { return Media(sheet); }},
};
constexpr const char* kTokens = "tokens"; // of the text, which is no sheet yet

struct CssOptions {
    std::string As = "sheet";
    bool Literal = false;
    hearth_cli::Input Input;
    hearth_cli::Output Output;
};

std::vector<std::string> FormNames()
{
    std::vector<std::string> names{kTokens};
    std::transform(std::begin(kForms), std::end(kForms), std::back_inserter(names),
        [](const Form& form) { return form.Name; });
    return names;
}

std::string Print(const CssOptions& options)
{
    const ht::String text = options.Input.ReadText();
    if (options.As == kTokens)
        return Tokens(text);
    ht::TCSSStyleSheet sheet;
    sheet.Parse(text);
    const auto form = std::find_if(std::begin(kForms), std::end(kForms),
        [&](const Form& candidate) { return options.As == candidate.Name; });
    return form->Print(sheet, options.Literal ? ht::cpPlain : ht::cpExact);
}

}

void AddCss(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "css", "Read a style sheet and print it",
        "echo 'p { margin: 1px 2px } p > b { color: red }' | hearth css --as compiled\n"
        "p {\n"
        "  margin-top:1px;\n"
        "  margin-right:2px;\n"
        "  margin-bottom:1px;\n"
        "  margin-left:2px;\n"
        "}\n"
        "p > b {\n"
        "  color:red;\n"
        "}");
    const auto options = std::make_shared<CssOptions>();
    options->Input.AddTo(command);
    options->Input.AddEncodingTo(command);
    command
        .add_option("--as", options->As,
            "What to print"
            "\nsheet: the rules that were understood; inline: their declarations alone."
            "\nminified: equal sides gathered; dark: colours for a dark scheme."
            "\ntokens: type, text and place of each; selectors: the weight in front of each."
            "\ncompiled: longhands, as elements get them; media: media and limits of each query.")
        ->type_name("FORM")
        ->check(CLI::IsMember(FormNames()))
        ->capture_default_str();
    command.add_flag("--literal", options->Literal,
        "Print the library's plain text, which may not read back as the same tokens");
    options->Output.AddTo(command);
    command.callback([options] { options->Output.WriteText(Print(*options)); });
}

}
