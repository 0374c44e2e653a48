// HTML nodes that have a style.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/html_node.h>
#include <hearth/runtime/geometry.h>
#include <hearth/styling/style/element_style.h>

namespace ht {

/// An HTML node with a style. The classes of its "class" attribute are kept with their hashes.
class HT_API TStyledHTMLNode : public THtmlNode {
public:
    static constexpr TClassInfo kClassInfo{u"TStyledHTMLNode", &THtmlNode::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    TStyledHTMLNode();
    ~TStyledHTMLNode() override;

    THtNodeClass NodeClass() const override;
    using THtmlNode::ParseAttributes;
    void ParseAttributes(THtmlParser& HP) override;
    bool SetAttribute(const String& Name, const String& Value) override;

    /// Called where the style may have become another; does nothing here.
    virtual void StyleChanged(bool /*ForceRecalc*/) { }

    /// The part of the page that is shown, in device pixels, and how many of them a pixel of CSS takes. A
    /// package with a screen answers its own.
    virtual TRectF Viewport() const;
    virtual float ScaleFactor() const;

    /// Reads the classes from the attribute anew.
    void GetClassesHashes();
    const TClassesArray& ClassHashes() const noexcept { return FClassHashes; }
    /// More than one class.
    bool HasManyClasses() const noexcept { return FClassHashes.Length() > 1; }

    TBaseElementStyle& Style() noexcept { return FStyle; }
    const TBaseElementStyle& Style() const noexcept { return FStyle; }
    const TCSSPseudo& CurrentPC() const noexcept { return FStyle.CurrentPC; }

private:
    TBaseElementStyle FStyle;
    TClassesArray FClassHashes;
};

}
