// The computed style of an element.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/object.h>
#include <hearth/styling/css/selector.h>

namespace ht {

class TStyledHTMLNode;

/// What of its style an element carries between two looks at its sheets.
class HT_API TBaseElementStyle : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TBaseElementStyle", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    explicit TBaseElementStyle(TStyledHTMLNode* AElement) noexcept
        : FElement(AElement)
    {
    }

    /// Pixels of a rem where no root tells.
    static constexpr float kRootFontSize = 13;

    TStyledHTMLNode* Element() const noexcept { return FElement; }
    /// The font size of the root element in pixels; kRootFontSize for an element without a parent.
    float RootFontSize() const;
    /// The size of what is shown of the page, in pixels of CSS; 0 without an element.
    double ViewportWidth() const;
    double ViewportHeight() const;
    /// Switches a pseudo-class on or off; false when nothing changed.
    bool ApplyPseudoClass(TCSSPseudoClass PClass, bool Add);

    float IntFontSize = 0; // pixels
    float Zoom = 1;
    TCSSPseudo CurrentPC; // the pseudo-classes that are active on the element

private:
    TStyledHTMLNode* FElement; // null for a style on its own
};

}
