// nlohmann's json under the same measurements.
// SPDX-License-Identifier: MIT
#include "xml/json_engine.h"

#include <nlohmann/json.hpp>

#include <vector>

namespace {

struct Nlohmann {
    using Tree = nlohmann::json;

    static Tree Parse(std::string_view text) { return nlohmann::json::parse(text); }

    static void Count(const Tree& tree, bench::TreeCounts& counts)
    {
        std::vector<const Tree*> open{&tree};
        while (!open.empty()) {
            const Tree& value = *open.back();
            open.pop_back();
            ++counts.Nodes;
            if (value.is_string())
                counts.Units += bench::Utf16Units(value.get_ref<const std::string&>());
            if (value.is_object()) {
                for (const auto& member : value.items())
                    counts.Units += bench::Utf16Units(member.key());
            }
            if (!value.is_structured())
                continue;
            for (const Tree& child : value)
                open.push_back(&child);
        }
    }

    static std::size_t Print(const Tree& tree) { return tree.dump().size(); }
    static std::size_t PrintUtf8(const Tree& tree) { return Print(tree); }
    static std::string Joined(const bench::Corpus& corpus, std::size_t size)
    {
        return bench::JoinJson(corpus, size);
    }
    static void Destroy(Tree& tree) { tree = nullptr; }
};

}

int main(int argc, char** argv)
{
    return bench::RunJsonBench<Nlohmann>(argc, argv);
}
