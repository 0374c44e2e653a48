// Compiling a path into steps, and the text of a predicate into conditions.
// SPDX-License-Identifier: MIT
#include <hearth/markup/xpath.h>

#include <hearth/foundation/hash.h>
#include <hearth/runtime/text_number.h>

#include <algorithm>

namespace ht {

namespace {

/// Tells which units of a path stand outside brackets and quotes.
class TPathScanner {
public:
    /// Call for each unit in order; true while it is in no bracket and in no quotes.
    bool IsOutside(char16_t c) noexcept
    {
        const bool outside = FDepth == 0 && !FQuoted;
        // Both quotes share one flag, so either closes what the other opened.
        if (c == u'"' || c == u'\'')
            FQuoted = !FQuoted;
        else if (!FQuoted && c == u'[')
            ++FDepth;
        else if (!FQuoted && c == u']')
            --FDepth;
        return outside;
    }
    bool IsQuoted() const noexcept { return FQuoted; }

private:
    std::int32_t FDepth = 0;
    bool FQuoted = false;
};

/// One step of a path: how long it is and where its predicate opens.
struct TStepExtent {
    std::size_t Length = 0;
    std::size_t Bracket = std::u16string_view::npos;
};

TStepExtent MeasureStep(std::u16string_view text)
{
    TStepExtent extent;
    TPathScanner scanner;
    for (; extent.Length < text.size(); ++extent.Length) {
        const char16_t c = text[extent.Length];
        if (c == u'[' && !scanner.IsQuoted() && extent.Bracket == std::u16string_view::npos)
            extent.Bracket = extent.Length;
        if (scanner.IsOutside(c) && c == u'/')
            break;
    }
    return extent;
}

void SetKind(TXPathNode& PN, std::u16string_view tag)
{
    if (tag == u"*") {
        PN.Kind = xkAsterisk;
    } else if (tag == u"..") {
        PN.Kind = xkParent;
    } else if (SameText(tag, u"current")) {
        PN.Kind = xkCurrent;
    } else if (tag == u"text()") {
        tag = {};
    } else if (tag.starts_with(u'@')) {
        PN.Kind = xkAttr;
        tag.remove_prefix(1);
    }
    PN.Tag = String(tag);
    PN.TagHash = RSHashLower(tag);
}

/// Reads the conditions of one predicate.
class TConditionReader {
public:
    explicit TConditionReader(std::u16string_view text)
        : FText(text)
    {
    }

    bool AtEnd() const noexcept { return FText.empty(); }

    /// Reads one condition and the blanks behind it; of blanks alone one that never holds.
    TXCondition Read()
    {
        TXCondition condition;
        SkipBlanks();
        condition.Op = ReadBoolOp();
        SkipBlanks();
        ReadOperand(condition.left, condition.leftstr, condition.leftattr);
        SkipBlanks();
        if (!ReadOperator(condition.ctype))
            return condition;
        SkipBlanks();
        ReadOperand(condition.right, condition.rightstr, condition.rightattr);
        SkipBlanks();
        return condition;
    }

private:
    static bool IsBlank(char16_t c) noexcept { return c <= u' '; }

    void SkipBlanks() noexcept
    {
        while (!FText.empty() && IsBlank(FText.front()))
            FText.remove_prefix(1);
    }

    bool Skip(std::u16string_view word) noexcept
    {
        if (!FText.starts_with(word))
            return false;
        FText.remove_prefix(word.size());
        return true;
    }

    TXBoolOp ReadBoolOp() noexcept
    {
        if (Skip(u"and "))
            return Skip(u"not ") ? boNot : boAnd;
        if (Skip(u"or "))
            return boOr;
        return Skip(u"not ") ? boNot : boAnd;
    }

    static bool EndsOperand(char16_t c) noexcept
    {
        return IsBlank(c) || c == u'!' || c == u'<' || c == u'=' || c == u'>';
    }

    void ReadOperand(String& value, bool& isLiteral, bool& isAttribute)
    {
        TPathScanner scanner;
        std::size_t length = 0;
        while (length < FText.size() && !(scanner.IsOutside(FText[length]) && EndsOperand(FText[length])))
            ++length;
        std::u16string_view operand = TrimView(FText.substr(0, length));
        FText.remove_prefix(length);
        if (operand.starts_with(u'"') || operand.starts_with(u'\'')) {
            isLiteral = true;
            operand.remove_prefix(1);
            if (operand.ends_with(u'"') || operand.ends_with(u'\''))
                operand.remove_suffix(1);
        } else if (operand.starts_with(u'@')) {
            isAttribute = true;
            operand.remove_prefix(1);
        }
        value = String(operand);
    }

    /// False where no operator stands.
    bool ReadOperator(TXConditionType& type) noexcept
    {
        if (Skip(u"!")) {
            type = ctNotEQ;
            FText.remove_prefix(FText.empty() ? 0 : 1); // "=", whatever it is
            return true;
        }
        if (Skip(u"=")) {
            type = ctEQ;
            return true;
        }
        if (Skip(u"<")) {
            type = Skip(u"=") ? ctLessEQ : ctLess;
            return true;
        }
        if (Skip(u">")) {
            type = Skip(u"=") ? ctAboveEQ : ctLess;
            return true;
        }
        return false;
    }

    std::u16string_view FText;
};

/// A predicate that is a place alone.
bool ReadIndex(std::u16string_view s, std::int32_t& index) noexcept
{
    if (SameText(s, u"last()")) {
        index = -1;
        return true;
    }
    return IsAsciiDigit(s.front()) && TryStrToInt(s, index);
}

}

TXPathProcessor::TXPathProcessor(std::u16string_view path)
{
    Root = path.starts_with(u'/');
    if (Root)
        path.remove_prefix(1);
    if (path.starts_with(u"./"))
        path.remove_prefix(2);
    while (!path.empty()) {
        TXPathNode& step = Nodes[Nodes.Add({})];
        step.Processor = this;
        ExtractPathPart(path, step);
    }
    for (std::int32_t i = 1; i < Nodes.Length(); ++i)
        Nodes[i - 1].Next = &Nodes[i];
}

void TXPathProcessor::ExtractPathPart(std::u16string_view& p, TXPathNode& PN)
{
    PN.All = p.starts_with(u'/');
    if (PN.All)
        p.remove_prefix(1);
    const TStepExtent extent = MeasureStep(p);
    const std::u16string_view step = p.substr(0, extent.Length);
    SetKind(PN, step.substr(0, extent.Bracket));
    if (extent.Bracket < extent.Length) {
        std::u16string_view predicate = step.substr(extent.Bracket + 1);
        if (predicate.ends_with(u']'))
            predicate.remove_suffix(1);
        ParseConditions(predicate, PN);
    }
    p.remove_prefix(std::min(p.size(), extent.Length + 1)); // the "/" too
}

void TXPathProcessor::ParseConditions(std::u16string_view s, TXPathNode& PN)
{
    if (s.empty())
        return;
    TXCondition condition;
    if (ReadIndex(s, condition.index)) {
        condition.ctype = ctIndex;
        PN.Conditions.Add(condition);
        return;
    }
    TConditionReader reader(s);
    while (!reader.AtEnd())
        PN.Conditions.Add(reader.Read());
}

}
