// hearth color: reads a colour and prints it as a number or as other text.
// SPDX-License-Identifier: MIT
#include "commands.h"
#include "numbers.h"
#include "output.h"

#include <hearth/foundation/color_math.h>
#include <hearth/foundation/colors.h>
#include <hearth/runtime/text_number.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace hearth_cli {

namespace {

struct Form {
    const char* Name;
    std::string (*Print)(std::uint32_t color);
};

std::string HueSaturationBrightness(std::uint32_t color)
{
    const ht::THSBColor hsb = ht::RGBToHSB(ht::ColorToRGBA(color));
    return DecimalOf(static_cast<float>(hsb.Hue)) + " " + DecimalOf(static_cast<float>(hsb.Saturation)) + " "
        + DecimalOf(static_cast<float>(hsb.Brightness));
}

constexpr Form kForms[] = {
    {"hex", [](std::uint32_t color) { return ht::htmlColortoHex(color).ToUtf8(); }},
    {"css", [](std::uint32_t color) { return ht::htmlColortoStr(color).ToUtf8(); }},
    {"hsb", HueSaturationBrightness},
};

struct ColorOptions {
    std::string Text;
    std::string As; // nothing for the number
    hearth_cli::Output Output;
};

std::vector<std::string> FormNames()
{
    std::vector<std::string> names;
    std::transform(std::begin(kForms), std::end(kForms), std::back_inserter(names),
        [](const Form& form) { return form.Name; });
    return names;
}

std::string Print(const ColorOptions& options)
{
    const std::uint32_t color = ht::htmlHextoColor(ht::String::FromUtf8(options.Text));
    if (color == ht::kNoColor)
        return "no colour";
    if (color == ht::kNoneColor)
        return "none";
    if (options.As.empty())
        return "0x" + ht::IntToHex(color, 8).ToUtf8();
    const auto form = std::find_if(std::begin(kForms), std::end(kForms),
        [&](const Form& candidate) { return options.As == candidate.Name; });
    return form->Print(color);
}

}

void AddColor(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "color", "Read a colour and print it as 0xAARRGGBB",
        "hearth color 'rgba(255, 128, 0, 0.5)'\n"
        "0x80FF8000");
    const auto options = std::make_shared<ColorOptions>();
    command.add_option("TEXT", options->Text, "The colour: a name, digits behind #, or rgba(...)")
        ->type_name("")
        ->required();
    command
        .add_option("--as", options->As,
            "What to print instead"
            "\nhex: six digits; css: as in a style sheet;"
            "\nhsb: hue in degrees, saturation and brightness in percent.")
        ->type_name("FORM")
        ->check(CLI::IsMember(FormNames()));
    options->Output.AddTo(command);
    command.callback([options] { options->Output.WriteText(Print(*options)); });
}

}
