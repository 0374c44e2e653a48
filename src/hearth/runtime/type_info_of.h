// The run-time types of C++ types: numbers, texts, enumerations, sets, objects, records and arrays of them.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/checked.h>
#include <hearth/runtime/object.h>
#include <hearth/runtime/sets.h>
#include <hearth/runtime/type_info.h>

#include <concepts>
#include <memory>
#include <type_traits>

namespace ht {

/// The info of a type. Numbers, bool, char16_t, String, enumerations, TSet, pointers to TObject descendants,
/// TArray, and any copyable struct with a name of its own, which counts as a record.
template <class T> const TTypeInfo& TypeInfoOf();

namespace detail {

template <class T> consteval std::string_view SpellType()
{
    std::string_view text = __PRETTY_FUNCTION__;
    const std::size_t first = text.find("T = ") + 4;
    text = text.substr(first, text.find_first_of(";]", first) - first);
    const std::size_t scope = text.rfind(':');
    return scope == std::string_view::npos ? text : text.substr(scope + 1);
}

template <class T> struct IsTSet : std::false_type {
};
template <class E, int Count> struct IsTSet<TSet<E, Count>> : std::true_type {
};
template <class T> struct IsTArray : std::false_type {
};
template <class T> struct IsTArray<TArray<T>> : std::true_type {
};

template <class E>
concept EnumWithTraits = std::is_enum_v<E> && requires
{
    TEnumTraits<E>::kCount;
};

/// How values of any type live in raw memory.
template <class T> class TValueType : public TTypeInfo {
public:
    TValueType(TTypeKind kind, String name, const std::type_info& id = typeid(T))
        : TTypeInfo(kind, std::move(name), sizeof(T), id)
    {
        static_assert(alignof(T) <= alignof(std::max_align_t));
    }

    void Construct(void* place) const override
    {
        if constexpr (std::default_initializable<T>)
            new (place) T();
        else
            throw EInvalidCast();
    }
    void Copy(const void* value, void* place) const override { new (place) T(Of(value)); }
    void Destroy(void* value) const noexcept override { std::destroy_at(static_cast<T*>(value)); }
    void Relocate(void* value, void* place) const noexcept override
    {
        new (place) T(std::move(Of(value)));
        Destroy(value);
    }

protected:
    static const T& Of(const void* value) { return *static_cast<const T*>(value); }
    static T& Of(void* value) { return *static_cast<T*>(value); }
};

/// Integers, characters, Boolean and enumerations.
template <class T> class TOrdinalType final : public TValueType<T> {
public:
    using TValueType<T>::TValueType;

    std::int64_t Ordinal(const void* value) const override
    {
        return static_cast<std::int64_t>(this->Of(value));
    }
    bool IsUnsigned64() const noexcept override
    {
        return std::unsigned_integral<T> && sizeof(T) == sizeof(std::uint64_t);
    }
    void SetOrdinal(void* value, std::int64_t ordinal) const override
    {
        if constexpr (EnumWithTraits<T> || std::is_same_v<T, bool>) {
            if (ordinal < 0 || ordinal >= Enumeration()->Count())
                throw ERangeError();
            this->Of(value) = static_cast<T>(ordinal);
        } else if constexpr (std::is_enum_v<T>) {
            this->Of(value) = static_cast<T>(CheckedCast<std::underlying_type_t<T>>(ordinal));
        } else if constexpr (std::is_same_v<T, char16_t>) {
            this->Of(value) = static_cast<char16_t>(CheckedCast<std::uint16_t>(ordinal));
        } else if constexpr (std::unsigned_integral<T> && sizeof(T) == sizeof(ordinal)) {
            this->Of(value) = static_cast<T>(ordinal);
        } else {
            this->Of(value) = CheckedCast<T>(ordinal);
        }
    }
    const TEnumInfo* Enumeration() const override
    {
        if constexpr (EnumWithTraits<T>)
            return &EnumInfo<T>();
        else if constexpr (std::is_same_v<T, bool>)
            return &BooleanInfo();
        else
            return nullptr;
    }

private:
    static const TEnumInfo& BooleanInfo()
    {
        static constexpr std::uint16_t kEnds[] = {0, 5, 9};
        static const TEnumInfo info(u"Boolean", 2, u"FalseTrue", kEnds);
        return info;
    }
};

template <std::floating_point T> class TFloatType final : public TValueType<T> {
public:
    using TValueType<T>::TValueType;

    double Float(const void* value) const override { return static_cast<double>(this->Of(value)); }
    void SetFloat(void* value, double number) const override { this->Of(value) = static_cast<T>(number); }
};

class TTextType final : public TValueType<String> {
public:
    using TValueType<String>::TValueType;

    String Text(const void* value) const override { return Of(value); }
    void SetText(void* value, const String& text) const override { Of(value) = text; }
};

template <class E, int Count> class TSetType final : public TValueType<TSet<E, Count>> {
public:
    using TValueType<TSet<E, Count>>::TValueType;

    const TTypeInfo* Element() const override { return &TypeInfoOf<E>(); }
    const TEnumInfo* Enumeration() const override { return Element()->Enumeration(); }
    bool Contains(const void* set, std::int32_t ordinal) const override
    {
        return ordinal >= 0 && ordinal < Count && this->Of(set).Contains(static_cast<E>(ordinal));
    }
    void Include(void* set, std::int32_t ordinal) const override
    {
        if (ordinal < 0 || ordinal >= Count)
            throw ERangeError();
        this->Of(set).Include(static_cast<E>(ordinal));
    }
};

/// A pointer to a T or a descendant, or null.
template <std::derived_from<TObject> T> class TObjectType final : public TValueType<T*> {
public:
    using TValueType<T*>::TValueType;

    TObject* Object(const void* value) const override { return this->Of(value); }
    void SetObject(void* value, TObject* object) const override
    {
        if (object && !object->ClassInfo().InheritsFrom(T::kClassInfo))
            throw EInvalidCast();
        this->Of(value) = static_cast<T*>(object);
    }
    const TClassInfo* ClassInfo() const override { return &T::kClassInfo; }
};

template <class T> class TArrayType final : public TValueType<TArray<T>> {
public:
    using TValueType<TArray<T>>::TValueType;

    const TTypeInfo* Element() const override { return &TypeInfoOf<T>(); }
    std::int32_t Length(const void* array) const override { return this->Of(array).Length(); }
    void SetLength(void* array, std::int32_t length) const override { this->Of(array).SetLength(length); }
    void* At(void* array, std::int32_t index) const override { return &this->Of(array)[index]; }
};

template <class T> std::u16string_view IntegerName()
{
    constexpr bool kSigned = std::is_signed_v<T>;
    switch (sizeof(T)) {
    case 1:
        return kSigned ? u"ShortInt" : u"Byte";
    case 2:
        return kSigned ? u"SmallInt" : u"Word";
    case 4:
        return kSigned ? u"Integer" : u"Cardinal";
    default:
        return kSigned ? u"Int64" : u"UInt64";
    }
}

/// The name of an enumeration or record as it is declared.
template <class T> String DeclaredName()
{
    if constexpr (EnumWithTraits<T>) {
        return String(TEnumTraits<T>::kName);
    } else {
        static_assert(SpellType<T>().find('>') == std::string_view::npos,
            "a record made by a template has no name of its own: derive a struct from it");
        return String::FromLatin1(SpellType<T>());
    }
}

template <class T>
inline constexpr bool kIsOtherCharacter =
    std::is_same_v<T,
        char> || std::is_same_v<T, wchar_t> || std::is_same_v<T, char8_t> || std::is_same_v<T, char32_t>;

template <class T> struct TTypeInfoMaker {
    static const TTypeInfo& Get()
    {
        static const TValueType<T> info(tkRecord, DeclaredName<T>());
        return info;
    }
};

template <class T>
requires std::is_enum_v<T>
struct TTypeInfoMaker<T> {
    static const TTypeInfo& Get()
    {
        static const TOrdinalType<T> info(tkEnumeration, DeclaredName<T>());
        return info;
    }
};

template <std::integral T> struct TTypeInfoMaker<T> {
    static_assert(!kIsOtherCharacter<T>, "characters are char16_t; bytes are std::uint8_t");
    static const TTypeInfo& Get()
    {
        static const TOrdinalType<T> info(sizeof(T) > 4 ? tkInt64 : tkInteger, String(IntegerName<T>()));
        return info;
    }
};

template <> struct TTypeInfoMaker<bool> {
    static const TTypeInfo& Get()
    {
        static const TOrdinalType<bool> info(tkEnumeration, u"Boolean"_s);
        return info;
    }
};

template <> struct TTypeInfoMaker<char16_t> {
    static const TTypeInfo& Get()
    {
        static const TOrdinalType<char16_t> info(tkWChar, u"Char"_s);
        return info;
    }
};

template <std::floating_point T> struct TTypeInfoMaker<T> {
    static const TTypeInfo& Get()
    {
        static const TFloatType<T> info(tkFloat, sizeof(T) > 4 ? u"Double"_s : u"Single"_s);
        return info;
    }
};

template <> struct TTypeInfoMaker<TDateTimeType> {
    static const TTypeInfo& Get()
    {
        static const TFloatType<double> info(tkFloat, u"TDateTime"_s, typeid(TDateTimeType));
        return info;
    }
};

template <> struct TTypeInfoMaker<String> {
    static const TTypeInfo& Get()
    {
        static const TTextType info(tkUString, u"string"_s);
        return info;
    }
};

template <class E, int Count> struct TTypeInfoMaker<TSet<E, Count>> {
    static const TTypeInfo& Get()
    {
        static const TSetType<E, Count> info(tkSet, Concat({u"set of ", TypeInfoOf<E>().Name()}));
        return info;
    }
};

template <std::derived_from<TObject> T> struct TTypeInfoMaker<T*> {
    static const TTypeInfo& Get()
    {
        static const TObjectType<T> info(tkClass, String(std::u16string_view(T::kClassInfo.Name)));
        return info;
    }
};

template <class T> struct TTypeInfoMaker<TArray<T>> {
    static const TTypeInfo& Get()
    {
        static const TArrayType<T> info(tkDynArray, Concat({u"TArray<", TypeInfoOf<T>().Name(), u">"}));
        return info;
    }
};

}

template <class T> const TTypeInfo& TypeInfoOf()
{
    return detail::TTypeInfoMaker<T>::Get();
}

}
