// Nodes with a style.
// SPDX-License-Identifier: MIT
#include <hearth/styling/nodes/styled_node.h>

#include <hearth/foundation/hash.h>

namespace ht {

namespace {

constexpr TRectF kDefaultViewport{0, 0, 1024, 768};

}

TStyledHTMLNode::TStyledHTMLNode()
    : FStyle(this)
{
}

TStyledHTMLNode::~TStyledHTMLNode() = default;

THtNodeClass TStyledHTMLNode::NodeClass() const
{
    return THtNodeClass::Of<TStyledHTMLNode>();
}

TRectF TStyledHTMLNode::Viewport() const
{
    return kDefaultViewport;
}

float TStyledHTMLNode::ScaleFactor() const
{
    return 1;
}

void TStyledHTMLNode::ParseAttributes(THtmlParser& HP)
{
    THtmlNode::ParseAttributes(HP);
    GetClassesHashes();
}

bool TStyledHTMLNode::SetAttribute(const String& Name, const String& Value)
{
    if (!THtmlNode::SetAttribute(Name, Value))
        return false;
    if (Name == u"class")
        GetClassesHashes();
    return true;
}

void TStyledHTMLNode::GetClassesHashes()
{
    FClassHashes.Clear();
    const String classes = GetStyleClassStr().ToLowerAscii();
    const char16_t* end = classes.end();
    for (const char16_t* unit = classes.begin(); unit != end;) {
        if (*unit <= u' ') {
            ++unit;
            continue;
        }
        const char16_t* start = unit;
        while (unit != end && *unit > u' ')
            ++unit;
        const std::u16string_view name(start, static_cast<std::size_t>(unit - start));
        FClassHashes.Add({String(name), RSHash(name)});
    }
}

}
