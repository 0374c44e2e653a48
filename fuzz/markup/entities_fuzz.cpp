// Any text through the encoders and back through the reader of character references.
// SPDX-License-Identifier: MIT
#include "tree_check.h"

#include <hearth/markup/entities.h>
#include <hearth/markup/html_encode.h>

#include <cstring>

namespace {

using ht::String;

using Encoder = String (*)(const String& s, std::int32_t overhead);
using BufferEncoder = void (*)(ht::TFastString& buffer, std::u16string_view s);

/// Even bytes first: UTF-8. Otherwise units as they stand in memory, lone surrogates included.
String TextOf(std::uint8_t mode, std::string_view bytes)
{
    if ((mode & 1U) == 0)
        return String::FromUtf8(bytes);
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
    return String(units);
}

String CheckEncoder(Encoder encode, BufferEncoder encodeTo, const String& text, std::int32_t overhead)
{
    const String encoded = encode(text, -1);
    fuzz::Require(encode(text, overhead) == encoded, "a wrong overhead does no harm");
    ht::TFastString buffer(4);
    encodeTo(buffer, text);
    fuzz::Require(buffer.GetAsString() == encoded, "the encoder of buffers agrees");
    fuzz::Require(encoded.size() != text.size() || encoded.IsSame(text) || text.IsEmpty(),
        "what needs no escape is not copied");
    return encoded;
}

/// True for text that the encoder of text keeps apart: every high surrogate has its partner.
bool HasPairsOnly(std::u16string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!ht::IsHighSurrogate(text[i]))
            continue;
        ++i;
        if (i == text.size() || !ht::IsLowSurrogate(text[i]))
            return false;
    }
    return true;
}

/// A mark in front keeps the blanks and the byte order mark that a document may begin with.
void CheckText(const String& text, const String& encoded)
{
    const String framed = ht::Concat({u"<p>-", encoded, u"</p>"});
    ht::THtmlNode document;
    document.Parse(framed, true);
    if (HasPairsOnly(text))
        fuzz::Require(document.TextContent() == ht::Concat({u"-", text}), "text comes back as it was");
}

void CheckAttribute(const String& text, const String& encoded)
{
    const String framed = ht::Concat({u"<p title=\"", encoded, u"\">"});
    ht::THtmlNode document;
    document.Parse(framed, true);
    const ht::THtNode* node = document.FirstChild();
    fuzz::Require(node && node->GetAttribute(u"title") == text, "a value comes back as it was");
}

/// The text as it stands, as the inside of a quoted value and behind every "&" of it.
void ReadReferences(const String& text)
{
    ht::THtmlNode document;
    document.Parse(ht::Concat({u"<a b='", text, u"' c=", text, u">", text}), true);
    fuzz::CheckTree(document);
    for (std::size_t i = 0; (i = text.View().find(u'&', i)) != std::u16string_view::npos; ++i) {
        const std::u16string_view rest = text.View().substr(i);
        ht::HtEntityDictionary().FindEntity(rest.data(), static_cast<std::int32_t>(rest.size()));
        document.Parse(String(rest), true);
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 5)
        return 0;
    std::int32_t overhead = 0;
    std::memcpy(&overhead, data + 1, sizeof(overhead));
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 5, size - 5);
    const String text = TextOf(data[0], bytes);
    const String encoded = CheckEncoder(ht::HtmlEncode, ht::HtmlEncodeTo, text, overhead);
    fuzz::Require(ht::HtmlEncodeNodeOverhead(text) == encoded.Length() - text.Length(),
        "the overhead is that of the result");
    CheckText(text, encoded);
    CheckAttribute(text, CheckEncoder(ht::HtmlEncodeAttr, ht::HtmlEncodeAttrTo, text, overhead));
    CheckAttribute(text, CheckEncoder(ht::HtmlEncodeXmlAttr, ht::HtmlEncodeXmlAttrTo, text, overhead));
    ReadReferences(text);
    return 0;
}
