// Any text as a colour, and what is read through all that writes and computes.
// SPDX-License-Identifier: MIT
#include "../require.h"

#include <hearth/foundation/color_math.h>
#include <hearth/foundation/colors.h>
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/text_number.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace {

using ht::String;

/// Nothing where numbers are out of range.
std::optional<std::uint32_t> Read(const String& text)
{
    try {
        return ht::htmlHextoColor(text);
    } catch (const ht::ERangeError&) {
        fuzz::Require(text.View().starts_with(u"rgba("), "only an rgba is out of range");
        return std::nullopt;
    }
}

void CheckWriters(std::uint32_t color)
{
    fuzz::Require(Read(u"#" + ht::IntToHex(color, 8)) == color, "eight digits are the colour itself");
    const std::uint32_t opaque = color | 0xFF000000U;
    fuzz::Require(Read(ht::htmlColortoStr(opaque)) == opaque, "an opaque colour is read back");
    fuzz::Require(ht::htmlColortoStr(color).Length() == (color == opaque ? 7 : 9), "the alpha is written");
    const ht::THSBColor hsb = ht::RGBToHSB(ht::ColorToRGBA(color));
    fuzz::Require(ht::HSBtoRGBColor(hsb.Hue, hsb.Saturation, hsb.Brightness) == opaque, "hues lead back");
    fuzz::Require(ht::Win2Color(ht::Color2Win(color)) == opaque, "the order of bytes leads back");
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const String text = String::FromUtf8({reinterpret_cast<const char*>(data), size});
    const std::optional<std::uint32_t> color = Read(text);
    if (!color)
        return 0;
    std::int32_t isSystem = 7;
    fuzz::Require(ht::htmlHextoColorSys(text, isSystem) == *color, "both readers agree");
    fuzz::Require(isSystem == 0 || ht::HtStringtoSysColor(text) == *color, "a system colour is one");
    CheckWriters(*color);
    return 0;
}
