// From the tokens in front of a block to selectors.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/css_parser.h>

#include <hearth/styling/css/selector.h>

#include <span>

namespace ht {

namespace {

/// Builds one selector of its tokens. Any tokens give one: what fits nowhere is passed over.
class SelectorReader {
public:
    /// `limit` counts compounds and the arguments of ":not"; 0 is none.
    SelectorReader(std::span<const TCSSToken> tokens, std::int32_t limit)
        : FTokens(tokens)
        , FLimit(limit)
    {
    }

    /// Null beyond the limit.
    std::unique_ptr<TCSSSelector> Read()
    {
        std::unique_ptr<TCSSSelector> selector;
        do {
            selector = NewSelector(std::move(selector));
            ReadCombinator(*selector);
            ReadTag(*selector);
            ReadParts(*selector);
        } while (!AtEnd() && !IsBeyondLimit());
        return IsBeyondLimit() ? nullptr : std::move(selector);
    }

private:
    /// A compound with what its brackets say so far.
    struct Open {
        TCSSSelector* Compound;
        TArray<char16_t> Condition;
    };

    bool AtEnd() const noexcept { return FAt >= FTokens.size(); }
    bool IsAt(TCSSTokenType type, std::size_t ahead = 0) const noexcept
    {
        return FAt + ahead < FTokens.size() && FTokens[FAt + ahead].CType == type;
    }
    const TCSSToken& Current() const noexcept { return FTokens[FAt]; }
    bool IsBeyondLimit() const noexcept { return FLimit > 0 && FCount > FLimit; }

    std::unique_ptr<TCSSSelector> NewSelector(std::unique_ptr<TCSSSelector> previous)
    {
        ++FCount;
        return std::make_unique<TCSSSelector>(std::move(previous));
    }

    void ReadCombinator(TCSSSelector& compound)
    {
        if (IsAt(ctSpace))
            ++FAt;
        if (!IsAt(ctDelimiter) || Current().Name == u"." || Current().Name == u"*")
            return;
        const String& mark = Current().Name;
        compound.Position = mark == u"+" ? spSibling
            : mark == u">"               ? spChild
            : mark == u"~"               ? spAllSiblings
                                         : spDescendant;
        ++FAt;
        while (IsAt(ctSpace))
            ++FAt;
    }

    void ReadTag(TCSSSelector& compound)
    {
        if (AtEnd())
            return;
        switch (Current().CType) {
        case ctIdent:
        case ctAtKeyword:
        case ctString:
        case ctNumber:
        case ctPercentage:
        case ctDimension:
            break;
        case ctDelimiter:
            if (Current().Name == u"*")
                break;
            return;
        default:
            return;
        }
        compound.SetTag(Current().Name);
        ++FAt;
    }

    /// Everything behind the tag. The arguments of ":not" are read like compounds, but for the tag, and
    /// what is no part of a compound is passed over in them.
    void ReadParts(TCSSSelector& compound)
    {
        FOpen.Add({&compound, {}});
        while (!AtEnd() && !IsBeyondLimit() && ReadPart()) { }
        while (!FOpen.IsEmpty())
            Close();
    }

    /// One part of the innermost compound; false where the outermost ends.
    bool ReadPart()
    {
        const bool isInNot = FOpen.Length() > 1;
        TCSSSelector& compound = *FOpen.Last().Compound;
        switch (Current().CType) {
        case ctColon:
            ReadPseudo(compound);
            return true;
        case ctHash:
            compound.ID = Current().Name;
            ++FAt;
            return true;
        case ctFunction:
        case ctOpenPar:
            TakeText(ctClosePar);
            return true;
        case ctOpenBr:
            ++FAt;
            if (!FOpen.Last().Condition.IsEmpty())
                FOpen.Last().Condition.Add(kConditionSeparator);
            TakeText(ctCloseBr);
            return true;
        case ctClosePar:
            if (isInNot)
                Close();
            ++FAt;
            return true;
        case ctCloseBr:
        case ctSlash:
            ++FAt;
            return true;
        case ctDelimiter:
            if (Current().Name == u".") {
                ReadClass(compound);
                return true;
            }
            break;
        default:
            break;
        }
        if (isInNot)
            ++FAt;
        return isInNot;
    }

    void ReadClass(TCSSSelector& compound)
    {
        ++FAt;
        if (!IsAt(ctIdent))
            return;
        compound.AddClass(Current().Name);
        ++FAt;
    }

    void ReadPseudo(TCSSSelector& compound)
    {
        ++FAt;
        if (IsAt(ctColon))
            ++FAt;
        if (AtEnd())
            return;
        const TCSSToken& name = Current();
        if (!IsAt(ctOpenPar, 1)) {
            compound.AddPseudo(name.Name, nullptr);
            ++FAt;
            return;
        }
        FAt += 2;
        const bool hasArgument = !AtEnd() && !IsAt(ctClosePar);
        if (hasArgument && name.CType == ctFunction && name.Name == u"not") {
            OpenNot(compound);
            return;
        }
        compound.AddPseudo(name.Name, hasArgument ? &Current() : nullptr);
        while (!AtEnd() && !IsAt(ctClosePar))
            ++FAt;
        ++FAt;
    }

    void OpenNot(TCSSSelector& compound)
    {
        std::unique_ptr<TCSSSelector> inner = NewSelector(nullptr);
        FOpen.Add({inner.get(), {}});
        compound.Nots.Add(std::move(inner));
    }

    void Close()
    {
        const TArray<char16_t>& condition = FOpen.Last().Condition;
        FOpen.Last().Compound->Condition = String({condition.data(), condition.size()});
        FOpen.Delete(FOpen.Length() - 1);
    }

    /// The text of all tokens in front of the closing one goes to the condition.
    void TakeText(TCSSTokenType end)
    {
        TArray<char16_t>& condition = FOpen.Last().Condition;
        for (; !AtEnd() && !IsAt(end); ++FAt) {
            for (const char16_t unit : Current().Name.View())
                condition.Add(unit);
        }
        ++FAt;
    }

    std::span<const TCSSToken> FTokens;
    std::size_t FAt = 0;
    std::int32_t FLimit;
    std::int32_t FCount = 0;
    TArray<Open> FOpen; // the compound and the ":not" around the current token, outermost first
};

}

/// At the first token of a selector. Stops at the "{" or "," that ends it. A token that belongs to no
/// selector skips the rule, but what stood in front of a comma stays.
void TCSSParser::AddSelector()
{
    TCSSSection& section = *CurrentSection;
    if (section.Selectors->Count() == 0)
        section.BlockStartPos = FTokenizer.Token.StartPos;
    if (!GatherSelector()) {
        SkipSection();
        return;
    }
    while (!FList.IsEmpty() && FList.Last().CType == ctSpace)
        FList.Delete(FList.Length() - 1);
    if (FList.IsEmpty())
        return;
    std::unique_ptr<TCSSSelector> selector = SelectorReader({FList}, Limits.SelectorCompounds).Read();
    if (!selector)
        return;
    selector->StartPos = FList[0].StartPos;
    selector->EndPos = FList.Last().EndPos;
    selector->Universal = selector->Tag == u"*";
    selector->DetermineTestProc();
    section.AddSelector(selector.get());
    selector.release();
}

/// Fills the list; false at a token that belongs to no selector.
bool TCSSParser::GatherSelector()
{
    FList.Clear();
    for (;;) {
        switch (FTokenizer.Token.CType) {
        case ctBlockStart:
        case ctComma:
            return true;
        case ctBlockEnd:
        case ctURI:
        case ctCDO:
        case ctCDC:
        case ctSemicolon:
            return false;
        case ctComment:
        case ctSlash:
            break;
        default:
            // The tokenizer makes its token anew.
            FList.Add(std::move(FTokenizer.Token));
        }
        FTokenizer.NextToken();
        if (FTokenizer.Eof)
            return true;
    }
}

}
