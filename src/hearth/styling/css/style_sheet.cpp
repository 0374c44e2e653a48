// Style sheets: how they are filled.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/style_sheet.h>

namespace ht {

namespace {

/// Orders below are those of built-in sheets, and stay what they are in every sheet.
constexpr std::uint32_t kFirstOwnOrder = 10000;

TCSSStyleMaps& Need(std::unique_ptr<TCSSStyleMaps>& maps)
{
    if (!maps)
        maps = std::make_unique<TCSSStyleMaps>();
    return *maps;
}

}

TCSSStyleSheet::TCSSStyleSheet() = default;

TCSSStyleSheet::~TCSSStyleSheet() = default;

void TCSSStyleSheet::AddSelector(TCSSSelector* S)
{
    S->Order = NextOrder(*S);
    TCSSStyleMaps& maps = MapsOf(*S);
    maps.AddSelector(S, foDistinct, S->Order);
    maps.CompileFolded();
}

std::uint32_t TCSSStyleSheet::NextOrder(const TCSSSelector& S)
{
    ++SelectorCounter;
    return S.Order == 0 || S.Order >= kFirstOwnOrder ? SelectorCounter : S.Order;
}

TCSSStyleMaps& TCSSStyleSheet::MapsOf(const TCSSSelector& S)
{
    if (S.Pseudo.Contains(pcBefore))
        return Need(Before);
    if (S.Pseudo.Contains(pcAfter))
        return Need(After);
    if (S.Pseudo.Contains(pcMarker))
        return Need(Marker);
    return Main;
}

}
