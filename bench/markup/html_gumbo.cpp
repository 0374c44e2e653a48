// Gumbo under the same measurements. It has no writer.
// SPDX-License-Identifier: MIT
#include "markup/html_engine.h"

#include <gumbo.h>

namespace {

bool HasChildren(const GumboNode& node)
{
    return node.type == GUMBO_NODE_ELEMENT || node.type == GUMBO_NODE_TEMPLATE;
}

struct Gumbo {
    using Tree = GumboOutput*;

    static Tree Parse(std::string_view text)
    {
        return gumbo_parse_with_options(&kGumboDefaultOptions, text.data(), text.size());
    }

    static void Count(Tree tree, bench::TreeCounts& counts)
    {
        std::vector<const GumboNode*> waiting{tree->root};
        while (!waiting.empty()) {
            const GumboNode& node = *waiting.back();
            waiting.pop_back();
            ++counts.Nodes;
            if (!HasChildren(node)) {
                if (node.type != GUMBO_NODE_COMMENT)
                    counts.Units += bench::Utf16Units(node.v.text.text);
                continue;
            }
            const GumboVector& children = node.v.element.children;
            for (unsigned i = 0; i < children.length; ++i)
                waiting.push_back(static_cast<const GumboNode*>(children.data[i]));
        }
    }

    static std::size_t Print(Tree /*tree*/) { return 0; }
    static std::size_t PrintUtf8(Tree /*tree*/) { return 0; }
    static std::string Joined(const bench::Corpus& corpus, std::size_t size)
    {
        return bench::JoinPages(corpus, size);
    }
    static void Destroy(Tree& tree) { gumbo_destroy_output(&kGumboDefaultOptions, tree); }
};

}

int main(int argc, char** argv)
{
    return bench::RunHtmlBench<Gumbo>(argc, argv);
}
