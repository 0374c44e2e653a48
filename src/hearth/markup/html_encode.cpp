// The encoders of HTML: which units they escape, and how.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_encode.h>

#include <hearth/markup/entities.h>
#include <hearth/markup/escape_p.h>

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <cstddef>

namespace ht {

namespace {

using namespace escapes;
using simd::Units8;

constexpr OverheadTable kTextOverheads = MakeOverheads(8, 0);
constexpr OverheadTable kAttrOverheads = MakeOverheads(9, 5);

std::u16string_view NameEscape(const THtEntityRow& row, EscapeBuffer& buffer)
{
    const std::size_t length = row.Name.size();
    buffer[0] = u'&';
    std::copy_n(row.Name.data(), length, buffer.data() + 1);
    buffer[length + 1] = u';';
    return {buffer.data(), length + 2};
}

struct TextRules {
    // The lowest and highest of all named characters, and the two stretches between which texts lie.
    static constexpr char16_t kFirstNamed = 0x2C6;
    static constexpr char16_t kLastAccent = 0x311;
    static constexpr char16_t kFirstSign = 0x20A0;
    static constexpr char16_t kLastSign = 0x2AFF;
    static constexpr char16_t kFirstLigature = 0xFB00;
    static constexpr char16_t kLastLigature = 0xFB04;

    static bool IsEscaped(char16_t c)
    {
        if (c < 256)
            return kTextOverheads[c] != 0;
        return c >= kFirstNamed && (IsHighSurrogate(c) || HtEntityReverseDictionary().Contains(c));
    }

    /// Units of which none is left out that IsEscaped, and few others are taken.
    static std::uint64_t Candidates(Units8 units) noexcept
    {
        Units8 found = units.InRange(0, 8)
                           .Or(units.Equal(Units8::Fill(u'&')))
                           .Or(units.Equal(Units8::Fill(u'<')))
                           .Or(units.Equal(Units8::Fill(u'>')))
                           .Or(units.Equal(Units8::Fill(0xA0)));
        if (units.InRange(kFirstNamed, 0xFFFF).Mask() != 0) {
            found = found.Or(units.InRange(kFirstNamed, kLastAccent))
                        .Or(units.InRange(kFirstSign, kLastSign))
                        .Or(units.InRange(0xD800, 0xDBFF))
                        .Or(units.InRange(kFirstLigature, kLastLigature));
        }
        return found.Mask();
    }

    /// The escape of the character at `p`, which moves behind it.
    static std::u16string_view Escape(const char16_t*& p, const char16_t* end, EscapeBuffer& buffer)
    {
        const char16_t c = *p++;
        if (c < 256)
            return LowEscape(c);
        if (IsHighSurrogate(c))
            return PairEscape(c, p < end ? *p++ : u'\0', buffer);
        return NameEscape(*HtEntityReverseDictionary().FindEntity(c), buffer);
    }
};

struct AttrRules {
    static bool IsEscaped(char16_t c) noexcept { return c < 256 && kAttrOverheads[c] != 0; }

    static std::uint64_t Candidates(Units8 units) noexcept
    {
        return units.InRange(0, 9)
            .Or(units.Equal(Units8::Fill(u'"')))
            .Or(units.Equal(Units8::Fill(u'&')))
            .Or(units.Equal(Units8::Fill(u'<')))
            .Or(units.Equal(Units8::Fill(u'>')))
            .Or(units.Equal(Units8::Fill(0xA0)))
            .Mask();
    }

    static std::u16string_view Escape(const char16_t*& p, const char16_t* /*end*/, EscapeBuffer& /*buffer*/)
    {
        return LowEscape(*p++);
    }
};

struct XmlAttrRules : AttrRules {
    static std::u16string_view Escape(const char16_t*& p, const char16_t* /*end*/, EscapeBuffer& /*buffer*/)
    {
        const char16_t c = *p++;
        return c == 0xA0 ? std::u16string_view(u"&#160;") : LowEscape(c);
    }
};

}

String HtmlEncode(const String& s, std::int32_t /*Overhead*/)
{
    return Encode<TextRules>(s);
}

String HtmlEncodeAttr(const String& s, std::int32_t /*Overhead*/)
{
    return Encode<AttrRules>(s);
}

String HtmlEncodeXmlAttr(const String& s, std::int32_t /*Overhead*/)
{
    return Encode<XmlAttrRules>(s);
}

std::int32_t HtmlEncodeNodeOverhead(std::u16string_view s)
{
    return CheckedLength(EncodedLength<TextRules>(s.data(), s.data() + s.size()) - s.size());
}

void HtmlEncodeTo(TFastString& FS, std::u16string_view s)
{
    EncodeTo<TextRules>(FS, s);
}

void HtmlEncodeAttrTo(TFastString& FS, std::u16string_view s)
{
    EncodeTo<AttrRules>(FS, s);
}

void HtmlEncodeXmlAttrTo(TFastString& FS, std::u16string_view s)
{
    EncodeTo<XmlAttrRules>(FS, s);
}

}
