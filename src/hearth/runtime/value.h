// A value of any type, with its type.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/type_info_of.h>

#include <array>

namespace ht {

/// Holds a copy of a value, or nothing. An object is held as a pointer. What asks a value for something that
/// its type is not raises EInvalidCast "Invalid class typecast".
class HT_API TValue {
public:
    TValue() noexcept = default;
    TValue(const TValue& other);
    TValue(TValue&& other) noexcept;
    TValue& operator=(TValue other) noexcept;
    ~TValue();

    template <class T> static TValue From(const T& value) { return OfType(TypeInfoOf<T>(), &value); }
    /// A copy of the value at `value`, which is of that type.
    static TValue OfType(const TTypeInfo& type, const void* value);
    /// The value that a type begins with.
    static TValue Initial(const TTypeInfo& type);
    static TValue FromOrdinal(const TTypeInfo& type, std::int64_t ordinal);
    /// Reads what ToString writes of numbers, characters, texts, enumerations and sets. Throws ERangeError
    /// for a number that the type does not have, EConvertError for any other text and EInvalidCast for other
    /// types.
    static TValue FromText(const TTypeInfo& type, const String& text);

    bool IsEmpty() const noexcept { return FType == nullptr; }
    /// tkUnknown when empty.
    TTypeKind Kind() const noexcept { return FType ? FType->Kind() : tkUnknown; }
    /// Null when empty.
    const TTypeInfo* TypeInfo() const noexcept { return FType; }
    template <class T> bool IsType() const noexcept { return FType && *FType == TypeInfoOf<T>(); }
    bool IsObject() const noexcept { return Kind() == tkClass; }
    bool IsOrdinal() const noexcept;

    /// The value as just this type.
    template <class T> const T& Get() const
    {
        if (!IsType<T>())
            throw EInvalidCast();
        return *static_cast<const T*>(Data());
    }
    /// Unsigned numbers of 64 bits as the same bits.
    std::int64_t AsOrdinal() const { return Type().Ordinal(Data()); }
    /// Of ordinals. Throw ERangeError for what 32 bits, or 64 with a sign, cannot hold.
    std::int32_t AsInteger() const;
    std::int64_t AsInt64() const;
    bool AsBoolean() const { return Get<bool>(); }
    /// Of floats and integers.
    double AsExtended() const;
    /// Of texts and characters.
    String AsString() const;
    /// Null for a null pointer. Lifetime: whoever owned it before still does.
    TObject* AsObject() const { return Type().Object(Data()); }

    /// The same value as another type: any ordinal as another, with ERangeError where it does not fit,
    /// integers as floats, characters as texts, objects by their class. Throws EInvalidCast for all else.
    TValue Cast(const TTypeInfo& type) const;

    std::int32_t GetArrayLength() const { return Type().Length(Data()); }
    TValue GetArrayElement(std::int32_t index) const;
    void SetArrayElement(std::int32_t index, const TValue& value);

    /// For people: "12", "0.5", the text itself, "True", "dsBlock", "[fsBold,fsItalic]", "(TStringList)" for
    /// an object, "(TPoint)", "(TArray<Integer>)", and nothing when empty or null.
    String ToString() const;

    /// The value in place; null when empty. Lifetime: until the value changes.
    const void* Data() const noexcept
    {
        return IsInPlace() ? static_cast<const void*>(FPlace.data()) : FBlock;
    }
    void* Data() noexcept { return const_cast<void*>(std::as_const(*this).Data()); }

private:
    static constexpr std::size_t kPlaceSize = 16;

    const TTypeInfo& Type() const;
    std::int64_t OrdinalFor(bool isUnsigned64) const;
    bool IsInPlace() const noexcept { return FType && FType->Size() <= kPlaceSize; }
    /// Makes the value with `make`, which gets raw memory. Only for an empty value.
    template <class Make> void Fill(const TTypeInfo& type, Make make);
    void TakeFrom(TValue& other) noexcept;
    void Clear() noexcept;

    const TTypeInfo* FType = nullptr;
    void* FBlock = nullptr; // holds what is larger than FPlace
    alignas(std::max_align_t) std::array<std::byte, kPlaceSize> FPlace{};
};

}
