// What the JSON programs share.
// SPDX-License-Identifier: MIT
#pragma once

#include "tree_engine.h"

namespace bench {

/// One array with the files over and over again, without those that would be most of it.
inline std::string JoinJson(const Corpus& corpus, std::size_t size)
{
    std::string joined = "[";
    for (std::size_t i = 0; joined.size() < size; ++i) {
        const std::string& file = corpus.Files[i % corpus.Files.size()];
        if (file.size() > size / 4)
            continue;
        joined += joined.size() > 1 ? "," : "";
        joined += file;
    }
    return joined + "]";
}

/// Nodes are values of every kind. Text is names and strings.
template <class Engine> int RunJsonBench(int argc, char** argv)
{
    return RunBench<TreeBench<Engine>>(argc, argv);
}

}
