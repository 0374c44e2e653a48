// Words, lists and names in text.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/text_words.h>

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <array>

namespace ht {

namespace {

std::u16string_view::size_type CountOf(std::u16string_view s, std::u16string_view part) noexcept
{
    std::size_t count = 0;
    for (std::size_t at = 0; (at = s.find(part, at)) != std::u16string_view::npos; at += part.size())
        ++count;
    return count;
}

/// The name that a keyword stands for; keywords are looked up for every declaration, so no string is made.
class ValueName {
public:
    ValueName(std::u16string_view prefix, std::u16string_view keyword) noexcept
    {
        for (const char16_t unit : prefix)
            Add(unit);
        for (const char16_t unit : keyword) {
            if (unit != u'-')
                Add(unit);
        }
    }
    /// No value has a name that does not fit here.
    bool Fits() const noexcept { return FLength <= FUnits.size(); }
    std::u16string_view View() const noexcept { return {FUnits.data(), FLength}; }

private:
    void Add(char16_t unit) noexcept
    {
        if (FLength < FUnits.size())
            FUnits[FLength] = unit;
        ++FLength;
    }

    std::array<char16_t, 128> FUnits;
    std::size_t FLength = 0;
};

}

std::u16string_view Q_StrTok(std::u16string_view& s, std::u16string_view delimiters, bool Strict) noexcept
{
    const std::u16string_view former = s;
    const std::size_t start = former.find_first_not_of(delimiters);
    if (start == std::u16string_view::npos) {
        s = {};
        return Strict ? s : former;
    }
    const std::size_t end = std::min(former.find_first_of(delimiters, start), former.size());
    s = former.substr(Strict ? std::min(end + 1, former.size()) : end);
    return Strict ? former.substr(start, end - start) : former.substr(0, end);
}

String Q_StrTok(String& s, std::u16string_view delimiters, bool Strict)
{
    std::u16string_view rest = s;
    const String word(Q_StrTok(rest, delimiters, Strict));
    s = String(rest);
    return word;
}

std::int32_t FindChar(char16_t c, std::u16string_view s, std::int32_t start) noexcept
{
    const std::size_t found = s.find(c, static_cast<std::size_t>(std::max(start, 1) - 1));
    return found == std::u16string_view::npos ? 0 : static_cast<std::int32_t>(found) + 1;
}

bool StrIn(std::u16string_view s, std::initializer_list<std::u16string_view> values) noexcept
{
    return std::find(values.begin(), values.end(), s) != values.end();
}

String ReplaceChar(const String& s, char16_t from, char16_t to)
{
    if (from == to || s.View().find(from) == std::u16string_view::npos)
        return s;
    char16_t* units = nullptr;
    String result = String::Uninitialized(s.size(), units);
    std::replace_copy(s.begin(), s.end(), units, from, to);
    return result;
}

String ReplaceStr(const String& s, std::u16string_view from, std::u16string_view to)
{
    const std::size_t count = from.empty() ? 0 : CountOf(s, from);
    if (count == 0)
        return s;
    char16_t* units = nullptr;
    const std::size_t kept = s.size() - count * from.size();
    String result = String::Uninitialized(CheckedAdd(kept, CheckedMul(count, to.size())), units);
    std::u16string_view rest = s;
    for (std::size_t at = 0; (at = rest.find(from)) != std::u16string_view::npos;) {
        units = std::copy_n(rest.data(), at, units);
        units = std::copy(to.begin(), to.end(), units);
        rest.remove_prefix(at + from.size());
    }
    std::copy(rest.begin(), rest.end(), units);
    return result;
}

void AddStr(String& s, std::u16string_view value, std::u16string_view separator)
{
    // Joined first: either may be a part of `s`, which moves when it grows.
    if (s.IsEmpty())
        s = String(value);
    else
        s += Concat({separator, value});
}

bool BlankString(std::u16string_view s) noexcept
{
    return IsBlankText(s);
}

bool BlankOrNBSP(std::u16string_view s) noexcept
{
    constexpr char16_t kNoBreakSpace = 0xA0;
    return std::all_of(s.begin(), s.end(), [](char16_t c) { return c <= u' ' || c == kNoBreakSpace; });
}

bool IsEnum(std::u16string_view s, const TEnumInfo& typeInfo, std::int32_t& value) noexcept
{
    return IsEnum2({}, s, typeInfo, value);
}

bool IsEnum2(std::u16string_view prefix, std::u16string_view s, const TEnumInfo& typeInfo,
    std::int32_t& value) noexcept
{
    const ValueName name(prefix, s);
    const std::int32_t ordinal = name.Fits() ? typeInfo.Find(name.View()) : -1;
    if (ordinal < 0)
        return false;
    value = ordinal;
    return true;
}

}
