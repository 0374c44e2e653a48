// Values of any type: how they are held, and how they turn into others and into text.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/value.h>

#include <hearth/runtime/memory.h>
#include <hearth/runtime/text_number.h>

namespace ht {

namespace {

[[noreturn]] void RaiseNoValue(const TTypeInfo& type, std::u16string_view text)
{
    throw EConvertError(Concat({u"'", text, u"' is not a valid value of ", type.Name()}));
}

/// A set between "[" and "]", names parted by ",".
void IncludeNamed(const TTypeInfo& type, void* set, std::u16string_view names)
{
    while (!names.empty()) {
        const std::size_t comma = std::min(names.find(u','), names.size());
        const std::u16string_view name = TrimView(names.substr(0, comma));
        const TEnumInfo* known = type.Enumeration();
        const std::int32_t ordinal = known ? known->Find(name) : -1;
        if (ordinal < 0)
            RaiseNoValue(type, name);
        type.Include(set, ordinal);
        names.remove_prefix(std::min(comma + 1, names.size()));
    }
}

void ReadSet(const TTypeInfo& type, void* set, std::u16string_view text)
{
    text = TrimView(text);
    if (text.size() < 2 || !text.starts_with(u'[') || !text.ends_with(u']'))
        RaiseNoValue(type, text);
    IncludeNamed(type, set, TrimView(text.substr(1, text.size() - 2)));
}

void ReadEnumeration(const TTypeInfo& type, void* value, std::u16string_view text)
{
    const TEnumInfo* names = type.Enumeration();
    const std::int32_t ordinal = names ? names->Find(text) : -1;
    std::int32_t number = 0;
    if (ordinal >= 0)
        type.SetOrdinal(value, ordinal);
    else if (TryStrToInt(text, number))
        type.SetOrdinal(value, number);
    else
        RaiseNoValue(type, text);
}

std::int64_t ReadUnsigned64(const TTypeInfo& type, std::u16string_view text)
{
    std::uint64_t number = 0;
    for (const char16_t c : text) {
        if (!IsAsciiDigit(c) || __builtin_mul_overflow(number, std::uint64_t{10}, &number)
            || __builtin_add_overflow(number, static_cast<std::uint64_t>(c - u'0'), &number))
            RaiseNoValue(type, text);
    }
    if (text.empty())
        RaiseNoValue(type, text);
    return static_cast<std::int64_t>(number);
}

String OrdinalText(const TTypeInfo& type, std::int64_t ordinal)
{
    if (type.Kind() == tkWChar)
        return String(1, static_cast<char16_t>(ordinal));
    if (type.IsUnsigned64())
        return UIntToStr(static_cast<std::uint64_t>(ordinal));
    const TEnumInfo* names = type.Enumeration();
    const std::u16string_view name = names && std::in_range<std::int32_t>(ordinal)
        ? names->ValueName(static_cast<std::int32_t>(ordinal))
        : u"";
    return name.empty() ? IntToStr(ordinal) : String(name);
}

String SetText(const TTypeInfo& type, const void* set)
{
    constexpr std::int32_t kMaxElements = 256;
    std::u16string text;
    for (std::int32_t i = 0; i < kMaxElements; ++i) {
        if (!type.Contains(set, i))
            continue;
        text += text.empty() ? u"[" : u",";
        text += OrdinalText(*type.Element(), i);
    }
    return text.empty() ? u"[]"_s : String(text + u"]");
}

}

template <class Make> void TValue::Fill(const TTypeInfo& type, Make make)
{
    if (type.Size() <= kPlaceSize) {
        make(static_cast<void*>(FPlace.data()));
    } else {
        FBlock = memory::Allocate(type.Size());
        try {
            make(FBlock);
        } catch (...) {
            memory::Free(std::exchange(FBlock, nullptr));
            throw;
        }
    }
    FType = &type;
}

TValue::TValue(const TValue& other)
{
    if (other.FType)
        Fill(*other.FType, [&other](void* place) { other.FType->Copy(other.Data(), place); });
}

TValue::TValue(TValue&& other) noexcept
{
    TakeFrom(other);
}

TValue& TValue::operator=(TValue other) noexcept
{
    Clear();
    TakeFrom(other);
    return *this;
}

TValue::~TValue()
{
    Clear();
}

void TValue::TakeFrom(TValue& other) noexcept
{
    if (other.IsInPlace())
        other.FType->Relocate(other.Data(), FPlace.data());
    FBlock = std::exchange(other.FBlock, nullptr);
    FType = std::exchange(other.FType, nullptr);
}

void TValue::Clear() noexcept
{
    if (FType)
        FType->Destroy(Data());
    memory::Free(std::exchange(FBlock, nullptr));
    FType = nullptr;
}

TValue TValue::OfType(const TTypeInfo& type, const void* value)
{
    TValue result;
    result.Fill(type, [&](void* place) { type.Copy(value, place); });
    return result;
}

TValue TValue::Initial(const TTypeInfo& type)
{
    TValue result;
    result.Fill(type, [&](void* place) { type.Construct(place); });
    return result;
}

TValue TValue::FromOrdinal(const TTypeInfo& type, std::int64_t ordinal)
{
    TValue result = Initial(type);
    type.SetOrdinal(result.Data(), ordinal);
    return result;
}

TValue TValue::FromText(const TTypeInfo& type, const String& text)
{
    TValue result = Initial(type);
    switch (type.Kind()) {
    case tkInteger:
        type.SetOrdinal(result.Data(), StrToInt64(text));
        break;
    case tkInt64:
        type.SetOrdinal(result.Data(), type.IsUnsigned64() ? ReadUnsigned64(type, text) : StrToInt64(text));
        break;
    case tkWChar:
        if (text.Length() != 1)
            RaiseNoValue(type, text);
        type.SetOrdinal(result.Data(), text[0]);
        break;
    case tkEnumeration:
        ReadEnumeration(type, result.Data(), text);
        break;
    case tkFloat:
        type.SetFloat(result.Data(), StrToFloat(text));
        break;
    case tkUString:
        type.SetText(result.Data(), text);
        break;
    case tkSet:
        ReadSet(type, result.Data(), text);
        break;
    default:
        throw EInvalidCast();
    }
    return result;
}

const TTypeInfo& TValue::Type() const
{
    if (!FType)
        throw EInvalidCast();
    return *FType;
}

bool TValue::IsOrdinal() const noexcept
{
    return Kind() == tkInteger || Kind() == tkInt64 || Kind() == tkWChar || Kind() == tkEnumeration;
}

double TValue::AsExtended() const
{
    if (Kind() == tkFloat)
        return FType->Float(Data());
    if (Kind() != tkInteger && Kind() != tkInt64)
        throw EInvalidCast();
    const std::int64_t number = AsOrdinal();
    return FType->IsUnsigned64() ? static_cast<double>(static_cast<std::uint64_t>(number))
                                 : static_cast<double>(number);
}

String TValue::AsString() const
{
    return Kind() == tkWChar ? OrdinalText(*FType, AsOrdinal()) : Type().Text(Data());
}

TValue TValue::Cast(const TTypeInfo& type) const
{
    if (Type() == type)
        return *this;
    TValue result = Initial(type);
    switch (type.Kind()) {
    case tkFloat:
        type.SetFloat(result.Data(), AsExtended());
        break;
    case tkUString:
        type.SetText(result.Data(), AsString());
        break;
    case tkClass:
        type.SetObject(result.Data(), AsObject());
        break;
    default:
        type.SetOrdinal(result.Data(), OrdinalFor(type.IsUnsigned64()));
        break;
    }
    return result;
}

/// Half of the numbers of 64 bits mean something else with a sign than without.
std::int64_t TValue::OrdinalFor(bool isUnsigned64) const
{
    const std::int64_t ordinal = AsOrdinal();
    if (ordinal < 0 && FType->IsUnsigned64() != isUnsigned64)
        throw ERangeError();
    return ordinal;
}

std::int32_t TValue::AsInteger() const
{
    return CheckedCast<std::int32_t>(AsInt64());
}

std::int64_t TValue::AsInt64() const
{
    return OrdinalFor(false);
}

TValue TValue::GetArrayElement(std::int32_t index) const
{
    // It gives a place for writing too; here it is only read. What is no array ends here.
    const void* const place = Type().At(const_cast<void*>(Data()), index);
    return OfType(*Type().Element(), place);
}

void TValue::SetArrayElement(std::int32_t index, const TValue& value)
{
    void* const place = Type().At(Data(), index);
    const TTypeInfo& type = *Type().Element();
    TValue cast = value.Cast(type);
    type.Destroy(place);
    type.Relocate(cast.Data(), place); // unlike a copy it cannot fail in between
    cast.FType = nullptr;
    memory::Free(std::exchange(cast.FBlock, nullptr));
}

String TValue::ToString() const
{
    switch (Kind()) {
    case tkUnknown:
        return {};
    case tkFloat:
        return FloatToStr(AsExtended());
    case tkUString:
        return AsString();
    case tkSet:
        return SetText(*FType, Data());
    case tkClass: {
        const TObject* object = AsObject();
        return object ? Concat({u"(", object->ClassInfo().Name, u")"}) : String();
    }
    case tkRecord:
    case tkDynArray:
        return Concat({u"(", FType->Name(), u")"});
    default:
        return OrdinalText(*FType, AsOrdinal());
    }
}

}
