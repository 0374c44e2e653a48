// What a computed style knows of its element's surroundings.
// SPDX-License-Identifier: MIT
#include <hearth/styling/style/element_style.h>

#include <hearth/styling/nodes/styled_node.h>

namespace ht {

namespace {

double Scaled(double size, const TStyledHTMLNode& element)
{
    const double scale = element.ScaleFactor();
    return scale == 0 ? size : size / scale;
}

}

bool TBaseElementStyle::ApplyPseudoClass(TCSSPseudoClass PClass, bool Add)
{
    if (CurrentPC.Contains(PClass) == Add)
        return false;
    if (Add)
        CurrentPC.Include(PClass);
    else
        CurrentPC.Exclude(PClass);
    if (!FElement)
        return true;
    if (auto* parent = As<TStyledHTMLNode>(FElement->THtNode::Parent()))
        parent->StyleChanged(false);
    FElement->StyleChanged(false);
    return true;
}

float TBaseElementStyle::RootFontSize() const
{
    if (!FElement || !FElement->THtNode::Parent())
        return kRootFontSize;
    const auto* root = As<TStyledHTMLNode>(FElement->Root());
    return root ? root->Style().IntFontSize : kRootFontSize;
}

double TBaseElementStyle::ViewportWidth() const
{
    return FElement ? Scaled(double{FElement->Viewport().Width()}, *FElement) : 0;
}

double TBaseElementStyle::ViewportHeight() const
{
    return FElement ? Scaled(double{FElement->Viewport().Height()}, *FElement) : 0;
}

}
