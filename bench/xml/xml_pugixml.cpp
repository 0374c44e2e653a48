// pugixml under the same measurements, reading a copy of the UTF-8 text.
// SPDX-License-Identifier: MIT
#include "xml/xml_engine.h"

#include <pugixml.hpp>

#include <memory>

namespace {

class CountingWriter : public pugi::xml_writer {
public:
    void write(const void*, std::size_t size) override { Size += size; }
    std::size_t Size = 0;
};

struct Pugixml {
    using Tree = std::unique_ptr<pugi::xml_document>;

    /// With the blanks and comments, which our tree keeps too.
    static Tree Parse(std::string_view text)
    {
        constexpr unsigned kOptions = pugi::parse_default | pugi::parse_comments | pugi::parse_ws_pcdata;
        auto document = std::make_unique<pugi::xml_document>();
        document->load_buffer(text.data(), text.size(), kOptions, pugi::encoding_utf8);
        return document;
    }

    class Counter : public pugi::xml_tree_walker {
    public:
        explicit Counter(bench::TreeCounts& counts)
            : FCounts(counts)
        {
        }
        bool for_each(pugi::xml_node& node) override
        {
            if (node.type() == pugi::node_element)
                ++FCounts.Nodes;
            else if ((node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata)
                && !bench::IsBlank(node.value()))
                FCounts.Units += bench::Utf16Units(node.value());
            for (const pugi::xml_attribute attribute : node.attributes())
                FCounts.Units += bench::Utf16Units(attribute.value());
            return true;
        }

    private:
        bench::TreeCounts& FCounts;
    };

    static void Count(const Tree& tree, bench::TreeCounts& counts)
    {
        Counter counter(counts);
        tree->traverse(counter);
    }

    static std::size_t Print(const Tree& tree)
    {
        CountingWriter writer;
        tree->save(writer, "", pugi::format_raw);
        return writer.Size;
    }
    static std::size_t PrintUtf8(const Tree& tree) { return Print(tree); }
    static std::string Joined(const bench::Corpus& corpus, std::size_t size)
    {
        return bench::JoinXml(corpus, size);
    }
    static void Destroy(Tree& tree) { tree.reset(); }
};

}

int main(int argc, char** argv)
{
    return bench::RunBench<bench::TreeBench<Pugixml>>(argc, argv);
}
