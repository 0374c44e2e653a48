// What the XML programs share: how they count, and a document of any size.
// SPDX-License-Identifier: MIT
#pragma once

#include "tree_engine.h"

namespace bench {

/// Engines differ in the blanks that they keep, so only text with something else in it counts.
inline bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

/// Where the root element begins: behind the declaration, comments and a document type with its subset.
inline std::size_t RootStart(std::string_view text)
{
    const std::size_t subset = text.find("]>");
    std::size_t at = subset == std::string_view::npos ? 0 : subset;
    while ((at = text.find('<', at)) < text.size() && (text[at + 1] == '?' || text[at + 1] == '!'))
        at = text.find(text.substr(at, 4) == "<!--" ? "-->" : ">", at);
    return at;
}

/// One element with the root elements of the files over and over again.
inline std::string JoinXml(const Corpus& corpus, std::size_t size)
{
    std::string joined = "<all>";
    for (std::size_t i = 0; joined.size() < size; ++i) {
        const std::string_view file = corpus.Files[i % corpus.Files.size()];
        joined += file.substr(RootStart(file));
    }
    return joined + "</all>";
}

}
