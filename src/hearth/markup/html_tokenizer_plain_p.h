// The quick readers for the forms that most of a page is made of, inlined into the reader of items.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/hash_table.h>
#include <hearth/markup/html_chars_p.h>
#include <hearth/markup/html_tokenizer.h>
#include <hearth/markup/short_name_p.h>
#include <hearth/runtime/simd_p.h>

namespace ht {

/// "=" and a quote.
inline bool OpensValue(const char16_t* p) noexcept
{
    return p[0] == u'=' && (p[1] == u'"' || p[1] == u'\'');
}

/// A tag name; "</" or "<" stands in front of it.
inline THTMLTokenizer::TTagHead THTMLTokenizer::ReadTagHead(bool& isCloseTag)
{
    const char16_t* const p = FParser.p;
    if (FParser.Empty() || *p != u'<')
        return thNone;
    const bool closes = p[1] == u'/';
    const char16_t* const name = p + (closes ? 2 : 1);
    if (!IsAsciiLower(*name) && !IsAsciiUpper(*name))
        return thNone;
    isCloseTag = closes;
    FInTag = true;
    const TTagHead head = ReadShortTagHead(name, closes);
    return head != thNone ? head : ReadLongTagHead(name, closes);
}

/// A known short name that a ">" or a blank ends: most tags are written so.
inline THTMLTokenizer::TTagHead THTMLTokenizer::ReadShortTagHead(const char16_t* name, bool closes)
{
    if (FParser.pend - name < kShortNameUnits || !FTagNames)
        return thNone;
    const TShortName read = ReadShortName(name);
    const char16_t* const end = name + read.Length;
    if (*end != u'>' && ClassInTag(*end) != ccSpace)
        return thNone;
    const THtNameRec* record = FTagNames->FindShort(read.Key);
    if (!record)
        return thNone;
    FNameRecord = record;
    LeaveText(ltName, name);
    FParser.p = end;
    FRawBody = closes || !record->ActsAtEnd ? rbNone : RawBodyOf(record->Id);
    if (!record->ActsAtEnd && ReadPlainTagEnd())
        return thComplete;
    FToken.CType = htIdent;
    return thOpen;
}

/// Nearly all elements end with their own tag. That its length is known beforehand lets the processor go on
/// with what follows while it still compares.
inline bool THTMLTokenizer::ReadEndTag(TTagId tag) noexcept
{
    const char16_t* const p = FParser.p + 2;
    const TShortName& name = detail::kShortTags[tag];
    if (FParser.pend - p < kShortNameUnits || name.Length == 0)
        return false;
    if (p[name.Length] != u'>' || !StandsAt(name, p))
        return false;
    LeaveText(ltName, p);
    FRawBody = rbNone;
    EndTagAt(p + name.Length);
    return true;
}

inline bool THTMLTokenizer::ReadPlainTagEnd() noexcept
{
    if (*FParser.p != u'>' || !FInTag || FRawBody != rbNone)
        return false;
    EndTagAt(FParser.p);
    return true;
}

inline void THTMLTokenizer::EndTagAt(const char16_t* end) noexcept
{
    FParser.p = end;
    FToken.CType = htTagEnd;
    FToken.StartPos = FParser.Offset();
    FToken.EndPos = FToken.StartPos + 1;
    ++FParser.p;
    FInTag = false;
}

/// The text up to a mark or the end. Most texts hold no reference and are one stretch.
inline String THTMLTokenizer::ReadUpTo(char16_t mark)
{
    const char16_t* const from = FParser.p;
    const char16_t* const end = simd::FindAny(from, FParser.pend, mark, u'&');
    if (end < FParser.pend && *end == u'&') [[unlikely]]
        return ReadResolved(simd::FindAny(end, FParser.pend, mark), {});
    FParser.p = end;
    return String(std::u16string_view(from, static_cast<std::size_t>(end - from)));
}

inline String THTMLTokenizer::ReadQuoted()
{
    const char16_t quote = *FParser.p++;
    String text = ReadUpTo(quote);
    FParser.Next();
    return text;
}

inline bool THTMLTokenizer::ReadPlainText(String& text)
{
    if (FToken.CType != htTagEnd || FParser.Empty() || *FParser.p == u'<')
        return false;
    FToken.StartPos = FParser.Offset();
    FToken.CType = htString;
    LeaveText(ltPlain, FParser.p);
    text = ReadUpTo(u'<');
    FToken.EndPos = FParser.Offset();
    return true;
}

inline bool THTMLTokenizer::ReadPlainEmptyEnd() noexcept
{
    const char16_t* const p = FParser.p + (*FParser.p == u' ');
    if (p[0] != u'/' || p[1] != u'>')
        return false;
    FRawBody = rbNone;
    EndTagAt(p + 1);
    return true;
}

/// The end of the blanks that begin at `p`, which may be none.
inline const char16_t* THTMLTokenizer::BehindBlanks(const char16_t* p) const noexcept
{
    if (ClassInTag(*p) == ccSpace) {
        while (p < FParser.pend && *p <= u' ')
            ++p;
    }
    return p;
}

inline bool THTMLTokenizer::ReadPlainCloseTag(std::u16string_view tag) noexcept
{
    const char16_t* const p = FParser.p;
    const auto length = static_cast<std::ptrdiff_t>(tag.size());
    constexpr std::ptrdiff_t kMarks = 3;
    if (FParser.pend - p < length + kMarks || p[0] != u'<' || p[1] != u'/' || p[length + 2] != u'>')
        return false;
    if (!detail::SameUnits(tag.data(), p + 2, tag.size()))
        return false;
    FRawBody = rbNone;
    EndTagAt(p + length + kMarks - 1);
    return true;
}

inline bool THTMLTokenizer::ReadPlainOpenTag(const String& tag) noexcept
{
    const char16_t* const p = FParser.p;
    const auto length = static_cast<std::ptrdiff_t>(tag.size());
    if (!FXMLMode || length == 0 || FParser.pend - p <= length || p[0] != u'<')
        return false;
    const char16_t* const end = p + 1 + length;
    // "row/" is a name too, and "<row/>" is none of that name.
    if (end[-1] == u'/')
        return false;
    if (*end != u'>' && ClassInTag(*end) != ccSpace && (*end != u'/' || end[1] != u'>'))
        return false;
    if (!detail::SameUnits(tag.data(), p + 1, tag.size()))
        return false;
    FParser.p = end;
    FInTag = true;
    FRawBody = rbNone;
    FNameRecord = nullptr;
    FLeftText = ltNothing;
    FToken.Name = tag;
    FToken.CType = htIdent;
    return true;
}

inline std::u16string_view THTMLTokenizer::ReadPlainBlanks() noexcept
{
    const char16_t* const from = FParser.p;
    if (FToken.CType != htTagEnd || *from > u' ')
        return {};
    const char16_t* to = from;
    while (to < FParser.pend && *to <= u' ')
        ++to;
    if (*to != u'<')
        return {};
    FToken.StartPos = FParser.Offset();
    FToken.CType = htString;
    LeaveText(ltPlain, from);
    FParser.p = to;
    FToken.EndPos = FParser.Offset();
    return {from, static_cast<std::size_t>(to - from)};
}

inline const THtNameRec* THTMLTokenizer::ReadPlainAttributeName()
{
    const char16_t* p = BehindBlanks(FParser.p);
    const THtNameRec* name = FXMLMode ? GuessAttribute(p) : FAttributeNames ? FindAttribute(p) : nullptr;
    // A name in capitals may have to be folded.
    if (!name || (!name->IsLower && !FCaseSensitive))
        return nullptr;
    FParser.p = p;
    return name;
}

inline String THTMLTokenizer::ReadPlainValue()
{
    FToken.CType = htString;
    LeaveText(ltQuoted, FParser.p);
    return ReadQuoted();
}

/// FindAttribute with a guess: elements of one name have attributes of the same names.
inline const THtNameRec* THTMLTokenizer::GuessAttribute(const char16_t*& p)
{
    const THtNameRec*& guess = FGuesses.data()[FLastName % kGuesses];
    const auto length = guess ? static_cast<std::ptrdiff_t>(guess->Value.size()) : 0;
    if (guess && FParser.pend - p > length && OpensValue(p + length)
        && detail::SameUnits(guess->Value.data(), p, guess->Value.size())) {
        p += length + 1;
    } else {
        guess = FAttributeNames ? FindAttribute(p) : nullptr;
        if (!guess)
            return nullptr;
    }
    FLastName = guess->Hash;
    return guess;
}

/// The record of a known name at `p` with "=" and a quote behind it, which `p` then points at; else null.
inline const THtNameRec* THTMLTokenizer::FindAttribute(const char16_t*& p) const
{
    const char16_t* const from = p;
    if (FParser.pend - from >= kShortNameUnits) {
        const TShortName read = ReadShortName(from);
        p = from + read.Length + 1;
        if (const THtNameRec* record = FAttributeNames->FindShort(read.Key); record && OpensValue(p - 1))
            return record;
    }
    RSHasher hasher;
    p = from;
    for (; ClassInTag(*p) == ccIdentifier; ++p)
        hasher.Add(*p);
    if (p == from || !OpensValue(p++))
        return nullptr;
    return FAttributeNames->Find(hasher.Value(), {from, static_cast<std::size_t>(p - 1 - from)});
}

}
