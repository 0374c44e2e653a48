// Walking a tree along a compiled path.
// SPDX-License-Identifier: MIT
#include <hearth/markup/xpath.h>

#include <hearth/markup/html_error.h>
#include <hearth/markup/node.h>
#include <hearth/runtime/text_format.h>
#include <hearth/runtime/text_number.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

namespace ht {

namespace {

/// What a walk is for: all nodes, the first one, or the first text that is not empty.
enum TXPathAim : std::uint8_t { xaNodes, xaFirst, xaValue };

/// How many walks are made along one path: of a predicate one for each candidate.
enum TXPathStarts : std::uint8_t { xsOnce, xsOften };

/// A part of the results, from `First` up to `End`.
struct TResultRange {
    std::int32_t First = 0;
    std::int32_t End = 0;

    bool IsEmpty() const noexcept { return First == End; }
};

bool MentionsCurrent(std::u16string_view text)
{
    constexpr std::u16string_view kCurrent = u"current";
    for (std::size_t i = 0; i + kCurrent.size() <= text.size(); ++i) {
        if (SameText(text.substr(i, kCurrent.size()), kCurrent))
            return true;
    }
    return false;
}

bool MentionsCurrent(const TXPathNode& step)
{
    if (step.Kind == xkCurrent)
        return true;
    for (const TXCondition& condition : step.Conditions) {
        if (MentionsCurrent(condition.left) || MentionsCurrent(condition.right))
            return true;
    }
    return false;
}

bool IsTagged(const THtNode& node)
{
    return !node.Tag().IsEmpty();
}

/// Where a candidate stands among the children of its parent, as far as somebody asked.
struct TPlaceAmongTagged {
    std::int32_t Index = 0;
    std::optional<const THtNode*> Last;
};

class TQuestion;

/// Walks along the steps of one path. Depth of the tree costs no stack. What a step found below a node is
/// remembered wherever the walk could come by again, so that a path whose ways part and meet at every level
/// costs one look at each node a step. Serves one question, during which nobody changes the tree.
class TXPathWalker {
public:
    TXPathWalker(TQuestion& question, const TXPathNode* firstStep, TXPathAim aim, TXPathStarts starts);

    /// What the path finds from `start`.
    TResultRange Run(THtNode& start, THtNode* current);

    const TArray<THtNode*>& FoundNodes() const noexcept { return FNodes; }
    String FoundValue(TResultRange range) const { return range.IsEmpty() ? String() : FValues[range.First]; }

private:
    /// A step and what its memory needs to know.
    struct TStep {
        const TXPathNode* Node;
        bool Remembers; // the walk may come to the same node twice with this step
        bool UsesCurrent; // here or further on
    };
    struct TFrame {
        std::int32_t Step;
        THtNode* Node;
        std::int32_t Child; // the next one to look at
        std::int32_t FirstResult;
        THtNode* Below; // to be searched for the same step, or null
        TPlaceAmongTagged Place;
    };
    struct TVisit {
        std::int32_t Step;
        const THtNode* Node;
        const THtNode* Current;
        bool operator==(const TVisit&) const = default;
    };
    struct TVisitHash {
        std::size_t operator()(const TVisit& visit) const noexcept
        {
            const std::hash<const void*> hash;
            return hash(visit.Node) * 31 + hash(visit.Current) * 7 + static_cast<std::size_t>(visit.Step);
        }
    };

    std::int32_t ResultCount() const noexcept { return FAim == xaValue ? FValues.Length() : FNodes.Length(); }
    bool IsDone() const noexcept { return FAim != xaNodes && ResultCount() > FBegin; }
    TVisit VisitOf(std::int32_t step, const THtNode* node) const
    {
        return {step, node, FSteps[step].UsesCurrent ? FCurrent : nullptr};
    }
    void Enter(std::int32_t step, THtNode& node);
    void EnterNext(std::int32_t step, THtNode& node);
    void Advance();
    void AdvanceAside(const TXPathNode& step);
    void AdvanceToChild(const TXPathNode& step);
    bool Matches(const TXPathNode& step, THtNode& child);
    void Leave();
    void AddAttribute(const TXPathNode& step, THtNode& node);
    void AddNode(THtNode& node);
    void AddValue(const String& value);
    void Repeat(TResultRange range);
    void RequireRoom(std::int32_t added) const;

    TQuestion& FQuestion;
    TXPathAim FAim;
    TArray<TStep> FSteps;
    TArray<TFrame> FFrames;
    TArray<THtNode*> FNodes;
    TArray<String> FValues;
    std::unordered_map<TVisit, TResultRange, TVisitHash> FMemory;
    THtNode* FCurrent = nullptr;
    std::int32_t FBegin = 0; // results of earlier runs
};

/// One question to a tree: a walk and the walks of its predicates.
class TQuestion {
public:
    explicit TQuestion(const THtLimits& limits)
        : FLimits(limits)
    {
    }

    /// The conditions of a step on a candidate; `place` may be null.
    bool Holds(const TXPathNode& step, THtNode& node, THtNode* current, TPlaceAmongTagged* place);
    const THtLimits& Limits() const noexcept { return FLimits; }

private:
    /// A path in a predicate, walked from each candidate.
    struct TOperandPath {
        TOperandPath(TQuestion& question, std::u16string_view text, TXPathAim aim)
            : Processor(text)
            , Walker(question, Processor.Nodes.IsEmpty() ? nullptr : &Processor.Nodes[0], aim, xsOften)
        {
        }
        TXPathProcessor Processor;
        TXPathWalker Walker;
    };

    bool Holds(const TXCondition& condition, THtNode& node, THtNode* current, TPlaceAmongTagged* place);
    bool Exists(const TXCondition& condition, THtNode& node);
    String Left(const TXCondition& condition, THtNode& node, THtNode* current);
    String Right(const TXCondition& condition, THtNode& node, THtNode* current);
    String ValueOf(const String& path, THtNode& node, THtNode* current);
    TOperandPath& PathOf(const String& operand, TXPathAim aim);

    /// Predicates in predicates recurse; this counts them.
    class TDepth {
    public:
        explicit TDepth(TQuestion& question);
        TDepth(const TDepth&) = delete;
        TDepth& operator=(const TDepth&) = delete;
        ~TDepth() { --FQuestion.FDepth; }

    private:
        TQuestion& FQuestion;
    };

    THtLimits FLimits;
    std::int32_t FDepth = 0;
    /// By the operand's place in its condition.
    std::unordered_map<const String*, std::unique_ptr<TOperandPath>> FPaths;
};

// --- the walk

TXPathWalker::TXPathWalker(
    TQuestion& question, const TXPathNode* firstStep, TXPathAim aim, TXPathStarts starts)
    : FQuestion(question)
    , FAim(aim)
{
    bool meets = false; // ways from different starts, or from nodes found before, may meet
    for (const TXPathNode* step = firstStep; step; step = step->Next) {
        const bool spreads = step->All || step->Kind == xkParent || step->Kind == xkCurrent;
        FSteps.Add({step, meets || (starts == xsOften && (spreads || step->Processor->Root)), false});
        meets = meets || spreads || FSteps.Last().Remembers;
    }
    bool uses = false;
    for (std::int32_t i = FSteps.Length() - 1; i >= 0; --i)
        FSteps[i].UsesCurrent = uses = uses || MentionsCurrent(*FSteps[i].Node);
}

TResultRange TXPathWalker::Run(THtNode& start, THtNode* current)
{
    FCurrent = current;
    FBegin = ResultCount();
    if (!FSteps.IsEmpty())
        Enter(0, start);
    while (!FFrames.IsEmpty() && !IsDone())
        Advance();
    while (!FFrames.IsEmpty())
        Leave();
    return {FBegin, ResultCount()};
}

void TXPathWalker::Enter(std::int32_t step, THtNode& node)
{
    const TStep& entered = FSteps[step];
    if (entered.Node->Kind == xkAttr)
        return AddAttribute(*entered.Node, node);
    if (entered.Remembers) {
        const auto seen = FMemory.find(VisitOf(step, &node));
        if (seen != FMemory.end())
            return Repeat(seen->second);
    }
    FFrames.Add({step, &node, 0, ResultCount(), nullptr, {}});
}

void TXPathWalker::EnterNext(std::int32_t step, THtNode& node)
{
    if (FSteps[step].Node->Next)
        Enter(step + 1, node);
    else
        AddNode(node);
}

void TXPathWalker::Advance()
{
    const TXPathNode& step = *FSteps[FFrames.Last().Step].Node;
    if (step.Kind == xkParent || step.Kind == xkCurrent)
        AdvanceAside(step);
    else
        AdvanceToChild(step);
}

/// To the one node that the step names.
void TXPathWalker::AdvanceAside(const TXPathNode& step)
{
    TFrame& frame = FFrames.Last();
    THtNode* target = step.Kind == xkParent ? frame.Node->Parent() : FCurrent;
    if (!target || frame.Child++ > 0)
        return Leave();
    EnterNext(frame.Step, *target);
}

void TXPathWalker::AdvanceToChild(const TXPathNode& step)
{
    TFrame& frame = FFrames.Last();
    if (THtNode* below = std::exchange(frame.Below, nullptr))
        return Enter(frame.Step, *below);
    if (frame.Child == frame.Node->Count())
        return Leave();
    THtNode& child = *frame.Node->GetNode(frame.Child++);
    if (step.All && child.Count() > 0)
        frame.Below = &child;
    const bool matches = Matches(step, child);
    frame.Place.Index += IsTagged(child) ? 1 : 0;
    if (matches)
        EnterNext(frame.Step, child);
}

bool TXPathWalker::Matches(const TXPathNode& step, THtNode& child)
{
    if (step.Kind != xkAsterisk && !child.HasTag({step.Tag, step.TagHash, 0}))
        return false;
    return step.Conditions.IsEmpty() || FQuestion.Holds(step, child, FCurrent, &FFrames.Last().Place);
}

void TXPathWalker::Leave()
{
    const TFrame& frame = FFrames.Last();
    if (FSteps[frame.Step].Remembers)
        FMemory.emplace(VisitOf(frame.Step, frame.Node), TResultRange{frame.FirstResult, ResultCount()});
    FFrames.Delete(FFrames.Length() - 1);
}

void TXPathWalker::AddAttribute(const TXPathNode& step, THtNode& node)
{
    if (FAim == xaValue)
        AddValue(node.GetAttribute(step.Tag));
    else if (node.HasAttribute(step.Tag))
        AddNode(node);
}

void TXPathWalker::AddNode(THtNode& node)
{
    if (FAim == xaValue)
        return AddValue(node.TextContent());
    RequireRoom(1);
    FNodes.Add(&node);
}

void TXPathWalker::AddValue(const String& value)
{
    if (!value.IsEmpty())
        FValues.Add(value);
}

void TXPathWalker::Repeat(TResultRange range)
{
    if (FAim == xaValue)
        return AddValue(FoundValue(range));
    RequireRoom(range.End - range.First);
    for (std::int32_t i = range.First; i < range.End; ++i)
        FNodes.Add(FNodes[i]);
}

void TXPathWalker::RequireRoom(std::int32_t added) const
{
    const std::int32_t limit = FQuestion.Limits().XPathResults;
    if (limit > 0 && added > limit - (FNodes.Length() - FBegin))
        throw EHtmlParserException(Format(u"XPath finds more than %d nodes", {limit}));
}

// --- conditions

bool TQuestion::Holds(const TXPathNode& step, THtNode& node, THtNode* current, TPlaceAmongTagged* place)
{
    bool result = true;
    for (const TXCondition& condition : step.Conditions) {
        const bool holds = Holds(condition, node, current, place);
        if (condition.Op == boOr)
            result = result || holds;
        else
            result = result && holds == (condition.Op == boAnd);
    }
    return result;
}

bool IsAtIndex(const THtNode& node, std::int32_t index, TPlaceAmongTagged* place)
{
    if (!node.Parent())
        return false;
    if (index >= 0)
        return index == (place ? place->Index : node.ChildIndex());
    if (!place)
        return &node == node.Parent()->LastChildTag();
    if (!place->Last)
        place->Last = node.Parent()->LastChildTag();
    return &node == *place->Last;
}

/// Numbers compare only when both sides are whole.
bool Compare(TXConditionType type, const String& left, const String& right)
{
    if (type == ctEQ || type == ctNotEQ)
        return (left == right) == (type == ctEQ);
    std::int64_t a = 0;
    std::int64_t b = 0;
    if (!TryStrToInt64(left, a) || !TryStrToInt64(right, b))
        return false;
    switch (type) {
    case ctLess:
        return a < b;
    case ctLessEQ:
        return a <= b;
    case ctAbove:
        return a > b;
    default:
        return a >= b;
    }
}

bool TQuestion::Holds(const TXCondition& condition, THtNode& node, THtNode* current, TPlaceAmongTagged* place)
{
    if (condition.ctype == ctIndex)
        return IsAtIndex(node, condition.index, place);
    if (!condition.HasRight())
        return condition.leftstr ? !condition.left.IsEmpty() : Exists(condition, node);
    return Compare(condition.ctype, Left(condition, node, current), Right(condition, node, current));
}

bool TQuestion::Exists(const TXCondition& condition, THtNode& node)
{
    if (condition.leftattr)
        return node.HasAttribute(condition.left);
    if (condition.left == u"text()"_s)
        return !node.TextContent().IsEmpty();
    const TDepth depth(*this);
    return !PathOf(condition.left, xaFirst).Walker.Run(node, &node).IsEmpty();
}

String TQuestion::Left(const TXCondition& condition, THtNode& node, THtNode* current)
{
    if (condition.leftstr)
        return condition.left;
    if (condition.leftattr)
        return node.GetAttribute(condition.left);
    if (condition.left == u"text()"_s)
        return node.TextContent();
    return ValueOf(condition.left, node, current);
}

String TQuestion::Right(const TXCondition& condition, THtNode& node, THtNode* current)
{
    if (condition.rightstr)
        return condition.right;
    if (condition.rightattr)
        return node.GetAttribute(condition.right);
    return ValueOf(condition.right, node, current);
}

String TQuestion::ValueOf(const String& path, THtNode& node, THtNode* current)
{
    const TDepth depth(*this);
    TOperandPath& operand = PathOf(path, xaValue);
    THtNode& start = operand.Processor.Root ? *node.Root() : node;
    return operand.Walker.FoundValue(operand.Walker.Run(start, current));
}

TQuestion::TOperandPath& TQuestion::PathOf(const String& operand, TXPathAim aim)
{
    std::unique_ptr<TOperandPath>& path = FPaths[&operand];
    if (!path)
        path = std::make_unique<TOperandPath>(*this, operand, aim);
    return *path;
}

TQuestion::TDepth::TDepth(TQuestion& question)
    : FQuestion(question)
{
    const std::int32_t allowed = question.FLimits.XPathPredicateDepth;
    const std::int32_t most = TXPathProcessor::kMaxPredicateDepth;
    const std::int32_t limit = allowed > 0 ? std::min(allowed, most) : most;
    if (question.FDepth >= limit)
        throw EHtmlParserException(Format(u"XPath predicates are nested more than %d deep", {limit}));
    ++question.FDepth;
}

/// The result set that a query gives away.
class TResultSet final : public IHtNodeList {
public:
    THtNodeList& List() noexcept override { return FList; }

private:
    THtNodeList FList;
};

}

IHtNodeList::~IHtNodeList() = default;

std::shared_ptr<IHtNodeList> THtNode::XPath(std::u16string_view path, bool FirstOnly, THtNode* Current)
{
    TXPathProcessor processor(path);
    processor.Current = Current ? Current : this;
    auto result = std::make_shared<TResultSet>();
    if (!processor.Nodes.IsEmpty())
        InternalXPath(processor.Nodes[0], &result->List(), FirstOnly);
    return result;
}

void THtNode::CallXPath(std::u16string_view path, const THtNodeProcRef& Proc)
{
    TXPathProcessor processor(path);
    processor.Current = this;
    if (!processor.Nodes.IsEmpty())
        InternalXPathRef(processor.Nodes[0], Proc);
}

String THtNode::XPathValue(std::u16string_view path, THtNode* Current)
{
    TXPathProcessor processor(path);
    processor.Current = Current ? Current : this;
    THtNode& start = processor.Root ? *Root() : *this;
    if (!processor.Nodes.IsEmpty())
        start.InternalXPath(processor.Nodes[0], nullptr, true);
    return processor.Value;
}

bool THtNode::EvaluateCondition(const TXPathNode& PathNode)
{
    TQuestion question(PathNode.Processor->Limits);
    return question.Holds(PathNode, *this, PathNode.Processor->Current, nullptr);
}

void THtNode::InternalXPath(const TXPathNode& PathNode, THtNodeList* Nodes, bool FirstOnly)
{
    TXPathProcessor& processor = *PathNode.Processor;
    TQuestion question(processor.Limits);
    TXPathWalker walker(question, &PathNode, !Nodes ? xaValue : FirstOnly ? xaFirst : xaNodes, xsOnce);
    const TResultRange found = walker.Run(*this, processor.Current);
    if (!Nodes)
        processor.Value = walker.FoundValue(found);
    else
        Nodes->InsertRange(Nodes->Count(), walker.FoundNodes());
}

void THtNode::InternalXPathRef(const TXPathNode& PathNode, const THtNodeProcRef& Proc)
{
    THtNodeList found;
    InternalXPath(PathNode, &found, false);
    bool stop = false;
    for (std::int32_t i = 0; i < found.Count() && !stop; ++i)
        Proc(*found[i], stop);
}

}
