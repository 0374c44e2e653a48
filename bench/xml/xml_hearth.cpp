// Our own XML reader under the measurements. Decoding the UTF-8 of a file counts as part of parsing it.
// SPDX-License-Identifier: MIT
#include "xml/xml_engine.h"

#include <hearth/xml/htxml.h>

#include <memory>

namespace {

struct Hearth {
    using Tree = std::unique_ptr<ht::THtXMLNode>;

    static Tree Parse(std::string_view text)
    {
        return std::make_unique<ht::THtXMLNode>(ht::String::FromUtf8(text));
    }

    static void Count(const Tree& tree, bench::TreeCounts& counts)
    {
        for (const ht::THtNode* node = tree.get(); node; node = node->NextNodeIn(tree.get())) {
            if (node->TagType == ht::htComment || node->TagType == ht::htDirective)
                continue;
            counts.Nodes += node->Tag().IsEmpty() ? 0U : 1U;
            counts.Units += ht::IsBlankText(node->Content()) ? 0U : node->Content().size();
            if (!node->Attributes())
                continue;
            for (const ht::THtAttribute& attribute : *node->Attributes())
                counts.Units += attribute.Value.size();
        }
    }

    static std::size_t Print(const Tree& tree) { return tree->Code().size(); }
    static std::size_t PrintUtf8(const Tree& tree) { return tree->Code().ToUtf8().size(); }
    static std::string Joined(const bench::Corpus& corpus, std::size_t size)
    {
        return bench::JoinXml(corpus, size);
    }
    static void Destroy(Tree& tree) { tree.reset(); }
};

}

int main(int argc, char** argv)
{
    return bench::RunBench<bench::TreeBench<Hearth>>(argc, argv);
}
