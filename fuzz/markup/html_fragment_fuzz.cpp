// A tree that changes: fragments are set and added, nodes moved and removed, as the bytes choose.
// SPDX-License-Identifier: MIT
#include "tree_check.h"

#include <hearth/runtime/exceptions.h>

#include <memory>

namespace {

using namespace ht::literals;

constexpr std::int32_t kMaxSteps = 64;
constexpr std::size_t kMaxPrinted = 1U << 20U;

/// One line of the input: a letter for the call, two that choose nodes or an index, and a text.
struct Step {
    char Call;
    std::uint8_t First;
    std::uint8_t Second;
    ht::String Text;
};

Step NextStep(std::string_view& rest)
{
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    const auto at = [line](std::size_t i) { return i < line.size() ? line[i] : '0'; };
    const auto number = [at](std::size_t i) { return static_cast<std::uint8_t>(at(i) - '0'); };
    return {at(0), number(1), number(2), ht::String::FromUtf8(line.size() > 3 ? line.substr(3) : "")};
}

/// The `index`-th node in document order, counted round and round.
ht::THtmlNode& NodeAt(ht::THtmlNode& root, std::uint8_t index)
{
    ht::THtNode* node = &root;
    for (std::uint8_t i = 0; i < index; ++i) {
        ht::THtNode* const next = node->NextNodeIn(&root);
        node = next ? next : &root;
    }
    return static_cast<ht::THtmlNode&>(*node);
}

/// Moves a node to the end of another one; what is refused stays with this function and is destroyed.
void Append(ht::THtmlNode& target, ht::THtmlNode& node)
{
    if (!node.Parent()) {
        std::unique_ptr<ht::THtNode> foreign = target.NodeClass().Create();
        target.AddNode(std::move(foreign));
        return;
    }
    if (target.HasAsParent(&node) || &target == &node)
        return;
    target.AddNode(node.Parent()->ExtractChild(&node));
}

/// Calls that do not read text; false for a letter that stands for none.
bool Move(const Step& step, ht::THtmlNode& node, ht::THtmlNode& other)
{
    switch (step.Call) {
    case 'c':
        node.MoveChildrento(&other, -1);
        return true;
    case 'C':
        node.MoveChildrento(&other, step.Text.Length() % 3);
        return true;
    case 'm':
        if (node.Parent())
            node.Parent()->MoveNode(&node, &other);
        return true;
    case 'p':
        if (node.Parent())
            node.MoveChildrentoParent(step.Second % 2 == 0);
        return true;
    case 'a':
        Append(node, other);
        return true;
    case 'd':
        node.DeleteChild(&other);
        return true;
    case 'D':
        node.DeleteAllChildren();
        return true;
    case 'x':
        node.Exchange(node.FirstChild(), &other);
        return true;
    case 'n':
        node.EnumerateElements();
        return true;
    default:
        return false;
    }
}

void Write(const Step& step, ht::THtmlNode& node)
{
    switch (step.Call) {
    case 'i':
        return node.SetInnerHTML(step.Text);
    case 'o':
        return node.SetOuterHTML(step.Text);
    case 'h':
        node.AddHTML(step.Text);
        return;
    case 't':
        return node.SetInnerText(step.Text);
    case 'r':
        return node.ParseAttributes(step.Text);
    case 's':
        return node.SetAttr(u"class"_s, step.Text);
    case 'e':
        return node.ChangeEncoding(ht::heUTF8, 0);
    default:
        return node.ToggleClass(step.Text);
    }
}

void Run(const Step& step, ht::THtmlNode& root)
{
    ht::THtmlNode& node = NodeAt(root, step.First);
    ht::THtmlNode& other = NodeAt(root, step.Second);
    const ht::String before = root.GetOuterHTML();
    try {
        if (!Move(step, node, other))
            Write(step, node);
    } catch (const ht::Exception&) {
        fuzz::Require(root.GetOuterHTML() == before, "a refused call changes nothing");
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    ht::THtmlNode root;
    root.Parse(
        u"<div><p>a<b>b</b></p><table><tbody><tr><td>c</td></tr></tbody></table></div><ul><li>d</ul>"_s);
    for (std::int32_t i = 0; i < kMaxSteps && !rest.empty(); ++i) {
        Run(NextStep(rest), root);
        fuzz::CheckTree(root);
        if (root.GetOuterHTML().size() > kMaxPrinted)
            return 0; // the rest would only be slow
    }
    fuzz::PrintAll(root);
    return 0;
}
