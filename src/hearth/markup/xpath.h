// The path language of the trees: a path compiled into steps with predicates.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/runtime/array.h>
#include <hearth/runtime/object.h>
#include <hearth/runtime/text.h>

#include <cstdint>
#include <string_view>

namespace ht {

class THtNode;
class TXPathProcessor;

/// What a step goes to: children by tag or by any tag, an attribute, the parent, the node given as current.
enum TXPathNodeKind : std::uint8_t { xkTag, xkAttr, xkAsterisk, xkParent, xkCurrent };

/// `ctAbove` is never read from a text: ">" alone compares as "<".
enum TXConditionType : std::uint8_t {
    ctEQ,
    ctNotEQ,
    ctLess,
    ctAbove,
    ctLessEQ,
    ctAboveEQ,
    ctIndex,
};

/// How a condition joins those before it; `boNot` is "and not".
enum TXBoolOp : std::uint8_t { boAnd, boOr, boNot };

/// One condition of a predicate: a comparison, a test that something exists, or a place.
struct TXCondition {
    String left;
    String right;
    bool leftstr = false; // a quoted literal
    bool rightstr = false;
    bool leftattr = false; // the name of an attribute
    bool rightattr = false;
    TXConditionType ctype = ctEQ;
    TXBoolOp Op = boAnd;
    std::int32_t index = 0; // for ctIndex, from 0; -1 is the last

    bool HasRight() const noexcept { return rightstr || rightattr || !right.IsEmpty(); }
};

/// One step of a path.
struct TXPathNode {
    TXPathNodeKind Kind = xkTag;
    bool All = false; // searches all descendants too
    String Tag;
    std::uint32_t TagHash = 0; // RSHash of the tag folded to lower case
    TArray<TXCondition> Conditions;
    TXPathNode* Next = nullptr; // null at the last step
    TXPathProcessor* Processor = nullptr; // the path it belongs to
};

/// A compiled path, for one query. The steps of a path are parted by "/", a second "/" makes a step search
/// all depths; a step is a tag (case counts), "*", "..", "current", "text()" or "@name", with at most one
/// predicate in brackets. Whatever the text is, it compiles; what makes no sense finds nothing.
///
/// xpath_parse.cpp compiles, xpath_match.cpp walks.
class HT_API TXPathProcessor : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TXPathProcessor", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Predicates nest no deeper than this, whatever the limits allow: each level costs stack.
    static constexpr std::int32_t kMaxPredicateDepth = 1024;

    explicit TXPathProcessor(std::u16string_view path);
    TXPathProcessor(const TXPathProcessor&) = delete;
    TXPathProcessor& operator=(const TXPathProcessor&) = delete;

    /// Reads the step at the start of `p` into `PN` and moves `p` to the next one.
    static void ExtractPathPart(std::u16string_view& p, TXPathNode& PN);
    /// Reads the text of a predicate, without its brackets.
    static void ParseConditions(std::u16string_view s, TXPathNode& PN);

    bool Root = false; // the path began with "/"
    String Value; // the result in value mode
    TArray<TXPathNode> Nodes;
    THtNode* Current = nullptr; // for the step "current"; not owned
    THtLimits Limits = HtLimits(); // XPathResults and XPathPredicateDepth
};

}
