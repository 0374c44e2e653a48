// Tests of an element against one compound. None of them allocates for what people write.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/selector.h>

#include <hearth/foundation/text_words.h>
#include <hearth/styling/nodes/styled_node.h>

#include <algorithm>
#include <limits>
#include <tuple>

namespace ht {

namespace {

constexpr TCSSPseudo kPlaces{pcNthChild, pcNthOfType};
/// What TestPCClass takes on trust.
constexpr TCSSPseudo kTrustedPlaces{
    pcFirstChild, pcLastChild, pcNthChild, pcNthOfType, pcFirstOfType, pcLastOfType};

/// Compounds of more classes than that are looked up in order.
constexpr std::int32_t kFewClasses = 64;

bool IsAmong(const TCSSClassRec& name, const TClassesArray& classes) noexcept
{
    return std::any_of(
        classes.begin(), classes.end(), [&name](const TCSSClassRec& other) { return name == other; });
}

/// The same for very many classes.
bool AreAllAmong(const TClassesArray& names, const TClassesArray& classes)
{
    const auto before = [](const TCSSClassRec* a, const TCSSClassRec* b) {
        return std::tie(a->hash, a->s) < std::tie(b->hash, b->s);
    };
    TArray<const TCSSClassRec*> sorted;
    sorted.Reserve(classes.Length());
    for (const TCSSClassRec& name : classes)
        sorted.Add(&name);
    std::sort(sorted.begin(), sorted.end(), before);
    return std::all_of(names.begin(), names.end(), [&](const TCSSClassRec& name) {
        return std::binary_search(sorted.begin(), sorted.end(), &name, before);
    });
}

/// How many siblings in front of a node count, as far as `most` and one more.
template <class Counts> std::int32_t CountEarlier(const THtNode& node, std::int32_t most, Counts counts)
{
    std::int32_t count = 0;
    const THtNode* parent = node.Parent();
    for (const THtNode* sibling : parent ? parent->Children() : std::span<THtNode* const>()) {
        if (sibling == &node || count > most)
            break;
        count += counts(*sibling) ? 1 : 0;
    }
    return count;
}

/// True for `word` with a blank or an end on both sides.
bool HasWord(std::u16string_view text, std::u16string_view word) noexcept
{
    for (std::size_t at = 0; (at = text.find(word, at)) != text.npos; ++at) {
        const std::size_t end = at + word.size();
        if ((at == 0 || text[at - 1] == u' ') && (end == text.size() || text[end] == u' '))
            return true;
    }
    return false;
}

bool Holds(const TCSSCondition& condition, std::u16string_view text) noexcept
{
    const std::u16string_view value = condition.Value;
    switch (condition.Compare) {
    case acMatch:
        return value.empty() || text == value;
    case acStarts:
        return AnsiStartsWith(text, value);
    case acEnds:
        return AnsiEndsWith(text, value);
    case acContains:
        return text.find(value) != text.npos;
    case acWord:
        return HasWord(text, value);
    case acStarts2:
        return text.starts_with(value) && (text.size() == value.size() || text[value.size()] == u'-');
    case acNotEq:
        return text != value;
    }
    return false;
}

}

bool TCSSSelector::TestUniversal(const TStyledHTMLNode&, TCSSPseudo) const
{
    return true;
}

bool TCSSSelector::TestTag(const TStyledHTMLNode& E, TCSSPseudo) const
{
    return E.TagHash() == TagHash && E.Tag() == Tag;
}

bool TCSSSelector::TestID(const TStyledHTMLNode& E, TCSSPseudo) const
{
    return E.Attributes() && E.HasAttributeValue(u"id", ID);
}

bool TCSSSelector::TestCondition(const TStyledHTMLNode& E, TCSSPseudo) const
{
    return E.Attributes() && XTestCondition(E);
}

bool TCSSSelector::TestClass(const TStyledHTMLNode& E, TCSSPseudo) const
{
    return HasClassesOf(E);
}

bool TCSSSelector::TestTagClass(const TStyledHTMLNode& E, TCSSPseudo PS) const
{
    return TestTag(E, PS) && HasClassesOf(E);
}

bool TCSSSelector::TestPCCondition(const TStyledHTMLNode& E, TCSSPseudo PS) const
{
    return E.Attributes() && FitsPseudo(E, PS, {pcNthChild}) && XTestCondition(E);
}

bool TCSSSelector::TestPCClass(const TStyledHTMLNode& E, TCSSPseudo PS) const
{
    return Pseudo.IsSubsetOf(PS + kTrustedPlaces) && HasClassesOf(E)
        && (!Pseudo.Contains(pcNthChild) || HasPlace(E, pcNthChild));
}

bool TCSSSelector::TestAll(const TStyledHTMLNode& E, TCSSPseudo PS) const
{
    if (!Universal && !Tag.IsEmpty() && !TestTag(E, PS))
        return false;
    if (!ID.IsEmpty() && !TestID(E, PS))
        return false;
    if (!Classes.IsEmpty() && !HasClassesOf(E))
        return false;
    return FitsPseudo(E, PS, kPlaces) && (Condition.IsEmpty() || TestCondition(E, PS));
}

bool TCSSSelector::XTestCondition(const TStyledHTMLNode& E) const
{
    for (const TCSSCondition& condition : Conditions) {
        std::int32_t index = 0;
        const THtAttributes* attributes = E.Attributes();
        if (!attributes || !attributes->Find(condition.Name, index))
            return condition.Compare == acNotEq;
        if (!Holds(condition, attributes->GetValue(index)))
            return false;
    }
    return true;
}

bool TCSSSelector::HasClassesOf(const TStyledHTMLNode& E) const
{
    const TClassesArray& classes = E.ClassHashes();
    if (Classes.Length() > classes.Length())
        return false;
    if (Classes.Length() > kFewClasses)
        return AreAllAmong(Classes, classes);
    return std::all_of(Classes.begin(), Classes.end(),
        [&classes](const TCSSClassRec& name) { return IsAmong(name, classes); });
}

/// `places` are those that the test at hand looks at.
bool TCSSSelector::FitsPseudo(const TStyledHTMLNode& E, TCSSPseudo PS, TCSSPseudo places) const
{
    const TCSSPseudo asked = Pseudo * places;
    if (!asked.IsEmpty()) {
        const TCSSPseudoClass place = asked.Contains(pcNthChild) ? pcNthChild : pcNthOfType;
        // "odd" and "even" stand for all other pseudo-classes too.
        const bool isAlone = NthChild == kNthOdd || NthChild == kNthEven;
        return (isAlone || Pseudo.IsSubsetOf(PS + TCSSPseudo{place})) && HasPlace(E, place);
    }
    return Pseudo.IsSubsetOf(PS);
}

bool TCSSSelector::HasPlace(const TStyledHTMLNode& E, TCSSPseudoClass place) const
{
    const bool isParity = NthChild == kNthOdd || NthChild == kNthEven;
    if (!isParity && NthChild < 1)
        return false;
    const std::int32_t most = isParity ? std::numeric_limits<std::int32_t>::max() - 1 : NthChild - 1;
    const std::int32_t earlier = place == pcNthChild
        ? CountEarlier(E, most, [](const THtNode& node) { return !node.Tag().IsEmpty(); })
        : CountEarlier(E, most, [&E](const THtNode& node) { return node.Tag() == E.Tag(); });
    if (isParity)
        return (earlier % 2 == 0) == (NthChild == kNthOdd);
    return earlier == most;
}

}
