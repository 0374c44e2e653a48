// Text put together from many pieces, against the standard string.
// SPDX-License-Identifier: MIT
#include "micro.h"

#include <hearth/foundation/fast_string.h>

#include <random>
#include <string>
#include <vector>

namespace {

/// The size of chunks that the writers of documents use.
constexpr std::int32_t kDelta = 65500;

/// What writers append: mostly names and marks, now and then a sentence.
std::vector<std::u16string> MakePieces(std::int64_t count)
{
    std::mt19937 random(7);
    std::vector<std::u16string> pieces;
    for (std::int64_t i = 0; i < count; ++i) {
        const std::size_t length = random() % 8 == 0 ? 20 + random() % 100 : 1 + random() % 8;
        pieces.emplace_back(length, static_cast<char16_t>(u'a' + i % 26));
    }
    return pieces;
}

std::size_t UnitsOf(const std::vector<std::u16string>& pieces)
{
    std::size_t units = 0;
    for (const std::u16string& piece : pieces)
        units += piece.size() + 1;
    return units;
}

void Append(benchmark::State& state)
{
    const std::vector<std::u16string> pieces = MakePieces(state.range(0));
    for (auto _ : state) {
        ht::TFastString text(kDelta);
        for (const std::u16string& piece : pieces)
            text.Add(piece).AddChar(u'>');
        benchmark::DoNotOptimize(text.GetTotalLen());
    }
    bench::SetItems(state, UnitsOf(pieces));
}

void Assemble(benchmark::State& state)
{
    const std::vector<std::u16string> pieces = MakePieces(state.range(0));
    for (auto _ : state) {
        ht::TFastString text(kDelta);
        for (const std::u16string& piece : pieces)
            text.Add(piece).AddChar(u'>');
        benchmark::DoNotOptimize(text.GetAsString());
    }
    bench::SetItems(state, UnitsOf(pieces));
}

/// The standard string is its own result, so both rows have this peer.
void AppendStandard(benchmark::State& state)
{
    const std::vector<std::u16string> pieces = MakePieces(state.range(0));
    for (auto _ : state) {
        std::u16string text;
        for (const std::u16string& piece : pieces) {
            text += piece;
            text += u'>';
        }
        benchmark::DoNotOptimize(text.data());
        benchmark::ClobberMemory();
    }
    bench::SetItems(state, UnitsOf(pieces));
}

}

int main(int argc, char** argv)
{
    constexpr std::int64_t kPieces = 80000; // fewer, and the processor learns their lengths by heart
    bench::AddRow("pieces appended", "hearth", kPieces, Append);
    bench::AddRow("pieces appended", "std", kPieces, AppendStandard);
    bench::AddRow("pieces assembled", "hearth", kPieces, Assemble);
    bench::AddRow("pieces assembled", "std", kPieces, AppendStandard);
    return bench::RunRows(argc, argv);
}
