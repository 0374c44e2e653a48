// The faces of "@font-face" and how one of them is chosen.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/custom_font.h>

#include <hearth/foundation/number_text.h>
#include <hearth/runtime/exceptions.h>

#include <array>

namespace ht {

namespace {

constexpr THtFontStyles kLines{hfsUnderline, hfsStrikeOut};
constexpr THtFontStyles kLightStyles{hfsLight, hfsUltraLight};
constexpr THtFontStyles kBoldStyles{hfsBold, hfsBlack};

struct WeightRow {
    std::int32_t Value;
    TCSSFontWeight Weight;
    THtFontStyles Styles;
};

/// 800 is no weight of its own here.
constexpr WeightRow kWeights[] = {
    {100, fw100, {}},
    {200, fw200, {hfsUltraLight}},
    {300, fw300, {hfsLight}},
    {400, fwNormal, {}},
    {500, fw500, {}},
    {600, fw600, {}},
    {700, fwBold, {hfsBold}},
    {900, fw900, {hfsBlack}},
};

/// The first that fits is taken off.
constexpr std::u16string_view kTraits[] = {u"narrow", u"extrablack", u"ultrablack", u"black", u"heavy",
    u"demibold", u"semibold", u"bold", u"extrabold", u"ultrabold", u"medium", u"light", u"extralight",
    u"ultralight", u"thin", u"regular", u"italic", u"fat"};

std::int32_t WeightNumber(const String& text)
{
    const String weight = text.Trim();
    if (weight == u"bold")
        return 700;
    const std::int32_t value = iStrtoInt(weight);
    return value == 0 ? 400 : value;
}

}

TCSSCustomFont::TCSSCustomFont(const String& fontFamily, const String& url, const String& style,
    const String& weight, const String& localNames)
    : FontFamily(fontFamily.ToLowerAscii())
    , URL(url)
    , Style(style)
    , Weight(weight)
    , LocalNames(localNames)
    , WeightValue(WeightNumber(weight))
{
    if (style == u"italic") {
        Italic = slItalic;
        FontStyles.Include(hfsItalic);
    } else if (style.View().starts_with(u"oblique")) {
        Italic = slOblique;
    }
    for (const WeightRow& row : kWeights) {
        if (row.Value != WeightValue)
            continue;
        CSSWeight = row.Weight;
        FontStyles += row.Styles;
    }
}

TCSSCustomFontFamily::TCSSCustomFontFamily(const String& name)
    : Name(name.ToLowerAscii())
{
}

void TCSSCustomFontFamily::AddFont(const TCSSCustomFont& Font)
{
    FFonts.Add(std::make_unique<TCSSCustomFont>(Font));
}

void TCSSCustomFontFamily::Assign(const TCSSCustomFontFamily& Source)
{
    for (const auto& font : Source.FFonts)
        AddFont(*font);
}

const TCSSCustomFont* TCSSCustomFontFamily::GetFont(THtFontStyles Styles) const
{
    THtFontStyles wanted = Styles - kLines;
    const auto find = [this](auto fits) -> const TCSSCustomFont* {
        for (const auto& font : FFonts) {
            if (fits(font->FontStyles))
                return font.get();
        }
        return nullptr;
    };
    if (const auto* exact = find([&](THtFontStyles styles) { return styles == wanted; }))
        return exact;
    for (const THtFontStyles& degree : {kLightStyles, kBoldStyles}) {
        if ((Styles * degree).IsEmpty())
            continue;
        wanted -= degree;
        const auto* other = find(
            [&](THtFontStyles styles) { return !(styles * degree).IsEmpty() && styles - degree == wanted; });
        if (other)
            return other;
    }
    const auto* italic = wanted.Contains(hfsItalic)
        ? find([](THtFontStyles styles) { return styles.Contains(hfsItalic); })
        : nullptr;
    return italic ? italic : find([](THtFontStyles) { return true; });
}

const TCSSCustomFont& TCSSCustomFontFamily::GetFontByIndex(std::int32_t Index) const
{
    if (Index < 0 || Index >= Count())
        throw Exception(u"Font index out of range"_s);
    return *FFonts[Index];
}

bool ParseFontFamilyName(const String& Name, String& Family, String& Style)
{
    for (std::u16string_view trait : kTraits) {
        const std::size_t length = trait.size() + 1;
        if (Name.size() < length)
            continue;
        const std::u16string_view end = Name.View().substr(Name.size() - length);
        if (end[0] != u' ' || !SameText(end.substr(1), trait))
            continue;
        Family = String(Name.View().substr(0, Name.size() - length));
        Style = String(trait);
        return true;
    }
    Family = Name;
    Style = String();
    return false;
}

}
