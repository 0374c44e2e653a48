// What the writers of HTML trees share: the walk, and which nodes hold text.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/html_node.h>
#include <hearth/markup/node_walk_p.h>

namespace ht {

/// Scripts, styles, comments, directives and CDATA sections: nodes without readable text.
constexpr bool HasNoText(THTMLTokenType type) noexcept
{
    return type == htScript || type == htStyle || type == htComment || type == htDirective || type == htCData;
}

}
