// Whole exchanges of the HTTP client: each data file is one fact.
// SPDX-License-Identifier: MIT
#include "platform/exchange.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <vector>

namespace ht {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> Exchanges()
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(HEARTH_TEST_FOLDER "/exchanges"))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

class exchange : public testing::TestWithParam<fs::path> { };

TEST_P(exchange, goes_as_the_file_says)
{
    const Played played = PlayExchange(GetParam());
    if (!played.IsPossible)
        GTEST_SKIP() << "not allowed on this machine";
    EXPECT_EQ(played.Actual, played.Expected);
}

INSTANTIATE_TEST_SUITE_P(file, exchange, testing::ValuesIn(Exchanges()),
    [](const auto& file) { return file.param.stem().string(); });

}
}
