// Selectors as text that reads back as the same.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/selector.h>

#include <hearth/foundation/fast_string.h>
#include <hearth/styling/css/css_tokenizer.h>

#include <algorithm>

namespace ht {

namespace {

constexpr std::int32_t kTextStep = 64; // units by which the text grows

constexpr bool IsNameUnit(char16_t unit)
{
    return IsAsciiLower(unit) || IsAsciiUpper(unit) || IsAsciiDigit(unit) || unit == u'-' || unit == u'_'
        || unit > 0xFF;
}

void WriteEscape(TFastString& text, char16_t unit)
{
    constexpr std::u16string_view kDigits = u"0123456789abcdef";
    text.AddChar(u'\\');
    if (unit > 0xF)
        text.AddChar(kDigits[unit >> 4U & 0xFU]);
    text.Add2Char(kDigits[unit & 0xFU], u' ');
}

/// A digit in front, or behind a "-" in front, would make a number.
void WriteName(TFastString& text, std::u16string_view name)
{
    const std::size_t digitPlace = name.starts_with(u'-') ? 1 : 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char16_t unit = name[i];
        if (!IsNameUnit(unit) || (i == digitPlace && IsAsciiDigit(unit)))
            WriteEscape(text, unit);
        else
            text.AddChar(unit);
    }
}

void WriteQuoted(TFastString& text, std::u16string_view content)
{
    text.AddChar(u'"');
    for (const char16_t unit : content) {
        if (unit < u' ' || unit == u'"' || unit == u'\\')
            WriteEscape(text, unit);
        else
            text.AddChar(unit);
    }
    text.AddChar(u'"');
}

/// True for the name of a number's token.
bool IsNumber(const String& tag)
{
    TCSSTokenizer tokenizer(tag);
    tokenizer.NextToken();
    const TCSSTokenType type = tokenizer.Token.CType;
    return (type == ctNumber || type == ctPercentage || type == ctDimension) && tokenizer.Token.Name == tag;
}

bool IsBare(const TCSSSelector& compound)
{
    return compound.ID.IsEmpty() && compound.Classes.IsEmpty() && compound.Condition.IsEmpty()
        && compound.Pseudo.IsEmpty() && compound.Nots.IsEmpty();
}

/// A number stands as it is only where nothing could become part of it.
void WriteTag(TFastString& text, const TCSSSelector& compound)
{
    const String& tag = compound.Tag;
    const bool isRuleName = tag == u"@font-face" || tag == u"@page";
    if (tag == u"*" || isRuleName || (IsBare(compound) && IsNumber(tag)))
        text.Add(tag);
    else
        WriteName(text, tag);
}

/// One pair of brackets. What plain words cannot say stands in quotes, the name of the attribute too if need
/// be.
void WriteBrackets(TFastString& text, std::u16string_view condition)
{
    const auto isPlain = [](std::u16string_view part) {
        return std::all_of(part.begin(), part.end(), [](char16_t unit) {
            return IsNameUnit(unit)
                || std::u16string_view(u"=^$*~|!").find(unit) != std::u16string_view::npos;
        });
    };
    const std::size_t equals = condition.find(u'=');
    text.AddChar(u'[');
    if (isPlain(condition))
        text.Add(condition);
    else if (equals != condition.npos && isPlain(condition.substr(0, equals)))
        WriteQuoted(text.Add(condition.substr(0, equals + 1)), condition.substr(equals + 1));
    else
        WriteQuoted(text, condition);
    text.AddChar(u']');
}

void WriteCondition(TFastString& text, std::u16string_view condition)
{
    // An empty pair of brackets in front would get lost.
    if (condition.starts_with(kConditionSeparator))
        return WriteBrackets(text, condition);
    for (;;) {
        const std::size_t end = condition.find(kConditionSeparator);
        WriteBrackets(text, condition.substr(0, end));
        if (end == condition.npos)
            return;
        condition.remove_prefix(end + 1);
    }
}

/// "FirstChild" as "first-child".
void WritePseudoName(TFastString& text, TCSSPseudoClass pseudo)
{
    const std::u16string_view name = EnumName(pseudo).substr(2);
    text.AddChar(u':');
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (i > 0 && IsAsciiUpper(name[i]))
            text.AddChar(u'-');
        text.AddChar(FoldAscii(name[i]));
    }
}

void WriteArgument(TFastString& text, std::int32_t place)
{
    text.AddChar(u'(');
    if (place == kNthOdd)
        text.Add(u"odd");
    else if (place == kNthEven)
        text.Add(u"even");
    else
        text.Add(std::int64_t{place});
    text.AddChar(u')');
}

/// The argument goes with the places, or with whatever else brought one along.
void WritePseudo(TFastString& text, const TCSSSelector& compound)
{
    const bool hasPlace = compound.Pseudo.Contains(pcNthChild) || compound.Pseudo.Contains(pcNthOfType);
    const auto write = [&](TCSSPseudoClass pseudo) {
        WritePseudoName(text, pseudo);
        if (hasPlace ? pseudo == pcNthChild || pseudo == pcNthOfType : compound.NthChild != 0)
            WriteArgument(text, compound.NthChild);
    };
    if (compound.FirstPseudo != pcNone)
        write(compound.FirstPseudo);
    for (const TCSSPseudoClass pseudo : compound.Pseudo) {
        if (pseudo != compound.FirstPseudo || pseudo == pcNone)
            write(pseudo);
    }
}

/// A compound without its Nots. A point alone says nothing, and so stands for nothing.
void WriteParts(TFastString& text, const TCSSSelector& compound)
{
    if (compound.Tag.IsEmpty() && IsBare(compound))
        text.AddChar(u'.');
    if (!compound.Tag.IsEmpty())
        WriteTag(text, compound);
    if (!compound.ID.IsEmpty()) {
        text.AddChar(u'#');
        WriteName(text, compound.ID);
    }
    for (const TCSSClassRec& name : compound.Classes) {
        text.AddChar(u'.');
        WriteName(text, name.s.IsEmpty() ? std::u16string_view(u" ") : name.s.View());
    }
    if (!compound.Condition.IsEmpty())
        WriteCondition(text, compound.Condition);
    WritePseudo(text, compound);
}

/// Nots may stand in each other, as deep as they like.
void WriteCompound(TFastString& text, const TCSSSelector& compound)
{
    struct Level {
        const TCSSSelector* Compound;
        std::int32_t Next;
    };
    WriteParts(text, compound);
    if (compound.Nots.IsEmpty())
        return;
    TArray<Level> levels{{&compound, 0}};
    while (!levels.IsEmpty()) {
        Level& level = levels.Last();
        if (level.Next == level.Compound->Nots.Length()) {
            levels.Delete(levels.Length() - 1);
            if (!levels.IsEmpty())
                text.AddChar(u')');
            continue;
        }
        const TCSSSelector& inner = *level.Compound->Nots[level.Next++];
        text.Add(u":not(");
        WriteParts(text, inner);
        levels.Add({&inner, 0});
    }
}

std::u16string_view CombinatorOf(TSelectorPosition position)
{
    switch (position) {
    case spChild:
        return u" > ";
    case spSibling:
        return u" + ";
    case spAllSiblings:
        return u" ~ ";
    case spDescendant:
        break;
    }
    return u" ";
}

}

String TCSSSelector::AsString() const
{
    TArray<const TCSSSelector*> compounds;
    for (const TCSSSelector* compound = this; compound; compound = compound->Previous.get())
        compounds.Add(compound);
    TFastString text(kTextStep);
    for (std::int32_t i = compounds.Length() - 1; i >= 0; --i) {
        if (i < compounds.Length() - 1)
            text.Add(CombinatorOf(compounds[i]->Position));
        WriteCompound(text, *compounds[i]);
    }
    return text.GetAsString();
}

}
