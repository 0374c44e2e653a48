// The node of XML documents, which holds JSON too.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/html_parser.h>
#include <hearth/markup/json_parser.h>
#include <hearth/markup/node.h>
#include <hearth/runtime/strings.h>
#include <hearth/xml/json_kind.h>
#include <hearth/xml/xml_error.h>
#include <hearth/xml/xml_well_formed.h>

#include <memory>
#include <string>

namespace ht {

class TFastRawString;
class TFastString;
class TRttiType;
class TValue;

/// A node of an XML tree. Reading is strict: what does not nest is an error. Names of tags and attributes
/// keep their case. All nodes of a tree are of this class or of descendants.
///
/// JSON is read into the same tree. An object becomes an element whose members are attributes, or children
/// where the value is an object or an array; an array becomes an element with a child for each value. All
/// values are texts then: that a number was none is forgotten. CreateFromLosslessJSON forgets nothing.
///
/// xml_node.cpp builds and copies, xml_node_read.cpp reads XML, xml_node_write.cpp prints it,
/// xml_node_json.cpp reads and prints JSON, xml_node_lossless.cpp prints it without losses,
/// xml_node_objects.cpp holds objects and records, xml_node_values.cpp names, texts and searches.
class HT_API THtXMLNode : public THtNode {
public:
    static constexpr TClassInfo kClassInfo{u"THtXMLNode", &THtNode::kClassInfo};

    /// An empty node.
    THtXMLNode() noexcept = default;
    /// Reads a document as SetXML does. A class that overrides Parse is made empty and filled with SetXML: no
    /// override is called from here.
    explicit THtXMLNode(const String& XML, THtXMLStrictness Strictness = xsTags);
    ~THtXMLNode() override;

    /// Reads JSON. Throws EHtJSONParserException and, for numbers, EConvertError. The second argument is not
    /// looked at.
    static std::unique_ptr<THtXMLNode> CreatefromJSON(const String& JSON, std::int32_t dummy = 0);
    /// Reads JSON as it is: every value becomes an element that tells its kind in JSONKind and has the text
    /// of a string, number or keyword as its content. Members are children in their order, named by their
    /// tags, equal and empty names among them; elements of arrays have the tags "object", "array" and
    /// "value", and so has the whole. Throws as CreatefromJSON does, which it follows in what it takes, but
    /// for several objects in a row. LosslessJSON prints the same data.
    static std::unique_ptr<THtXMLNode> CreateFromLosslessJSON(
        const String& JSON, const THtLimits& Limits = HtLimits());
    /// Read XML from the position of a stream to its end, or from a file, see StreamtoText. Throw as SetXML
    /// and streams do.
    static std::unique_ptr<THtXMLNode> CreateFromStream(
        TStream& Stream, THtXMLStrictness Strictness = xsTags);
    static std::unique_ptr<THtXMLNode> CreateFromFile(
        const String& FileName, THtXMLStrictness Strictness = xsTags);
    /// The rest of a stream as text: by its byte order mark, as UTF-16 where every other byte in front is 0,
    /// by the encoding that its XML declaration names, else as UTF-8, or in the system code page when it is
    /// no UTF-8. Throws EHtXML "Cannot load empty stream".
    static String StreamtoText(TStream& Stream);

    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    THtNodeClass NodeClass() const override { return THtNodeClass::Of<THtXMLNode>(); }
    /// This class for every tag.
    THtNodeClass GetElementClass(const THtTagName& ATag, const THtNode* ARoot) const override;
    std::unique_ptr<THtAttributes> CreateAttributes() const override;

    // Hooks that descendants replace.

    /// Makes this node the element of the parser's current item and reads up to its end tag, or to the end of
    /// the text, which ends all elements. Throws EHtXML for an end tag of another name and beyond the depth
    /// that HP.Limits allows, EHtmlParserException for what is wrong inside a tag; what was read so far
    /// stays. The parser is in XML mode and case-sensitive. Elements of descendants of this class nest no
    /// deeper than kMaxRecursion, whatever is allowed: each of them has a call of its own.
    virtual void Parse(THtmlParser& HP);
    static constexpr std::int32_t kMaxRecursion = 1024;

    // Reading and printing.

    /// Replaces all that this node holds by a document: the first element of the text, and as processing
    /// instructions the directives in front of it. What stands behind the element is not looked at. Throws as
    /// Parse does, and with xsWellFormed as CheckWellFormed does, which leaves this node as it was.
    void SetXML(const String& s, THtXMLStrictness Strictness = xsTags);
    /// Reads a JSON value into this node, with the tokenizer on its first token; the cursor stands behind the
    /// last one afterwards. Throws as CreatefromJSON does.
    void ParseJSON(THtJSONParser& P);

    /// The processing instructions, each on a line, and the node.
    String Code() const;
    /// The same with elements on lines of their own, indented by `Spaces` blanks a level. Elements that hold
    /// text stay on one line with all that is in them, as do those that preserve space: no text changes.
    String FormattedCode(std::int32_t Spaces = 2) const;
    /// Both as UTF-8, without a byte order mark.
    std::string UTF8Code() const;
    std::string UTF8FormattedCode(std::int32_t Spaces = 2) const;
    /// Write the node alone. A node without a tag is its text.
    void FastCode(TFastString& FS) const;
    void FastFormatCode(TFastString& FS, std::int32_t Level = 0, std::int32_t Spaces = 2) const;
    void FastUTF8Code(TFastRawString& FS) const;
    void FastUTF8FormatCode(TFastRawString& FS, std::int32_t Level = 0, std::int32_t Spaces = 2) const;
    /// Write Code to a file in the system code page, where what the page lacks becomes "?", or as UTF-8 with
    /// a byte order mark; the last one FormattedCode. Throw as file streams do.
    void SaveToFileANSI(const String& FileName) const;
    void SaveToFileUTF8(const String& FileName) const;
    void SaveToFileUTF8Format(const String& FileName, std::int32_t Spaces = 2) const;

    /// The node as JSON: an array as its children, anything else as an object of its attributes and of its
    /// children with a tag. All values are strings, contents are not written: this is not the inverse of
    /// reading.
    String JSON() const;
    void FastJSON(TFastString& FS) const;
    /// The node as standard JSON: values by their kinds, members in their order. What was not read from JSON
    /// prints too: attributes as strings in front of the children, an element with neither as the string of
    /// its Value; comments and texts beside elements are left out. Contents of numbers and Booleans are not
    /// looked at. With `Spaces` above 0 each part has a line of its own, indented by so many blanks a level.
    String LosslessJSON(std::int32_t Spaces = 0) const;
    void FastLosslessJSON(TFastString& FS, std::int32_t Spaces = 0) const;

    // Objects and records of types that are registered with TRttiContext.

    /// Append an element that holds an object or record, with its class or type as the tag unless told: of an
    /// object the published properties and fields, of a record the fields. Plain values are attributes:
    /// numbers so that they read back as they were, enumerations by name, sets as "[fsBold,fsItalic]", dates
    /// as GetDateTime reads them. Objects, records, string lists and arrays are children named after the
    /// member, elements of the latter two are children "item", or "null" for an object that is not there. A
    /// null member is left out. Lifetime: that of this node. Throw EHtXML for types that are not registered,
    /// for an object that holds itself and beyond the depth of HtLimits(), and EInvalidCast for a value that
    /// is no record; then nothing is appended.
    THtXMLNode* AddObject(const TObject& Object, const String& TagName = String());
    THtXMLNode* AddRecord(const TValue& Record, const String& TagName = String());
    /// Read back what these wrote into this node. Members that are not here stay as they are. An object
    /// behind a member is filled in place; where there is none and the member can be written, one is created
    /// of the class that the member is declared with, which from then on belongs to the object that it is set
    /// into; arrays and string lists are replaced. Throw EHtXML "Member Boss.Age: ..." for what does not fit,
    /// and what setters throw; what was read until then is set, a record stays as it was.
    void LoadObject(TObject& Object) const;
    void LoadRecord(TValue& Record) const;
    /// A new object of a registered class.
    std::unique_ptr<TObject> CreateObject(const TRttiType& Type) const;

    // What a node is.

    /// Was read from a JSON array, and prints as one.
    bool IsArray() const noexcept { return FIsArray; }
    void SetIsArray(bool value) noexcept { FIsArray = value; }
    /// What the node was in JSON that was read without losses; for those who build such trees too.
    THtJSONKind JSONKind() const noexcept { return FJSONKind; }
    void SetJSONKind(THtJSONKind value) noexcept { FJSONKind = value; }
    /// The element has xml:space="preserve": blanks in it are text like any other.
    bool PreserveSpace() const noexcept { return FPreserveSpace; }
    /// Texts of the directives in front of the root element, made on first use. Owned by the node.
    TStringList& ProcessingInstructions();
    bool HasProcessingInstructions() const noexcept { return FInstructions && FInstructions->Count() > 0; }
    /// A value in the first processing instruction of that name: GetPIAttribute(u"xml", u"encoding"). Empty
    /// when there is no such instruction or no such value.
    String GetPIAttribute(std::u16string_view PIName, std::u16string_view AttrName) const;

    /// The own content, and behind it, if the node has a tag, those of the children without one: texts,
    /// CDATA sections, and comments too.
    String GetValue() const;
    /// Sets the content of the first child without a tag where this node has children and no content of its
    /// own, otherwise the own content.
    void SetValue(const String& s);
    String Value() const { return GetValue(); }

    /// The tag behind its first ":", or the whole tag.
    String GetLocalName() const;
    String LocalName() const { return GetLocalName(); }
    /// The tag in front of its first ":", or empty.
    String GetPrefix() const;
    String Prefix() const { return GetPrefix(); }
    /// False for a comment and without a content.
    bool GetIsTextElement() const noexcept { return TagType != htComment && !FContent.IsEmpty(); }
    bool IsTextElement() const noexcept { return GetIsTextElement(); }
    bool GetHasChildNodes() const noexcept { return GetCount() > 0; }
    bool HasChildNodes() const noexcept { return GetHasChildNodes(); }

    // The tree.

    /// A child. Throws EHtXML "Node index %d out of range".
    THtXMLNode* GetNode(std::int32_t Index) const;
    THtXMLNode* Node(std::int32_t Index) const { return GetNode(Index); }
    THtXMLNode* GetParent() const noexcept { return static_cast<THtXMLNode*>(FParent); }
    THtXMLNode* Parent() const noexcept { return GetParent(); }
    /// First direct child whose tag has that local name, whatever its prefix; null if there is none. Behind a
    /// "/" the rest is asked of that first match alone.
    THtXMLNode* NodebyNameNS(std::u16string_view NodeName) const noexcept;

    /// Sets what a path names (see XPath), for every match or the first one, and returns how often it did so.
    /// A path that ends in "@name" sets that attribute of all elements that the steps in front find, whether
    /// they had it or not; "@name" alone is one of this node. All other paths set the text, as SetValue does,
    /// and "a/text()" is that of "a". Elements that are not there are not made. Throws as XPath does.
    std::int32_t XPathSet(std::u16string_view path, const String& Value, bool FirstOnly = false);

    /// A copy of the subtree, each node of the class of its original. TagObject is not copied.
    std::unique_ptr<THtXMLNode> Clone() const;
    /// Makes this node a copy of another one with its subtree, which may be part of this tree. The place of
    /// this node and its TagObject stay.
    void Assign(const THtXMLNode& Source);
    /// Takes the prefixes off all tags and attributes of the subtree and removes what declares namespaces.
    /// Attributes with the prefix "xml" stay; of two that get the same name the one without a prefix stays,
    /// else the first.
    void RemoveNamespaces();
    /// Orders the children by the value of an attribute, as texts; equal ones keep their order. Children
    /// without that attribute come first.
    void SortbyAttr(std::u16string_view AttrName);

private:
    class TReader;
    class TJsonReader;
    class TObjectWriter;

    static THtXMLNode& Typed(THtNode& node);
    static const THtXMLNode& Typed(const THtNode& node) { return Typed(const_cast<THtNode&>(node)); }
    THtXMLNode& NewChild(const THtTagName& tag);
    /// NewChild of a node whose class is this one, so that no hook is overridden.
    static THtXMLNode& AddPlain(THtXMLNode& parent)
    {
        THtNodeList& nodes = parent.FNodes ? *parent.FNodes : parent.THtNode::GetNodes();
        auto child = std::make_unique_for_overwrite<THtXMLNode>();
        nodes.Add(child.get());
        return *child.release();
    }
    THtXMLNode& NewElement(const THtTagName& tag);
    template <class Write> THtXMLNode* AddWritten(const String& tag, Write write);
    void Reset();
    void ReadDocument(THtmlParser& HP);
    std::unique_ptr<THtXMLNode> NewCopy() const;
    void MoveContentsTo(THtXMLNode& target);
    void ReadFurtherObjects(THtJSONParser& P);

    std::unique_ptr<TStringList> FInstructions; // made on first use
    bool FIsArray = false;
    bool FPreserveSpace = false;
    THtJSONKind FJSONKind = jkNone;
};

}
