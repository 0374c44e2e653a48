// How tests make sheets, selectors and pages.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/styling/css/css_parser.h>
#include <hearth/styling/css/style_sheet.h>
#include <hearth/styling/nodes/styled_node.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ht::test {

/// Adds the rules of a text.
inline void Fill(TCSSStyleSheet& sheet, const String& css, std::int64_t setWeight = kOwnWeight)
{
    sheet.Parse(css, setWeight);
}

inline void Fill(TCSSStyleSheet& sheet, std::string_view css, std::int64_t setWeight = kOwnWeight)
{
    Fill(sheet, String::FromUtf8(css), setWeight);
}

/// The first rule of a selector text, which owns its selectors; null for none.
inline std::unique_ptr<TCSSSection> Selectors(const String& text)
{
    TCSSParser parser(Concat({text, u"{}"}));
    return parser.NextSection() ? std::move(parser.CurrentSection) : nullptr;
}

inline std::unique_ptr<TCSSSection> Selectors(std::string_view text)
{
    return Selectors(String::FromUtf8(text));
}

/// All elements below a node.
inline std::vector<const TStyledHTMLNode*> Nodes(const THtNode& top)
{
    std::vector<const TStyledHTMLNode*> nodes;
    for (const THtNode* node = &top; node; node = node->NextNodeIn(&top))
        nodes.push_back(static_cast<const TStyledHTMLNode*>(node));
    return nodes;
}

}
