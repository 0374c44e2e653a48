// Our own parser under the HTML measurements. Decoding the UTF-8 of a file counts as part of parsing it.
// SPDX-License-Identifier: MIT
#include "markup/html_engine.h"

#include <hearth/markup/htmlpars.h>

#include <memory>

namespace {

struct Hearth {
    using Tree = std::unique_ptr<ht::THtmlNode>;

    static Tree Parse(std::string_view text)
    {
        auto node = std::make_unique<ht::THtmlNode>();
        node->Parse(ht::String::FromUtf8(text), true);
        return node;
    }

    static void Count(const Tree& tree, bench::TreeCounts& counts)
    {
        for (const ht::THtNode* node = tree.get(); node; node = node->NextNodeIn(tree.get())) {
            ++counts.Nodes;
            if (node->Tag().IsEmpty() || node->TagType == ht::htScript || node->TagType == ht::htStyle)
                counts.Units += node->Content().size();
        }
    }

    static std::size_t Print(const Tree& tree) { return tree->GetOuterHTML().size(); }
    static std::size_t PrintUtf8(const Tree& tree) { return tree->GetOuterHTML().ToUtf8().size(); }
    static std::string Joined(const bench::Corpus& corpus, std::size_t size)
    {
        return bench::JoinPages(corpus, size);
    }
    static void Destroy(Tree& tree) { tree.reset(); }
};

}

int main(int argc, char** argv)
{
    return bench::RunHtmlBench<Hearth>(argc, argv);
}
