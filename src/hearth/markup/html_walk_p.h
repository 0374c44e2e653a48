// The walk that all writers of HTML trees share.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/html_node.h>

namespace ht {

/// Visits `top` and its subtree in document order without recursion: trees may be a million levels deep.
/// Where `visitor.Enter(node)` answers true the children follow and then `visitor.Leave(node)`; otherwise
/// neither.
template <class Visitor> void WalkSubtree(const THtmlNode& top, Visitor& visitor)
{
    const THtmlNode* node = &top;
    for (;;) {
        if (visitor.Enter(*node)) {
            if (const THtNode* child = node->FirstChild()) {
                node = static_cast<const THtmlNode*>(child);
                continue;
            }
            visitor.Leave(*node);
        }
        while (node != &top && !node->NextSibling()) {
            node = node->Parent();
            visitor.Leave(*node);
        }
        if (node == &top)
            return;
        node = static_cast<const THtmlNode*>(node->NextSibling());
    }
}

/// Scripts, styles, comments, directives and CDATA sections: nodes without readable text.
constexpr bool HasNoText(THTMLTokenType type) noexcept
{
    return type == htScript || type == htStyle || type == htComment || type == htDirective || type == htCData;
}

}
