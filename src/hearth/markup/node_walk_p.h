// The walk that all writers of trees share.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/node.h>

namespace ht {

/// Visits `top` and its subtree in document order without recursion: trees may be a million levels deep.
/// Where `visitor.Enter(node)` answers true the children follow and then `visitor.Leave(node)`; otherwise
/// neither. `Node` is the class of all nodes of the tree.
template <class Node, class Visitor> void WalkSubtree(const Node& top, Visitor& visitor)
{
    const Node* node = &top;
    for (;;) {
        if (visitor.Enter(*node)) {
            if (const THtNode* child = node->FirstChild()) {
                node = static_cast<const Node*>(child);
                continue;
            }
            visitor.Leave(*node);
        }
        while (node != &top && !node->NextSibling()) {
            node = static_cast<const Node*>(node->Parent());
            visitor.Leave(*node);
        }
        if (node == &top)
            return;
        node = static_cast<const Node*>(node->NextSibling());
    }
}

}
