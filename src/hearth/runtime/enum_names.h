// The names of enumeration values at run time, taken from the declaration itself.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>
#include <hearth/runtime/text.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace ht {

/// Specialised for each enumeration whose values are 0 to kCount - 1, all of them with names:
/// `static constexpr int kCount = 14; static constexpr const char16_t* kName = u"THTMLTokenType";`
template <class E> struct TEnumTraits;

namespace detail {

/// The compiler spells the values of a template's pack in the name of its function, all of them at once: one
/// instantiation an enumeration, however many values it has.
template <auto... Values> consteval std::string_view SpellValues()
{
    const std::string_view text = __PRETTY_FUNCTION__;
#if defined(__clang__)
    const std::size_t first = text.find("Values = <") + 10;
    const std::size_t last = text.rfind('>');
#else
    const std::size_t first = text.find("Values = {") + 10;
    const std::size_t last = text.find('}', first);
#endif
    return text.substr(first, last - first);
}

template <class E, int... Ordinals>
consteval std::string_view SpellEnum(std::integer_sequence<int, Ordinals...>)
{
    return SpellValues<static_cast<E>(Ordinals)...>();
}

template <class E> consteval std::string_view SpellEnum()
{
    return SpellEnum<E>(std::make_integer_sequence<int, TEnumTraits<E>::kCount>{});
}

/// Names side by side; name i reaches from ends[i] to ends[i + 1].
template <int Count, std::size_t Units> struct EnumNameTable {
    std::array<char16_t, Units> units{};
    std::array<std::uint16_t, static_cast<std::size_t>(Count) + 1> ends{};
};

/// The bare name of the value spelled last in `text`; a value without a name is spelled as a cast and
/// gives nothing.
constexpr std::string_view BareName(std::string_view text)
{
    if (text.find('(') != std::string_view::npos)
        return {};
    const std::size_t scope = text.rfind(':');
    return scope == std::string_view::npos ? text : text.substr(scope + 1);
}

template <class E> consteval auto MakeEnumNameTable()
{
    constexpr std::string_view kSpelled = SpellEnum<E>();
    static_assert(kSpelled.size() < 0x10000, "too many values for 16-bit offsets");
    EnumNameTable<TEnumTraits<E>::kCount, kSpelled.size()> table;
    std::size_t used = 0;
    std::size_t ordinal = 0;
    for (std::size_t start = 0; start < kSpelled.size(); ++ordinal) {
        const std::size_t comma = std::min(kSpelled.find(',', start), kSpelled.size());
        for (char unit : BareName(kSpelled.substr(start, comma - start)))
            table.units[used++] = static_cast<char16_t>(unit);
        table.ends[ordinal + 1] = static_cast<std::uint16_t>(used);
        start = comma + 2;
    }
    return table;
}

template <class E> consteval bool AllNamed(const auto& table)
{
    for (std::size_t i = 0; i + 1 < table.ends.size(); ++i) {
        if (table.ends[i] == table.ends[i + 1])
            return false;
    }
    return true;
}

/// True when the enumeration declares a value with this number.
template <class E, int Ordinal> consteval bool IsNamed()
{
    if constexpr (std::in_range<std::underlying_type_t<E>>(Ordinal))
        return !BareName(SpellValues<static_cast<E>(Ordinal)>()).empty();
    else
        return false;
}

template <class E> struct EnumNames {
    static constexpr auto kTable = MakeEnumNameTable<E>();
    static_assert(
        AllNamed<E>(kTable), "kCount of the enumeration's traits is greater than its number of values");
    static_assert(!IsNamed<E, TEnumTraits<E>::kCount>(),
        "kCount of the enumeration's traits is smaller than its number of values");
};

}

/// What a program may know about an enumeration when only its name is at hand. Made once and kept for ever.
class HT_API TEnumInfo {
public:
    TEnumInfo(std::u16string_view name, std::int32_t count, const char16_t* units, const std::uint16_t* ends);

    std::u16string_view Name() const noexcept { return FName; }
    std::int32_t Count() const noexcept { return FCount; }
    /// The name of a value; empty outside 0 to Count() - 1.
    std::u16string_view ValueName(std::int32_t ordinal) const noexcept;
    /// The value of a name, ignoring ASCII case; -1 when there is none.
    std::int32_t Find(std::u16string_view valueName) const noexcept;

private:
    std::u16string_view FName;
    std::int32_t FCount;
    const char16_t* FUnits;
    const std::uint16_t* FEnds;
    std::uint32_t FMask; // number of slots, a power of two, less 1
    std::unique_ptr<std::uint16_t[]> FSlots; // by the hash of the name: an ordinal and 1, or 0
};

/// The info of an enumeration that has traits.
template <class E> const TEnumInfo& EnumInfo()
{
    static const TEnumInfo info(TEnumTraits<E>::kName, TEnumTraits<E>::kCount,
        detail::EnumNames<E>::kTable.units.data(), detail::EnumNames<E>::kTable.ends.data());
    return info;
}

/// The name of a value as declared; empty for a number that is no value.
template <class E> constexpr std::u16string_view EnumName(E value) noexcept
{
    const auto& table = detail::EnumNames<E>::kTable;
    const auto ordinal = static_cast<std::int64_t>(value);
    if (ordinal < 0 || ordinal >= TEnumTraits<E>::kCount)
        return {};
    const std::size_t start = table.ends[static_cast<std::size_t>(ordinal)];
    const std::size_t end = table.ends[static_cast<std::size_t>(ordinal) + 1];
    return {table.units.data() + start, end - start};
}

/// The value of a name, ignoring ASCII case; nothing when there is none.
template <class E> std::optional<E> EnumValue(std::u16string_view name) noexcept
{
    const std::int32_t ordinal = EnumInfo<E>().Find(name);
    return ordinal < 0 ? std::nullopt : std::optional<E>(static_cast<E>(ordinal));
}

}
