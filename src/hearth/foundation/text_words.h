// Words, lists and names in text.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/enum_names.h>
#include <hearth/runtime/text.h>
#include <hearth/runtime/text_case.h>

#include <cstdint>
#include <initializer_list>

namespace ht {

/// Takes the next word off the front of `s`; each unit of `delimiters` ends one. Strict: the word alone, and
/// the delimiter behind it goes too. Otherwise all of `s` up to the end of the word, delimiters in front
/// included, and the one behind it stays. Where nothing but delimiters is left, `s` becomes empty; strict
/// gives an empty word then, otherwise what `s` was. Each unit is looked for among all delimiters, so there
/// should be few.
HT_API std::u16string_view Q_StrTok(
    std::u16string_view& s, std::u16string_view delimiters, bool Strict) noexcept;
/// The same on a string, whose rest is copied each time: walk long text as a view.
HT_API String Q_StrTok(String& s, std::u16string_view delimiters, bool Strict);

/// Position of `c` from the position `start` on, from 1; 0 if there is none.
HT_API std::int32_t FindChar(char16_t c, std::u16string_view s, std::int32_t start = 1) noexcept;

/// A to Z folded; AnsiCharLower of text_case.h folds all of Unicode.
constexpr char16_t CharLower(char16_t c) noexcept
{
    return FoldAscii(c);
}

/// Unit by unit: these two fold nothing, whatever their names say. Every text starts and ends with the empty
/// one.
constexpr bool AnsiStartsWith(std::u16string_view s, std::u16string_view start) noexcept
{
    return s.starts_with(start);
}
constexpr bool AnsiEndsWith(std::u16string_view s, std::u16string_view end) noexcept
{
    return s.ends_with(end);
}

/// True when `s` is one of the values, unit by unit.
HT_API bool StrIn(std::u16string_view s, std::initializer_list<std::u16string_view> values) noexcept;

/// Every unit `from` as `to`, or every place of a part as another part; the same string if nothing changes.
/// Parts are looked for behind the end of the one before, and an empty part is nowhere. ReplaceStr throws
/// EIntOverflow.
HT_API String ReplaceChar(const String& s, char16_t from, char16_t to);
HT_API String ReplaceStr(const String& s, std::u16string_view from, std::u16string_view to);

/// Appends to a list: the separator stands in front of the value unless `s` is empty.
HT_API void AddStr(String& s, std::u16string_view value, std::u16string_view separator);

/// The first of the two that is not empty.
inline String Coalesce(const String& a, const String& b) noexcept
{
    return a.IsEmpty() ? b : a;
}

/// Only units up to U+0020, or nothing. BlankOrNBSP allows U+00A0 too.
HT_API bool BlankString(std::u16string_view s) noexcept;
HT_API bool BlankOrNBSP(std::u16string_view s) noexcept;

/// Looks up a value by its name, ignoring ASCII case and every "-" of `s`; IsEnum2 puts `prefix` in front of
/// it ("ds" and "inline-block" find dsInlineBlock). False for an unknown name; `value` stays then.
HT_API bool IsEnum(std::u16string_view s, const TEnumInfo& typeInfo, std::int32_t& value) noexcept;
HT_API bool IsEnum2(std::u16string_view prefix, std::u16string_view s, const TEnumInfo& typeInfo,
    std::int32_t& value) noexcept;

template <class E> bool IsEnum2(std::u16string_view prefix, std::u16string_view s, E& value)
{
    std::int32_t ordinal = 0;
    if (!IsEnum2(prefix, s, EnumInfo<E>(), ordinal))
        return false;
    value = static_cast<E>(ordinal);
    return true;
}

template <class E> bool IsEnum(std::u16string_view s, E& value)
{
    return IsEnum2({}, s, value);
}

}
