// The rules that close elements nobody closed, reopen formatting, and put things out of tables.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_node.h>

#include <algorithm>
#include <utility>

namespace ht {

// --- Start tags: which open element do they close?

/// The node whose parent is to go on with the item, or null to open the element here. `cell` is set instead
/// when the element belongs into the last cell of this row.
THtmlNode* THtmlNode::FindFloat(THtmlParser& HP, THtmlNode*& cell)
{
    const TTagId tag = HP.Tag.Id;
    if (tag == tags::kTd)
        return FloatUpTo({tags::kTr}, HP.Root);
    if (FTagId != tags::kTr)
        return CheckTagOrder(HP.Tag, HP.Root);
    if (tag == tags::kTr)
        return FloatUpOver(tags::kTr, HP.Root, tcThroughTables);
    if (!IsTagIn(tag, tgCellContent))
        return CheckTagOrder(HP.Tag, HP.Root);
    cell = LastCell(HP);
    return nullptr;
}

/// The last cell of this row. A row may hold a million things that are none and be asked for each of them, so
/// only what came since the last time is looked at.
THtmlNode* THtmlNode::LastCell(THtmlParser& HP) const
{
    THtmlParser::TRowSeen& seen = HP.RowsSeen[this];
    const auto added = Children().subspan(static_cast<std::size_t>(std::min(seen.Count, Count())));
    const auto found = std::find_if(added.rbegin(), added.rend(),
        [](const THtNode* node) { return node->TagId() == tags::kTd || node->TagId() == tags::kTh; });
    if (found != added.rend())
        seen.Cell = static_cast<THtmlNode*>(*found);
    seen.Count = Count();
    return seen.Cell;
}

/// Closes everything below the nearest element with one of the tags: the child on the way to it. Null when
/// there is none, or when this node itself is one.
THtmlNode* THtmlNode::FloatUpTo(std::initializer_list<TTagId> tagIds, const THtmlNode* root)
{
    THtmlNode* below = nullptr;
    for (THtmlNode* node = this; node && node != root; node = node->GetParent()) {
        if (node->FTagId != 0 && std::find(tagIds.begin(), tagIds.end(), node->FTagId) != tagIds.end())
            return below;
        below = node;
    }
    return nullptr;
}

/// Closes the nearest element with the tag too. Unless it may go through tables, parts of them stop the walk.
THtmlNode* THtmlNode::FloatUpOver(TTagId tagId, const THtmlNode* root, TTableCrossing crossing)
{
    for (THtmlNode* node = this; node && node != root; node = node->GetParent()) {
        if (crossing == tcStopsAtTables && IsTagIn(node->FTagId, tgStopsFloat))
            return nullptr;
        if (node->FTagId == tagId)
            return node;
    }
    return nullptr;
}

THtmlNode* THtmlNode::CheckTagOrder(const THtTagName& ATag, const THtmlNode* Root)
{
    if (FTagId == tags::kTr && !IsTagIn(ATag.Id, tgRowContent))
        return FloatUpOver(tags::kTable, Root, tcThroughTables);
    if (ATag.Name.View().starts_with(u't'))
        return CheckTableOrder(ATag, Root);
    switch (ATag.Id) {
    case tags::kLi:
        return FloatUpTo({tags::kUl, tags::kOl}, Root);
    case tags::kDt:
        return FloatUpTo({tags::kDl}, Root);
    case tags::kDd: {
        // A list's own entries become children of it; closing an outer entry would break nested lists.
        if (FTagId == tags::kDl)
            return nullptr;
        THtmlNode* target = FloatUpTo({tags::kDl}, Root);
        return target ? target : FloatUpOver(tags::kDd, Root, tcStopsAtTables);
    }
    case tags::kBody:
        return FloatUpOver(tags::kHead, Root, tcStopsAtTables);
    case tags::kA:
        return FloatUpOver(tags::kA, Root, tcStopsAtTables);
    default:
        break;
    }
    if (FTagId == tags::kHead && !IsTagIn(ATag.Id, tgHeadContent))
        return FloatUpOver(tags::kHead, Root, tcStopsAtTables);
    return IsTagIn(ATag.Id, tgClosesParagraph) ? FloatUpOver(tags::kP, Root, tcStopsAtTables) : nullptr;
}

/// The rules for tags that begin with "t"; those that are no part of a table close nothing.
THtmlNode* THtmlNode::CheckTableOrder(const THtTagName& tag, const THtmlNode* root)
{
    switch (tag.Id) {
    case tags::kThead:
    case tags::kTbody:
        return FloatUpTo({tags::kTable}, root);
    case tags::kTr: {
        // A table takes rows itself; to close its own outer row would break nested tables.
        if (FTagId == tags::kTable)
            return nullptr;
        THtmlNode* target = FloatUpTo({tags::kThead, tags::kTbody, tags::kTfoot, tags::kTable}, root);
        const bool inSection = FTagId == tags::kThead || FTagId == tags::kTbody || FTagId == tags::kTfoot;
        return target || inSection ? target : FloatUpOver(tags::kTr, root, tcThroughTables);
    }
    case tags::kTd:
    case tags::kTh:
        return FloatUpTo({tags::kTr}, root);
    case tags::kTable:
        return FTagId == tags::kTable ? FloatUpOver(tags::kTable, root, tcThroughTables) : nullptr;
    default:
        return nullptr;
    }
}

// --- Formatting that a block closed over goes on behind it.

THtmlNode::TParseStep THtmlNode::Reopen(THtmlParser& HP, THtmlNode*& result)
{
    HP.RepeatCurrent = true;
    const std::int32_t last = HP.IncorrectStack.Length() - 1;
    const THtmlNode* closed = HP.IncorrectStack[last];
    HP.IncorrectStack.Delete(last);
    THtmlNode* child = NewElement(HP, closed->TagName(), closed->TagName());
    if (!child)
        return psNextItem;
    if (closed->FAttributes) {
        child->ReplaceAttributes(std::make_unique<THtAttributes>(closed->FAttributes->CaseSensitive));
        child->CopyAttributesFrom(*closed);
    }
    return ParseChild(HP, *child, result);
}

// --- End tags.

THtmlNode::TParseStep THtmlNode::CloseItem(THtmlParser& HP, THtmlNode*& result)
{
    if (HasTag(HP.Tag)) {
        FinishElement(HP);
        return psReturn;
    }
    auto& stack = HP.IncorrectStack;
    for (std::int32_t i = stack.Length(); i-- > 0;) {
        if (stack[i]->HasTag(HP.Tag))
            stack.Delete(i);
    }
    const std::int32_t count = stack.Length();
    THtmlNode* closed = FindClosed(HP);
    if (!closed) {
        stack.SetLength(count);
        return psNextItem;
    }
    AfterParse();
    result = closed;
    return psReturn;
}

/// The open element that an end tag closes from further inside, or null when the tag is to be ignored.
/// Formatting elements passed on the way are noted for reopening.
THtmlNode* THtmlNode::FindClosed(THtmlParser& HP)
{
    const TTagId tag = HP.Tag.Id;
    const bool stopsAtTable = tag == tags::kTr || tag == tags::kTd || tag == tags::kTh || tag == tags::kP;
    THtmlNode* node = this;
    for (; node && node != HP.Root; node = node->GetParent()) {
        const bool crossesScope = !IsTagIn(tag, tgTableScope) && IsTagIn(node->FTagId, tgTableScope);
        const bool stops = (stopsAtTable && node->FTagId == tags::kTable) || crossesScope
            || (tag == tags::kSpan && node->FTagId == tags::kDiv) || node->FTagId == tags::kBody
            || node->FTagId == tags::kHtml;
        if (stops)
            return nullptr;
        if (tag == tags::kTable) {
            for (const TTagId part : {tags::kTr, tags::kTbody}) {
                if (node->FTagId == part && node->FParent && node->FParent != HP.Root)
                    node = node->GetParent();
            }
        }
        if (node->HasTag(HP.Tag))
            return node;
        if (IsTagIn(node->FTagId, tgFormatting))
            HP.IncorrectStack.Add(node);
    }
    const bool closesRoot = node && HP.RootIsElement && node->HasTag(HP.Tag);
    return closesRoot ? node : nullptr;
}

/// This element was closed by its own end tag.
void THtmlNode::FinishElement(THtmlParser& HP)
{
    auto& stack = HP.IncorrectStack;
    for (std::int32_t i = stack.Length(); i-- > 0;) {
        if (stack[i]->HasAsParent(this))
            stack.Delete(i);
    }
    const TTagId outer = FParent ? GetParent()->FTagId : TTagId{0};
    if ((outer == tags::kTable || outer == tags::kTr) && this != HP.Root)
        MoveBehindTable(HP);
    AfterParse();
}

/// Content that stands in a table or a row outside its cells is put behind the table.
void THtmlNode::MoveBehindTable(THtmlParser& HP)
{
    THtmlNode* const parent = GetParent();
    if (!parent->FParent)
        return;
    const THtNode* table = nullptr;
    if (parent->FTagId == tags::kTable && !IsTagIn(FTagId, tgTablePart))
        table = parent;
    else if (parent->FTagId == tags::kTr && FTagId != tags::kTd && FTagId != tags::kTh)
        table = UpTo(u"table");
    if (!table || !IsWithinRoot(HP, table->Parent()))
        return;
    if (const auto seen = HP.RowsSeen.find(parent); seen != HP.RowsSeen.end())
        seen->second.Count = std::min(seen->second.Count, NodeIndex());
    std::unique_ptr<THtNode> self = parent->ExtractChild(this);
    table->Parent()->AddNode(std::move(self));
}

/// True for the nodes that a run may change: those of the text, and with a fragment no others.
bool THtmlNode::IsWithinRoot(const THtmlParser& HP, const THtNode* node)
{
    return node && (!HP.Root || node == HP.Root || node->HasAsParent(HP.Root));
}

}
