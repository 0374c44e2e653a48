// The pointer dictionaries.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/pointer_dictionary.h>

#include <cstddef>

namespace ht {

namespace {

void* PointerOf(std::uint32_t offset) noexcept
{
    return reinterpret_cast<void*>(std::uintptr_t{offset});
}

std::uint32_t OffsetOf(const void* value) noexcept
{
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(value));
}

std::string_view BytesOf(const char* src, std::int32_t length) noexcept
{
    return length < 1 ? std::string_view() : std::string_view(src, static_cast<std::size_t>(length));
}

struct CallbackMatch {
    THtVirtualCompareFunc Compare;
    const void* Item;

    bool Same(const void* value) const { return Compare(value, Item); }
};

void CheckPlace(std::int32_t findResult, std::int32_t slotCount)
{
    const std::int32_t slot = findResult >= 0 ? findResult : ~findResult;
    if (slot >= slotCount)
        RaiseRangeError();
}

}

static_assert(offsetof(THtVirtualString, Chars) - offsetof(THtVirtualString, Length) == sizeof(void*));

THtIdPointerDictionary::THtIdPointerDictionary(std::int32_t capacity)
    : IdDictionary(capacity)
{
}

THtIdPointerDictionary::~THtIdPointerDictionary() = default;

void THtIdPointerDictionary::Clear(std::int32_t capacity)
{
    FTable.Clear(capacity, Discard);
}

std::int32_t THtIdPointerDictionary::Add(std::uint32_t key, void* value)
{
    return FTable.Store(key, detail::KeyOnly{}, value).Slot;
}

THtPointerDictionary::THtPointerDictionary(
    std::int32_t capacity, std::int32_t nameOffset, THtStringHashFunc hashFunc)
    : THtPointerDictionary(capacity, detail::RecordNames{nameOffset, false}, hashFunc)
{
}

THtPointerDictionary::THtPointerDictionary(
    std::int32_t capacity, detail::RecordNames names, THtStringHashFunc hashFunc)
    : NamedDictionary(names, hashFunc, capacity)
{
}

THtPointerDictionary::~THtPointerDictionary() = default;

THtVirtualStringDictionary::THtVirtualStringDictionary(
    std::int32_t capacity, std::int32_t nameOffset, THtStringHashFunc hashFunc)
    : THtPointerDictionary(capacity, detail::RecordNames{nameOffset, true}, hashFunc)
{
}

THtVirtualStringDictionary::~THtVirtualStringDictionary() = default;

std::int32_t THtVirtualStringDictionary::AddHashedVirtual(
    std::uint32_t hash, std::int32_t findResult, void* value, std::int32_t length, const char16_t* src)
{
    if (!value)
        detail::RaiseNoValue();
    CheckPlace(findResult, SlotCount());
    if (FTable.GrowIfFull())
        findResult = FindHashed(hash, src, length);
    if (findResult < 0)
        return FTable.InsertAt(~findResult, hash, value);
    FTable.ValueAt(findResult) = value;
    return findResult;
}

THtVirtualDictionary::THtVirtualDictionary(THtVirtualHashFunc hashFunc, THtVirtualCompareFunc compareFunc)
    : FHashFunc(hashFunc)
    , FCompareFunc(compareFunc)
{
}

THtVirtualDictionary::~THtVirtualDictionary() = default;

std::int32_t THtVirtualDictionary::Add(void* item)
{
    return FTable.Store(FHashFunc(item), CallbackMatch{FCompareFunc, item}, item).Slot;
}

std::int32_t THtVirtualDictionary::FindHashed(std::uint32_t hash, const void* item) const
{
    return FTable.Find(hash, CallbackMatch{FCompareFunc, item});
}

struct THtUTF8Dictionary::Match {
    const THtUTF8Dictionary& Dictionary;
    std::string_view Name;

    bool Same(const void* value) const noexcept { return Dictionary.NameAt(OffsetOf(value)) == Name; }
    std::uint32_t Seeded() const noexcept { return detail::SeededHash(Name.data(), Name.size()); }
};

THtUTF8Dictionary::THtUTF8Dictionary(std::int32_t capacity, const void* base)
    : THtIdPointerDictionary(capacity)
    , FBase(static_cast<const char*>(base))
{
    FTable.SetNames(
        [](std::intptr_t dictionary, void* value) {
            const auto name = reinterpret_cast<const THtUTF8Dictionary*>(dictionary)->NameAt(OffsetOf(value));
            return detail::SeededHash(name.data(), name.size());
        },
        reinterpret_cast<std::intptr_t>(this));
}

THtUTF8Dictionary::~THtUTF8Dictionary() = default;

std::string_view THtUTF8Dictionary::NameAt(std::uint32_t offset) const noexcept
{
    const char* const name = FBase + offset;
    return {name, static_cast<unsigned char>(name[-1])};
}

THtUTF8Dictionary::Match THtUTF8Dictionary::MatchOf(std::string_view name) const noexcept
{
    return {*this, name};
}

bool THtUTF8Dictionary::Find(std::string_view name, std::uint32_t& offset) const
{
    const std::int32_t slot = FTable.Find(ShaPerfectHashANSI(name), MatchOf(name));
    offset = OffsetOf(ValueOrNull(slot));
    return slot >= 0;
}

bool THtUTF8Dictionary::Find(const char* src, std::int32_t length, std::uint32_t& offset) const
{
    return Find(BytesOf(src, length), offset);
}

std::int32_t THtUTF8Dictionary::FindHashed(std::uint32_t hash, const char* src, std::int32_t length) const
{
    return FTable.Find(hash, MatchOf(BytesOf(src, length)));
}

std::uint32_t THtUTF8Dictionary::Get(std::string_view name) const
{
    return GetHashed(ShaPerfectHashANSI(name), name);
}

std::uint32_t THtUTF8Dictionary::GetHashed(std::uint32_t hash, std::string_view name) const
{
    return OffsetOf(ValueOrNull(FTable.Find(hash, MatchOf(name))));
}

std::uint32_t THtUTF8Dictionary::OffsetAt(std::int32_t slot) const
{
    return OffsetOf(ValueAt(slot));
}

std::int32_t THtUTF8Dictionary::Add(std::uint32_t offset)
{
    const std::string_view name = NameAt(offset);
    return AddHashed(ShaPerfectHashANSI(name), name, offset);
}

std::int32_t THtUTF8Dictionary::AddHashed(std::uint32_t hash, std::string_view name, std::uint32_t offset)
{
    return FTable.Store(hash, MatchOf(name), PointerOf(offset)).Slot;
}

std::int32_t THtUTF8Dictionary::AddUnique(std::uint32_t offset)
{
    struct NewName : Match {
        static constexpr bool Same(const void*) noexcept { return false; }
    };
    const std::string_view name = NameAt(offset);
    return FTable.Store(ShaPerfectHashANSI(name), NewName{MatchOf(name)}, PointerOf(offset)).Slot;
}

std::int32_t THtUTF8Dictionary::AddWithIndex(
    std::int32_t findResult, std::uint32_t hash, std::uint32_t offset)
{
    CheckPlace(findResult, SlotCount());
    if (FTable.GrowIfFull())
        findResult = FTable.Find(hash, MatchOf(NameAt(offset)));
    if (findResult < 0)
        return FTable.InsertAt(~findResult, hash, PointerOf(offset));
    FTable.ValueAt(findResult) = PointerOf(offset);
    return findResult;
}

void THtUTF8Dictionary::Put(std::string_view name, std::uint32_t offset)
{
    AddHashed(ShaPerfectHashANSI(name), name, offset);
}

void THtUTF8Dictionary::PutHashed(std::uint32_t hash, std::string_view name, std::uint32_t offset)
{
    AddHashed(hash, name, offset);
}

void THtUTF8Dictionary::Traverse(TObject* context, const TraverseProc& proc) const
{
    std::int32_t index = 0;
    for (std::int32_t slot = 0; (slot = FTable.NextSlot(index)) >= 0;)
        proc(context, OffsetOf(FTable.ValueAt(slot)));
}

}
