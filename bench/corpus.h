// The real pages that the programs read, a clock, the memory in use, and the lines that run.py reads.
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <time.h>
#include <unistd.h>

namespace bench {

struct Corpus {
    std::vector<std::string> Files; // UTF-8
    std::size_t Bytes = 0;
};

inline std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The HTML files directly in a folder, in the order of their names. Throws where there is none.
inline Corpus LoadPages(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".html")
            names.push_back(entry.path());
    }
    if (names.empty())
        throw std::runtime_error("no pages in " + folder.string());
    std::sort(names.begin(), names.end());
    Corpus corpus;
    for (const auto& name : names) {
        corpus.Files.push_back(ReadFile(name));
        corpus.Bytes += corpus.Files.back().size();
    }
    return corpus;
}

/// The files as named, or the pages of the one folder that is named.
inline Corpus LoadCorpus(const std::vector<std::string>& names)
{
    if (names.size() == 1 && std::filesystem::is_directory(names[0]))
        return LoadPages(names[0]);
    Corpus corpus;
    for (const std::string& name : names) {
        corpus.Files.push_back(ReadFile(name));
        if (corpus.Files.back().empty())
            throw std::runtime_error("nothing in " + name);
        corpus.Bytes += corpus.Files.back().size();
    }
    return corpus;
}

/// At least `size` bytes of pages, one behind the other, as one document.
inline std::string JoinPages(const Corpus& corpus, std::size_t size)
{
    std::string joined;
    for (std::size_t i = 0; joined.size() < size; ++i)
        joined += corpus.Files[i % corpus.Files.size()];
    return joined.substr(0, size);
}

/// Cuts `size` bytes out of the middle of the largest page, from a paragraph on.
inline std::string CutFragment(const Corpus& corpus, std::size_t size)
{
    const auto smaller = [](const std::string& a, const std::string& b) { return a.size() < b.size(); };
    const std::string& page = *std::max_element(corpus.Files.begin(), corpus.Files.end(), smaller);
    const std::size_t start = page.find("<p>", page.size() / 2);
    return page.substr(start == std::string::npos ? page.size() / 2 : start, size);
}

/// Processor time of this process: on a shared machine, waiting for a turn is not counted.
class Clock {
public:
    double Seconds() const { return Now() - FStart; }

private:
    static double Now()
    {
        timespec now{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
    }

    double FStart = Now();
};

/// The shortest of several runs: what disturbs a run only makes it longer.
template <class Function> double Shortest(int runs, Function&& function)
{
    double best = 0;
    for (int i = 0; i < runs; ++i) {
        const Clock clock;
        function();
        const double seconds = clock.Seconds();
        best = i == 0 ? seconds : std::min(best, seconds);
    }
    return best;
}

/// Bytes of memory that the process holds now.
inline double ResidentBytes()
{
    std::ifstream file("/proc/self/statm");
    double total = 0;
    double resident = 0;
    file >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// How many UTF-16 units a UTF-8 text takes, so that all engines count text alike.
inline std::uint64_t Utf16Units(std::string_view utf8)
{
    std::uint64_t units = 0;
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        units += (byte & 0xC0U) != 0x80U ? 1U : 0U;
        units += byte >= 0xF0U ? 1U : 0U;
    }
    return units;
}

inline void Report(const char* key, double value)
{
    std::printf("%s=%.9g\n", key, value);
}

}
