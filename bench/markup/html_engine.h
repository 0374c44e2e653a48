// What is measured of one HTML parser beside what is measured of all parsers.
// SPDX-License-Identifier: MIT
#pragma once

#include "tree_engine.h"

namespace bench {

template <class Engine> class HtmlBench : public TreeBench<Engine> {
public:
    using TreeBench<Engine>::TreeBench;

    bool Run(std::string_view mode) const
    {
        if (mode != "fragment")
            return TreeBench<Engine>::Run(mode);
        Fragment();
        return true;
    }

private:
    void Fragment() const
    {
        constexpr std::size_t kSize = 700;
        constexpr int kTimes = 5000;
        const std::string text = CutFragment(this->FCorpus, kSize);
        const auto many = [&text] {
            for (int i = 0; i < kTimes; ++i)
                HtmlBench::ParseAndFree(text);
        };
        many();
        Report("seconds", Shortest(5, many) / kTimes);
    }
};

template <class Engine> int RunHtmlBench(int argc, char** argv)
{
    return RunBench<HtmlBench<Engine>>(argc, argv);
}

}
