// Words, lists and names in text.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/text_words.h>

#include <hearth/runtime/checked.h>
#include <hearth/runtime/storage.h>

#include <algorithm>
#include <array>

namespace ht {

namespace {

/// Finds the places of a part that is not empty, each behind the end of the one before. What has matched is
/// never looked at again, so the cost does not depend on how often the part begins and fails.
class PartFinder {
public:
    PartFinder(std::u16string_view text, std::u16string_view part)
        : FText(text)
        , FPart(part)
        , FBorders(part.size())
    {
        for (std::size_t i = 1, matched = 0; i < part.size(); ++i) {
            matched = MatchedWith(part[i], matched);
            FBorders[i] = matched;
        }
    }

    /// The next place; the size of the text behind the last one.
    std::size_t Next() noexcept
    {
        for (std::size_t matched = 0; FAt < FText.size();) {
            matched = MatchedWith(FText[FAt++], matched);
            if (matched == FPart.size())
                return FAt - matched;
        }
        return FText.size();
    }

    void Rewind() noexcept { FAt = 0; }

private:
    /// How much of the part has matched with one more unit, when `matched` of it had.
    std::size_t MatchedWith(char16_t unit, std::size_t matched) const noexcept
    {
        while (matched > 0 && FPart[matched] != unit)
            matched = FBorders[matched - 1];
        return FPart[matched] == unit ? matched + 1 : 0;
    }

    std::u16string_view FText;
    std::u16string_view FPart;
    detail::Items<std::size_t> FBorders; // of each beginning, the longest end that is a beginning too
    std::size_t FAt = 0;
};

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
    if (from.empty() || from.size() > s.size())
        return s;
    const std::u16string_view text = s;
    PartFinder finder(text, from);
    std::size_t count = 0;
    while (finder.Next() < text.size())
        ++count;
    if (count == 0)
        return s;
    char16_t* units = nullptr;
    const std::size_t kept = text.size() - count * from.size();
    String result = String::Uninitialized(CheckedAdd(kept, CheckedMul(count, to.size())), units);
    finder.Rewind();
    std::size_t start = 0;
    for (; count > 0; --count) {
        const std::size_t at = finder.Next();
        units = std::copy_n(text.data() + start, at - start, units);
        units = std::copy(to.begin(), to.end(), units);
        start = at + from.size();
    }
    std::copy(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), units);
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
