// Printing XML, plainly and indented, as text, as UTF-8 and to files.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_node.h>

#include <hearth/foundation/fast_raw_string.h>
#include <hearth/foundation/fast_string.h>
#include <hearth/markup/html_write_p.h>
#include <hearth/markup/node_walk_p.h>
#include <hearth/runtime/checked.h>
#include <hearth/runtime/encoding.h>
#include <hearth/runtime/streams.h>
#include <hearth/xml/xml_encode.h>

#include <algorithm>

namespace ht {

namespace {

/// Chunks of the documents that are assembled here.
constexpr std::int32_t kDocumentDelta = 65500;

/// A node that is written as one piece: text, or what has no tag to open.
bool IsPiece(const THtNode& node)
{
    const bool isMarked = node.TagType == htComment || node.TagType == htDirective || node.TagType == htCData;
    return isMarked || node.Tag().IsEmpty();
}

void WritePiece(TFastString& FS, const THtNode& node)
{
    switch (node.TagType) {
    case htComment:
        return WriteComment(FS, node.Content());
    case htDirective:
        return WriteDirective(FS, node.Content());
    case htCData:
        return WriteCData(FS, node.Content());
    default:
        return XMLEncodeTo(FS, node.Content());
    }
}

/// "<tag" with the attributes, and ">" or "/>"; the text behind it. False for an element without an end tag.
bool WriteStart(TFastString& FS, const THtNode& node)
{
    FS.AddChar(u'<').Add(node.Tag());
    if (node.Attributes())
        node.Attributes()->FastAsString(FS);
    if (!node.HasNodeList() && node.Content().IsEmpty()) {
        FS.Add2Char(u'/', u'>');
        return false;
    }
    FS.AddChar(u'>');
    if (node.GetCount() == 0 || !IsBlankText(node.Content()))
        XMLEncodeTo(FS, node.Content());
    return true;
}

void WriteEnd(TFastString& FS, const THtNode& node)
{
    FS.Add2Char(u'<', u'/').Add(node.Tag()).AddChar(u'>');
}

class TPlainWriter {
public:
    explicit TPlainWriter(TFastString& buffer)
        : FBuffer(buffer)
    {
    }

    bool Enter(const THtNode& node)
    {
        if (!IsPiece(node))
            return WriteStart(FBuffer, node);
        WritePiece(FBuffer, node);
        return false;
    }

    void Leave(const THtNode& node) { WriteEnd(FBuffer, node); }

private:
    TFastString& FBuffer;
};

class TIndentedWriter {
public:
    TIndentedWriter(TFastString& buffer, std::int32_t level, std::int32_t spaces)
        : FBuffer(buffer)
        , FLevel(level)
        , FSpaces(spaces)
    {
    }

    bool Enter(const THtNode& node)
    {
        if (!FInline)
            BeginLine();
        if (IsPiece(node)) {
            WritePiece(FBuffer, node);
            return false;
        }
        if (!WriteStart(FBuffer, node))
            return false;
        ++FLevel;
        if (!FInline && StaysOnLine(node))
            FInline = &node;
        return true;
    }

    void Leave(const THtNode& node)
    {
        --FLevel;
        if (!FInline && node.GetCount() > 0)
            BeginLine();
        if (FInline == &node)
            FInline = nullptr;
        WriteEnd(FBuffer, node);
    }

private:
    void BeginLine()
    {
        if (!FFirst)
            FBuffer.Add(kLineEnd);
        FFirst = false;
        FBuffer.AddSpaces(CheckedMul(FLevel, FSpaces));
    }

    /// Blanks put between the children would become part of a text.
    static bool StaysOnLine(const THtNode& node)
    {
        const auto isText = [](const THtNode* child) {
            return child->TagType == htCData
                || (IsPiece(*child) && child->TagType != htComment && child->TagType != htDirective);
        };
        const auto children = node.Children();
        return !IsBlankText(node.Content()) || node.HasAttributeValue(u"xml:space", u"preserve")
            || std::any_of(children.begin(), children.end(), isText);
    }

    TFastString& FBuffer;
    std::int32_t FLevel;
    std::int32_t FSpaces;
    const THtNode* FInline = nullptr; // the element whose content is written as it is
    bool FFirst = true;
};

/// The instructions, then what `write` writes behind them.
template <class Write> String Document(TStringList* instructions, Write write)
{
    TFastString buffer(kDocumentDelta);
    for (std::int32_t i = 0; instructions && i < instructions->Count(); ++i) {
        WriteDirective(buffer, instructions->Strings(i));
        buffer.Add(kLineEnd);
    }
    write(buffer);
    return buffer.GetAsString();
}

void SaveBytes(const String& fileName, std::string_view mark, std::string_view bytes)
{
    TFileStream file(fileName, fmCreate);
    file.WriteBuffer(mark);
    file.WriteBuffer(bytes);
}

}

void THtXMLNode::FastCode(TFastString& FS) const
{
    TPlainWriter writer(FS);
    WalkSubtree<THtNode>(*this, writer);
}

void THtXMLNode::FastFormatCode(TFastString& FS, std::int32_t Level, std::int32_t Spaces) const
{
    TIndentedWriter writer(FS, Level, Spaces);
    WalkSubtree<THtNode>(*this, writer);
}

String THtXMLNode::Code() const
{
    return Document(FInstructions.get(), [this](TFastString& FS) { FastCode(FS); });
}

String THtXMLNode::FormattedCode(std::int32_t Spaces) const
{
    return Document(FInstructions.get(), [this, Spaces](TFastString& FS) { FastFormatCode(FS, 0, Spaces); });
}

std::string THtXMLNode::UTF8Code() const
{
    return Code().ToUtf8();
}

std::string THtXMLNode::UTF8FormattedCode(std::int32_t Spaces) const
{
    return FormattedCode(Spaces).ToUtf8();
}

void THtXMLNode::FastUTF8Code(TFastRawString& FS) const
{
    TFastString text(kDocumentDelta);
    FastCode(text);
    FS.Add(text.GetAsString().ToUtf8());
}

void THtXMLNode::FastUTF8FormatCode(TFastRawString& FS, std::int32_t Level, std::int32_t Spaces) const
{
    TFastString text(kDocumentDelta);
    FastFormatCode(text, Level, Spaces);
    FS.Add(text.GetAsString().ToUtf8());
}

void THtXMLNode::SaveToFileANSI(const String& FileName) const
{
    SaveBytes(FileName, {}, EncodeBytes(Code(), SystemCodePage()));
}

void THtXMLNode::SaveToFileUTF8(const String& FileName) const
{
    SaveBytes(FileName, ByteOrderMarkOf(kUtf8CodePage), UTF8Code());
}

void THtXMLNode::SaveToFileUTF8Format(const String& FileName, std::int32_t Spaces) const
{
    SaveBytes(FileName, ByteOrderMarkOf(kUtf8CodePage), UTF8FormattedCode(Spaces));
}

}
