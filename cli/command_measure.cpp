// hearth measure: reads a length of a style sheet and prints what it comes to.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "numbers.h"
#include "output.h"

#include <hearth/runtime/exceptions.h>
#include <hearth/styling/css/css_tokenizer.h>
#include <hearth/styling/css/token_sequence.h>
#include <hearth/styling/nodes/styled_node.h>
#include <hearth/styling/style/measure.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace hearth_cli {

namespace {

struct MeasureOptions {
    std::string Text;
    std::optional<float> Parent;
    std::optional<float> FontSize;
    std::optional<float> RootFontSize;
    float Zoom = 1;
    std::string Viewport = "1024x768";
    hearth_cli::Output Output;
};

/// An element that answers what the options say.
class Element : public ht::TStyledHTMLNode {
public:
    ht::TRectF Viewport() const override { return Shown; }

    ht::TRectF Shown;
};

ht::TRectF ReadViewport(const std::string& text)
{
    float width = 0;
    float height = 0;
    char rest = 0;
    if (std::sscanf(text.c_str(), "%fx%f%c", &width, &height, &rest) != 2)
        throw CLI::ValidationError("--viewport", "should be WIDTHxHEIGHT, as in 1024x768");
    return {0, 0, width, height};
}

ht::TCSSTokens ReadTokens(const std::string& text)
{
    ht::TArray<ht::TCSSToken> tokens;
    ht::TCSSTokenizer tokenizer(ht::String::FromUtf8(text));
    while (!tokenizer.Eof) {
        tokenizer.NextToken();
        const bool isKept = tokenizer.Token.CType != ht::ctSpace && tokenizer.Token.CType != ht::ctComment;
        if (!tokenizer.Eof && isKept)
            tokens.Add(tokenizer.Token);
    }
    return ht::TCSSTokens(tokens);
}

std::string FlagNames(const ht::TMeasure& measure)
{
    std::string names;
    for (ht::TMeasureFlag flag : measure.Flags)
        names += (names.empty() ? "" : "+") + ht::String(ht::EnumName(flag)).ToUtf8();
    return names.empty() ? "-" : names;
}

/// The whole pixels, or why there are none.
std::string PixelText(ht::TMeasure& measure)
{
    try {
        return std::to_string(measure.Pixels());
    } catch (const ht::ERangeError& error) {
        return ht::String(error.ClassName()).ToUtf8();
    }
}

std::string Print(const MeasureOptions& options)
{
    Element root;
    root.Shown = ReadViewport(options.Viewport);
    root.Style().IntFontSize = options.RootFontSize.value_or(ht::TBaseElementStyle::kRootFontSize);
    // A size of the root counts for an element below it alone.
    Element* element = &root;
    if (options.RootFontSize) {
        element = static_cast<Element*>(root.AddNode(std::make_unique<Element>()));
        element->Shown = root.Shown;
    }
    ht::TBaseElementStyle& style = element->Style();
    style.IntFontSize = options.FontSize.value_or(root.Style().IntFontSize);
    style.Zoom = options.Zoom;

    const ht::TCSSTokens tokens = ReadTokens(options.Text);
    ht::TCSSTokenSequence sequence;
    sequence.Init(&tokens);
    ht::TMeasure measure;
    measure.Init(&style);
    measure.Decode(sequence);
    measure.Parent = options.Parent ? &*options.Parent : nullptr;

    const std::string text = measure.AsString().ToUtf8();
    const std::string flags = FlagNames(measure);
    const std::string unit = ht::String(ht::EnumName(measure.FMUnit)).ToUtf8();
    const std::string value = DecimalOf(measure.FValue);
    return "text: " + text + "\nvalue: " + value + "\nunit: " + unit + "\nflags: " + flags
        + "\nfpixels: " + DecimalOf(measure.FPixels()) + "\npixels: " + PixelText(measure) + "\n";
}

}

void AddMeasure(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "measure", "Read a length and print what it comes to",
        "hearth measure 1.5em --font-size 20\n"
        "text: 1.5em\n"
        "value: 1.5\n"
        "unit: muEM\n"
        "flags: mfNotAuto\n"
        "fpixels: 30\n"
        "pixels: 30");
    const auto options = std::make_shared<MeasureOptions>();
    command.add_option("TEXT", options->Text, "The length as in a style sheet")->type_name("")->required();
    command.add_option("--parent", options->Parent, "What a percentage refers to, in pixels")->type_name("N");
    command.add_option("--font-size", options->FontSize, "Pixels of an em")->type_name("N");
    command.add_option("--root-font-size", options->RootFontSize, "Pixels of a rem")->type_name("N");
    command.add_option("--zoom", options->Zoom, "Factor of the whole pixels")
        ->type_name("N")
        ->capture_default_str();
    command.add_option("--viewport", options->Viewport, "Width and height of what is shown, in pixels")
        ->type_name("WxH")
        ->capture_default_str();
    options->Output.AddTo(command);
    command.callback([options] { options->Output.WriteText(Print(*options)); });
}

}
