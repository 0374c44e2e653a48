// Look-up and insertion of tag and attribute names, against the standard map and abseil's.
// SPDX-License-Identifier: MIT
#include "micro.h"

#include <hearth/foundation/htdictionary.h>
#include <hearth/markup/tag_names.h>

#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#if defined(HEARTH_BENCH_ABSEIL)
#include <absl/container/flat_hash_map.h>
#endif

namespace {

constexpr ht::TKnownName kAttributes[] = {
#include <hearth/markup/attribute_names_table.inc>
};

struct Record {
    ht::String Name;
};

/// The names that documents use, and then the same ones with a number behind.
std::vector<Record> MakeRecords(std::int64_t count)
{
    std::vector<std::u16string> names;
    for (const ht::TKnownName& row : ht::kKnownTags)
        names.emplace_back(row.Text.View());
    for (const ht::TKnownName& row : kAttributes)
        names.emplace_back(row.Text.View());
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    std::vector<Record> records;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        std::u16string name = names[i % names.size()];
        for (std::size_t round = i / names.size(); round > 0; round /= 10)
            name.push_back(static_cast<char16_t>(u'0' + round % 10));
        records.push_back({ht::String(name)});
    }
    return records;
}

/// The look-ups: every name as a text of its own, in an order without a pattern.
std::vector<std::u16string> MakeQueries(const std::vector<Record>& records, bool present)
{
    constexpr std::size_t kQueries = 4096;
    std::mt19937 random(7);
    std::vector<std::u16string> queries;
    for (std::size_t i = 0; i < kQueries; ++i) {
        std::u16string name(records[random() % records.size()].Name.View());
        if (!present)
            name.back() = u'_';
        queries.push_back(std::move(name));
    }
    return queries;
}

/// One form for all dictionaries: add a record, find by text.
class Hearth {
public:
    void Add(Record& record) { FNames.Add(record.Name, &record); }
    const void* Find(std::u16string_view name) const { return FNames.Get(name); }

private:
    ht::THtPointerDictionary FNames{0, ht::HtClassFieldOffset(&Record::Name)};
};

template <class Map> class Other {
public:
    void Add(Record& record) { FNames.insert_or_assign(record.Name.View(), &record); }
    const void* Find(std::u16string_view name) const
    {
        const auto found = FNames.find(name);
        return found == FNames.end() ? nullptr : found->second;
    }

private:
    Map FNames;
};

template <class Dictionary> void LookUp(benchmark::State& state, bool present)
{
    std::vector<Record> records = MakeRecords(state.range(0));
    Dictionary names;
    for (Record& record : records)
        names.Add(record);
    const std::vector<std::u16string> queries = MakeQueries(records, present);
    for (auto _ : state) {
        for (const std::u16string& query : queries)
            benchmark::DoNotOptimize(names.Find(query));
    }
    bench::SetItems(state, queries.size());
}

/// A new dictionary that grows as it is filled, and its end.
template <class Dictionary> void Insert(benchmark::State& state)
{
    std::vector<Record> records = MakeRecords(state.range(0));
    std::shuffle(records.begin(), records.end(), std::mt19937(7));
    for (auto _ : state) {
        Dictionary names;
        for (Record& record : records)
            names.Add(record);
        benchmark::DoNotOptimize(names);
    }
    bench::SetItems(state, records.size());
}

template <class Dictionary> void AddRows(const char* engine)
{
    constexpr std::int64_t kNames = 256;
    bench::AddRow("name found", engine, kNames, [](benchmark::State& s) { LookUp<Dictionary>(s, true); });
    bench::AddRow("name missed", engine, kNames, [](benchmark::State& s) { LookUp<Dictionary>(s, false); });
    bench::AddRow("name inserted", engine, kNames, Insert<Dictionary>);
}

}

int main(int argc, char** argv)
{
    AddRows<Hearth>("hearth");
    AddRows<Other<std::unordered_map<std::u16string_view, Record*>>>("std");
#if defined(HEARTH_BENCH_ABSEIL)
    AddRows<Other<absl::flat_hash_map<std::u16string_view, Record*>>>("abseil");
#endif
    return bench::RunRows(argc, argv);
}
