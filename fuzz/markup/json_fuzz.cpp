// Any bytes as JSON: cut into tokens, read into a tree, printed as JSON and XML, and both read again.
// SPDX-License-Identifier: MIT
#include "tree_check.h"

#include <hearth/xml/htxml.h>

#include <algorithm>
#include <memory>

namespace {

/// The bits of the first byte.
constexpr unsigned kBytesAsUnits = 1; // else UTF-8
constexpr unsigned kLossless = 2;

/// Every token begins behind the one before and moves the cursor.
void ReadTokens(const ht::String& text)
{
    ht::THtJSONTokenizer tokens(text);
    std::int32_t end = 0;
    try {
        while (tokens.NextToken()) {
            fuzz::Require(tokens.Token().StartPos >= end, "tokens stand one behind the other");
            fuzz::Require(tokens.Token().EndPos > tokens.Token().StartPos, "a token is not empty");
            end = tokens.Token().EndPos;
        }
    } catch (const ht::EHtJSONParserException&) {
        return;
    } catch (const ht::EConvertError&) {
        return;
    }
    fuzz::Require(tokens.Eof(), "the last token ends at the end of the text");
}

/// Null when the text is refused.
std::unique_ptr<ht::THtXMLNode> Read(const ht::String& text)
{
    try {
        return ht::THtXMLNode::CreatefromJSON(text);
    } catch (const ht::EHtJSONParserException&) {
        return nullptr;
    } catch (const ht::EConvertError&) {
        return nullptr;
    }
}

template <class Work> void Tolerate(Work work)
{
    try {
        work();
    } catch (const ht::EHtJSONParserException&) {
        return;
    } catch (const ht::EConvertError&) {
        return;
    }
}

/// The same names, kinds and contents in the same places.
void RequireSame(const ht::THtXMLNode& a, const ht::THtXMLNode& b)
{
    const ht::THtNode* other = &b;
    for (const ht::THtNode* node = &a; node; node = node->NextNodeIn(&a), other = other->NextNodeIn(&b)) {
        fuzz::Require(other && node->Tag() == other->Tag() && node->Content() == other->Content()
                && node->GetCount() == other->GetCount()
                && static_cast<const ht::THtXMLNode*>(node)->JSONKind()
                    == static_cast<const ht::THtXMLNode*>(other)->JSONKind(),
            "what is printed without losses reads back as it was");
    }
    fuzz::Require(!other, "nothing is added");
}

/// What one mode of the reader takes and the other does not: empty names, several objects.
void ReadLossless(const ht::String& text)
{
    Tolerate([&text] {
        const auto root = ht::THtXMLNode::CreateFromLosslessJSON(text);
        fuzz::CheckTree(*root);
        for (const std::int32_t spaces : {0, 1}) {
            const ht::String json = root->LosslessJSON(spaces);
            fuzz::Require(ht::String::FromUtf8(json.ToUtf8()) == json, "a text for any encoding");
            std::unique_ptr<ht::THtXMLNode> again;
            Tolerate([&] { again = ht::THtXMLNode::CreateFromLosslessJSON(json); });
            fuzz::Require(again != nullptr, "what is printed without losses is JSON");
            RequireSame(*root, *again);
        }
    });
}

/// Control characters are printed as they stand, and an element of an array prints one level deeper than it
/// was read; everything else reads back.
bool ReadsBack(const ht::THtXMLNode& root, const ht::String& json, std::int32_t depth)
{
    const auto isControl = [](char16_t c) { return c < u' ' && c != u'\r' && c != u'\n'; };
    const bool hasControl = std::any_of(json.begin(), json.end(), isControl);
    return !hasControl && !root.Tag().IsEmpty() && depth + 1 < ht::HtLimits().JsonDepth;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const bool asUnits = (data[0] & kBytesAsUnits) != 0;
    const ht::String text = asUnits ? ht::String::FromLatin1(bytes) : ht::String::FromUtf8(bytes);
    ReadTokens(text);
    if ((data[0] & kLossless) != 0)
        ReadLossless(text);
    const std::unique_ptr<ht::THtXMLNode> root = Read(text);
    if (!root)
        return 0;
    const std::int32_t depth = fuzz::CheckTree(*root);
    const ht::String json = root->JSON();
    fuzz::Require(root->Clone()->JSON() == json, "a copy prints alike");
    const std::unique_ptr<ht::THtXMLNode> again = Read(json);
    fuzz::Require(again || !ReadsBack(*root, json, depth), "printed JSON is JSON");
    static_cast<void>(root->FormattedCode());
    return 0;
}
