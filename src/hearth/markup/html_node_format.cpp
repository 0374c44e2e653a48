// Prints a tree as indented HTML.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_write_p.h>

#include <hearth/markup/html_encode.h>
#include <hearth/markup/html_walk_p.h>
#include <hearth/runtime/checked.h>

namespace ht {

namespace {

/// A start tag and its only text stay on one line below this length.
constexpr std::int64_t kShortLine = 64;

bool IsIndentBlock(const THtmlNode& node)
{
    return IsTagIn(node.TagId(), tgIndentBlock);
}

/// A root stands for the document and writes no tag of its own.
bool WritesTag(const THtmlNode& node)
{
    return node.Parent() && !node.Tag().IsEmpty();
}

class TIndentedWriter {
public:
    TIndentedWriter(TFastString& buffer, std::int32_t level, std::int32_t spaces, bool& afterBlock)
        : FBuffer(buffer)
        , FLevel(level)
        , FSpaces(spaces)
        , FAfterBlock(afterBlock)
    {
    }

    bool Enter(const THtmlNode& node)
    {
        switch (FormOf(node)) {
        case nfTagless:
            WriteTagless(node);
            return !node.Parent() && OpenElement(node);
        case nfRaw:
            WriteRaw(node);
            return false;
        case nfMarkup:
            WriteTagless(node);
            return false;
        case nfBare:
            if (FAfterBlock)
                NewLine();
            WriteBareElement(FBuffer, node);
            return false;
        case nfElement:
            break;
        }
        return OpenElement(node);
    }

    void Leave(const THtmlNode& node)
    {
        --FLevel;
        const bool isBlock = IsIndentBlock(node);
        if (WritesTag(node)) {
            if (isBlock) {
                FBuffer.TrimTrailingBlanks();
                if (&node != FShort)
                    NewLine();
            }
            WriteEndTag(FBuffer, node);
        }
        FAfterBlock = isBlock;
    }

private:
    void Indent() { FBuffer.AddSpaces(CheckedMul(FLevel, FSpaces)); }

    void EndLine()
    {
        if (!FBuffer.EndsWith(kLineEnd))
            FBuffer.Add(kLineEnd);
    }

    void NewLine()
    {
        FBuffer.Add(kLineEnd);
        Indent();
    }

    void WriteTagless(const THtmlNode& node)
    {
        switch (node.TagType) {
        case htComment:
            if (FAfterBlock && !FBuffer.EndsWith(kLineEnd))
                NewLine();
            WriteComment(FBuffer, node.Content());
            if (FAfterBlock)
                FBuffer.Add(kLineEnd);
            break;
        case htDirective:
            FBuffer.TrimTrailingSpaces();
            EndLine();
            WriteDirective(FBuffer, node.Content());
            FBuffer.Add(kLineEnd);
            break;
        case htCData:
            WriteCData(FBuffer, node.Content());
            break;
        default:
            WriteText(node.Content());
        }
    }

    void WriteText(std::u16string_view text)
    {
        if (FAfterBlock) {
            if (IsBlankText(text))
                return;
            EndLine();
            Indent();
            text = TrimLeftView(text);
        }
        HtmlEncodeTo(FBuffer, text);
        FAfterBlock = false;
    }

    void WriteRaw(const THtmlNode& node)
    {
        EndLine();
        Indent();
        WriteRawStartTag(FBuffer, node);
        FBuffer.Add(kLineEnd);
        FBuffer.Add(TrimLeftView(node.Content()));
        EndLine();
        Indent();
        WriteEndTag(FBuffer, node);
        FAfterBlock = true;
    }

    bool OpenElement(const THtmlNode& node)
    {
        const std::int32_t before = FBuffer.GetTotalLen();
        const bool isBlock = IsIndentBlock(node);
        if (WritesTag(node)) {
            if (FAfterBlock || isBlock)
                NewLine();
            WriteStartTag(FBuffer, node);
        }
        FAfterBlock = isBlock;
        if (node.GetCount() == 0) {
            if (node.Parent())
                WriteEmptyEnd(FBuffer, node);
            return false;
        }
        if (WritesTag(node))
            FBuffer.AddChar(u'>');
        if (IsShort(node, FBuffer.GetTotalLen() - before)) {
            FShort = &node;
            FAfterBlock = false;
        }
        ++FLevel;
        return true;
    }

    static bool IsShort(const THtmlNode& node, std::int32_t written)
    {
        const THtNode* child = node.FirstChild();
        return node.GetCount() == 1 && child->Tag().IsEmpty()
            && written + static_cast<std::int64_t>(TrimView(child->Content()).size()) < kShortLine;
    }

    TFastString& FBuffer;
    std::int32_t FLevel;
    std::int32_t FSpaces;
    bool& FAfterBlock;
    /// The latest short element: it holds one text, so no other comes between.
    const THtmlNode* FShort = nullptr;
};

}

void THtmlNode::FastFormattedHTML(
    TFastString& FS, std::int32_t Level, std::int32_t Spaces, bool& AfterBlock) const
{
    TIndentedWriter writer(FS, Level, Spaces, AfterBlock);
    WalkSubtree(*this, writer);
}

}
