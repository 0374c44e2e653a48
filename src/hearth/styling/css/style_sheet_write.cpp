// Style sheets: how they are printed.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/style_sheet.h>

#include <hearth/foundation/fast_string.h>

#include <unordered_set>

namespace ht {

namespace {

constexpr std::int32_t kTextStep = 65535; // units by which printed text grows
constexpr std::u16string_view kLineEnd = u"\r\n";

/// Prints rules, with a block around those that follow each other under one media query.
class SheetWriter {
public:
    explicit SheetWriter(TCSSPrinting printing)
        : FText(kTextStep)
        , FPrinting(printing)
    {
    }

    void Write(const TCSSSection& section)
    {
        if (section.MediaSet != FMediaSet) {
            CloseBlock();
            OpenBlock(section.MediaSet);
        }
        FText.Add(section.AsString(FPrinting)).Add(kLineEnd);
    }
    String Finish()
    {
        CloseBlock();
        return FText.GetAsString();
    }

private:
    void OpenBlock(const TCSSMediaSet* set)
    {
        FMediaSet = set;
        FIsOpen = set && !set->Tokens.IsEmpty();
        if (FIsOpen)
            FText.Add(set->AsString()).Add(u"{").Add(kLineEnd);
    }
    void CloseBlock()
    {
        if (FIsOpen)
            FText.Add(u"}").Add(kLineEnd);
        FIsOpen = false;
    }

    TFastString FText;
    TCSSPrinting FPrinting;
    const TCSSMediaSet* FMediaSet = nullptr;
    bool FIsOpen = false;
};

}

String TCSSStyleSheet::AsString(TCSSPrinting printing) const
{
    SheetWriter writer(printing);
    for (std::int32_t i = 0; i < FSections.Count(); ++i)
        writer.Write(static_cast<const TCSSSection&>(*FSections[i]));
    return writer.Finish();
}

String TCSSStyleSheet::AsInlineString(TCSSPrinting printing) const
{
    TFastString text(kTextStep);
    std::unordered_set<const TCSSSection*> seen;
    const TCSSStyleMap* const maps[] = {
        &Main.TagMap, Main.IDMap.get(), Main.PseudoMap.get(), Main.ClassMap.get()};
    for (const TCSSStyleMap* map : maps) {
        for (std::int32_t i = 0; map && i < map->Count(); ++i) {
            for (const TCSSFiledSelectors::TItem& item : map->GetSelectors(i)) {
                if (seen.insert(item.Selector->Section).second)
                    text.Add(item.Selector->Section->AsInlineString(printing));
            }
        }
    }
    return text.GetAsString().Trim();
}

void TCSSStyleSheet::Minify()
{
    for (std::int32_t i = 0; i < FSections.Count(); ++i)
        static_cast<TCSSSection&>(*FSections[i]).Minify();
}

}
