// Memory and handles of objects.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/object.h>

#include <hearth/runtime/exceptions.h>

#include <mutex>
#include <unordered_map>

namespace ht {

namespace {

/// Handles only ever grow, so that a stale one is recognised for ever. Few objects have one: those that a
/// script saw.
class HandleRegistry {
public:
    std::uint32_t Give(TObject* object)
    {
        const std::lock_guard lock(FMutex);
        if (FLast == UINT32_MAX)
            throw EOutOfMemory();
        FObjects.emplace(FLast + 1, object);
        return ++FLast;
    }

    void Retire(std::uint32_t handle) noexcept
    {
        const std::lock_guard lock(FMutex);
        FObjects.erase(handle);
    }

    TObject* Find(std::uint32_t handle) noexcept
    {
        const std::lock_guard lock(FMutex);
        const auto found = FObjects.find(handle);
        return found == FObjects.end() ? nullptr : found->second;
    }

private:
    std::mutex FMutex;
    std::unordered_map<std::uint32_t, TObject*> FObjects;
    std::uint32_t FLast = 0;
};

/// Never destroyed: objects with static lifetime may retire their handles after main has ended.
HandleRegistry& Handles()
{
    static auto* registry = new HandleRegistry;
    return *registry;
}

}

TObject::~TObject()
{
    if (FHandle != 0)
        Handles().Retire(FHandle);
}

std::uint32_t TObject::Handle()
{
    if (FHandle == 0)
        FHandle = Handles().Give(this);
    return FHandle;
}

TObject* TObject::FromHandle(std::uint32_t handle) noexcept
{
    return Handles().Find(handle);
}

}
