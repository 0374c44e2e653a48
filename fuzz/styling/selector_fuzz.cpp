// Any selector: what it prints reads back as the same, and it matches as the plain rules say.
// SPDX-License-Identifier: MIT
#include "../require.h"
#include "plain_selectors.h"

#include <hearth/styling/css/css_parser.h>

#include <memory>
#include <string_view>

namespace {

using namespace ht;

/// Looks of the plain walk; what costs more is not compared.
constexpr long kBudget = 20'000;

std::unique_ptr<TCSSSection> Read(const String& text)
{
    TCSSParser parser(Concat({text, u"{}"}));
    return parser.NextSection() ? std::move(parser.CurrentSection) : nullptr;
}

String Printed(const TCSSSection& section)
{
    String text;
    for (std::int32_t i = 0; i < section.Selectors->Count(); ++i)
        text += Concat({i == 0 ? u"" : u", ", section.Selectors->GetSelector(i)->AsString()});
    return text;
}

void ComparePrinted(const TCSSSection& section)
{
    const String text = Printed(section);
    const auto again = Read(text);
    const std::int32_t count = section.Selectors->Count();
    fuzz::Require(count == 0 || (again && again->Selectors->Count() == count), "as many selectors");
    for (std::int32_t i = 0; i < count; ++i) {
        fuzz::Require(
            plain::SameSelector(*section.Selectors->GetSelector(i), *again->Selectors->GetSelector(i)),
            "the same selector");
    }
    fuzz::Require(count == 0 || Printed(*again) == text, "the same text");
}

void CompareMatches(const THtNode& root, const TCSSSelector& selector)
{
    const TCSSStyleSheet sheet;
    for (const THtNode* node = &root; node; node = node->NextNodeIn(&root)) {
        const auto& element = static_cast<const TStyledHTMLNode&>(*node);
        for (const TCSSPseudo pseudo : {TCSSPseudo{}, TCSSPseudo{pcBefore}}) {
            plain::Selectors rules(kBudget);
            bool expected = false;
            try {
                expected = rules.TestElement(element, selector, pseudo);
            } catch (const plain::TooMuch&) {
                continue;
            }
            fuzz::Require(sheet.TestElement(element, selector, pseudo) == expected, "the same answer");
        }
    }
}

/// A tree in which much of what people write finds something.
const TStyledHTMLNode& Tree()
{
    static const std::unique_ptr<TStyledHTMLNode> tree = [] {
        auto root = std::make_unique<TStyledHTMLNode>();
        String html;
        for (int i = 0; i < 4; ++i) {
            html += u"<div id=a class='x y'><p class=x title=t>1<b>2</b>3<i class='z x'></i><!--4--><b id=b>5"
                    u"</b></p><ul><li>6<li class=y lang=de>7<li data-n='1 2'>8";
        }
        root->Parse(html);
        for (THtNode* node = root.get(); node; node = node->NextNodeIn(root.get())) {
            if (node->Tag() == u"b" || node->NodeIndex() == 2)
                static_cast<TStyledHTMLNode*>(node)->Style().CurrentPC = {pcHover, pcFirstChild};
        }
        return root;
    }();
    return *tree;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kLongest = 4096; // the tree is matched with each of the selectors
    if (size > kLongest)
        return 0;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const auto section = Read(String::FromUtf8(input));
    if (!section)
        return 0;
    ComparePrinted(*section);
    for (std::int32_t i = 0; i < section->Selectors->Count(); ++i)
        CompareMatches(Tree(), *section->Selectors->GetSelector(i));
    return 0;
}
