// What is measured of one parser in a process of its own; each engine's program gives its calls.
// SPDX-License-Identifier: MIT
#pragma once

#include "corpus.h"

#include <cstring>
#include <exception>

namespace bench {

struct TreeCounts {
    std::uint64_t Nodes = 0; // what counts as a node, all engines of a format decide alike
    std::uint64_t Units = 0; // of the texts, as UTF-16
};

/// `Engine` has a type Tree and the static functions Parse, Count, Print, PrintUtf8 (both return the size of
/// the output, 0 for an engine that cannot print) and Destroy, and Joined, which makes one document of a
/// corpus that has about as many bytes as wanted.
template <class Engine> class TreeBench {
public:
    explicit TreeBench(Corpus corpus)
        : FCorpus(std::move(corpus))
    {
    }

    bool Run(std::string_view mode) const
    {
        if (mode == "warm")
            Warm();
        else if (mode == "cold")
            Cold();
        else if (mode == "print")
            Print();
        else if (mode == "growth")
            Growth();
        else
            return false;
        return true;
    }

protected:
    using Tree = typename Engine::Tree;

    static void ParseAndFree(std::string_view text)
    {
        Tree tree = Engine::Parse(text);
        Engine::Destroy(tree);
    }

    Corpus FCorpus;

private:
    /// Memory is reused from file to file. Each tree is destroyed while it is still in the caches.
    void Warm() const
    {
        constexpr int kPasses = 6;
        double parse = 0;
        double destroy = 0;
        for (int pass = 0; pass < kPasses; ++pass) {
            double parsing = 0;
            double destroying = 0;
            for (const std::string& file : FCorpus.Files) {
                const Clock first;
                Tree tree = Engine::Parse(file);
                parsing += first.Seconds();
                const Clock second;
                Engine::Destroy(tree);
                destroying += second.Seconds();
            }
            parse = pass == 0 ? parsing : std::min(parse, parsing);
            destroy = pass == 0 ? destroying : std::min(destroy, destroying);
        }
        Report("bytes", static_cast<double>(FCorpus.Bytes));
        Report("seconds", parse);
        Report("destroy", destroy);
    }

    /// A fresh process that keeps every tree.
    void Cold() const
    {
        std::vector<Tree> trees;
        trees.reserve(FCorpus.Files.size());
        const double before = ResidentBytes();
        const Clock parsing;
        for (const std::string& file : FCorpus.Files)
            trees.push_back(Engine::Parse(file));
        Report("seconds", parsing.Seconds());
        Report("heap", ResidentBytes() - before);
        Report("bytes", static_cast<double>(FCorpus.Bytes));
        TreeCounts counts;
        for (const Tree& tree : trees)
            Engine::Count(tree, counts);
        Report("nodes", static_cast<double>(counts.Nodes));
        Report("units", static_cast<double>(counts.Units));
        const Clock destroying;
        for (Tree& tree : trees)
            Engine::Destroy(tree);
        Report("destroy", destroying.Seconds());
    }

    void Print() const
    {
        std::vector<Tree> trees;
        for (const std::string& file : FCorpus.Files)
            trees.push_back(Engine::Parse(file));
        std::size_t size = 0;
        const auto pass = [&trees, &size](auto print) {
            size = 0;
            for (const Tree& tree : trees)
                size += print(tree);
        };
        Report("bytes", static_cast<double>(FCorpus.Bytes));
        Report("seconds", Shortest(4, [&pass] { pass(Engine::Print); }));
        Report("utf8", Shortest(4, [&pass] { pass(Engine::PrintUtf8); }));
        Report("printed", static_cast<double>(size));
    }

    /// One document, and one of twice its size.
    void Growth() const
    {
        constexpr std::size_t kSize = 8U << 20U;
        const std::string once = Engine::Joined(FCorpus, kSize);
        const std::string twice = Engine::Joined(FCorpus, 2 * kSize);
        ParseAndFree(twice);
        Report("seconds", Shortest(3, [&once] { ParseAndFree(once); }));
        Report("seconds2", Shortest(3, [&twice] { ParseAndFree(twice); }));
    }
};

/// The program of an engine: MODE FILE... or MODE FOLDER, whose pages are then read.
template <class Bench> int RunBench(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s MODE FOLDER|FILE...\n", argv[0]);
        return 2;
    }
    try {
        return Bench(LoadCorpus({argv + 2, argv + argc})).Run(argv[1]) ? 0 : 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 3;
    }
}

}
