// A tree of tables that finds objects by text.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/string_trie.h>

#include <hearth/runtime/array.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace ht {

namespace {

constexpr std::uint8_t HighByte(char16_t unit) noexcept
{
    return static_cast<std::uint8_t>(unit >> 8);
}

constexpr std::uint8_t LowByte(char16_t unit) noexcept
{
    return static_cast<std::uint8_t>(unit);
}

/// Takes the places below `item` off it and puts them in front of the waiting ones. Values have gone by then,
/// so their field links the chain: keys may be of any length, and freeing them takes neither stack nor
/// memory.
void TakePlaces(THtStringTrieItem& item, THtStringTrieItem*& waiting)
{
    const std::unique_ptr<THtStringTrieItem::Table> table(std::exchange(item.Items, nullptr));
    if (!table)
        return;
    for (THtStringTrieItem* place : table->Places) {
        if (!place)
            continue;
        place->SetValue(waiting, false);
        waiting = place;
    }
}

}

THtStringTrieItem::~THtStringTrieItem()
{
    SetValue(nullptr, false);
    THtStringTrieItem* waiting = nullptr;
    TakePlaces(*this, waiting);
    while (waiting) {
        const std::unique_ptr<THtStringTrieItem> item(waiting);
        waiting = static_cast<THtStringTrieItem*>(std::exchange(item->Value, nullptr));
        TakePlaces(*item, waiting);
    }
}

THtStringTrieItem& THtStringTrieItem::MakePlace(std::uint8_t byte)
{
    if (!Items)
        Items = new Table;
    THtStringTrieItem*& place = Items->Places[byte];
    if (!place)
        place = new THtStringTrieItem;
    return *place;
}

void THtStringTrieItem::SetValue(TObject* value, bool ownsValue)
{
    const bool wasOwned = std::exchange(OwnsObjects, ownsValue);
    TObject* const old = std::exchange(Value, value);
    if (wasOwned && old != value)
        delete old;
}

THtStringTrie::~THtStringTrie() = default;

void THtStringTrie::Add(std::u16string_view key, TObject* value)
{
    THtStringTrieItem* item = &FRoot;
    for (const char16_t unit : key)
        item = &item->MakePlace(HighByte(unit)).MakePlace(LowByte(unit));
    item->SetValue(value, FOwnsObjects);
}

bool THtStringTrie::Find(std::u16string_view key, TObject*& value) const
{
    value = nullptr;
    if (key.empty())
        return false;
    const THtStringTrieItem* item = &FRoot;
    for (const char16_t unit : key) {
        item = item->Place(HighByte(unit));
        item = item ? item->Place(LowByte(unit)) : nullptr;
        if (!item)
            return false;
    }
    value = item->Value;
    return value != nullptr;
}

bool THtStringTrie::ContainsKey(std::u16string_view key) const
{
    TObject* value = nullptr;
    return Find(key, value);
}

bool THtStringTrie::FindPChar(const char16_t* p, std::int32_t length, TObject*& value) const
{
    return Find({p, static_cast<std::size_t>(std::max(length, 0))}, value);
}

void THtStringTrie::Assign(const THtStringTrie& source)
{
    if (&source == this)
        return;
    struct Pair {
        const THtStringTrieItem* from;
        THtStringTrieItem* to;
    };
    THtStringTrieItem copy;
    TArray<Pair> waiting{{&source.FRoot, &copy}};
    while (!waiting.IsEmpty()) {
        const Pair pair = waiting.Last();
        waiting.SetLength(waiting.Length() - 1);
        pair.to->SetValue(pair.from->Value, false);
        for (int byte = 0; pair.from->Items && byte < 256; ++byte) {
            const auto place = static_cast<std::uint8_t>(byte);
            if (const THtStringTrieItem* from = pair.from->Place(place))
                waiting.Add({from, &pair.to->MakePlace(place)});
        }
    }
    FRoot.SetValue(copy.Value, false);
    std::swap(FRoot.Items, copy.Items);
}

}
