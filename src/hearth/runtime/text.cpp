// Making, joining and comparing text; UTF-8 stands in text_utf8.cpp.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/text.h>

#include <hearth/runtime/checked.h>
#include <hearth/runtime/memory.h>

#include <cstring>
#include <ostream>

namespace ht {

namespace {

std::size_t BlockBytes(std::size_t length)
{
    return sizeof(detail::TextHeader) + (length + 1) * sizeof(char16_t);
}

/// Units with one owner, their header in front and U+0000 behind.
char16_t* NewUnits(std::size_t length)
{
    const std::int32_t checkedLength = CheckedLength(length);
    auto* header = static_cast<detail::TextHeader*>(memory::Allocate(BlockBytes(length)));
    header->count = 1;
    header->length = checkedLength;
    auto* units = reinterpret_cast<char16_t*>(header + 1);
    units[length] = 0;
    return units;
}

/// The first and the last units, which may overlap.
template <std::size_t Count> void CopyEnds(char16_t* to, std::u16string_view from)
{
    const std::size_t last = from.size() - Count;
    std::memcpy(to, from.data(), Count * sizeof(char16_t));
    std::memcpy(to + last, from.data() + last, Count * sizeof(char16_t));
}

/// Most texts are so short that a call would cost more than the copy.
void CopyUnits(char16_t* to, std::u16string_view from)
{
    if (from.size() > 16)
        std::memcpy(to, from.data(), from.size() * sizeof(char16_t));
    else if (from.size() >= 8)
        CopyEnds<8>(to, from);
    else if (from.size() >= 4)
        CopyEnds<4>(to, from);
    else if (from.size() >= 2)
        CopyEnds<2>(to, from);
    else if (!from.empty())
        *to = from.front();
}

template <class Changes, class Fold> String Folded(const String& text, Changes changes, Fold fold)
{
    if (std::none_of(text.begin(), text.end(), changes))
        return text;
    char16_t* units = nullptr;
    String result = String::Uninitialized(text.size(), units);
    std::transform(text.begin(), text.end(), units, fold);
    return result;
}

String Part(const String& whole, std::u16string_view part)
{
    return part.size() == whole.size() ? whole : String(part);
}

}

String::String(std::u16string_view text)
{
    if (text.empty())
        return;
    char16_t* const units = NewUnits(text.size());
    CopyUnits(units, text);
    FUnits = units;
}

String::String(std::size_t count, char16_t unit)
{
    char16_t* units = nullptr;
    *this = Uninitialized(count, units);
    std::fill_n(units, count, unit);
}

String String::Uninitialized(std::size_t length, char16_t*& units)
{
    units = length == 0 ? nullptr : NewUnits(length);
    return String(TAdopt{}, units);
}

String String::FromLatin1(std::string_view bytes)
{
    char16_t* units = nullptr;
    String result = Uninitialized(bytes.size(), units);
    std::transform(bytes.begin(), bytes.end(), units,
        [](char byte) { return static_cast<char16_t>(static_cast<unsigned char>(byte)); });
    return result;
}

void String::FreeUnits() noexcept
{
    memory::Free(&Header());
}

std::int32_t String::ReferenceCount() const noexcept
{
    return FUnits ? std::atomic_ref<std::int32_t>(Header().count).load(std::memory_order_relaxed) : 0;
}

String String::Substring(std::int32_t start, std::int32_t count) const
{
    const std::int64_t first = std::clamp<std::int64_t>(start, 0, Length());
    const std::int64_t last = std::clamp<std::int64_t>(std::int64_t{start} + count, first, Length());
    return Part(
        *this, View().substr(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first)));
}

String String::ToLowerAscii() const
{
    return Folded(
        *this, [](char16_t c) { return IsAsciiUpper(c); }, [](char16_t c) { return FoldAscii(c); });
}

String String::ToUpperAscii() const
{
    return Folded(
        *this, [](char16_t c) { return IsAsciiLower(c); },
        [](char16_t c) { return IsAsciiLower(c) ? static_cast<char16_t>(c - 32) : c; });
}

String String::Trim() const
{
    return Part(*this, TrimView(*this));
}

String String::TrimLeft() const
{
    return Part(*this, TrimLeftView(*this));
}

String String::TrimRight() const
{
    return Part(*this, TrimRightView(*this));
}

String& String::operator+=(std::u16string_view text)
{
    if (text.empty())
        return *this;
    const std::size_t oldLength = size();
    const std::size_t newLength = oldLength + text.size();
    const bool ownText = text.data() >= begin() && text.data() <= end();
    if (ReferenceCount() != 1 || ownText)
        return *this = View() + text;
    const std::int32_t checkedLength = CheckedLength(newLength);
    auto* header = static_cast<detail::TextHeader*>(memory::Reallocate(&Header(), BlockBytes(newLength)));
    header->length = checkedLength;
    auto* units = reinterpret_cast<char16_t*>(header + 1);
    CopyUnits(units + oldLength, text);
    units[newLength] = 0;
    FUnits = units;
    return *this;
}

String operator+(std::u16string_view a, std::u16string_view b)
{
    return Concat({a, b});
}

String Concat(std::initializer_list<std::u16string_view> pieces)
{
    std::size_t length = 0;
    for (std::u16string_view piece : pieces)
        length = CheckedAdd(length, piece.size());
    char16_t* units = nullptr;
    String result = String::Uninitialized(length, units);
    for (std::u16string_view piece : pieces) {
        CopyUnits(units, piece);
        units += piece.size();
    }
    return result;
}

std::ostream& operator<<(std::ostream& out, const String& text)
{
    return out << text.ToUtf8();
}

bool SameText(std::u16string_view a, std::u16string_view b) noexcept
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char16_t x, char16_t y) {
        return FoldAscii(x) == FoldAscii(y);
    });
}

int CompareText(std::u16string_view a, std::u16string_view b) noexcept
{
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference = int{FoldAscii(a[i])} - int{FoldAscii(b[i])};
        if (difference != 0)
            return difference;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool IsBlankText(std::u16string_view text) noexcept
{
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c <= u' '; });
}

std::u16string_view TrimLeftView(std::u16string_view text) noexcept
{
    while (!text.empty() && text.front() <= u' ')
        text.remove_prefix(1);
    return text;
}

std::u16string_view TrimRightView(std::u16string_view text) noexcept
{
    while (!text.empty() && text.back() <= u' ')
        text.remove_suffix(1);
    return text;
}

std::u16string_view TrimView(std::u16string_view text) noexcept
{
    return TrimLeftView(TrimRightView(text));
}

}
