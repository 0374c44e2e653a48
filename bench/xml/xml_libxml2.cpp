// The XML parser of libxml2 under the same measurements.
// SPDX-License-Identifier: MIT
#include "xml/xml_engine.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

namespace {

std::string_view ViewOf(const xmlChar* text)
{
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

struct Libxml2 {
    using Tree = xmlDocPtr;

    /// One of the files has a lone "&", so errors are passed over.
    static Tree Parse(std::string_view text)
    {
        return xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
            XML_PARSE_RECOVER | XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    }

    static const xmlNode* Next(const xmlNode* node)
    {
        if (node->type == XML_ELEMENT_NODE && node->children)
            return node->children;
        while (node && !node->next)
            node = node->parent;
        return node ? node->next : nullptr;
    }

    static void Count(Tree tree, bench::TreeCounts& counts)
    {
        for (const xmlNode* node = tree ? tree->children : nullptr; node; node = Next(node)) {
            if (node->type == XML_ELEMENT_NODE) {
                ++counts.Nodes;
                for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
                    if (attribute->children)
                        counts.Units += bench::Utf16Units(ViewOf(attribute->children->content));
                }
            } else if ((node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
                && !bench::IsBlank(ViewOf(node->content))) {
                counts.Units += bench::Utf16Units(ViewOf(node->content));
            }
        }
    }

    static std::size_t Print(Tree tree)
    {
        xmlChar* text = nullptr;
        int size = 0;
        xmlDocDumpMemory(tree, &text, &size);
        xmlFree(text);
        return static_cast<std::size_t>(size);
    }
    static std::size_t PrintUtf8(Tree tree) { return Print(tree); }
    static std::string Joined(const bench::Corpus& corpus, std::size_t size)
    {
        return bench::JoinXml(corpus, size);
    }
    static void Destroy(Tree& tree) { xmlFreeDoc(tree); }
};

}

int main(int argc, char** argv)
{
    return bench::RunBench<bench::TreeBench<Libxml2>>(argc, argv);
}
