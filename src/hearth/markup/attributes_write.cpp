// Prints attributes.
// SPDX-License-Identifier: MIT
#include <hearth/markup/attributes.h>

#include <hearth/foundation/fast_raw_string.h>
#include <hearth/foundation/fast_string.h>

#include <hearth/markup/html_encode.h>

namespace ht {

namespace {

constexpr std::int32_t kAttributesDelta = 128;

void WriteValue(
    TFastString& FS, const THtAttribute& attribute, void (*encodeTo)(TFastString&, std::u16string_view))
{
    FS.Add(attribute.Name).Add2Char(u'=', u'"');
    encodeTo(FS, attribute.Value);
    FS.AddChar(u'"');
}

}

String THtAttributes::AsString() const
{
    TFastString buffer(kAttributesDelta);
    for (const THtAttribute& attribute : *this) {
        if (buffer.GetTotalLen() > 0)
            buffer.AddChar(u' ');
        WriteValue(buffer, attribute, &HtmlEncodeAttrTo);
    }
    return buffer.GetAsString();
}

void THtAttributes::FastAsString(TFastString& FS) const
{
    for (const THtAttribute& attribute : *this) {
        FS.AddChar(u' ');
        if (CaseSensitive)
            WriteValue(FS, attribute, &HtmlEncodeXmlAttrTo);
        else if (attribute.Name == attribute.Value)
            FS.Add(attribute.Value);
        else
            WriteValue(FS, attribute, &HtmlEncodeAttrTo);
    }
}

void THtAttributes::FastAsUTF8String(TFastRawString& FS) const
{
    for (const THtAttribute& attribute : *this) {
        FS.AddChar(' ');
        if (!CaseSensitive && attribute.Name == attribute.Value) {
            FS.AddUTF8(attribute.Value);
            continue;
        }
        // The value goes in as one piece: what stands next to a surrogate is joined with it.
        const String value =
            CaseSensitive ? HtmlEncodeXmlAttr(attribute.Value) : HtmlEncodeAttr(attribute.Value);
        FS.AddUTF8(attribute.Name).Add2Char('=', '"').AddUTF8(value).AddChar('"');
    }
}

}
