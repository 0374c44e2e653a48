// Attributes, moves and numbering of HTML nodes.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_node.h>

#include <hearth/markup/narrow_p.h>
#include <hearth/runtime/encoding.h>
#include <hearth/runtime/exceptions.h>

#include <vector>

namespace ht {

namespace {

String Redecoded(const String& text, THtmlEncoding encoding, std::uint32_t codePage)
{
    return text.IsEmpty()    ? text
        : encoding == heUTF8 ? String::FromUtf8(NarrowText(text))
                             : DecodeBytes(NarrowText(text), codePage);
}

TThemeColorProc& ThemeColorSlot()
{
    static TThemeColorProc slot;
    return slot;
}

}

THtmlNode::THtmlNode(const THtTagName& ATag)
{
    SetTag(ATag);
    if (!ATag.IsEmpty())
        TagType = htIdent;
}

void THtmlNode::SetStyleClass(const String& Value)
{
    if (!Value.IsEmpty())
        SetAttribute(u"class"_s, Value);
    else if (FAttributes)
        FAttributes->ClearAttr(u"class");
}

void THtmlNode::SetSelfStyle(const String& Value)
{
    SetAttribute(u"style"_s, Value);
}

void THtmlNode::SetId(const String& Value)
{
    SetAttribute(u"id"_s, Value);
}

void THtmlNode::ToggleClass(const String& CSSClass)
{
    if (HasClass(CSSClass))
        RemoveClass(CSSClass);
    else
        AddClass(CSSClass);
}

void THtmlNode::ParseAttributes(THtmlParser& HP)
{
    if (HP.Attributes())
        ReplaceAttributes(HP.TakeAttributes());
}

void THtmlNode::ParseAttributes(const String& s)
{
    THtmlParser parser(Concat({u"<x ", s, u"/>"}));
    if (parser.NextItem())
        ParseAttributes(parser);
}

void THtmlNode::ChangeEncoding(THtmlEncoding AEncoding, std::uint32_t ACodePage)
{
    if (AEncoding != heUTF8 && (AEncoding != heANSI || !IsKnownCodePage(ACodePage)))
        return;
    for (THtNode* node = this; node; node = node->NextNodeIn(this)) {
        auto& htmlNode = static_cast<THtmlNode&>(*node);
        htmlNode.FContent = Redecoded(htmlNode.FContent, AEncoding, ACodePage);
        THtAttributes* attributes = node->Attributes();
        for (std::int32_t i = 0; attributes && i < attributes->Count(); ++i)
            attributes->SetValue(i, Redecoded(attributes->GetValue(i), AEncoding, ACodePage));
    }
}

void THtmlNode::MoveChildrentoParent(bool ABefore)
{
    if (!FParent)
        throw Exception(u"Parent node not found"_s);
    if (Count() == 0)
        return;
    const auto children = Children();
    for (THtNode* child : children)
        child->SetParent(FParent);
    FParent->GetNodes().InsertRange(NodeIndex() + (ABefore ? 0 : 1), children);
    FNodes->ReleaseAll();
}

void THtmlNode::MoveChildrento(THtmlNode* E, std::int32_t Index)
{
    if (!E || E == this || Count() == 0)
        return;
    const bool ownChild = E->FParent == this;
    // E may be a child, which then stays, but not lie deeper: the moved part would hold itself.
    if (!ownChild && E->HasAsParent(this))
        throw Exception(u"A node cannot be moved into its own subtree"_s);
    if (Index < -1 || Index > E->Count())
        RaiseRangeError();
    std::vector<THtNode*> moved;
    for (THtNode* child : Children()) {
        if (child != E)
            moved.push_back(child);
    }
    FNodes->ReleaseAll();
    if (ownChild)
        FNodes->Add(E);
    for (THtNode* child : moved)
        child->SetParent(E);
    E->GetNodes().InsertRange(Index < 0 ? E->Count() : Index, moved);
}

void THtmlNode::MoveNode(THtmlNode* OldNode, THtmlNode* NewNode)
{
    const std::int32_t from = FNodes ? FNodes->IndexOf(OldNode) : -1;
    const std::int32_t to = FNodes ? FNodes->IndexOf(NewNode) : -1;
    if (from < 0 || to < 0)
        throw Exception(u"Child node not found"_s);
    FNodes->Move(from, to);
}

THtmlNode* THtmlNode::FindNode(std::u16string_view NodeName) const noexcept
{
    return static_cast<THtmlNode*>(THtNode::FindNode(NodeName));
}

THtmlNode* THtmlNode::GetNode(std::int32_t index) const
{
    return static_cast<THtmlNode*>(THtNode::GetNode(index));
}

std::int32_t THtmlNode::AbsoluteTagIndex() const noexcept
{
    std::int32_t index = 0;
    for (const THtNode* node = Root(); node && node != this; node = node->NextNode())
        index += node->Tag().IsEmpty() ? 0 : 1;
    return index;
}

void THtmlNode::EnumerateElements()
{
    std::int32_t number = 0;
    for (THtNode* node = this; node; node = node->NextNodeIn(this)) {
        if (node->Tag().IsEmpty() || node->TagType == htComment || node->TagType == htDirective)
            continue;
        node->SetAttrI(u"_id"_s, number++);
        if (SameText(node->Tag(), u"datapacket") && node->GetAttribute(u"id").IsEmpty())
            node->SetAttr(u"id"_s, node->GetAttribute(u"_id"));
    }
}

void THtmlNode::SetThemeColorPrc(TThemeColorProc Proc)
{
    ThemeColorSlot() = std::move(Proc);
}

const TThemeColorProc& THtmlNode::ThemeColorPrc()
{
    return ThemeColorSlot();
}

}
