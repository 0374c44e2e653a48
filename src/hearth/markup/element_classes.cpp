// Registering and finding node classes.
// SPDX-License-Identifier: MIT
#include <hearth/markup/element_classes.h>

#include <hearth/markup/html_node.h>

#include <memory>

namespace ht {

namespace {

constexpr std::int32_t kCapacity = 127;

}

THtElementClassContainer::THtElementClassContainer(const String& tag, const THtNodeClass& nodeClass)
    : Tag(tag)
    , NodeClass(nodeClass)
{
}

TElementClasses::TElementClasses()
    : THtObjectDictionary(kCapacity, true, HtClassFieldOffset(&THtElementClassContainer::Tag),
        static_cast<THtStringHashFunc>(&RSHash))
    , FTextClass(THtNodeClass::Of<THtmlNode>())
{
}

void TElementClasses::RegisterElementClass(const String& tag, const THtNodeClass& nodeClass)
{
    AddObject(std::make_unique<THtElementClassContainer>(tag.ToLowerAscii(), nodeClass).release());
}

THtNodeClass TElementClasses::GetElementClass(const THtTagName& Tag) const
{
    if (Tag.IsEmpty())
        return FTextClass;
    // The hash of a tag name is that of its lower-case form, which is the form the containers have.
    const String folded = Tag.Name.ToLowerAscii();
    const auto* found = static_cast<const THtElementClassContainer*>(GetHashed(Tag.Hash, folded));
    if (found)
        return found->NodeClass;
    return FDefaultClass ? FDefaultClass : THtNodeClass::Of<THtmlNode>();
}

}
