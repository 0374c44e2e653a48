// The colours of the desktop.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/system_colors.h>

#include <hearth/foundation/color_names_p.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace ht {

namespace {

using detail::ColorName;

struct SystemColor {
    ColorName name;
    std::int32_t index;

    constexpr SystemColor(std::u16string_view upperName, std::int32_t colorIndex)
        : name(upperName)
        , index(colorIndex)
    {
    }
};

constexpr SystemColor kNames[] = {
#include <hearth/foundation/system_colors_table.inc>
};

constexpr bool NameBefore(const SystemColor& color, std::u16string_view name) noexcept
{
    return color.name.View() < name;
}

static_assert(std::is_sorted(std::begin(kNames), std::end(kNames),
    [](const SystemColor& a, const SystemColor& b) { return NameBefore(a, b.name.View()); }));
static_assert(std::all_of(
    std::begin(kNames), std::end(kNames), [](const SystemColor& color) { return color.name.IsKnowable(); }));

constexpr std::size_t kIndexes = 31;
constexpr std::int32_t kPaleHighlight = 130; // behind a gap

/// Where the colour of an index stands; the number of colours for an index that has none.
constexpr std::size_t PlaceOf(std::int32_t index) noexcept
{
    if (index == kPaleHighlight)
        return kIndexes;
    return index >= 0 && index < static_cast<std::int32_t>(kIndexes) ? static_cast<std::size_t>(index)
                                                                     : kIndexes + 1;
}

struct UsualColor {
    std::int32_t index;
    std::uint32_t rgb;
};

constexpr UsualColor kUsualColors[] = {
#include <hearth/foundation/system_colors_usual_table.inc>
};

static_assert(std::size(kUsualColors) == kIndexes + 1);
static_assert(std::all_of(std::begin(kUsualColors), std::end(kUsualColors),
    [](const UsualColor& color) { return &color == &kUsualColors[PlaceOf(color.index)]; }));

std::array<std::uint32_t, kIndexes + 1>& Colors() noexcept
{
    static auto colors = [] {
        std::array<std::uint32_t, kIndexes + 1> native{};
        for (const UsualColor& color : kUsualColors)
            native[PlaceOf(color.index)] = static_cast<std::uint32_t>(Color2Win(color.rgb));
        return native;
    }();
    return colors;
}

}

std::uint32_t GetSysColor(std::int32_t index) noexcept
{
    const std::size_t place = PlaceOf(index);
    return place < Colors().size() ? Colors()[place] : 0;
}

void SetSysColor(std::int32_t index, std::uint32_t color)
{
    const std::size_t place = PlaceOf(index);
    if (place >= Colors().size())
        RaiseRangeError();
    Colors()[place] = color & 0xFFFFFFU;
}

std::uint32_t Win2Color(std::int32_t color) noexcept
{
    const std::uint32_t native = color < 0 ? GetSysColor(color & 0xFF) : static_cast<std::uint32_t>(color);
    return 0xFF000000U | static_cast<std::uint32_t>(Color2Win(native));
}

std::uint32_t HtStringtoSysColor(std::u16string_view s) noexcept
{
    const ColorName name(s);
    if (!name.IsKnowable())
        return 0;
    const auto* found = std::lower_bound(std::begin(kNames), std::end(kNames), name.View(), NameBefore);
    if (found == std::end(kNames) || found->name.View() != name.View())
        return 0;
    return Win2Color(static_cast<std::int32_t>(GetSysColor(found->index)));
}

}
