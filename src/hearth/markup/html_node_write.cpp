// Prints a tree as HTML, without any white space of its own.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_write_p.h>

#include <hearth/markup/html_encode.h>
#include <hearth/markup/html_walk_p.h>

namespace ht {

namespace {

/// Chunks of the documents that are assembled here.
constexpr std::int32_t kDocumentDelta = 65500;

/// A body inside another body is kept as "xbody" and written as what it was.
std::u16string_view PrintedTag(const THtmlNode& node)
{
    return node.TagId() == tags::kXBody ? std::u16string_view(u"body") : node.Tag().View();
}

bool TellsContentType(const THtmlNode& node)
{
    return node.TagId() == tags::kMeta && SameText(node.GetAttribute(u"http-equiv"), u"content-type");
}

class TPlainWriter {
public:
    explicit TPlainWriter(TFastString& buffer)
        : FBuffer(buffer)
    {
    }

    bool Enter(const THtmlNode& node)
    {
        switch (FormOf(node)) {
        case nfTagless:
            WriteTagless(node);
            return !node.Parent();
        case nfRaw:
            WriteRawStartTag(FBuffer, node);
            FBuffer.Add(node.Content());
            WriteEndTag(FBuffer, node);
            return false;
        case nfMarkup:
            WriteTagless(node);
            return false;
        case nfBare:
            WriteBareElement(FBuffer, node);
            return false;
        case nfElement:
            break;
        }
        WriteStartTag(FBuffer, node);
        if (node.GetCount() == 0) {
            WriteEmptyEnd(FBuffer, node);
            return false;
        }
        FBuffer.AddChar(u'>');
        return true;
    }

    void Leave(const THtmlNode& node)
    {
        if (!node.Tag().IsEmpty())
            WriteEndTag(FBuffer, node);
    }

private:
    void WriteTagless(const THtmlNode& node)
    {
        switch (node.TagType) {
        case htComment:
            return WriteComment(FBuffer, node.Content());
        case htDirective:
            return WriteDirective(FBuffer, node.Content());
        case htCData:
            return WriteCData(FBuffer, node.Content());
        default:
            return HtmlEncodeTo(FBuffer, node.Content());
        }
    }

    TFastString& FBuffer;
};

}

void WriteComment(TFastString& FS, std::u16string_view content)
{
    FS.Add(u"<!--").Add(content).Add(u"-->");
}

void WriteDirective(TFastString& FS, std::u16string_view content)
{
    FS.Add(u"<?").Add(content).Add(u"?>");
}

void WriteCData(TFastString& FS, std::u16string_view content)
{
    FS.Add(u"<![CDATA[").Add(content).Add(u"]]>");
}

TNodeForm FormOf(const THtmlNode& node)
{
    if (node.Tag().IsEmpty())
        return nfTagless;
    if (node.TagId() == tags::kScript || node.TagId() == tags::kStyle)
        return nfRaw;
    const bool hasAttributes = node.Attributes() && node.Attributes()->Count() > 0;
    const bool isMarkup = node.TagType == htComment || node.TagType == htDirective;
    if (isMarkup && node.GetCount() == 0 && !hasAttributes)
        return nfMarkup;
    return node.Attributes() || node.HasNodeList() ? nfElement : nfBare;
}

void WriteRawStartTag(TFastString& FS, const THtmlNode& node)
{
    FS.AddChar(u'<').Add(node.Tag());
    // In contrast to other elements a bare attribute is written with its value here.
    if (node.Attributes())
        FS.AddChar(u' ').Add(node.Attributes()->AsString());
    FS.AddChar(u'>');
}

void WriteBareElement(TFastString& FS, const THtmlNode& node)
{
    FS.AddChar(u'<').Add(node.Tag());
    if (IsTagIn(node.TagId(), tgVoid))
        FS.Add2Char(u'/', u'>');
    else
        FS.Add(u"></").Add(node.Tag()).AddChar(u'>');
}

void WriteStartTag(TFastString& FS, const THtmlNode& node)
{
    FS.AddChar(u'<').Add(PrintedTag(node));
    if (!node.Attributes())
        return;
    if (TellsContentType(node)) {
        FS.Add(u" http-equiv=\"Content-Type\" content=\"text/html;");
        if (!FS.Charset.IsEmpty())
            FS.Add(u" charset=").Add(FS.Charset);
        FS.AddChar(u'"');
    } else {
        node.Attributes()->FastAsString(FS);
    }
}

void WriteEmptyEnd(TFastString& FS, const THtmlNode& node)
{
    if (IsTagIn(node.TagId(), tgVoid)) {
        FS.Add2Char(u'/', u'>');
    } else {
        FS.AddChar(u'>');
        WriteEndTag(FS, node);
    }
}

void WriteEndTag(TFastString& FS, const THtmlNode& node)
{
    FS.Add2Char(u'<', u'/').Add(PrintedTag(node)).AddChar(u'>');
}

void THtmlNode::FastInnerHTML(TFastString& FS) const
{
    TPlainWriter writer(FS);
    WalkSubtree(*this, writer);
}

String THtmlNode::GetOuterHTML() const
{
    TFastString buffer(kDocumentDelta);
    FastInnerHTML(buffer);
    return buffer.GetAsString();
}

String THtmlNode::GetInnerHTML() const
{
    TFastString buffer(kDocumentDelta);
    for (const THtNode* child : Children())
        static_cast<const THtmlNode*>(child)->FastInnerHTML(buffer);
    return buffer.GetAsString();
}

}
