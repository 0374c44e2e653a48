// The table of properties.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/properties.h>

#include <hearth/foundation/text_words.h>
#include <hearth/styling/css/style_enums.h>

#include <array>

namespace ht {

namespace {

enum TInheritance : std::uint8_t { own, inherited };
enum TEffect : std::uint8_t { repaint, layout };

/// What a row of the table says.
struct PropertyRow {
    String Name;
    TCSSProperty Prop;
    TCSSPropertyType Type;
    TCSSPropertyParentType Parent;
    TInheritance Inheritance;
    TEffect Effect;
    String Prefix = {};
    const TEnumInfo& (*Keywords)() = nullptr;
    std::u16string_view Longhands = {}; // separated by blanks
    float Initial = 0;
};

constexpr std::int32_t kBuckets = 511;

/// The properties that the general caller of a computed style takes in; those left out are read on demand.
constexpr TCSSproperties kApplied = {cspPosition, cspTransition, cspTextDecorationLine, cspTextDecoration,
    cspFontStyle, cspBackgroundColor, cspBackgroundImage, cspBackgroundPositionX, cspbackgroundPositionY,
    cspBackgroundPosition, cspBackgroundAttachment, cspBackgroundSize, cspVisibility, cspZIndex, cspDirection,
    cspWordWrap, cspWordBreak, cspClipPath, cspDominantBaseline, cspFill, cspFillRule, cspStroke,
    cspStrokeWidth, cspStopColor, cspStopOpacity, cspStrokeDasharray, cspStrokeDashoffset, cspStrokeLinejoin,
    cspStrokeLinecap, cspShapeRendering, cspTextAnchor, cspZoom, cspHyphens, cspAnimation, cspAnimationName,
    cspAnimationDuration, cspAnimationTimingFunction, cspClear, cspCounterReset, cspCounterIncrement,
    cspTransitionDuration};

TCSSValueProc ApplyProcOf(TCSSProperty prop)
{
    switch (prop) {
    case cspBackground:
        return vpDoApplyBackground;
    case cspDisplay:
        return vpDoApplyDisplay;
    case cspFontWeight:
        return vpDoApplyFontWeight;
    case cspWhiteSpace:
        return vpDoApplyWhiteSpace;
    default:
        return kApplied.Contains(prop) ? vpApplyValueCaller : vpNone;
    }
}

/// The dictionary, and the records of the table by number.
class PropertyTable {
public:
    PropertyTable();

    THtObjectDictionary& Dictionary() noexcept { return FDictionary; }
    const TCSSPropRec& Unknown() const noexcept { return *FByNumber[cspUnknown]; }
    const TCSSPropRec& At(TCSSProperty prop) const noexcept { return *FByNumber[prop]; }
    const TCSSPropRec* Find(std::u16string_view name) const
    {
        return static_cast<const TCSSPropRec*>(FDictionary.Get(name));
    }

private:
    void AddLonghands(TCSSPropRec& shorthand, std::u16string_view names) const;

    THtObjectDictionary FDictionary{kBuckets, true, HtClassFieldOffset(&TCSSPropRec::Name)};
    std::array<const TCSSPropRec*, TEnumTraits<TCSSProperty>::kCount> FByNumber{};
};

PropertyTable::PropertyTable()
{
    const PropertyRow rows[] = {
#include <hearth/styling/css/properties_table.inc>
    };
    for (const PropertyRow& row : rows) {
        auto record = std::make_unique<TCSSPropRec>(row.Name, row.Prop, row.Type);
        record->ParentType = row.Parent;
        record->Inherited = row.Inheritance == inherited;
        record->AffectsLayout = row.Effect == layout;
        record->InitialValue = row.Initial;
        if (row.Keywords)
            record->EnumInfo(row.Prefix, row.Keywords());
        AddLonghands(*record, row.Longhands);
        FByNumber[row.Prop] = record.get();
        FDictionary.AddObject(record.get());
        record.release();
    }
    for (const TCSSPropRec*& record : FByNumber) {
        if (!record)
            record = FByNumber[cspUnknown];
    }
}

/// TCSSPropRec::Add would ask for the table that is being made.
void PropertyTable::AddLonghands(TCSSPropRec& shorthand, std::u16string_view names) const
{
    while (!names.empty()) {
        if (const TCSSPropRec* longhand = Find(Q_StrTok(names, u" ", true)))
            shorthand.SubProps.Add(longhand);
    }
}

PropertyTable& Table()
{
    static PropertyTable table;
    return table;
}

}

TCSSPropRec::TCSSPropRec(const String& name, TCSSProperty prop, TCSSPropertyType type)
    : Name(name)
    , Prop(prop)
    , PropType(type)
    , ApplyProc(ApplyProcOf(prop))
{
}

TCSSPropRec& TCSSPropRec::Add(const String& name)
{
    if (const TCSSPropRec* longhand = Table().Find(name))
        SubProps.Add(longhand);
    return *this;
}

TCSSPropRec& TCSSPropRec::EnumInfo(const String& prefix, const TEnumInfo& typeInfo)
{
    EnumType = &typeInfo;
    EnumPrefix = prefix;
    return *this;
}

THtObjectDictionary& CSSPropDictionary()
{
    return Table().Dictionary();
}

const TCSSPropRec& CSSPropRec(std::u16string_view name)
{
    const TCSSPropRec* record = Table().Find(name);
    return record ? *record : Table().Unknown();
}

const TCSSPropRec& CSSPropRec(TCSSProperty prop)
{
    return Table().At(prop);
}

}
