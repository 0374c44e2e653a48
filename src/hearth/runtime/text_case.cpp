// Letter case of all scripts, by ICU's root locale.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/text_case.h>

#include <hearth/runtime/checked.h>

#include <unicode/uchar.h>
#include <unicode/ustring.h>

namespace ht {

namespace {

bool IsAscii(std::u16string_view text) noexcept
{
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 0x80; });
}

using Mapping = std::int32_t (*)(
    char16_t*, std::int32_t, const char16_t*, std::int32_t, const char*, UErrorCode*);

/// Most text keeps its length, so the first try has just that room.
String Mapped(const String& text, Mapping map)
{
    std::int32_t length = text.Length();
    while (true) {
        char16_t* units = nullptr;
        String result = String::Uninitialized(static_cast<std::size_t>(length), units);
        UErrorCode error = U_ZERO_ERROR;
        const std::int32_t needed = map(units, length, text.data(), text.Length(), "", &error);
        if (error != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(error))
            RaiseIntOverflow();
        if (needed == length)
            return result == text ? text : result;
        length = needed;
    }
}

}

String AnsiLowerCase(const String& text)
{
    return IsAscii(text) ? text.ToLowerAscii() : Mapped(text, u_strToLower);
}

String AnsiUpperCase(const String& text)
{
    return IsAscii(text) ? text.ToUpperAscii() : Mapped(text, u_strToUpper);
}

char16_t AnsiCharLower(char16_t c) noexcept
{
    const UChar32 lower = u_tolower(c);
    return lower < 0x10000 ? static_cast<char16_t>(lower) : c;
}

bool AnsiSameText(std::u16string_view a, std::u16string_view b)
{
    return AnsiCompareText(a, b) == 0;
}

int AnsiCompareText(std::u16string_view a, std::u16string_view b)
{
    std::size_t same = 0;
    const std::size_t common = std::min(a.size(), b.size());
    while (same < common && a[same] < 0x80 && FoldAscii(a[same]) == FoldAscii(b[same]))
        ++same;
    a.remove_prefix(same);
    b.remove_prefix(same);
    if (a.empty() || b.empty())
        return int{!a.empty()} - int{!b.empty()};
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t order = u_strCaseCompare(a.data(), CheckedLength(a.size()), b.data(),
        CheckedLength(b.size()), U_FOLD_CASE_DEFAULT | U_COMPARE_CODE_POINT_ORDER, &error);
    if (U_FAILURE(error))
        RaiseIntOverflow();
    return order;
}

}
