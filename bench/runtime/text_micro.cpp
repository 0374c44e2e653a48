// UTF-8 to UTF-16 and back, against ICU, on ASCII and on mixed text.
// SPDX-License-Identifier: MIT
#include "micro.h"

#include <hearth/runtime/text.h>

#include <unicode/ustring.h>

#include <memory>
#include <string>

namespace {

constexpr std::string_view kAscii = "The quick brown fox jumps over <b>the</b> lazy dog, 0123456789 times. ";
constexpr std::string_view kMixed =
    "Größe, naïve café, Москва и Київ, 東京都 and \U0001F600: <b>text</b> as it comes. ";

std::string TextOf(std::string_view part, std::int64_t size)
{
    std::string text;
    while (text.size() < static_cast<std::size_t>(size))
        text += part;
    return text;
}

void Widen(benchmark::State& state, std::string_view part)
{
    const std::string text = TextOf(part, state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(ht::String::FromUtf8(text));
    bench::SetItems(state, text.size());
}

/// With the allocation of the result, as we have it; it is not filled before.
void WidenIcu(benchmark::State& state, std::string_view part)
{
    const std::string text = TextOf(part, state.range(0));
    for (auto _ : state) {
        const std::unique_ptr<char16_t[]> units(new char16_t[text.size() + 1]);
        std::int32_t length = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF8(units.get(), static_cast<std::int32_t>(text.size()) + 1, &length, text.data(),
            static_cast<std::int32_t>(text.size()), &error);
        benchmark::DoNotOptimize(units.get());
        benchmark::ClobberMemory();
    }
    bench::SetItems(state, text.size());
}

void Narrow(benchmark::State& state, std::string_view part)
{
    const std::string text = TextOf(part, state.range(0));
    const ht::String units = ht::String::FromUtf8(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(units.ToUtf8());
    bench::SetItems(state, text.size());
}

void NarrowIcu(benchmark::State& state, std::string_view part)
{
    const std::string text = TextOf(part, state.range(0));
    const ht::String units = ht::String::FromUtf8(text);
    for (auto _ : state) {
        const std::unique_ptr<char[]> bytes(new char[text.size() + 1]);
        std::int32_t length = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strToUTF8(bytes.get(), static_cast<std::int32_t>(text.size()) + 1, &length, units.data(),
            units.Length(), &error);
        benchmark::DoNotOptimize(bytes.get());
        benchmark::ClobberMemory();
    }
    bench::SetItems(state, text.size());
}

/// Binds a text to one of the functions above.
template <class Function> auto On(std::string_view part, Function function)
{
    return [part, function](benchmark::State& state) { function(state, part); };
}

}

int main(int argc, char** argv)
{
    constexpr std::int64_t kSize = 65536;
    bench::AddRow("UTF-8 to UTF-16, ASCII", "hearth", kSize, On(kAscii, Widen));
    bench::AddRow("UTF-8 to UTF-16, ASCII", "icu", kSize, On(kAscii, WidenIcu));
    bench::AddRow("UTF-8 to UTF-16, mixed", "hearth", kSize, On(kMixed, Widen));
    bench::AddRow("UTF-8 to UTF-16, mixed", "icu", kSize, On(kMixed, WidenIcu));
    bench::AddRow("UTF-16 to UTF-8, ASCII", "hearth", kSize, On(kAscii, Narrow));
    bench::AddRow("UTF-16 to UTF-8, ASCII", "icu", kSize, On(kAscii, NarrowIcu));
    bench::AddRow("UTF-16 to UTF-8, mixed", "hearth", kSize, On(kMixed, Narrow));
    bench::AddRow("UTF-16 to UTF-8, mixed", "icu", kSize, On(kMixed, NarrowIcu));
    return bench::RunRows(argc, argv);
}
