// The node of an HTML document: it parses itself, repairs what it reads, and prints itself.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/html_parser.h>
#include <hearth/markup/node.h>

#include <functional>
#include <memory>

namespace ht {

class TFastString;

/// A colour for the name of a theme colour.
using TThemeColorProc = std::function<std::uint32_t(const String& Name)>;

/// A node of an HTML tree. Any text gives a tree: what is malformed is repaired by fixed rules, silently.
///
/// html_node.cpp holds attributes, moves and hooks; html_node_parse.cpp the entry points and the descent over
/// items; html_node_repair.cpp the rules that close and reopen elements; html_node_write.cpp prints,
/// html_node_format.cpp indents, html_node_text.cpp extracts text.
class HT_API THtmlNode : public THtNode {
public:
    static constexpr TClassInfo kClassInfo{u"THtmlNode", &THtNode::kClassInfo};

    THtmlNode() noexcept = default;
    explicit THtmlNode(const THtTagName& ATag);

    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    THtNodeClass NodeClass() const override { return THtNodeClass::Of<THtmlNode>(); }

    // Hooks and operations that descendants replace.

    /// Reads items until this element ends. A result that is not null means: stop here and return up until
    /// you are the parent of that node. Every caller lowers `HP.FStackLevel` afterwards.
    virtual THtmlNode* InternalParse(THtmlParser& HP);
    /// Called when an element was read to its end.
    virtual void AfterParse() { }
    virtual String GetInnerHTML() const;
    /// Replaces the children by those that the text gives.
    virtual void SetInnerHTML(const String& s);
    virtual String GetOuterHTML() const;
    /// Makes this node the first element of the text.
    virtual void SetOuterHTML(const String& s);
    virtual void SetStyleClass(const String& Value);
    /// Which open element a start tag closes: the node to return to, or null. `Root` limits the walk.
    virtual THtmlNode* CheckTagOrder(const THtTagName& ATag, const THtmlNode* Root);
    virtual void SetSelfStyle(const String& Value);
    /// The text as a reader sees it, blocks on lines of their own.
    virtual String GetInnerText() const;
    /// Replaces the children by one text node; a text node that comes first is kept for it.
    virtual void SetInnerText(const String& Text);
    /// The joined RawText of the subtree, without scripts, styles, comments and the like.
    virtual String GetRawInnerText() const;
    virtual bool QuirksMode() const { return true; }
    /// Replaces the children by the tree of a document. Without a body or html element in it a node without a
    /// parent is named "body".
    virtual void Parse(const String& HTML, bool AIgnoreMetaEncoding = false);
    /// Writes this node and its subtree.
    virtual void FastInnerHTML(TFastString& FS) const;
    /// The readable text of the subtree in one pass.
    virtual void FastInnerText(TFastString& FS) const;
    /// Writes this node indented by `Level` times `Spaces` blanks. `AfterBlock` tells, before and after,
    /// whether the output ends with a block. Begin with level 0 and false.
    virtual void FastFormattedHTML(
        TFastString& FS, std::int32_t Level, std::int32_t Spaces, bool& AfterBlock) const;
    /// Takes over the parser's attributes, if it holds any.
    virtual void ParseAttributes(THtmlParser& HP);
    /// Moves the children into the parent, before or behind this node. Throws Exception "Parent node not
    /// found".
    virtual void MoveChildrentoParent(bool ABefore);
    /// Appends what the text gives; returns its first node, null for none. Lifetime: owned by this node.
    virtual THtmlNode* AddHTML(const String& HTML);
    virtual void CSS(const String& /*Value*/) { }
    virtual void AddClass(const String& /*CSSClass*/) { }
    virtual void RemoveClass(const String& /*CSSClass*/) { }
    virtual bool HasClass(const String& /*CSSClass*/) const { return false; }
    /// The text that this node itself adds to GetRawInnerText; none here.
    virtual String RawText() const { return String(); }

    // Parsing and printing.

    /// The readable text of a document.
    static String HTMLtoText(const String& HTML);
    /// SetInnerHTML with the switch of Parse, for text that was decoded already.
    void ParseFragment(const String& HTML, bool AIgnoreMetaEncoding);
    /// Sets the attributes that stand in `s` as in a tag.
    void ParseAttributes(const String& s);
    /// Decodes contents and attributes of the subtree anew, as after reading them one unit a byte.
    void ChangeEncoding(THtmlEncoding AEncoding, std::uint32_t ACodePage);
    String InnerHTML() const { return GetInnerHTML(); }
    String OuterHTML() const { return GetOuterHTML(); }
    String InnerText() const { return GetInnerText(); }
    String RawInnerText() const { return GetRawInnerText(); }

    // Moving nodes. Throw Exception, leaving the tree unchanged, where a node would get into itself.

    /// Moves all children, but for `E`, into `E` from `Index` on; -1 means at its end.
    void MoveChildrento(THtmlNode* E, std::int32_t Index);
    /// Moves the child `OldNode` to the place of the child `NewNode`.
    void MoveNode(THtmlNode* OldNode, THtmlNode* NewNode);

    // Typed forms of the general operations.

    THtmlNode* FindNode(std::u16string_view NodeName) const noexcept;
    THtmlNode* GetNode(std::int32_t index) const;
    THtmlNode* Node(std::int32_t index) const { return GetNode(index); }
    THtmlNode* GetParent() const noexcept { return static_cast<THtmlNode*>(FParent); }
    THtmlNode* Parent() const noexcept { return GetParent(); }

    /// Number of nodes with a tag between the root and this node in document order; 0 for the root.
    std::int32_t AbsoluteTagIndex() const noexcept;
    /// Numbers the elements of the subtree in the attribute "_id". A "datapacket" without an id takes that
    /// number as its id.
    void EnumerateElements();

    const String& GetId() const { return GetAttribute(u"id"); }
    void SetId(const String& Value);
    const String& GetStyleClassStr() const { return GetAttribute(u"class"); }
    const String& StyleClass() const { return GetStyleClassStr(); }
    const String& ClassName() const { return GetStyleClassStr(); }
    const String& GetSelfStyle() const { return GetAttribute(u"style"); }
    const String& SelfStyle() const { return GetSelfStyle(); }
    void ToggleClass(const String& CSSClass);

    /// The host's look-up of theme colours, for all documents; set before documents are styled.
    static void SetThemeColorPrc(TThemeColorProc Proc);
    static const TThemeColorProc& ThemeColorPrc();

private:
    enum TParseStep : std::uint8_t { psNextItem, psReturn };
    enum TTableCrossing : std::uint8_t { tcStopsAtTables, tcThroughTables };

    // The descent over items. `result` is what InternalParse returns behind psReturn.
    bool TakeOverItem(THtmlParser& HP);
    TParseStep AddTextItem(THtmlParser& HP);
    TParseStep AddOtherItem(THtmlParser& HP);
    TParseStep OpenElement(THtmlParser& HP, THtmlNode*& result);
    TParseStep OpenRowFor(THtmlParser& HP, THtmlNode*& result);
    TParseStep OpenOddRow(THtmlParser& HP, THtmlNode*& result);
    TParseStep AddElement(THtmlParser& HP, THtmlNode*& result);
    TParseStep Reopen(THtmlParser& HP, THtmlNode*& result);
    TParseStep CloseItem(THtmlParser& HP, THtmlNode*& result);
    TParseStep ParseChild(THtmlParser& HP, THtmlNode& child, THtmlNode*& result);
    TParseStep ReturnTo(THtmlNode* target, THtmlNode*& result);
    TParseStep FloatTo(THtmlParser& HP, THtmlNode* target, THtmlNode*& result);
    void AddContentNode(THtmlParser& HP, const THtTagName& classTag, const THtTagName& tag);
    THtmlNode* NewChild(THtmlParser& HP, const THtTagName& classTag);
    THtmlNode* NewElement(THtmlParser& HP, const THtTagName& classTag, const THtTagName& tag);
    THtmlNode* NewPlacedElement(THtmlParser& HP);

    // The rules that close elements.
    THtmlNode* FindFloat(THtmlParser& HP, THtmlNode*& cell);
    THtmlNode* FindClosed(THtmlParser& HP);
    THtmlNode* LastCell(THtmlParser& HP) const;
    void FinishElement(THtmlParser& HP);
    void MoveBehindTable(THtmlParser& HP);
    static bool IsWithinRoot(const THtmlParser& HP, const THtNode* node);
    THtmlNode* FloatUpTo(std::initializer_list<TTagId> tagIds, const THtmlNode* root);
    THtmlNode* FloatUpOver(TTagId tagId, const THtmlNode* root, TTableCrossing crossing);
    THtmlNode* CheckTableOrder(const THtTagName& tag, const THtmlNode* root);

    THtmlNode& AddWrapper();
    static void SetScope(THtmlParser& parser, THtmlNode& limit);
    void Unwrap(THtmlNode& wrapper);
};

}
