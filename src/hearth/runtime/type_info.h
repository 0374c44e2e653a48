// Types of values at run time: what a program may know about one, and do with values of it in raw memory.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/class_info.h>
#include <hearth/runtime/enum_names.h>
#include <hearth/runtime/exceptions.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <typeindex>
#include <typeinfo>

namespace ht {

class TObject;

/// Boolean is an enumeration of False and True; dates are floats.
enum TTypeKind : std::uint8_t {
    tkUnknown,
    tkInteger, // up to 32 bits
    tkInt64,
    tkWChar,
    tkEnumeration,
    tkFloat,
    tkUString,
    tkSet,
    tkClass, // a pointer to an object
    tkRecord,
    tkDynArray,
};

/// One object a type, made on first use and kept for ever; TypeInfoOf<T>() of type_info_of.h finds it. Two
/// infos are equal when their types are, also where each of two shared libraries has made its own.
///
/// Each kind of type answers the operations that are told for it; all others raise EInvalidCast.
class HT_API TTypeInfo {
public:
    TTypeInfo(const TTypeInfo&) = delete;
    TTypeInfo& operator=(const TTypeInfo&) = delete;
    virtual ~TTypeInfo();

    TTypeKind Kind() const noexcept { return FKind; }
    /// As people know it: "Integer", "string", "TPoint", "TArray<Integer>".
    const String& Name() const noexcept { return FName; }
    /// Bytes of a value.
    std::size_t Size() const noexcept { return FSize; }
    std::type_index Id() const noexcept { return *FId; }
    template <class T> bool Is() const noexcept { return *FId == typeid(T); }
    friend bool operator==(const TTypeInfo& a, const TTypeInfo& b) noexcept { return *a.FId == *b.FId; }

    // All types. `place` is raw memory of Size() bytes, aligned for every scalar.

    /// Makes the value that a type begins with: 0, an empty text, null. Throws EInvalidCast for a record that
    /// cannot be made from nothing.
    virtual void Construct(void* place) const = 0;
    virtual void Copy(const void* value, void* place) const = 0;
    virtual void Destroy(void* value) const noexcept = 0;
    /// Moves a value to raw memory; its old place is raw afterwards.
    virtual void Relocate(void* value, void* place) const noexcept = 0;

    // Integers, characters and enumerations.

    /// The number of a value; unsigned ones of 64 bits as the same bits.
    virtual std::int64_t Ordinal(const void* value) const;
    /// True when the bits stand for an unsigned number of 64 bits.
    virtual bool IsUnsigned64() const noexcept { return false; }
    /// Throws ERangeError for a number that the type does not have.
    virtual void SetOrdinal(void* value, std::int64_t ordinal) const;
    /// Of an enumeration, and for a set that of its elements; null for all others and for one without traits.
    virtual const TEnumInfo* Enumeration() const { return nullptr; }

    // Floats.

    virtual double Float(const void* value) const;
    virtual void SetFloat(void* value, double number) const;

    // Texts.

    virtual String Text(const void* value) const;
    virtual void SetText(void* value, const String& text) const;

    // Sets, whose elements are enumeration values.

    virtual bool Contains(const void* set, std::int32_t ordinal) const;
    /// Throws ERangeError for a number that is no value.
    virtual void Include(void* set, std::int32_t ordinal) const;

    // Objects. Lifetime: values of this kind own nothing.

    virtual TObject* Object(const void* value) const;
    /// Throws EInvalidCast for an object of another class; null is allowed.
    virtual void SetObject(void* value, TObject* object) const;
    /// The class that objects have at least; null for other kinds.
    virtual const TClassInfo* ClassInfo() const { return nullptr; }

    // Dynamic arrays.

    /// The type of the elements; null for other kinds.
    virtual const TTypeInfo* Element() const { return nullptr; }
    virtual std::int32_t Length(const void* array) const;
    virtual void SetLength(void* array, std::int32_t length) const;
    /// An element in place. Throws ERangeError outside the array.
    virtual void* At(void* array, std::int32_t index) const;

protected:
    TTypeInfo(TTypeKind kind, String name, std::size_t size, const std::type_info& id);

private:
    TTypeKind FKind;
    String FName;
    std::size_t FSize;
    const std::type_info* FId;
};

/// TDateTime is a double; this type tells it apart where a member is registered, so that writers know.
struct TDateTimeType { };

}
