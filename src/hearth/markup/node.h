// The node under every tree: names, children, attributes, content and ways through the tree.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/attributes.h>
#include <hearth/markup/html_token.h>
#include <hearth/markup/node_list.h>
#include <hearth/markup/tag_names.h>
#include <hearth/runtime/date_time.h>
#include <hearth/runtime/object.h>

#include <concepts>
#include <memory>
#include <span>
#include <utility>

namespace ht {

struct TXPathNode;

/// A class of nodes as a value: what the parser asks for before it makes a node.
struct THtNodeClass {
    const TClassInfo* Info = nullptr;
    std::unique_ptr<THtNode> (*Create)() = nullptr;

    template <std::derived_from<THtNode> Node> static constexpr THtNodeClass Of();
    constexpr explicit operator bool() const noexcept { return Create != nullptr; }
    friend constexpr bool operator==(const THtNodeClass& a, const THtNodeClass& b)
    {
        return a.Info == b.Info;
    }
};

/// Base of the document tree and of the XML tree. A node owns its children and its attributes; destroying it
/// destroys the subtree, however deep. A text node has no tag. Comment nodes have the tag "!", directives
/// "?". Trees belong to one thread.
///
/// node.cpp builds, node_navigate.cpp finds ways, node_attributes.cpp holds the typed attributes,
/// xpath_match.cpp answers paths.
class HT_API THtNode : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtNode", &TObject::kClassInfo};

    THtNode() noexcept = default;
    ~THtNode() override;
    THtNode(const THtNode&) = delete;
    THtNode& operator=(const THtNode&) = delete;

    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    /// The class of this node as a value that makes more of its kind.
    virtual THtNodeClass NodeClass() const;

    // Hooks and operations that descendants replace.

    /// The list of children, made on first use.
    virtual THtNodeList& GetNodes();
    virtual void SetParent(THtNode* AParent) { FParent = AParent; }
    virtual void SetContent(const String& AContent) { FContent = AContent; }
    /// Called for events that a script handles; does nothing here.
    virtual void CallScriptFunction(const String& Name);
    /// Order of two nodes as a script sees it; 0 here.
    virtual std::int32_t ScriptCompare(const TObject* Other) const;
    /// The class for a tag (null tag: for text). Asks `ARoot` if given, else the root of this tree; the root
    /// answers its own class. A class without Create makes the parser drop the element and keep its contents.
    virtual THtNodeClass GetElementClass(const THtTagName& ATag, const THtNode* ARoot) const;
    /// Makes a child, writing its parent directly. Throws EAssertionFailed for a class without Create, as
    /// AddChild does.
    virtual THtNode* InternalAddChild(const THtNodeClass& AClass);
    /// A new attribute store; the caller owns it.
    virtual std::unique_ptr<THtAttributes> CreateAttributes() const;
    /// Makes a child through SetParent.
    virtual THtNode* AddChild(const THtNodeClass& AClass);
    /// Removes a child and destroys it. Throws Exception "Child node not found" for any other node.
    virtual void DeleteChild(THtNode* E);
    virtual void DeleteAllChildren();
    /// The elements that a query selects; null here. The caller owns the list, the list owns nothing.
    virtual std::unique_ptr<THtNodeList> GetJQueryList(const String& Query, bool FirstOnly);
    /// The contents of the subtree in document order, without any white space added.
    virtual String TextContent() const;
    /// SetAttr that answers whether something changed.
    virtual bool SetAttribute(const String& Name, const String& Value);

    // Structure.

    /// Takes over a node that has no parent and appends it. Throws Exception, leaving `Node` untouched, when
    /// it is null, has a parent, or is this node or one of its ancestors.
    THtNode* AddNode(std::unique_ptr<THtNode>&& Node);
    /// Takes a child out of the tree; the caller owns it. Throws Exception "Child node not found".
    std::unique_ptr<THtNode> ExtractChild(THtNode* E);
    /// Swaps two children. Throws Exception "Child node not found" when one is not a child.
    void Exchange(THtNode* Node1, THtNode* Node2);
    /// A child, or null when there are no children. Throws ERangeError outside the list of children.
    THtNode* GetNode(std::int32_t Index) const;
    THtNode* ChildNodes(std::int32_t Index) const { return GetNode(Index); }
    THtNodeList& ChildNodeList() { return GetNodes(); }
    THtNodeList& Nodes() { return GetNodes(); }
    /// Number of children.
    std::int32_t GetCount() const noexcept { return FNodes ? FNodes->Count() : 0; }
    std::int32_t Count() const noexcept { return GetCount(); }
    /// The children for reading, without making a list.
    std::span<THtNode* const> Children() const noexcept;
    /// True once a list of children was made, even if it is empty again.
    bool HasNodeList() const noexcept { return FNodes != nullptr; }

    const String& Tag() const noexcept { return FTag; }
    void SetTag(const THtTagName& ATag);
    /// RSHash of the tag folded to lower case.
    std::uint32_t TagHash() const noexcept { return FTagHash; }
    /// Id of a known tag in lower case, 0 for all others.
    TTagId TagId() const noexcept { return FTagId; }
    /// True when the whole tag is `name`, case included.
    bool HasTag(const THtTagName& name) const noexcept { return FTagHash == name.Hash && FTag == name.Name; }
    THtTagName TagName() const { return {FTag, FTagHash, FTagId}; }
    const String& Content() const noexcept { return FContent; }
    THtNode* Parent() const noexcept { return FParent; }
    /// The attribute store, null while there is none. Owned by the node.
    THtAttributes* Attributes() const noexcept { return FAttributes; }

    // Navigation. Names are compared whole and with their case.

    THtNode* NextSibling() const noexcept { return FNextSibling; }
    THtNode* PreviousSibling() const noexcept;
    /// Next and previous node in document order, null at the ends.
    THtNode* NextNode() const noexcept;
    /// The next node in document order inside the subtree of `Top`.
    THtNode* NextNodeIn(const THtNode* Top) const noexcept;
    THtNode* PreviousNode() const noexcept;
    /// Deepest last descendant, or this node.
    THtNode* Last() const noexcept;
    THtNode* FirstChild() const noexcept { return FNodes ? FNodes->First() : nullptr; }
    THtNode* LastChild() const noexcept { return FNodes ? FNodes->Last() : nullptr; }
    /// First child that has a tag and is no comment.
    THtNode* FirstChildTag() const noexcept;
    /// Last child that has a tag; here a comment counts.
    THtNode* LastChildTag() const noexcept;
    /// How many children before this one have a tag; 0 without a parent.
    std::int32_t ChildIndex() const noexcept;
    /// How many earlier siblings have the same tag; 0 without a parent.
    std::int32_t TagIndex() const noexcept;
    /// Place in the parent's list; -1 without a parent.
    std::int32_t NodeIndex() const noexcept;
    /// Number of direct children with that tag.
    std::int32_t Countof(std::u16string_view ATag) const noexcept;
    bool HasAsParent(const THtNode* E) const noexcept;
    bool HasParentTag(std::u16string_view ATag) const noexcept { return UpTo(ATag) != nullptr; }
    /// Nearest proper ancestor with the tag, or with one of the tags.
    THtNode* UpTo(std::u16string_view ATag) const noexcept;
    THtNode* UpTo(std::initializer_list<std::u16string_view> ATags) const noexcept;
    /// Topmost ancestor, or this node.
    THtNode* Root() noexcept;
    const THtNode* Root() const noexcept { return const_cast<THtNode*>(this)->Root(); }
    /// Tags from this node up to the root, joined by "/".
    String Path() const;
    /// First direct child with that tag. Behind a "/" the rest is asked of that first match alone.
    THtNode* NodebyName(std::u16string_view NodeName) const noexcept;
    /// First descendant with that tag.
    THtNode* FindNode(std::u16string_view NodeName) const noexcept;
    THtNode* NodebyAttr(std::u16string_view AttrName, std::u16string_view AttrValue) const;
    THtNode* NodebyNameAttr(
        std::u16string_view NodeName, std::u16string_view AttrName, std::u16string_view AttrValue) const;
    /// First descendant with that attribute value; an empty `NodeName` matches every tag.
    THtNode* FindNodebyAttr(
        std::u16string_view NodeName, std::u16string_view AttrName, std::u16string_view AttrValue) const;
    /// The `Index`-th direct child with that tag, from 0; null if there are fewer.
    THtNode* NodebyNameIndex(std::u16string_view AName, std::int32_t Index) const noexcept;

    // Paths, as xpath.h tells them. All start at this node, also when the path begins with "/"; only
    // XPathValue then starts at the root. A way that is found twice is answered twice. Throw
    // EHtmlParserException when the limits of HtLimits() for results or nested predicates are passed.

    /// The matches in document order, or the first one; never null, and to be held while it is read
    /// (not `for (... : *node.XPath(...))`). `Current` is where the step "current"
    /// leads, this node if null.
    std::shared_ptr<IHtNodeList> XPath(
        std::u16string_view path, bool FirstOnly = false, THtNode* Current = nullptr);
    /// Finds the same matches, then calls `Proc` for each of them; so it may change the tree as long as it
    /// destroys no match that is still to come.
    template <std::invocable<THtNode&, bool&> Proc> void XPath(std::u16string_view path, Proc&& proc)
    {
        CallXPath(path, THtNodeProcRef(std::forward<Proc>(proc)));
    }
    /// The first text that is not empty of what matches (of an attribute its value); empty for no match.
    String XPathValue(std::u16string_view path, THtNode* Current = nullptr);
    /// Tests the conditions of a step on this node, whatever its tag.
    bool EvaluateCondition(const TXPathNode& PathNode);
    /// Walks from this node along a step and those behind it. The matches go to the end of `Nodes`, or the
    /// text to the Value of the step's processor when that is null.
    void InternalXPath(const TXPathNode& PathNode, THtNodeList* Nodes, bool FirstOnly);
    void InternalXPathRef(const TXPathNode& PathNode, const THtNodeProcRef& Proc);

    // Attributes.

    /// The value, empty if the attribute is absent.
    const String& GetAttribute(std::u16string_view Name) const;
    bool HasAttribute(std::u16string_view AttrName) const;
    /// Exact match; without such an attribute true only for an empty value.
    bool HasAttributeValue(std::u16string_view AttrName, std::u16string_view AttrValue) const;
    /// Sets a value; nothing happens when there are no attributes yet and the value is empty.
    void SetAttr(const String& Name, const String& Value);
    void CopyAttributesFrom(const THtNode& Source);
    const String& Attr(std::u16string_view Name) const { return GetAttribute(Name); }

    /// The value as a number. Throws EConvertError for anything else, the empty text included.
    std::int32_t GetAttrI(std::u16string_view AttrName) const;
    void SetAttrI(const String& AttrName, std::int32_t Value);
    std::int32_t AttrI(std::u16string_view AttrName) const { return GetAttrI(AttrName); }
    /// The value as a number, 0 for anything else.
    double GetAttrF(std::u16string_view AttrName) const;
    /// Stores at most two decimals.
    void SetAttrF(const String& AttrName, double Value);
    double AttrF(std::u16string_view AttrName) const { return GetAttrF(AttrName); }
    double GetFloat(std::u16string_view AttrName) const { return GetAttrF(AttrName); }
    /// Stores all digits.
    void SetFloat(const String& AttrName, double Value);
    double AsFloat(std::u16string_view AttrName) const { return GetFloat(AttrName); }
    void SetAsFloat(const String& AttrName, double Value) { SetFloat(AttrName, Value); }
    /// True for exactly "1", "true" or "on".
    bool GetAttrB(std::u16string_view AttrName) const;
    void SetAttrB(const String& AttrName, bool Value);
    bool AttrB(std::u16string_view AttrName) const { return GetAttrB(AttrName); }

    /// 0 for an absent or empty value; otherwise read as "yyyy-mm-dd", "yyyy-mm-dd hh:nn:ss" or "hh:nn:ss".
    /// Throw Exception when the value does not fit.
    TDateTime GetDate(std::u16string_view AttrName) const;
    TDateTime GetDateTime(std::u16string_view AttrName) const;
    TDateTime GetTime(std::u16string_view AttrName) const;
    void SetDate(const String& AttrName, TDateTime Value);
    /// Stores the form with a "T" between date and time, which GetDateTime does not read.
    void SetDateTime(const String& AttrName, TDateTime Value);
    void SetTime(const String& AttrName, TDateTime Value);
    TDateTime Date(std::u16string_view AttrName) const { return GetDate(AttrName); }
    TDateTime AsDate(std::u16string_view AttrName) const { return GetDate(AttrName); }
    TDateTime DateTime(std::u16string_view AttrName) const { return GetDateTime(AttrName); }
    TDateTime AsDateTime(std::u16string_view AttrName) const { return GetDateTime(AttrName); }
    TDateTime Time(std::u16string_view AttrName) const { return GetTime(AttrName); }
    TDateTime AsTime(std::u16string_view AttrName) const { return GetTime(AttrName); }

private:
    void CallXPath(std::u16string_view path, const THtNodeProcRef& Proc);

protected:
    /// The store, made on first use.
    THtAttributes& NeedAttributes();
    void ReplaceAttributes(std::unique_ptr<THtAttributes> attributes) noexcept
    {
        delete std::exchange(FAttributes, attributes.release());
    }
    /// Drops the children without their list being kept.
    void DropNodes() noexcept;

    // Ordered so that a node takes 80 bytes.
    std::uint32_t FTagHash = 0;
    String FTag;
    THtNodeList* FNodes = nullptr; // owned
    THtAttributes* FAttributes = nullptr; // owned
    String FContent;
    THtNode* FNextSibling = nullptr;
    THtNode* FParent = nullptr;
    TTagId FTagId = 0;

public:
    /// What the node was made from.
    THTMLTokenType TagType = htUnknown;

private:
    friend class THtNodeList;

    std::int32_t FIndex = 0; // place in the parent's list, as far as the list has numbered

public:
    /// A slot for the application, not owned.
    TObject* TagObject = nullptr;
};

static_assert(sizeof(void*) != 8 || sizeof(THtNode) <= 80);

inline std::int32_t THtNodeList::Add(THtNode* node)
{
    if (FCount == FCapacity)
        Grow(1);
    const std::int32_t index = FCount++;
    FItems[index] = node;
    if (!FOwner)
        return index;
    node->FParent = FOwner;
    node->FNextSibling = nullptr;
    node->FIndex = index;
    if (index > 0)
        FItems[index - 1]->FNextSibling = node;
    if (FNumbered == index)
        ++FNumbered;
    return index;
}

template <std::derived_from<THtNode> Node> constexpr THtNodeClass THtNodeClass::Of()
{
    return {&Node::kClassInfo,
        []() -> std::unique_ptr<THtNode> { return std::make_unique_for_overwrite<Node>(); }};
}

}
