// The order of attributes, and how many of them are taken in at once without it costing more than sorting.
// SPDX-License-Identifier: MIT
#include <hearth/markup/attributes.h>

#include <hearth/foundation/hash.h>
#include <hearth/runtime/checked.h>
#include <hearth/runtime/memory.h>

#include <algorithm>
#include <new>
#include <unordered_set>
#include <utility>

namespace ht {

namespace {

const String kNoValue;

/// Stores up to this size move entries to make room. Larger ones append, find names by hash meanwhile, and
/// sort when somebody asks for the order.
constexpr std::int32_t kMaxShifted = 64;
/// So many entries behind the sorted ones are looked through one by one.
constexpr std::int32_t kMaxPlainTail = 16;

}

/// Finds the entries of a large store by name.
class THtAttributes::TNameIndex {
public:
    explicit TNameIndex(const THtAttributes& attributes)
        : FNames(0, Hash{attributes}, Equal{attributes})
    {
        for (std::int32_t i = 0; i < attributes.FCount; ++i)
            FNames.insert(i);
    }

    void Add(std::int32_t index) { FNames.insert(index); }
    std::int32_t Find(std::u16string_view name) const
    {
        const auto found = FNames.find(name);
        return found == FNames.end() ? -1 : *found;
    }

private:
    static std::u16string_view NameOf(const THtAttributes& attributes, std::int32_t index)
    {
        return attributes.FList[index].Name;
    }

    struct Hash {
        using is_transparent = void;
        const THtAttributes& Attributes;

        std::size_t operator()(std::u16string_view name) const
        {
            if (Attributes.CaseSensitive)
                return std::hash<std::u16string_view>{}(name);
            std::u16string folded(name);
            std::transform(folded.begin(), folded.end(), folded.begin(), FoldAscii);
            return std::hash<std::u16string>{}(folded);
        }
        std::size_t operator()(std::int32_t index) const { return (*this)(NameOf(Attributes, index)); }
    };

    struct Equal {
        using is_transparent = void;
        const THtAttributes& Attributes;

        bool operator()(std::int32_t a, std::int32_t b) const { return (*this)(NameOf(Attributes, a), b); }
        bool operator()(std::int32_t a, std::u16string_view b) const { return (*this)(b, a); }
        bool operator()(std::u16string_view a, std::int32_t b) const
        {
            return Attributes.Compare(a, NameOf(Attributes, b)) == 0;
        }
    };

    std::unordered_set<std::int32_t, Hash, Equal> FNames;
};

THtAttributes::THtAttributes(bool caseSensitive) noexcept
    : CaseSensitive(caseSensitive)
{
}

THtAttributes::~THtAttributes()
{
    // Entries behind the count hold text too, kept by Clear.
    std::destroy_n(FList, FCapacity);
    ReleaseList();
}

/// The first list may stand in the store's own block, see TakeFrom.
void THtAttributes::ReleaseList() noexcept
{
    if (!FInOwnBlock)
        memory::Free(FList);
    FInOwnBlock = false;
}

std::unique_ptr<THtAttributes> THtAttributes::TakeFrom(THtAttributes& source)
{
    source.Sorted();
    auto taken = OfSorted(static_cast<std::size_t>(source.FCount), source.CaseSensitive,
        [&source](std::size_t i) { return std::move(source.FList[i]); });
    source.Clear();
    return taken;
}

/// A store without entries, with room for them in its own block; what is put there counts once it is counted.
std::unique_ptr<THtAttributes> THtAttributes::NewInOneBlock(std::size_t count, bool caseSensitive)
{
    CheckedLength(count);
    void* block = memory::Allocate(sizeof(THtAttributes) + count * sizeof(THtAttribute));
    std::unique_ptr<THtAttributes> made(new (block) THtAttributes(caseSensitive));
    made->FList = reinterpret_cast<THtAttribute*>(made.get() + 1);
    made->FInOwnBlock = true;
    return made;
}

int THtAttributes::Compare(std::u16string_view a, std::u16string_view b) const
{
    if (a.data() == b.data() && a.size() == b.size())
        return 0;
    return CaseSensitive ? a.compare(b) : CompareText(a, b);
}

const THtAttribute* THtAttributes::Sorted() const
{
    if (FSortedCount < FCount)
        SortTail();
    return FList;
}

void THtAttributes::SortTail() const
{
    const auto less = [this](const THtAttribute& a, const THtAttribute& b) {
        return Compare(a.Name, b.Name) < 0;
    };
    std::stable_sort(FList + FSortedCount, FList + FCount, less);
    std::inplace_merge(FList, FList + FSortedCount, FList + FCount, less);
    FSortedCount = FCount;
    FIndex.reset();
}

/// Looks among the entries that are in order already.
bool THtAttributes::FindSorted(std::u16string_view name, std::int32_t& index) const
{
    const auto less = [this](const THtAttribute& a, std::u16string_view b) { return Compare(a.Name, b) < 0; };
    const THtAttribute* first = FList;
    const THtAttribute* last = first + FSortedCount;
    // Names often come in their order.
    const bool goesToEnd = FSortedCount == 0 || less(last[-1], name);
    const THtAttribute* found = goesToEnd ? last : std::lower_bound(first, last, name, less);
    index = static_cast<std::int32_t>(found - first);
    return found != last && Compare(found->Name, name) == 0;
}

bool THtAttributes::Find(std::u16string_view AttrName, std::int32_t& Index) const
{
    Index = 0;
    if (FCount == 0 || AttrName.empty())
        return false;
    Sorted();
    return FindSorted(AttrName, Index);
}

std::int32_t THtAttributes::Indexof(std::u16string_view AttrName) const
{
    std::int32_t index = 0;
    return Find(AttrName, index) ? index : -1;
}

/// The entry of a name, wherever it stands; asks for no order.
THtAttribute* THtAttributes::Lookup(std::u16string_view name) const
{
    std::int32_t index = 0;
    if (FindSorted(name, index))
        return FList + index;
    if (FCount - FSortedCount <= kMaxPlainTail) {
        THtAttribute* const last = FList + FCount;
        THtAttribute* found = std::find_if(FList + FSortedCount, last,
            [&](const THtAttribute& attribute) { return Compare(attribute.Name, name) == 0; });
        return found == last ? nullptr : found;
    }
    if (!FIndex)
        FIndex = std::make_unique<TNameIndex>(*this);
    index = FIndex->Find(name);
    return index < 0 ? nullptr : FList + index;
}

const String& THtAttributes::GetAttribute(std::u16string_view AttrName) const
{
    const THtAttribute* found = Lookup(AttrName);
    return found ? found->Value : kNoValue;
}

std::int32_t THtAttributes::Checked(std::int32_t index) const
{
    if (static_cast<std::uint32_t>(index) >= static_cast<std::uint32_t>(FCount)) [[unlikely]]
        RaiseRangeError();
    return index;
}

const THtAttribute& THtAttributes::GetItem(std::int32_t Index) const
{
    return Sorted()[Checked(Index)];
}

void THtAttributes::SetValue(std::int32_t Index, const String& Value)
{
    Sorted();
    FList[Checked(Index)].Value = Value;
}

void THtAttributes::Grow()
{
    const std::int32_t capacity = FCapacity == 0 ? 1 : CheckedMul(FCapacity, 2);
    auto* list = static_cast<THtAttribute*>(
        memory::Allocate(static_cast<std::size_t>(capacity) * sizeof(THtAttribute)));
    std::uninitialized_move_n(FList, FCapacity, list);
    std::uninitialized_value_construct_n(list + FCapacity, capacity - FCapacity);
    std::destroy_n(FList, FCapacity);
    ReleaseList();
    FList = list;
    FCapacity = capacity;
}

void THtAttributes::InsertAt(std::int32_t index, String name, String value)
{
    EnsureCapacity();
    if (index < FCount)
        std::rotate(FList + index, FList + FCount, FList + FCount + 1);
    FList[index].Name = std::move(name);
    FList[index].Value = std::move(value);
    ++FCount;
    ++FSortedCount;
}

void THtAttributes::Append(String name, String value)
{
    EnsureCapacity();
    FList[FCount].Name = std::move(name);
    FList[FCount].Value = std::move(value);
    ++FCount;
    if (FIndex)
        FIndex->Add(FCount - 1);
}

String THtAttributes::StoredName(const String& name) const
{
    const bool keepsCase = CaseSensitive || name.View().find(u'{') != std::u16string_view::npos;
    return keepsCase ? name : name.ToLowerAscii();
}

/// Inserts at a place that was found; a large store appends instead.
void THtAttributes::InsertSorted(std::int32_t index, String name, String value)
{
    if (index < FCount && FCount > kMaxShifted)
        Append(std::move(name), std::move(value));
    else
        InsertAt(index, std::move(name), std::move(value));
}

void THtAttributes::Add(const String& AttrName, const String& AttrValue)
{
    const String name = StoredName(AttrName);
    if (FSortedCount < FCount)
        return Append(name, AttrValue);
    std::int32_t index = 0;
    FindSorted(name, index);
    InsertSorted(index, name, AttrValue);
}

void THtAttributes::AddNewAnywhere(const String& AttrName, String&& AttrValue)
{
    std::int32_t index = 0;
    if (FSortedCount < FCount) {
        if (!Lookup(AttrName))
            Append(AttrName, std::move(AttrValue));
    } else if (!FindSorted(AttrName, index)) {
        InsertSorted(index, AttrName, std::move(AttrValue));
    }
}

bool THtAttributes::SetAttributeEx(const String& Name, const String& Value)
{
    THtAttribute* found = Lookup(Name);
    if (!found) {
        Add(Name, Value);
        return true;
    }
    if (found->Value == Value)
        return false;
    found->Value = Value;
    return true;
}

void THtAttributes::ClearAttr(std::u16string_view Name)
{
    THtAttribute* const found = Lookup(Name);
    if (!found)
        return;
    if (found < FList + FSortedCount)
        --FSortedCount;
    *found = THtAttribute{};
    std::rotate(found, found + 1, FList + FCount);
    --FCount;
    FIndex.reset();
}

void THtAttributes::Clear() noexcept
{
    FCount = 0;
    FSortedCount = 0;
    FIndex.reset();
}

}
