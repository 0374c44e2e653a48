// Removing comment marks from a linked list of units, with two cursors that hardly ever step back.
// SPDX-License-Identifier: MIT
#include <hearth/markup/style_comments_p.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace ht {

namespace {

constexpr std::u16string_view kOpen = u"<!--";
constexpr std::u16string_view kClose = u"-->";

/// The body as a doubly linked list of its units; place 0 stands in front of the first, place size + 1 behind
/// the last.
class UnitList {
public:
    explicit UnitList(std::u16string_view text)
        : FText(text)
        , FNext(text.size() + 2)
        , FPrevious(text.size() + 2)
    {
        for (std::uint32_t place = 0; place < FNext.size(); ++place) {
            FNext[place] = place + 1;
            FPrevious[place] = place == 0 ? 0 : place - 1;
        }
    }

    std::uint32_t End() const { return static_cast<std::uint32_t>(FText.size()) + 1; }
    std::uint32_t Next(std::uint32_t place) const { return FNext[place]; }

    std::uint32_t StepBack(std::uint32_t place, std::size_t steps) const
    {
        while (steps-- > 0 && place != 0)
            place = FPrevious[place];
        return place;
    }

    /// First place from `place` on where `mark` stands, or the end.
    std::uint32_t Find(std::uint32_t place, std::u16string_view mark) const
    {
        while (place < End() && !StandsAt(place, mark))
            place = FNext[place];
        return place;
    }

    /// Takes `count` units out and answers the place behind them.
    std::uint32_t Remove(std::uint32_t place, std::size_t count)
    {
        const std::uint32_t before = FPrevious[place];
        while (count-- > 0)
            place = FNext[place];
        FNext[before] = place;
        FPrevious[place] = before;
        return place;
    }

    std::u16string Text() const
    {
        std::u16string result;
        for (std::uint32_t place = FNext[0]; place < End(); place = FNext[place])
            result.push_back(FText[place - 1]);
        return result;
    }

private:
    bool StandsAt(std::uint32_t place, std::u16string_view mark) const
    {
        for (char16_t c : mark) {
            if (place == 0 || place >= End() || FText[place - 1] != c)
                return false;
            place = FNext[place];
        }
        return true;
    }

    std::u16string_view FText;
    std::vector<std::uint32_t> FNext;
    std::vector<std::uint32_t> FPrevious;
};

}

String WithoutStyleComments(std::u16string_view body)
{
    if (body.find(kOpen) == std::u16string_view::npos)
        return String(body);
    UnitList units(body);
    std::uint32_t open = units.Next(0);
    std::uint32_t close = open;
    while ((open = units.Find(open, kOpen)) < units.End()) {
        const std::uint32_t behind = units.Remove(open, kOpen.size());
        // Places rise along the list, so the later of both is where no closing mark was looked for yet; what
        // the removal put together begins at most two units in front.
        close = units.Find(std::max(behind, units.StepBack(close, kClose.size() - 1)), kClose);
        if (close < units.End())
            close = units.Remove(close, kClose.size());
        open = units.StepBack(behind, kOpen.size() - 1);
    }
    return String(units.Text());
}

}
