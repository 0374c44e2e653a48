// Entry points of the parser, and the descent that turns items into nodes.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_node.h>

#include <hearth/runtime/exceptions.h>

namespace ht {

namespace {

/// What a text has for a tag.
constexpr THtTagName kNoTag;

THtTagName Name(TTagId id)
{
    const detail::StaticName& text = kKnownTags[id - 1].Text;
    return {String::OfStatic(text), RSHash(text.View()), id};
}

const THtTagName& CommentTag()
{
    static const THtTagName name(u"!"_s);
    return name;
}

const THtTagName& DirectiveTag()
{
    static const THtTagName name(u"?"_s);
    return name;
}

/// Apart, so that the way of every node stays short.
[[noreturn, gnu::noinline]] void RaiseWrongClass()
{
    throw EAssertionFailed(u"The class of an HTML element has to descend from THtmlNode"_s);
}

bool IsBlankTextItem(const THtmlParser& HP)
{
    return HP.TagType == htString && IsBlankText(HP.Value);
}

}

// --- Entry points.

void THtmlNode::Parse(const String& HTML, bool AIgnoreMetaEncoding)
{
    DeleteAllChildren();
    THtmlParser parser(HTML);
    parser.IgnoreMetaEncoding = AIgnoreMetaEncoding;
    parser.GlobalRoot = THtNode::Root();
    InternalParse(parser);
    if (!FParent && !NodebyName(u"body") && !NodebyName(u"html"))
        SetTag(Name(tags::kBody));
}

void THtmlNode::SetInnerHTML(const String& s)
{
    ParseFragment(s, false);
}

void THtmlNode::ParseFragment(const String& HTML, bool AIgnoreMetaEncoding)
{
    DeleteAllChildren();
    const std::u16string_view tag = FTagId == tags::kTable ? u"tbody" : u"div";
    THtmlNode& wrapper = AddWrapper();
    THtmlParser parser(Concat({u"<", tag, u">", HTML, u"</", tag, u">"}));
    parser.IgnoreMetaEncoding = AIgnoreMetaEncoding;
    SetScope(parser, wrapper);
    const auto* document = As<THtmlNode>(static_cast<const THtNode*>(parser.GlobalRoot));
    parser.SetCaseSensitive(document && !document->QuirksMode());
    if (parser.NextItem())
        wrapper.InternalParse(parser);
    Unwrap(wrapper);
}

void THtmlNode::SetOuterHTML(const String& s)
{
    DropNodes();
    ReplaceAttributes(nullptr);
    THtmlParser parser(s);
    SetScope(parser, *this);
    bool more = parser.NextItem();
    bool passedCustom = false;
    while (more && (parser.TagType == htCustom || (passedCustom && IsBlankTextItem(parser)))) {
        passedCustom = true;
        more = parser.NextItem();
    }
    SetTag(kNoTag);
    FContent = String();
    if (!more)
        return;
    if (parser.TagType != htIdent)
        FContent = parser.Value;
    parser.RootIsElement = true;
    parser.TagClosed |= IsTagIn(parser.Tag.Id, tgVoid);
    InternalParse(parser);
    if (TagType == htComment || TagType == htDirective)
        SetTag(TagType == htComment ? CommentTag() : DirectiveTag());
}

THtmlNode* THtmlNode::AddHTML(const String& HTML)
{
    THtmlNode& wrapper = AddWrapper();
    THtmlParser parser(HTML);
    SetScope(parser, wrapper);
    wrapper.InternalParse(parser);
    auto* first = static_cast<THtmlNode*>(wrapper.FirstChild());
    Unwrap(wrapper);
    return first;
}

/// A last child that fragments are parsed into. No repair leaves it, and its children then stand in its
/// place.
THtmlNode& THtmlNode::AddWrapper()
{
    return static_cast<THtmlNode&>(*AddChild(THtNodeClass::Of<THtmlNode>()));
}

void THtmlNode::SetScope(THtmlParser& parser, THtmlNode& limit)
{
    parser.Root = &limit;
    parser.GlobalRoot = limit.THtNode::Root();
}

void THtmlNode::Unwrap(THtmlNode& wrapper)
{
    wrapper.MoveChildrentoParent(true);
    DeleteChild(&wrapper);
}

String THtmlNode::HTMLtoText(const String& HTML)
{
    THtmlNode node;
    node.Parse(HTML);
    return node.GetInnerText();
}

void THtmlNode::SetInnerText(const String& Text)
{
    THtNode* first = FirstChild();
    if (first && first->TagType != htString)
        first = nullptr;
    for (std::int32_t i = Count(); i-- > (first ? 1 : 0);)
        FNodes->Delete(i);
    if (!first) {
        const THtNodeClass textClass = GetElementClass(kNoTag, nullptr);
        if (!textClass)
            return;
        first = AddChild(textClass);
        first->TagType = htString;
    }
    first->SetContent(Text);
}

// --- The descent. A frame of InternalParse is one open element; see the rules in html_node_repair.cpp.

/// A new last child for a tag (none: for text), or null where the tag's class says that it is to be dropped.
THtmlNode* THtmlNode::NewChild(THtmlParser& HP, const THtTagName& classTag)
{
    const THtNodeClass childClass = GetElementClass(classTag, HP.GlobalRoot);
    if (!childClass)
        return nullptr;
    if (!childClass.Info->InheritsFrom(THtmlNode::kClassInfo)) [[unlikely]]
        RaiseWrongClass();
    return static_cast<THtmlNode*>(InternalAddChild(childClass));
}

/// A new last child that is an element, whatever the current item is.
THtmlNode* THtmlNode::NewElement(THtmlParser& HP, const THtTagName& classTag, const THtTagName& tag)
{
    THtmlNode* child = NewChild(HP, classTag);
    if (child) {
        child->TagType = htIdent;
        child->SetTag(tag);
    }
    return child;
}

/// A child whose body is one text: script, style, comment, directive, CDATA.
void THtmlNode::AddContentNode(THtmlParser& HP, const THtTagName& classTag, const THtTagName& tag)
{
    THtmlNode* child = NewChild(HP, classTag);
    if (!child)
        return;
    child->TagType = HP.TagType;
    child->SetTag(tag);
    child->FContent = HP.Value;
    child->ParseAttributes(HP);
}

/// An item that is neither an element with children nor a text.
THtmlNode::TParseStep THtmlNode::AddOtherItem(THtmlParser& HP)
{
    switch (HP.TagType) {
    case htScript:
    case htStyle:
        AddContentNode(HP, HP.Tag, HP.Tag);
        break;
    case htComment:
        AddContentNode(HP, CommentTag(), CommentTag());
        break;
    case htDirective:
        AddContentNode(HP, DirectiveTag(), DirectiveTag());
        break;
    case htCData:
        AddContentNode(HP, CommentTag(), kNoTag);
        break;
    default:
        break;
    }
    return psNextItem;
}

/// A text. What has a text for its body comes more seldom.
inline THtmlNode::TParseStep THtmlNode::AddTextItem(THtmlParser& HP)
{
    if (HP.TagType != htString) [[unlikely]]
        return AddOtherItem(HP);
    if (THtmlNode* text = NewChild(HP, kNoTag)) {
        text->TagType = htString;
        text->SetContent(HP.Value);
    }
    return psNextItem;
}

/// The node of a start tag. A void element in a table body goes in front of the table.
THtmlNode* THtmlNode::NewPlacedElement(THtmlParser& HP)
{
    THtmlNode* table = GetParent();
    const bool misplaced = HP.TagClosed && FTagId == tags::kTbody && HP.Tag.Id != tags::kTr && table
        && IsWithinRoot(HP, table->FParent);
    if (!misplaced)
        return NewChild(HP, HP.Tag);
    THtmlNode* outer = table->GetParent();
    THtmlNode* child = outer->NewChild(HP, HP.Tag);
    const std::int32_t last = outer->Count() - 1;
    if (child && last > 0)
        outer->FNodes->Move(last, last - 1);
    return child;
}

/// Goes on here when the target is a child of this node (the element behind it is complete), else further up.
THtmlNode::TParseStep THtmlNode::ReturnTo(THtmlNode* target, THtmlNode*& result)
{
    if (!target || target->FParent == this)
        return psNextItem;
    AfterParse();
    result = target;
    return psReturn;
}

THtmlNode::TParseStep THtmlNode::ParseChild(THtmlParser& HP, THtmlNode& child, THtmlNode*& result)
{
    THtmlNode* target = child.InternalParse(HP);
    --HP.FStackLevel;
    return ReturnTo(target, result);
}

/// Closes elements up to and including `target`; the item is read again by its parent.
THtmlNode::TParseStep THtmlNode::FloatTo(THtmlParser& HP, THtmlNode* target, THtmlNode*& result)
{
    HP.RepeatCurrent = true;
    result = target;
    return psReturn;
}

inline THtmlNode::TParseStep THtmlNode::AddElement(THtmlParser& HP, THtmlNode*& result)
{
    THtmlNode* child = NewPlacedElement(HP);
    if (!child)
        return psNextItem;
    child->SetTag(HP.Tag);
    return ParseChild(HP, *child, result);
}

/// A cell directly in a table gets a row around it.
THtmlNode::TParseStep THtmlNode::OpenRowFor(THtmlParser& HP, THtmlNode*& result)
{
    THtmlNode* row = NewElement(HP, Name(tags::kTr), Name(tags::kTr));
    if (!row)
        return psNextItem;
    HP.RepeatCurrent = true;
    return ParseChild(HP, *row, result);
}

/// A paragraph directly in a table gets a row, and in it a cell that is named "tr" too: what stands in the
/// cell follows the rules of rows.
THtmlNode::TParseStep THtmlNode::OpenOddRow(THtmlParser& HP, THtmlNode*& result)
{
    // At the depth cap the paragraph would come straight back to this table, for ever.
    if (HP.FStackLevel >= THtmlParser::kMaxLevels && FParent)
        return FloatTo(HP, GetParent(), result);
    THtmlNode* row = NewElement(HP, Name(tags::kTr), Name(tags::kTr));
    THtmlNode* cell = row ? row->NewElement(HP, Name(tags::kTd), Name(tags::kTr)) : nullptr;
    if (!cell)
        return psNextItem;
    HP.RepeatCurrent = true;
    THtmlNode* target = cell->InternalParse(HP);
    --HP.FStackLevel;
    // The outer row has no frame of its own: what returns to it goes on here, or the rest of the text would
    // be lost.
    return target && target->FParent == row ? psNextItem : ReturnTo(target, result);
}

inline THtmlNode::TParseStep THtmlNode::OpenElement(THtmlParser& HP, THtmlNode*& result)
{
    if (IsTagIn(HP.Tag.Id, tgVoid)) {
        HP.TagClosed = true;
        return AddElement(HP, result);
    }
    const bool takesRows = FTagId == tags::kTable || FTagId == tags::kThead || FTagId == tags::kTbody;
    if (takesRows && (HP.Tag.Id == tags::kTd || HP.Tag.Id == tags::kTh))
        return OpenRowFor(HP, result);
    if (takesRows && HP.Tag.Id == tags::kP)
        return OpenOddRow(HP, result);
    THtmlNode* cell = nullptr;
    THtmlNode* target = FindFloat(HP, cell);
    if (cell) {
        HP.RepeatCurrent = true;
        return ParseChild(HP, *cell, result);
    }
    if (!target && HP.FStackLevel > THtmlParser::kMaxLevels)
        target = GetParent();
    if (target)
        return FloatTo(HP, target, result);
    return AddElement(HP, result);
}

/// Makes this node the element of the current item. False when the element is complete with that.
inline bool THtmlNode::TakeOverItem(THtmlParser& HP)
{
    if (FTag.IsEmpty())
        SetTag(HP.Tag);
    TagType = HP.TagType;
    ParseAttributes(HP);
    return !HP.TagClosed;
}

THtmlNode* THtmlNode::InternalParse(THtmlParser& HP)
{
    ++HP.FStackLevel;
    if (!HP.RepeatCurrent && !TakeOverItem(HP))
        return nullptr;
    THtmlNode* result = nullptr;
    for (;;) {
        if (HP.NextIsEndOf(*this)) {
            FinishElement(HP);
            return nullptr;
        }
        if (!HP.NextItem())
            break;
        const TParseStep step = HP.IsCloseTag ? CloseItem(HP, result)
            : !HP.IncorrectStack.IsEmpty()    ? Reopen(HP, result)
            : HP.TagType == htIdent           ? OpenElement(HP, result)
                                              : AddTextItem(HP);
        if (step == psReturn)
            return result;
    }
    AfterParse();
    return nullptr;
}
}
