// The HTML parser of libxml2 under the same measurements.
// SPDX-License-Identifier: MIT
#include "markup/html_engine.h"

#include <libxml/HTMLparser.h>
#include <libxml/HTMLtree.h>

namespace {

std::string_view ViewOf(const xmlChar* text)
{
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

struct Libxml2 {
    using Tree = htmlDocPtr;

    static Tree Parse(std::string_view text)
    {
        return htmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
            HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING);
    }

    static const xmlNode* Next(const xmlNode* node)
    {
        if (node->type != XML_DTD_NODE && node->children)
            return node->children;
        while (node && !node->next)
            node = node->parent;
        return node ? node->next : nullptr;
    }

    static void Count(Tree tree, bench::TreeCounts& counts)
    {
        for (const xmlNode* node = tree ? tree->children : nullptr; node; node = Next(node)) {
            ++counts.Nodes;
            if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
                counts.Units += bench::Utf16Units(ViewOf(node->content));
        }
    }

    /// It writes into a block of UTF-8; there is no other form.
    static std::size_t Print(Tree tree)
    {
        xmlChar* text = nullptr;
        int size = 0;
        htmlDocDumpMemoryFormat(tree, &text, &size, 0);
        xmlFree(text);
        return static_cast<std::size_t>(size);
    }
    static std::size_t PrintUtf8(Tree tree) { return Print(tree); }
    static std::string Joined(const bench::Corpus& corpus, std::size_t size)
    {
        return bench::JoinPages(corpus, size);
    }
    static void Destroy(Tree& tree) { xmlFreeDoc(tree); }
};

}

int main(int argc, char** argv)
{
    return bench::RunHtmlBench<Libxml2>(argc, argv);
}
