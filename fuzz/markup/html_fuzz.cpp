// Any bytes as an HTML document: read, checked, printed, and read again.
// SPDX-License-Identifier: MIT
#include "tree_check.h"

#include <hearth/runtime/exceptions.h>

namespace {

/// The bits of the first byte.
constexpr unsigned kBytesAsUnits = 1; // else UTF-8
constexpr unsigned kIgnoreMeta = 2;
constexpr unsigned kXmlMode = 4;

/// What the walk of the items alone does, with the strictness of XML.
void ReadItems(const ht::String& text)
{
    ht::THtmlParser parser(text, true);
    try {
        while (parser.NextItem())
            static_cast<void>(parser.TakeAttributes());
    } catch (const ht::EHtmlParserException&) {
        return; // refused, as it may be
    }
}

void DetectEncoding(std::string_view bytes)
{
    std::uint32_t codePage = 0;
    try {
        ht::THtmlParser::GetBytesEncoding(bytes, codePage);
    } catch (const ht::ERangeError&) {
        return; // the text ends within its declaration
    }
}

void ParseAndPrint(const ht::String& text, bool ignoreMeta)
{
    ht::THtmlNode document;
    document.Parse(text, ignoreMeta);
    fuzz::Require(fuzz::CheckTree(document) <= fuzz::kMaxParsedDepth, "the depth is bounded");
    const ht::String printed = fuzz::PrintAll(document);
    ht::THtmlNode again;
    again.Parse(printed, true);
    fuzz::Require(fuzz::CheckTree(again) <= fuzz::kMaxParsedDepth, "the depth is bounded when read again");
    fuzz::PrintAll(again);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const unsigned mode = data[0];
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const bool asUnits = (mode & kBytesAsUnits) != 0;
    const ht::String text = asUnits ? ht::String::FromLatin1(bytes) : ht::String::FromUtf8(bytes);
    DetectEncoding(bytes);
    if ((mode & kXmlMode) != 0)
        ReadItems(text);
    else
        ParseAndPrint(text, (mode & kIgnoreMeta) != 0);
    return 0;
}
