// String lists as one text: lines, delimited texts, names and values, files.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/strings.h>

#include <hearth/runtime/strings_p.h>

namespace ht {

namespace {

constexpr std::u16string_view kUsualLineBreak = u"\r\n";

bool IsBlank(char16_t unit) noexcept
{
    return unit >= 1 && unit <= u' ';
}

std::u16string_view SkipBlanks(std::u16string_view text) noexcept
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

/// Takes the quoted text that `rest` starts with; doubled quotes stand for one, a missing end is the end
/// of all.
String TakeQuoted(std::u16string_view& rest, char16_t quote)
{
    std::u16string text;
    for (rest.remove_prefix(1); !rest.empty();) {
        const std::size_t end = std::min(rest.find(quote), rest.size());
        text += rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (!rest.starts_with(quote))
            break;
        text += quote;
        rest.remove_prefix(1);
    }
    return String(text);
}

void AppendQuoted(std::u16string& out, std::u16string_view text, char16_t quote)
{
    out += quote;
    for (char16_t unit : text)
        out.append(unit == quote ? 2 : 1, unit);
    out += quote;
}

}

std::int32_t TStrings::IndexOfName(std::u16string_view name) const
{
    for (std::int32_t i = 0; i < Count(); ++i) {
        const String text = Get(i);
        const std::size_t separator = SeparatorOf(text);
        if (separator != std::u16string_view::npos
            && CompareStrings(text.View().substr(0, separator), name) == 0)
            return i;
    }
    return -1;
}

String TStrings::Names(std::int32_t index) const
{
    const String text = Get(index);
    const std::size_t separator = SeparatorOf(text);
    return separator == std::u16string_view::npos ? String() : String(text.View().substr(0, separator));
}

String TStrings::ValueFromIndex(std::int32_t index) const
{
    const String text = Get(index);
    const std::size_t separator = SeparatorOf(text);
    return separator == std::u16string_view::npos ? String() : String(text.View().substr(separator + 1));
}

String TStrings::Values(std::u16string_view name) const
{
    const std::int32_t index = IndexOfName(name);
    return index < 0 ? String() : ValueFromIndex(index);
}

void TStrings::SetValues(std::u16string_view name, std::u16string_view value)
{
    const std::int32_t index = IndexOfName(name);
    if (value.empty()) {
        if (index >= 0)
            Delete(index);
        return;
    }
    const String text = Concat({name, {&FNameValueSeparator, 1}, value});
    if (index < 0)
        Add(text);
    else
        Put(index, text);
}

void TStrings::SetValueFromIndex(std::int32_t index, std::u16string_view value)
{
    if (value.empty()) {
        if (index >= 0)
            Delete(index);
        return;
    }
    const String text = Concat({index < 0 ? String() : Names(index), {&FNameValueSeparator, 1}, value});
    if (index < 0)
        Add(text);
    else
        Put(index, text);
}

String TStrings::Text() const
{
    std::u16string out;
    for (std::int32_t i = 0; i < Count(); ++i)
        out.append(Get(i)).append(FLineBreak);
    return String(out);
}

void TStrings::SetText(std::u16string_view text)
{
    const String kept{text}; // may be one of the texts that go now
    std::u16string_view rest = kept;
    const bool usual = FLineBreak == kUsualLineBreak || FLineBreak.IsEmpty();
    detail::AsOneUpdate(*this, [&] {
        Clear();
        while (!rest.empty()) {
            const std::size_t end =
                std::min(usual ? rest.find_first_of(kUsualLineBreak) : rest.find(FLineBreak), rest.size());
            Add(String(rest.substr(0, end)));
            rest.remove_prefix(end);
            const bool pair = rest.starts_with(kUsualLineBreak);
            rest.remove_prefix(std::min(usual ? (pair ? 2 : 1) : FLineBreak.size(), rest.size()));
        }
    });
}

String TStrings::Joined(char16_t delimiter, char16_t quote, TBlankRole blanks) const
{
    const std::int32_t count = Count();
    std::u16string out;
    if (count == 1 && Get(0).IsEmpty())
        return String(2, quote);
    for (std::int32_t i = 0; i < count; ++i) {
        const String text = Get(i);
        const bool special = std::any_of(text.begin(), text.end(), [=](char16_t unit) {
            return unit == delimiter || unit == quote || unit == 0
                || (blanks == brSeparator && IsBlank(unit));
        });
        if (i != 0)
            out += delimiter;
        if (special)
            AppendQuoted(out, text, quote);
        else
            out += text.View();
    }
    return String(out);
}

void TStrings::Split(std::u16string_view text, char16_t delimiter, char16_t quote, TBlankRole blanks)
{
    const bool cuts = blanks == brSeparator;
    const auto skip = [cuts](std::u16string_view rest) { return cuts ? SkipBlanks(rest) : rest; };
    const auto ends = [=](char16_t unit) { return unit == delimiter || (cuts && IsBlank(unit)); };
    const String kept{text};
    detail::AsOneUpdate(*this, [&] {
        Clear();
        for (std::u16string_view rest = skip(kept); !rest.empty();) {
            if (rest.front() == quote) {
                Add(TakeQuoted(rest, quote));
            } else {
                const auto* const end = std::find_if(rest.data(), rest.data() + rest.size(), ends);
                const auto length = static_cast<std::size_t>(end - rest.data());
                Add(String(rest.substr(0, length)));
                rest.remove_prefix(length);
            }
            rest = skip(rest);
            if (!rest.starts_with(delimiter))
                continue;
            rest.remove_prefix(1);
            rest = skip(rest);
            if (rest.empty())
                Add(String());
        }
    });
}

String TStrings::CommaText() const
{
    return Joined(u',', u'"', brSeparator);
}

void TStrings::SetCommaText(std::u16string_view text)
{
    Split(text, u',', u'"', brSeparator);
}

String TStrings::DelimitedText() const
{
    return Joined(FDelimiter, FQuoteChar, DelimitedBlanks());
}

void TStrings::SetDelimitedText(std::u16string_view text)
{
    Split(text, FDelimiter, FQuoteChar, DelimitedBlanks());
}

void TStrings::LoadFromStream(TStream& source, std::uint32_t codePage)
{
    const std::string bytes = source.ReadRest();
    const THtByteOrderMarkMatch mark = DetectByteOrderMark(bytes);
    const std::uint32_t told = codePage != 0 ? codePage : SystemCodePage();
    const std::uint32_t page = mark.Mark != bomNone ? CodePageOf(mark.Mark) : told;
    SetText(DecodeBytes(std::string_view(bytes).substr(mark.Size), page));
    FLoadedCodePage = page;
}

void TStrings::LoadFromFile(const String& fileName, std::uint32_t codePage)
{
    TFileStream file(fileName, fmOpenRead | fmShareDenyWrite);
    LoadFromStream(file, codePage);
}

void TStrings::SaveToStream(TStream& target, std::uint32_t codePage) const
{
    const std::uint32_t usual = FLoadedCodePage != 0 ? FLoadedCodePage : SystemCodePage();
    const std::uint32_t page = codePage != 0 ? codePage : usual;
    const std::string bytes = EncodeBytes(Text(), page);
    target.WriteBuffer(ByteOrderMarkOf(page));
    target.WriteBuffer(bytes);
}

void TStrings::SaveToFile(const String& fileName, std::uint32_t codePage) const
{
    TFileStream file(fileName, fmCreate);
    SaveToStream(file, codePage);
}

}
