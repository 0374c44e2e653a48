// What is known of each property: how its value is read, inherited and resolved.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/object_dictionary.h>
#include <hearth/runtime/array.h>
#include <hearth/styling/css/css_property.h>

namespace ht {

enum TCSSPropertyType : std::uint8_t { cptLength, cptNumber, cptColor, cptString, cptEnum, cptComplex };

template <> struct TEnumTraits<TCSSPropertyType> {
    static constexpr int kCount = 6;
    static constexpr const char16_t* kName = u"TCSSPropertyType";
};

/// What a percentage refers to: a size of the element, its font size, or a size of its container.
enum TCSSPropertyParentType : std::uint8_t {
    cpptWidth,
    cpptHeight,
    cpptFontSize,
    cpptContainerWidth,
    cpptContainerHeight,
};

template <> struct TEnumTraits<TCSSPropertyParentType> {
    static constexpr int kCount = 5;
    static constexpr const char16_t* kName = u"TCSSPropertyParentType";
};

/// How a computed style takes a value in, beside keeping it for its accessors.
enum TCSSValueProc : std::uint8_t {
    vpNone, // not at all: it is read on demand
    vpApplyValueCaller,
    vpDoApplyBackground,
    vpDoApplyDisplay,
    vpDoApplyFontWeight,
    vpDoApplyWhiteSpace,
};

/// One property.
class HT_API TCSSPropRec : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSPropRec", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    TCSSPropRec(const String& name, TCSSProperty prop, TCSSPropertyType type);

    /// Appends the record of a name that is in CSSPropDictionary() already; any other name is passed over.
    TCSSPropRec& Add(const String& name);
    /// The enumeration of the keywords and the prefix of its names.
    TCSSPropRec& EnumInfo(const String& prefix, const TEnumInfo& typeInfo);

    String Name;
    TCSSProperty Prop;
    TCSSPropertyType PropType;
    TCSSPropertyParentType ParentType = cpptWidth;
    TCSSValueProc ApplyProc; // how its values are applied; follows from Prop
    bool Inherited = false;
    bool AffectsLayout = false; // else a change needs a repaint only
    float InitialValue = 0;
    TArray<const TCSSPropRec*> SubProps; // the longhands of a shorthand, in order
    const TEnumInfo* EnumType = nullptr; // null without keywords
    String EnumPrefix;
};

/// All properties by name. Made on first use; a host that knows more properties adds records before the first
/// sheet is parsed. Sheets point at the records, so none is ever removed.
HT_API THtObjectDictionary& CSSPropDictionary();
/// The record of a name in lower case; that of "unknown" for any other name.
HT_API const TCSSPropRec& CSSPropRec(std::u16string_view name);
/// The record of a property of the table; that of "unknown" for one that only a host may define.
HT_API const TCSSPropRec& CSSPropRec(TCSSProperty prop);

}
