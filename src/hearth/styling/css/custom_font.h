// Fonts that a sheet brings along.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/object.h>
#include <hearth/styling/css/style_enums.h>
#include <hearth/styling/style/font_style.h>

#include <memory>

namespace ht {

/// One face of "@font-face".
class HT_API TCSSCustomFont : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSCustomFont", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    enum TSlant : std::uint8_t { slNone, slItalic, slOblique };

    /// Works the derived fields out of the texts.
    TCSSCustomFont(const String& fontFamily, const String& url, const String& style, const String& weight,
        const String& localNames);

    String FontFamily; // in lower case
    String URL;
    String Data; // for the host
    String Style; // text of "font-style"
    String Weight; // text of "font-weight"
    String LocalNames; // separated by ";"
    THtFontStyles FontStyles;
    TSlant Italic = slNone;
    TCSSFontWeight CSSWeight = fwNormal;
    std::int32_t WeightValue = 400;
};

/// The faces of one family.
class HT_API TCSSCustomFontFamily : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSCustomFontFamily", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    explicit TCSSCustomFontFamily(const String& name);

    void AddFont(const TCSSCustomFont& Font);
    void Assign(const TCSSCustomFontFamily& Source);
    std::int32_t Count() const noexcept { return FFonts.Length(); }
    /// The face that fits best: its styles but for lines, then without light, without bold, any italic, the
    /// first; null in an empty family. Lifetime: that of the family.
    const TCSSCustomFont* GetFont(THtFontStyles Styles) const;
    /// Throws Exception "Font index out of range".
    const TCSSCustomFont& GetFontByIndex(std::int32_t Index) const;

    String Name; // in lower case

private:
    TArray<std::unique_ptr<TCSSCustomFont>> FFonts;
};

/// Takes a trait at the end of a font's name off: "Arial Bold" is "Arial" and "bold". False when there is
/// none; Family is then the whole name.
HT_API bool ParseFontFamilyName(const String& Name, String& Family, String& Style);

}
