// The root of all classes that a script, a message or a class slot can meet.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>
#include <hearth/runtime/class_info.h>
#include <hearth/runtime/memory.h>

#include <cstddef>
#include <cstdint>

namespace ht {

/// Root of all classes. Costs a table of virtuals and a 32-bit handle; memory comes through the library's
/// door. A copy or a moved-to object is another object and starts without a handle.
class HT_API TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TObject", nullptr};

    TObject() noexcept = default;
    TObject(const TObject&) noexcept { }
    TObject& operator=(const TObject&) noexcept { return *this; }
    virtual ~TObject();

    /// The class of this object; overridden with the class's own `kClassInfo`.
    virtual const TClassInfo& ClassInfo() const { return kClassInfo; }

    /// A number that stands for this object until it dies; given on first use, never 0. Throws EOutOfMemory
    /// when 2^32 - 1 handles have been given.
    std::uint32_t Handle();
    /// True once Handle() has been called.
    bool HasHandle() const noexcept { return FHandle != 0; }
    /// The living object of a handle, or null: a handle of a dead object is never given again.
    static TObject* FromHandle(std::uint32_t handle) noexcept;

    static void* operator new(std::size_t size) { return memory::Allocate(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block) noexcept { memory::Free(block); }
    static void operator delete(void*, void*) noexcept { }

private:
    std::uint32_t FHandle = 0;
};

/// The object as a `T`, or null when it is null or of another class.
template <class T> T* As(TObject* object) noexcept
{
    return object && object->ClassInfo().InheritsFrom(T::kClassInfo) ? static_cast<T*>(object) : nullptr;
}

template <class T> const T* As(const TObject* object) noexcept
{
    return As<T>(const_cast<TObject*>(object));
}

}
