// String lists: what all have in common, and the one in memory.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/strings.h>

#include <hearth/runtime/stable_sort.h>
#include <hearth/runtime/strings_p.h>
#include <hearth/runtime/text_case.h>
#include <hearth/runtime/text_format.h>

#include <numeric>

namespace ht {

namespace {

[[noreturn]] void RaiseSorted()
{
    throw EStringListError(u"Operation not allowed on sorted list"_s);
}

}

void TStrings::RaiseIndex(std::int32_t index)
{
    throw EStringListError(Format(u"List index out of bounds (%d)", {index}));
}

std::int32_t TStrings::Count() const
{
    throw EAbstractError();
}

String TStrings::Get(std::int32_t) const
{
    throw EAbstractError();
}

void TStrings::Put(std::int32_t index, const String& text)
{
    const String kept = text;
    TObject* const object = GetObject(index);
    Delete(index);
    InsertObject(index, kept, object);
}

TObject* TStrings::GetObject(std::int32_t) const
{
    return nullptr;
}

void TStrings::PutObject(std::int32_t, TObject*) { }

std::int32_t TStrings::Add(const String& text)
{
    const std::int32_t index = Count();
    Insert(index, text);
    return index;
}

std::int32_t TStrings::AddObject(const String& text, TObject* object)
{
    const std::int32_t index = Add(text);
    PutObject(index, object);
    return index;
}

void TStrings::AddStrings(const TStrings& source)
{
    detail::AsOneUpdate(*this, [&] {
        const std::int32_t count = source.Count(); // a list may be added to itself
        for (std::int32_t i = 0; i < count; ++i)
            AddObject(source.Get(i), source.GetObject(i));
    });
}

void TStrings::Insert(std::int32_t, const String&)
{
    throw EAbstractError();
}

void TStrings::InsertObject(std::int32_t index, const String& text, TObject* object)
{
    Insert(index, text);
    PutObject(index, object);
}

void TStrings::Delete(std::int32_t)
{
    throw EAbstractError();
}

void TStrings::Clear()
{
    detail::AsOneUpdate(*this, [&] {
        for (std::int32_t i = Count() - 1; i >= 0; --i)
            Delete(i);
    });
}

void TStrings::Exchange(std::int32_t index1, std::int32_t index2)
{
    detail::AsOneUpdate(*this, [&] {
        const String text = Get(index1);
        TObject* const object = GetObject(index1);
        const String other = Get(index2);
        TObject* const otherObject = GetObject(index2);
        Put(index1, other);
        PutObject(index1, otherObject);
        Put(index2, text);
        PutObject(index2, object);
    });
}

void TStrings::Move(std::int32_t from, std::int32_t to)
{
    if (from == to)
        return;
    detail::AsOneUpdate(*this, [&] {
        const String text = Get(from);
        TObject* const object = GetObject(from);
        Get(to); // refuses a bad target before anything is taken out
        PutObject(from, nullptr);
        Delete(from);
        InsertObject(to, text, object);
    });
}

std::int32_t TStrings::IndexOf(std::u16string_view text) const
{
    for (std::int32_t i = 0; i < Count(); ++i) {
        if (CompareStrings(Get(i), text) == 0)
            return i;
    }
    return -1;
}

std::int32_t TStrings::IndexOfObject(const TObject* object) const
{
    for (std::int32_t i = 0; i < Count(); ++i) {
        if (GetObject(i) == object)
            return i;
    }
    return -1;
}

void TStrings::Assign(const TPersistent* source)
{
    const auto* strings = As<TStrings>(static_cast<const TObject*>(source));
    if (!strings)
        return TPersistent::Assign(source);
    if (strings == this)
        return;
    detail::AsOneUpdate(*this, [&] {
        Clear();
        FDelimiter = strings->FDelimiter;
        FQuoteChar = strings->FQuoteChar;
        FNameValueSeparator = strings->FNameValueSeparator;
        FStrictDelimiter = strings->FStrictDelimiter;
        FLineBreak = strings->FLineBreak;
        AddStrings(*strings);
    });
}

bool TStrings::Equals(const TStrings& other) const
{
    if (Count() != other.Count())
        return false;
    for (std::int32_t i = 0; i < Count(); ++i) {
        if (Get(i) != other.Get(i))
            return false;
    }
    return true;
}

void TStrings::BeginUpdate()
{
    if (FUpdateCount++ == 0)
        SetUpdateState(true);
}

void TStrings::EndUpdate()
{
    if (FUpdateCount > 0 && --FUpdateCount == 0)
        SetUpdateState(false);
}

void TStrings::SetUpdateState(bool) { }

int TStrings::CompareStrings(std::u16string_view a, std::u16string_view b) const
{
    return AnsiCompareText(a, b);
}

TStringList::~TStringList()
{
    if (!FOwnsObjects)
        return;
    for (const TStringItem& item : FItems)
        delete item.FObject;
}

String TStringList::Get(std::int32_t index) const
{
    return FItems[Checked(index)].FString;
}

TObject* TStringList::GetObject(std::int32_t index) const
{
    return FItems[Checked(index)].FObject;
}

void TStringList::Put(std::int32_t index, const String& text)
{
    if (FSorted)
        RaiseSorted();
    Checked(index);
    Changing();
    FItems[Checked(index)].FString = text;
    Changed();
}

void TStringList::PutObject(std::int32_t index, TObject* object)
{
    Checked(index);
    Changing();
    FItems[Checked(index)].FObject = object;
    Changed();
}

std::int32_t TStringList::Add(const String& text)
{
    return AddObject(text, nullptr);
}

std::int32_t TStringList::AddObject(const String& text, TObject* object)
{
    std::int32_t index = Count();
    if (FSorted && Find(text, index)) {
        if (FDuplicates == dupIgnore)
            return index;
        if (FDuplicates == dupError)
            throw EStringListError(u"String list does not allow duplicates"_s);
    }
    InsertItem(index, text, object);
    return index;
}

void TStringList::Insert(std::int32_t index, const String& text)
{
    InsertObject(index, text, nullptr);
}

void TStringList::InsertObject(std::int32_t index, const String& text, TObject* object)
{
    if (FSorted)
        RaiseSorted();
    if (index != Count())
        Checked(index);
    InsertItem(index, text, object);
}

void TStringList::InsertItem(std::int32_t index, const String& text, TObject* object)
{
    if (FItems.size() >= static_cast<std::size_t>(INT32_MAX))
        throw EOutOfMemory();
    TStringItem item{text, object}; // `text` may be one of ours
    Changing();
    FItems.insert(FItems.begin() + index, std::move(item));
    Changed();
}

void TStringList::Delete(std::int32_t index)
{
    Checked(index);
    Changing();
    TObject* const object = FItems[Checked(index)].FObject;
    FItems.erase(FItems.begin() + index);
    if (FOwnsObjects)
        delete object;
    Changed();
}

void TStringList::Clear()
{
    if (FItems.empty())
        return;
    Changing();
    const detail::Items<TStringItem> old = std::exchange(FItems, {});
    if (FOwnsObjects) {
        for (const TStringItem& item : old)
            delete item.FObject;
    }
    Changed();
}

void TStringList::Exchange(std::int32_t index1, std::int32_t index2)
{
    Checked(index1);
    Checked(index2);
    Changing();
    std::swap(FItems[Checked(index1)], FItems[Checked(index2)]);
    Changed();
}

std::int32_t TStringList::IndexOf(std::u16string_view text) const
{
    std::int32_t index = -1;
    if (FSorted)
        return Find(text, index) ? index : -1;
    for (const TStringItem& item : FItems) {
        ++index;
        if (CompareStrings(item.FString, text) == 0)
            return index;
    }
    return -1;
}

void TStringList::Assign(const TPersistent* source)
{
    if (source == this)
        return;
    const auto* list = As<TStringList>(static_cast<const TObject*>(source));
    if (!list)
        return TStrings::Assign(source);
    detail::AsOneUpdate(*this, [&] {
        // A copy of the other's order is taken as it stands and need not be searched for again.
        SetSorted(false);
        FCaseSensitive = list->FCaseSensitive;
        FDuplicates = list->FDuplicates;
        TStrings::Assign(source);
        FSorted = list->FSorted;
    });
}

bool TStringList::Find(std::u16string_view text, std::int32_t& index) const
{
    if (!FSorted)
        throw EListError(u"Operation not allowed on unsorted list"_s);
    const auto isBefore = [this](const TStringItem& item, std::u16string_view wanted) {
        return CompareStrings(item.FString, wanted) < 0;
    };
    // Sorted input is the rule: the end is tried first.
    const bool goesLast = !FItems.empty() && isBefore(FItems.back(), text);
    const auto found =
        goesLast ? FItems.end() : std::lower_bound(FItems.begin(), FItems.end(), text, isBefore);
    index = static_cast<std::int32_t>(found - FItems.begin());
    return found != FItems.end() && CompareStrings(found->FString, text) == 0;
}

void TStringList::Sort()
{
    SortBy([](const TStringList& list, std::int32_t a, std::int32_t b) {
        return list.CompareStrings(list.ItemData()[a].FString, list.ItemData()[b].FString);
    });
}

void TStringList::CustomSort(const TCompare& compare)
{
    if (FSorted)
        RaiseSorted();
    SortBy(compare);
}

void TStringList::SortBy(const TCompare& compare)
{
    if (FItems.size() < 2)
        return;
    Changing();
    detail::Items<std::int32_t> order(FItems.size());
    std::iota(order.begin(), order.end(), 0);
    order =
        StableSorted(std::move(order), [&](std::int32_t a, std::int32_t b) { return compare(*this, a, b); });
    // A comparison that changed the list has sorted something else.
    if (order.size() == FItems.size()) {
        detail::Items<TStringItem> sorted;
        sorted.reserve(order.size());
        for (std::int32_t index : order)
            sorted.push_back(std::move(FItems[static_cast<std::size_t>(index)]));
        FItems = std::move(sorted);
    }
    Changed();
}

void TStringList::SetSorted(bool value)
{
    if (value && !FSorted)
        Sort();
    FSorted = value;
}

void TStringList::SetCaseSensitive(bool value)
{
    if (FCaseSensitive == value)
        return;
    FCaseSensitive = value;
    if (FSorted)
        Sort();
}

int TStringList::CompareStrings(std::u16string_view a, std::u16string_view b) const
{
    return FCaseSensitive ? a.compare(b) : AnsiCompareText(a, b);
}

void TStringList::SetUpdateState(bool updating)
{
    const TNotify& handler = updating ? FOnChanging : FOnChange;
    if (handler)
        handler(*this);
}

void TStringList::Changed()
{
    if (UpdateCount() == 0 && FOnChange)
        FOnChange(*this);
}

void TStringList::Changing()
{
    if (UpdateCount() == 0 && FOnChanging)
        FOnChanging(*this);
}

}
