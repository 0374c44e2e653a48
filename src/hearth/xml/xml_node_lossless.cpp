// JSON printed from nodes that know what their values were.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_node.h>

#include "json_printer_p.h"

#include <hearth/markup/node_walk_p.h>

#include <algorithm>

namespace ht {

namespace {

constexpr std::int32_t kDocumentDelta = 65500;

/// Pieces without a tag that are no values: texts, comments and the like of XML trees.
bool IsPart(const THtNode& node)
{
    const auto* xmlNode = As<THtXMLNode>(&node);
    return (xmlNode && xmlNode->JSONKind() != jkNone) || (!node.Tag().IsEmpty() && node.TagType == htIdent);
}

/// What a node prints as. One that was not read from JSON tells it by what it holds.
THtJSONKind PrintedKind(const THtNode& node)
{
    const auto* xmlNode = As<THtXMLNode>(&node);
    if (xmlNode && xmlNode->JSONKind() != jkNone)
        return xmlNode->JSONKind();
    if (xmlNode && xmlNode->IsArray())
        return jkArray;
    const auto children = node.Children();
    const bool hasParts =
        std::any_of(children.begin(), children.end(), [](const THtNode* child) { return IsPart(*child); });
    return node.Attributes() || hasParts ? jkObject : jkString;
}

class TLosslessWriter {
public:
    TLosslessWriter(TFastString& buffer, std::int32_t spaces)
        : FPrinter(buffer, spaces)
    {
    }

    bool Enter(const THtNode& node)
    {
        if (FPrinter.Depth() > 0) {
            if (!IsPart(node))
                return false;
            FPrinter.BeginPart(node.Tag());
        }
        const THtJSONKind kind = PrintedKind(node);
        if (kind != jkObject && kind != jkArray) {
            WriteScalar(kind, node);
            return false;
        }
        FPrinter.Open(kind == jkArray ? TJSONPrinter::pcArray : TJSONPrinter::pcObject);
        if (kind == jkObject && node.Attributes()) {
            for (const THtAttribute& attribute : *node.Attributes()) {
                FPrinter.BeginPart(attribute.Name);
                FPrinter.WriteString(attribute.Value);
            }
        }
        return true;
    }

    void Leave(const THtNode& /*node*/) { FPrinter.Close(); }

private:
    void WriteScalar(THtJSONKind kind, const THtNode& node)
    {
        const auto* xmlNode = As<THtXMLNode>(&node);
        if (kind == jkNull)
            FPrinter.WriteWord(u"null");
        else if (kind == jkString)
            FPrinter.WriteString(xmlNode ? xmlNode->GetValue() : node.Content());
        else
            FPrinter.WriteWord(node.Content());
    }

    TJSONPrinter FPrinter;
};

}

void THtXMLNode::FastLosslessJSON(TFastString& FS, std::int32_t Spaces) const
{
    TLosslessWriter writer(FS, Spaces);
    WalkSubtree<THtNode>(*this, writer);
}

String THtXMLNode::LosslessJSON(std::int32_t Spaces) const
{
    TFastString buffer(kDocumentDelta);
    FastLosslessJSON(buffer, Spaces);
    return buffer.GetAsString();
}

}
