// How the programs of micro rows register and run them: "row/engine/size", each in two sizes.
// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <utility>

namespace bench {

/// The same function at `size` and at twice that, so that the growth shows.
template <class Function>
void AddRow(const char* row, const char* engine, std::int64_t size, Function function)
{
    const std::string name = std::string(row) + "/" + engine;
    benchmark::RegisterBenchmark(name.c_str(), std::move(function))->Arg(size)->Arg(2 * size);
}

inline int RunRows(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

/// One counted unit is what the rates of the row speak of: bytes, look-ups, pieces.
inline void SetItems(benchmark::State& state, std::size_t items)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items));
}

}
