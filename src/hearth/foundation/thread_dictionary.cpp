// The lock of the shared dictionary, and its locked operations.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/thread_dictionary.h>

#include <algorithm>
#include <vector>

namespace ht {

namespace {

/// What this thread holds of one lock. Every thread keeps its own short list, so asking needs no lock.
struct Hold {
    const void* Lock;
    std::int32_t Reads;
    std::int32_t Writes;
};

thread_local std::vector<Hold> holds;

Hold& HoldOf(const void* lock)
{
    const auto found =
        std::find_if(holds.begin(), holds.end(), [lock](const Hold& h) { return h.Lock == lock; });
    return found != holds.end() ? *found : holds.emplace_back(Hold{lock, 0, 0});
}

void Forget(Hold& hold) noexcept
{
    hold = holds.back();
    holds.pop_back();
}

using Synchronizer = TMultiReadExclusiveWriteSynchronizer;

class Reading {
public:
    explicit Reading(Synchronizer& lock)
        : FLock(lock)
    {
        FLock.BeginRead();
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading() { FLock.EndRead(); }

private:
    Synchronizer& FLock;
};

class Writing {
public:
    explicit Writing(Synchronizer& lock)
        : FLock(lock)
    {
        FLock.BeginWrite();
    }
    Writing(const Writing&) = delete;
    Writing& operator=(const Writing&) = delete;
    ~Writing() { FLock.EndWrite(); }

private:
    Synchronizer& FLock;
};

}

void TMultiReadExclusiveWriteSynchronizer::BeginRead()
{
    Hold& hold = HoldOf(this);
    if (hold.Reads == 0 && hold.Writes == 0)
        FMutex.lock_shared();
    ++hold.Reads;
}

void TMultiReadExclusiveWriteSynchronizer::EndRead()
{
    Hold& hold = HoldOf(this);
    if (--hold.Reads > 0 || hold.Writes > 0)
        return;
    FMutex.unlock_shared();
    Forget(hold);
}

bool TMultiReadExclusiveWriteSynchronizer::BeginWrite()
{
    Hold& hold = HoldOf(this);
    const bool upgrades = hold.Reads > 0 && hold.Writes == 0;
    if (upgrades)
        FMutex.unlock_shared();
    if (hold.Writes == 0)
        FMutex.lock();
    ++hold.Writes;
    return !upgrades;
}

void TMultiReadExclusiveWriteSynchronizer::EndWrite()
{
    Hold& hold = HoldOf(this);
    if (--hold.Writes > 0)
        return;
    FMutex.unlock();
    if (hold.Reads > 0)
        FMutex.lock_shared();
    else
        Forget(hold);
}

THtThreadObjectDictionary::THtThreadObjectDictionary(
    std::int32_t capacity, bool ownsObjects, std::int32_t nameOffset, THtStringHashFunc hashFunc)
    : NamedDictionary(detail::StringFieldNames{nameOffset}, hashFunc, capacity, ownsObjects)
{
}

THtThreadObjectDictionary::~THtThreadObjectDictionary() = default;

bool THtThreadObjectDictionary::Find(std::u16string_view name, TObject*& value) const
{
    const std::uint32_t hash = HashOf(name);
    const Reading reading(FLock);
    return TakeValue(FindHashed(hash, name), value);
}

bool THtThreadObjectDictionary::Find(const char16_t* src, std::int32_t length, TObject*& value) const
{
    return Find(detail::ViewOf(src, length), value);
}

TObject* THtThreadObjectDictionary::Get(std::u16string_view name) const
{
    TObject* value = nullptr;
    Find(name, value);
    return value;
}

bool THtThreadObjectDictionary::ContainsKey(std::u16string_view name) const
{
    TObject* value = nullptr;
    return Find(name, value);
}

void THtThreadObjectDictionary::Traverse(TObject* context, const TraverseProc& proc) const
{
    const Reading reading(FLock);
    NamedDictionary::Traverse(context, proc);
}

std::int32_t THtThreadObjectDictionary::Add(std::u16string_view name, TObject* value)
{
    const std::uint32_t hash = HashOf(name);
    const Writing writing(FLock);
    return AddHashed(hash, name, value);
}

std::int32_t THtThreadObjectDictionary::AddObject(TObject* value)
{
    const Writing writing(FLock);
    return AddNamed(value);
}

void THtThreadObjectDictionary::Put(std::u16string_view name, TObject* value)
{
    Add(name, value);
}

TObject* THtThreadObjectDictionary::Extract(std::u16string_view name)
{
    const std::uint32_t hash = HashOf(name);
    const Writing writing(FLock);
    return ExtractHashed(hash, name);
}

void THtThreadObjectDictionary::Remove(std::u16string_view name)
{
    const std::uint32_t hash = HashOf(name);
    const Writing writing(FLock);
    RemoveHashed(hash, name);
}

void THtThreadObjectDictionary::Clear(std::int32_t capacity)
{
    const Writing writing(FLock);
    NamedDictionary::Clear(capacity);
}

void THtThreadObjectDictionary::SetCapacity(std::int32_t capacity)
{
    const Writing writing(FLock);
    NamedDictionary::SetCapacity(capacity);
}

}
