// Any path over a small tree: the walk agrees with the rules written down as plain recursion.
// SPDX-License-Identifier: MIT
#include "tree_check.h"

#include <hearth/markup/html_error.h>
#include <hearth/markup/html_node.h>
#include <hearth/markup/xpath.h>
#include <hearth/runtime/text_number.h>

#include <vector>

namespace {

using namespace ht;

/// Nodes that the plain recursion may look at; what costs more is not compared.
constexpr int kBudget = 20'000;

struct TooMuch { };

/// The rules without any memory of where the walk has been.
class Plain {
public:
    std::vector<THtNode*> Nodes(THtNode& start, std::u16string_view path, THtNode* current, bool firstOnly)
    {
        TXPathProcessor processor(path);
        std::vector<THtNode*> found;
        if (!processor.Nodes.IsEmpty())
            Walk(processor.Nodes[0], start, current, &found, nullptr, firstOnly);
        return found;
    }

    String Value(THtNode& start, std::u16string_view path, THtNode* current)
    {
        TXPathProcessor processor(path);
        String value;
        if (!processor.Nodes.IsEmpty())
            Walk(processor.Nodes[0], processor.Root ? *start.Root() : start, current, nullptr, &value, true);
        return value;
    }

private:
    static void Take(THtNode& node, std::vector<THtNode*>* found, String* value)
    {
        if (value)
            *value = node.TextContent();
        else
            found->push_back(&node);
    }

    void Walk(const TXPathNode& step, THtNode& node, THtNode* current, std::vector<THtNode*>* found,
        String* value, bool firstOnly)
    {
        if (++FSpent > kBudget)
            throw TooMuch();
        if (step.Kind == xkAttr) {
            if (value)
                *value = node.GetAttribute(step.Tag);
            else if (node.HasAttribute(step.Tag))
                found->push_back(&node);
            return;
        }
        if (step.Kind == xkParent || step.Kind == xkCurrent) {
            THtNode* target = step.Kind == xkParent ? node.Parent() : current;
            if (target && step.Next)
                Walk(*step.Next, *target, current, found, value, firstOnly);
            else if (target)
                Take(*target, found, value);
            return;
        }
        const auto done = [&] { return value ? !value->IsEmpty() : firstOnly && !found->empty(); };
        for (std::int32_t i = 0; i < node.Count() && !done(); ++i) {
            THtNode& child = *node.GetNode(i);
            const bool matches = step.Kind == xkAsterisk || child.Tag() == step.Tag;
            if (matches && Holds(step, child, current)) {
                if (step.Next)
                    Walk(*step.Next, child, current, found, value, firstOnly);
                else
                    Take(child, found, value);
            }
            if (step.All && !done())
                Walk(step, child, current, found, value, firstOnly);
        }
    }

    bool Holds(const TXPathNode& step, THtNode& node, THtNode* current)
    {
        bool result = true;
        for (const TXCondition& condition : step.Conditions) {
            const bool holds = Holds(condition, node, current);
            result = condition.Op == boOr ? result || holds
                : condition.Op == boNot   ? result && !holds
                                          : result && holds;
        }
        return result;
    }

    bool Holds(const TXCondition& condition, THtNode& node, THtNode* current)
    {
        if (++FSpent > kBudget)
            throw TooMuch();
        if (condition.ctype == ctIndex) {
            if (condition.index == -1)
                return node.Parent() && &node == node.Parent()->LastChildTag();
            return node.Parent() && node.ChildIndex() == condition.index;
        }
        if (condition.HasRight()) {
            const String left =
                Operand(condition.left, condition.leftstr, condition.leftattr, true, node, current);
            const String right =
                Operand(condition.right, condition.rightstr, condition.rightattr, false, node, current);
            return Compare(condition.ctype, left, right);
        }
        if (condition.leftstr)
            return !condition.left.IsEmpty();
        if (condition.leftattr)
            return node.HasAttribute(condition.left);
        if (condition.left == u"text()"_s)
            return !node.TextContent().IsEmpty();
        return !Nodes(node, condition.left, &node, true).empty();
    }

    String Operand(
        const String& text, bool isLiteral, bool isAttribute, bool isLeft, THtNode& node, THtNode* current)
    {
        if (isLiteral)
            return text;
        if (isAttribute)
            return node.GetAttribute(text);
        return isLeft && text == u"text()"_s ? node.TextContent() : Value(node, text, current);
    }

    static bool Compare(TXConditionType type, const String& left, const String& right)
    {
        if (type == ctEQ || type == ctNotEQ)
            return (left == right) == (type == ctEQ);
        std::int64_t a = 0;
        std::int64_t b = 0;
        if (!TryStrToInt64(left, a) || !TryStrToInt64(right, b))
            return false;
        return type == ctLess ? a < b : type == ctLessEQ ? a <= b : a >= b;
    }

    int FSpent = 0;
};

void Compare(THtNode& start, std::u16string_view path)
{
    Plain plain;
    const auto found = start.XPath(path);
    const auto expected = plain.Nodes(start, path, &start, false);
    fuzz::Require(std::vector<THtNode*>(found->begin(), found->end()) == expected, "the same nodes");
    const auto first = start.XPath(path, true);
    fuzz::Require(first->Count() == (expected.empty() ? 0 : 1), "the first alone");
    fuzz::Require(expected.empty() || first->List()[0] == expected[0], "the first is the first");
    fuzz::Require(start.XPathValue(path) == plain.Value(start, path, &start), "the same value");
}

}

/// The path is the first line, the page the rest.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    const String path = String::FromUtf8(input.substr(0, end));
    THtmlNode root;
    root.Parse(String::FromUtf8(input.substr(std::min(end + 1, input.size()))), true);
    try {
        Compare(root, path);
        if (THtNode* last = root.LastChildTag())
            Compare(*last, path);
    } catch (const TooMuch&) {
    } catch (const EHtmlParserException&) { // a limit
    }
    return 0;
}
