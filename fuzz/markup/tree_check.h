// What must hold in every tree, whatever text or call it came from.
// SPDX-License-Identifier: MIT
#pragma once

#include "../require.h"

#include <hearth/foundation/fast_string.h>
#include <hearth/markup/html_node.h>

#include <cstdint>
#include <string_view>

namespace fuzz {

/// A frame of the parser may put a row of its own around a cell, which is a level without a frame.
inline constexpr std::int32_t kMaxParsedDepth = 2 * ht::THtmlParser::kMaxLevels;

/// Checks the links of the children of `node` among each other and to it.
inline void CheckChildren(const ht::THtNode& node)
{
    const ht::THtNode* previous = nullptr;
    std::int32_t index = 0;
    for (const ht::THtNode* child : node.Children()) {
        Require(child->Parent() == &node, "a child knows its parent");
        Require(child->NodeIndex() == index, "a child knows its place");
        Require(child->PreviousSibling() == previous, "the previous sibling is the one in front");
        Require(!previous || previous->NextSibling() == child, "the next sibling is the one behind");
        previous = child;
        ++index;
    }
    Require(!previous || !previous->NextSibling(), "the last child has no next sibling");
    Require(index == node.GetCount(), "the count is that of the children");
}

/// Checks all links of a tree; returns its depth.
inline std::int32_t CheckTree(const ht::THtNode& root)
{
    std::int32_t depth = 0;
    std::int32_t deepest = 0;
    const ht::THtNode* node = &root;
    while (node) {
        CheckChildren(*node);
        deepest = depth > deepest ? depth : deepest;
        const ht::THtNode* next = node->FirstChild();
        if (next)
            ++depth;
        while (!next && node != &root) {
            next = node->NextSibling();
            if (!next) {
                node = node->Parent();
                --depth;
            }
        }
        node = next;
    }
    return deepest;
}

/// Runs every writer over a tree and compares those that are two ways to the same text.
inline ht::String PrintAll(const ht::THtmlNode& node)
{
    ht::TFastString html(16);
    node.FastInnerHTML(html);
    const ht::String outer = node.GetOuterHTML();
    Require(html.GetAsString() == outer, "both ways to the HTML agree");
    ht::TFastString text(16);
    node.FastInnerText(text);
    ht::TFastString formatted(16);
    bool afterBlock = false;
    node.FastFormattedHTML(formatted, 0, 2, afterBlock);
    static_cast<void>(node.GetInnerText());
    static_cast<void>(node.GetInnerHTML());
    static_cast<void>(node.GetRawInnerText());
    static_cast<void>(node.TextContent());
    return outer;
}

}
