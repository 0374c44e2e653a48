// The object dictionary that threads share, and its lock.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/object_dictionary.h>

#include <shared_mutex>

namespace ht {

/// Many readers or one writer. A thread may begin again what it holds already, and may read while it writes.
/// A reader that begins to write first gives its reading up, so others may write in between: BeginWrite
/// tells. Every begin is ended by the same thread.
class HT_API TMultiReadExclusiveWriteSynchronizer {
public:
    TMultiReadExclusiveWriteSynchronizer() = default;
    TMultiReadExclusiveWriteSynchronizer(const TMultiReadExclusiveWriteSynchronizer&) = delete;
    TMultiReadExclusiveWriteSynchronizer& operator=(const TMultiReadExclusiveWriteSynchronizer&) = delete;

    void BeginRead();
    void EndRead();
    /// False when this thread was reading and others may have written before it got the lock.
    bool BeginWrite();
    void EndWrite();

private:
    std::shared_mutex FMutex;
};

/// Objects by name for several threads. Find, Get, ContainsKey and Traverse lock for reading; Add, AddObject,
/// Put, Extract, Remove, Clear and SetCapacity for writing. The ...Hashed forms and all others take no lock:
/// the caller holds Lock(). An object that was found may be freed by another thread as soon as the lock is
/// given up.
class HT_API THtThreadObjectDictionary : public detail::NamedObjects {
public:
    /// See THtObjectDictionary.
    THtThreadObjectDictionary(std::int32_t capacity, bool ownsObjects, std::int32_t nameOffset,
        THtStringHashFunc hashFunc = nullptr);
    ~THtThreadObjectDictionary() override;

    TMultiReadExclusiveWriteSynchronizer& Lock() const noexcept { return FLock; }

    bool Find(std::u16string_view name, TObject*& value) const;
    bool Find(const char16_t* src, std::int32_t length, TObject*& value) const;
    TObject* Get(std::u16string_view name) const;
    bool ContainsKey(std::u16string_view name) const;
    /// `proc` may call operations that read; what it writes itself would move the slots under the walk.
    void Traverse(TObject* context, const TraverseProc& proc) const;

    std::int32_t Add(std::u16string_view name, TObject* value);
    std::int32_t AddObject(TObject* value);
    void Put(std::u16string_view name, TObject* value);
    TObject* Extract(std::u16string_view name);
    void Remove(std::u16string_view name);
    void Clear(std::int32_t capacity = 0);
    void SetCapacity(std::int32_t capacity);

private:
    mutable TMultiReadExclusiveWriteSynchronizer FLock;
};

}
