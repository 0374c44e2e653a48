// Which class of node stands for which tag.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/object_dictionary.h>
#include <hearth/markup/node.h>

namespace ht {

/// A tag, in lower case, and the class of its nodes.
class HT_API THtElementClassContainer : public TObject {
public:
    THtElementClassContainer(const String& tag, const THtNodeClass& nodeClass);

    String Tag;
    THtNodeClass NodeClass;
};

/// The node classes of a kind of tree, for a root that overrides GetElementClass. Filled before the first
/// parse and only read afterwards.
class HT_API TElementClasses : public THtObjectDictionary {
public:
    TElementClasses();

    /// Sets the class of a tag, whatever its case; a class without Create drops the tag's elements.
    void RegisterElementClass(const String& tag, const THtNodeClass& nodeClass);
    /// The class of text nodes.
    void SetTextClass(const THtNodeClass& nodeClass) noexcept { FTextClass = nodeClass; }
    /// The class of all tags without one of their own.
    void SetDefaultClass(const THtNodeClass& nodeClass) noexcept { FDefaultClass = nodeClass; }

    /// The text class for a null tag; the default class, or that of THtmlNode, for a tag without one of its
    /// own.
    THtNodeClass GetElementClass(const THtTagName& Tag) const;

private:
    THtNodeClass FTextClass;
    THtNodeClass FDefaultClass;
};

}
