// Trees as one line of text, and the links that hold in every tree.
// SPDX-License-Identifier: MIT
#pragma once

#include <cli/tree_text.h>
#include <hearth/markup/html_node.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>

namespace trees {

/// The tree in one line, children in braces: `<p>{"a" <br>}`.
inline std::string Tree(const ht::THtNode& top)
{
    std::istringstream lines(hearth_cli::TreeText(top));
    std::string tree;
    std::size_t level = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t indent = line.find_first_not_of(' ') / 2;
        tree.append(level > indent ? level - indent : 0, '}');
        if (!tree.empty())
            tree += indent > level ? '{' : ' ';
        level = indent;
        tree.append(line, indent * 2);
    }
    return tree.append(level, '}');
}

/// Parent and sibling links, places and nothing shared, for every node below `top`.
inline void ExpectLinked(const ht::THtNode& top)
{
    for (const ht::THtNode* node = &top; node; node = node->NextNodeIn(&top)) {
        const auto children = node->Children();
        for (std::size_t i = 0; i < children.size(); ++i) {
            const ht::THtNode* child = children[i];
            ASSERT_EQ(child->Parent(), node);
            ASSERT_EQ(child->NodeIndex(), static_cast<std::int32_t>(i));
            ASSERT_EQ(child->NextSibling(), i + 1 < children.size() ? children[i + 1] : nullptr);
            ASSERT_EQ(child->PreviousSibling(), i > 0 ? children[i - 1] : nullptr);
        }
    }
}

/// The tree of a document, its links checked.
inline std::string ParsedTree(std::u16string_view text)
{
    ht::THtmlNode root;
    root.Parse(ht::String(text));
    ExpectLinked(root);
    return Tree(root);
}

struct Row {
    std::u16string_view Text;
    std::string_view Tree;
};

template <std::size_t N> void ExpectTrees(const Row (&rows)[N])
{
    for (const Row& row : rows)
        EXPECT_EQ(ParsedTree(row.Text), row.Tree) << "text: " << ht::String(row.Text).ToUtf8();
}

inline std::int32_t CountNodes(const ht::THtNode& top)
{
    std::int32_t count = 0;
    for (const ht::THtNode* node = &top; node; node = node->NextNodeIn(&top))
        ++count;
    return count;
}

/// Levels below `top`.
inline std::int32_t Depth(const ht::THtNode& top)
{
    std::int32_t deepest = 0;
    std::int32_t level = 0;
    const ht::THtNode* node = &top;
    while (node) {
        if (node->FirstChild()) {
            node = node->FirstChild();
            deepest = std::max(deepest, ++level);
            continue;
        }
        for (; node != &top && !node->NextSibling(); --level)
            node = node->Parent();
        node = node == &top ? nullptr : node->NextSibling();
    }
    return deepest;
}

inline ht::String Repeated(std::u16string_view piece, std::size_t times)
{
    std::u16string text;
    text.reserve(piece.size() * times);
    while (times-- > 0)
        text += piece;
    return ht::String(text);
}

}
