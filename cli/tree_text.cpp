// Printing trees by walking them, without recursion.
// SPDX-License-Identifier: MIT
#include "tree_text.h"

namespace hearth_cli {

namespace {

void AppendEscaped(std::u16string& out, char16_t c)
{
    constexpr std::u16string_view kMarked = u"\"\\\n\r\t";
    constexpr std::u16string_view kMarks = u"\"\\nrt";
    const std::size_t marked = kMarked.find(c);
    if (marked != std::u16string_view::npos) {
        out += u'\\';
        out += kMarks[marked];
    } else if (c < u' ') {
        constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
        out += u"\\u00";
        out += kDigits[c >> 4U];
        out += kDigits[c & 15U];
    } else {
        out += c;
    }
}

std::string_view KindName(ht::THTMLTokenType type)
{
    switch (type) {
    case ht::htComment:
        return "#comment ";
    case ht::htDirective:
        return "#directive ";
    case ht::htCData:
        return "#cdata ";
    default:
        return "";
    }
}

std::string ElementText(const ht::THtNode& node)
{
    std::string line("<");
    line += node.Tag().ToUtf8();
    if (const ht::THtAttributes* attributes = node.Attributes()) {
        for (const ht::THtAttribute& attribute : *attributes)
            line.append(" ").append(attribute.Name.ToUtf8()).append("=").append(Quoted(attribute.Value));
    }
    line += ">";
    if (!node.Content().IsEmpty())
        line.append(" = ").append(Quoted(node.Content()));
    return line;
}

std::string LineOf(const ht::THtNode& node)
{
    const std::string_view kind = KindName(node.TagType);
    if (!kind.empty())
        return std::string(kind) + Quoted(node.Content());
    if (!node.Tag().IsEmpty())
        return ElementText(node);
    return node.Content().IsEmpty() && node.TagType != ht::htString ? "#node" : Quoted(node.Content());
}

}

std::string Quoted(std::u16string_view text)
{
    std::u16string quoted = u"\"";
    for (const char16_t c : text)
        AppendEscaped(quoted, c);
    quoted += u'"';
    return ht::String(quoted).ToUtf8();
}

std::string TreeText(const ht::THtNode& top)
{
    std::string text;
    std::size_t level = 0;
    const ht::THtNode* node = &top;
    while (node) {
        text.append(level * 2, ' ').append(LineOf(*node)).append(1, '\n');
        if (node->FirstChild()) {
            node = node->FirstChild();
            ++level;
            continue;
        }
        for (; node != &top && !node->NextSibling(); --level)
            node = node->Parent();
        node = node == &top ? nullptr : node->NextSibling();
    }
    return text;
}

}
