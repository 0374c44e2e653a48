// Our own JSON reader under the measurements. Decoding the UTF-8 of a file counts as part of parsing it.
// SPDX-License-Identifier: MIT
#include "xml/json_engine.h"

#include <hearth/xml/htxml.h>

#include <memory>

namespace {

struct Hearth {
    using Tree = std::unique_ptr<ht::THtXMLNode>;

    static Tree Parse(std::string_view text)
    {
        return ht::THtXMLNode::CreatefromJSON(ht::String::FromUtf8(text));
    }

    /// Values of members are attributes, those of arrays contents of nodes. Numbers are text here, so the
    /// units are more than those of the peers, which keep them as numbers.
    static void Count(const Tree& tree, bench::TreeCounts& counts)
    {
        for (const ht::THtNode* node = tree.get(); node; node = node->NextNodeIn(tree.get())) {
            ++counts.Nodes;
            counts.Units += node->Content().size() + node->Tag().size();
            if (!node->Attributes())
                continue;
            for (const ht::THtAttribute& attribute : *node->Attributes()) {
                ++counts.Nodes;
                counts.Units += attribute.Name.size() + attribute.Value.size();
            }
        }
    }

    static std::size_t Print(const Tree& tree) { return tree->JSON().size(); }
    static std::size_t PrintUtf8(const Tree& tree) { return tree->JSON().ToUtf8().size(); }
    static std::string Joined(const bench::Corpus& corpus, std::size_t size)
    {
        return bench::JoinJson(corpus, size);
    }
    static void Destroy(Tree& tree) { tree.reset(); }
};

}

int main(int argc, char** argv)
{
    return bench::RunJsonBench<Hearth>(argc, argv);
}
