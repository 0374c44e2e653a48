// Reading and writing colours.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/colors.h>

#include <hearth/foundation/color_names_p.h>
#include <hearth/foundation/pointer_dictionary.h>
#include <hearth/foundation/string_parser.h>
#include <hearth/runtime/text_number.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace ht {

namespace {

constexpr std::uint32_t kOpaque = 0xFF000000;
constexpr std::uint32_t kWithoutAlpha = 0x00FFFFFF;
constexpr std::u16string_view kRgba = u"rgba(";

struct NamedRow {
    std::u16string_view name;
    std::uint32_t value;
};

constexpr NamedRow kRows[] = {
#include <hearth/foundation/colors_table.inc>
};

static_assert(std::all_of(std::begin(kRows), std::end(kRows),
    [](const NamedRow& row) { return detail::ColorName(row.name).IsKnowable(); }));

struct NamedColor {
    String Name;
    std::uint32_t Value = 0;
};

/// Filled once and only read afterwards.
class NamedColors {
public:
    NamedColors()
    {
        auto color = FColors.begin();
        for (const NamedRow& row : kRows) {
            *color = {String(detail::ColorName(row.name).View()), row.value};
            FDictionary.AddPointer(&*color++);
        }
    }

    /// 0 for an unknown name.
    std::uint32_t Find(std::u16string_view name) const
    {
        const auto* color = static_cast<const NamedColor*>(FDictionary.Get(name));
        return color ? kOpaque | color->Value : 0;
    }

private:
    std::array<NamedColor, std::size(kRows)> FColors;
    THtPointerDictionary FDictionary{
        static_cast<std::int32_t>(std::size(kRows)), HtClassFieldOffset(&NamedColor::Name)};
};

/// Two digits as a byte, or one doubled.
class HexDigits {
public:
    explicit HexDigits(std::u16string_view digits) noexcept
        : FDigits(digits)
    {
    }

    std::uint32_t Single(std::size_t index) const noexcept { return Digit(index) * 17; }
    std::uint32_t Pair(std::size_t index) const noexcept
    {
        return Digit(2 * index) * 16 + Digit(2 * index + 1);
    }

private:
    std::uint32_t Digit(std::size_t index) const noexcept
    {
        return static_cast<std::uint32_t>(HexDigitValue(FDigits[index]));
    }

    std::u16string_view FDigits;
};

/// The colour that stands behind a "#".
std::uint32_t DigitsToColor(std::u16string_view text) noexcept
{
    if (!std::all_of(text.begin(), text.end(), [](char16_t c) { return HexDigitValue(c) >= 0; }))
        return kNoColor;
    const HexDigits digits(text);
    switch (text.size()) {
    case 0:
    case 1:
    case 2:
    case 5:
        return kNoColor;
    case 3:
        return kOpaque | digits.Single(0) << 16 | digits.Single(1) << 8 | digits.Single(2);
    case 4:
        return digits.Single(0) << 24 | digits.Single(1) << 16 | digits.Single(2) << 8 | digits.Single(3);
    case 6:
    case 7:
        return kOpaque | digits.Pair(0) << 16 | digits.Pair(1) << 8 | digits.Pair(2);
    default:
        return digits.Pair(0) << 24 | digits.Pair(1) << 16 | digits.Pair(2) << 8 | digits.Pair(3);
    }
}

std::uint32_t CheckedByte(std::int64_t value)
{
    if (value < 0 || value > 255)
        RaiseRangeError();
    return static_cast<std::uint32_t>(value);
}

/// Three numbers, each passed over up to the next ",".
std::uint32_t ReadChannels(TStringParser& parser)
{
    std::uint32_t color = 0;
    for (int i = 0; i < 3; ++i) {
        color = color << 8 | CheckedByte(parser.ReadInt());
        parser.Skipto(u',');
    }
    return color;
}

/// The colour in front of the next ",".
std::uint32_t ReadInnerColor(TStringParser& parser)
{
    const std::u16string_view rest = parser.Rest();
    parser.Skipto(u',');
    std::u16string_view text = TrimView(rest.substr(0, rest.size() - parser.Rest().size()));
    if (!text.starts_with(kRgba))
        return htmlHextoColor(text);
    // An rgba inside is cut off at its first ",". There may be any number of them inside each other: they
    // are walked, not called, as the outermost alpha is the only one that counts.
    while (text.starts_with(kRgba))
        text = TrimLeftView(text.substr(kRgba.size()));
    if (text.empty() || !IsAsciiDigit(text.front()))
        return htmlHextoColor(text);
    TStringParser channels{String(text)};
    return ReadChannels(channels);
}

std::uint32_t ReadRgba(std::u16string_view s)
{
    TStringParser parser{String(s)};
    parser.Skipto(u'(');
    parser.Skip(1);
    parser.SkipBlanks();
    const std::uint32_t color =
        IsAsciiDigit(parser.GetCurrent()) ? ReadChannels(parser) : ReadInnerColor(parser);
    const std::uint32_t alpha = CheckedByte(BankersRound(parser.ReadNum() * 255));
    return alpha << 24 | (color & kWithoutAlpha);
}

}

std::uint32_t HtStringtoColor(std::u16string_view s)
{
    static const NamedColors colors;
    const detail::ColorName name(s);
    return name.IsKnowable() ? colors.Find(name.View()) : 0;
}

std::uint32_t htmlHextoColor(std::u16string_view s)
{
    std::int32_t isSystem = 0;
    return htmlHextoColorSys(s, isSystem);
}

std::uint32_t htmlHextoColorSys(std::u16string_view s, std::int32_t& IsSystem)
{
    IsSystem = 0;
    if (s.empty())
        return kOpaque;
    if (s == u"transparent")
        return kWithoutAlpha;
    if (s == u"none")
        return kNoneColor;
    if (s.front() == u'#')
        return DigitsToColor(s.substr(1));
    if (s.starts_with(kRgba))
        return ReadRgba(s);
    if (const std::uint32_t named = HtStringtoColor(s))
        return named;
    if (const std::uint32_t system = HtStringtoSysColor(s)) {
        IsSystem = 1;
        return system;
    }
    return DigitsToColor(s);
}

String htmlColortoHex(std::uint32_t Color)
{
    return IntToHex(Color & kWithoutAlpha, 6).ToLowerAscii();
}

String htmlColortoStr(std::uint32_t Color)
{
    const String rgb = htmlColortoHex(Color);
    const std::uint32_t alpha = Color >> 24;
    if (alpha == 255)
        return u"#" + rgb;
    return Concat({u"#", rgb, IntToHex(alpha, 2).ToLowerAscii()});
}

}
