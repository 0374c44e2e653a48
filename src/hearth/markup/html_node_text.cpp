// Extracts the text of a tree: as a reader sees it, in one fast pass, or as descendants define it.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_node.h>

#include <hearth/markup/html_walk_p.h>
#include <hearth/markup/html_write_p.h>

#include <hearth/foundation/fast_string.h>

#include <cstddef>
#include <string>
#include <vector>

namespace ht {

namespace {

constexpr std::int32_t kRawTextDelta = 4096;

bool IsTextBlock(const THtNode& node)
{
    return IsTagIn(node.TagId(), tgTextBlock);
}

bool IsCell(const THtNode& node)
{
    return node.TagId() == tags::kTd || node.TagId() == tags::kTh;
}

bool IsBlankTextNode(const THtNode& node)
{
    return node.Tag().IsEmpty() && !HasNoText(node.TagType) && IsBlankText(node.Content());
}

/// Each run of blank texts stands in front of one node only, so asking all children costs linear time.
bool HasContentBefore(const THtNode& node)
{
    const THtNode* earlier = node.PreviousSibling();
    while (earlier && IsBlankTextNode(*earlier))
        earlier = earlier->PreviousSibling();
    return earlier != nullptr;
}

/// A block directly in a block or body starts a line only where something stands before it.
bool StartsLine(const THtNode& node)
{
    const THtNode* parent = node.Parent();
    if (!parent || !(IsTextBlock(*parent) || parent->TagId() == tags::kBody))
        return true;
    return HasContentBefore(node);
}

/// Stops at the first element behind the cell, so that a row costs linear time.
bool HasTagBehind(const THtNode& node)
{
    const THtNode* later = node.NextSibling();
    while (later && later->Tag().IsEmpty())
        later = later->NextSibling();
    return node.Parent() && later;
}

/// Builds the readable text in one buffer. The text of a block is trimmed on the left; a block that starts a
/// line is trimmed on the right too and gets a line break in front, even if blanks were all that it held.
/// Here that means: blanks are not even appended while the innermost block that has begun is empty, the line
/// breaks wait until a block gets its first unit, and closing a block cuts blanks off the end of the buffer,
/// back to where the block started at most.
class TReadableText {
public:
    bool Enter(const THtmlNode& node)
    {
        const bool isWalked = !HasNoText(node.TagType) && node.TagId() != tags::kNoscript;
        if (isWalked && IsTextBlock(node))
            OpenBlock(StartsLine(node));
        if (node.TagId() == tags::kBr)
            Append(kLineEnd);
        else if (node.TagId() != tags::kA && node.TagId() != tags::kImg && !HasNoText(node.TagType))
            Append(node.Content());
        return isWalked;
    }

    void Leave(const THtmlNode& node)
    {
        if (IsTextBlock(node))
            CloseBlock();
        else if (IsCell(node) && HasTagBehind(node))
            Append(u"\t");
    }

    String Text() const { return String(std::u16string_view(FText)); }

private:
    struct TBlock {
        std::size_t Start; // where its text starts in the buffer, once it has got a unit
        bool StartsLine;
    };

    void OpenBlock(bool startsLine)
    {
        FBlocks.push_back({0, startsLine});
        FWaitingTrimmed += startsLine ? 0 : 1;
    }

    void Append(std::u16string_view text)
    {
        // Blanks, and the line breaks that they would cause further in, are trimmed off by a block that has
        // nothing yet.
        if (text.empty() || (FWaitingTrimmed > 0 && IsBlankText(text)))
            return;
        FWaitingTrimmed = 0;
        for (; FBegun < FBlocks.size(); ++FBegun) {
            TBlock& block = FBlocks[FBegun];
            if (block.StartsLine)
                AppendTrimmed(kLineEnd);
            block.Start = FText.size();
        }
        AppendTrimmed(text);
    }

    /// Appends to the innermost of the blocks that have begun.
    void AppendTrimmed(std::u16string_view text)
    {
        if (FBegun > 0 && FText.size() == FBlocks[FBegun - 1].Start)
            text = TrimLeftView(text);
        FText += text;
    }

    void CloseBlock()
    {
        const TBlock block = FBlocks.back();
        if (FBegun == FBlocks.size()) {
            const std::u16string_view text = std::u16string_view(FText).substr(block.Start);
            if (block.StartsLine)
                FText.resize(block.Start + TrimRightView(text).size());
            --FBegun;
        } else if (!block.StartsLine) {
            --FWaitingTrimmed;
        }
        FBlocks.pop_back();
    }

    std::u16string FText;
    std::vector<TBlock> FBlocks; // open, from the outside in
    std::size_t FBegun = 0; // so many of them have got a unit; a block begins after those around it
    std::size_t FWaitingTrimmed = 0; // so many of the others start no line
};

class TFastText {
public:
    explicit TFastText(TFastString& buffer)
        : FBuffer(buffer)
    {
    }

    bool Enter(const THtmlNode& node)
    {
        switch (node.TagId()) {
        case tags::kBr:
            FBuffer.Add(kLineEnd);
            break;
        case tags::kA:
            AddAttribute(node, u"href");
            AddAttribute(node, u"title");
            break;
        case tags::kText:
            FBuffer.AddChar(u' ');
            break;
        case tags::kImg:
            break;
        default:
            if (!HasNoText(node.TagType))
                FBuffer.Add(node.Content());
        }
        return node.TagId() != tags::kHead;
    }

    void Leave(const THtmlNode& node)
    {
        if (IsTextBlock(node) || IsCell(node) || node.TagId() == tags::kText)
            FBuffer.Add(kLineEnd);
    }

private:
    void AddAttribute(const THtmlNode& node, std::u16string_view name)
    {
        if (node.HasAttribute(name))
            FBuffer.AddChar(u' ').Add(node.GetAttribute(name)).AddChar(u' ');
    }

    TFastString& FBuffer;
};

class TRawText {
public:
    explicit TRawText(TFastString& buffer)
        : FBuffer(buffer)
    {
    }

    bool Enter(const THtmlNode& node)
    {
        if (HasNoText(node.TagType) || node.TagId() == tags::kNoscript)
            return false;
        FBuffer.Add(node.RawText());
        return true;
    }

    void Leave(const THtmlNode& /*node*/) { }

private:
    TFastString& FBuffer;
};

}

String THtmlNode::GetInnerText() const
{
    TReadableText text;
    WalkSubtree(*this, text);
    return text.Text();
}

void THtmlNode::FastInnerText(TFastString& FS) const
{
    TFastText text(FS);
    WalkSubtree(*this, text);
}

String THtmlNode::GetRawInnerText() const
{
    TFastString buffer(kRawTextDelta);
    TRawText text(buffer);
    WalkSubtree(*this, text);
    return buffer.GetAsString();
}

}
