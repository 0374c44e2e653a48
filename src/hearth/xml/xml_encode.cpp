// The encoders of XML and JSON: which units they escape, and how.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_encode.h>

#include <hearth/markup/escape_p.h>

namespace ht {

namespace {

using escapes::EscapeBuffer;
using simd::Units8;

constexpr escapes::OverheadTable kXmlOverheads = escapes::MakeOverheads(8, 5);

struct XmlRules {
    static bool IsEscaped(char16_t c) noexcept
    {
        return c < kXmlOverheads.size() ? kXmlOverheads[c] != 0 : IsHighSurrogate(c);
    }

    static std::uint64_t Candidates(Units8 units) noexcept
    {
        return units.InRange(0, 8)
            .Or(units.Equal(Units8::Fill(u'"')))
            .Or(units.Equal(Units8::Fill(u'&')))
            .Or(units.Equal(Units8::Fill(u'<')))
            .Or(units.Equal(Units8::Fill(u'>')))
            .Or(units.Equal(Units8::Fill(0xA0)))
            .Or(units.InRange(0xD800, 0xDBFF))
            .Mask();
    }

    /// The escape of the character at `p`, which moves behind it.
    static std::u16string_view Escape(const char16_t*& p, const char16_t* end, EscapeBuffer& buffer)
    {
        const char16_t c = *p++;
        if (IsHighSurrogate(c))
            return escapes::PairEscape(c, p < end ? *p++ : u'\0', buffer);
        return c == 0xA0 ? std::u16string_view(u"&#160;") : escapes::LowEscape(c);
    }
};

struct JsonRules {
    static constexpr std::u16string_view kUnits = u"\b\t\n\r\"\\";

    static bool IsEscaped(char16_t c) noexcept { return kUnits.find(c) != std::u16string_view::npos; }

    static std::uint64_t Candidates(Units8 units) noexcept
    {
        return units.InRange(u'\b', u'\r')
            .Or(units.Equal(Units8::Fill(u'"')))
            .Or(units.Equal(Units8::Fill(u'\\')))
            .Mask();
    }

    /// Line feed and carriage return are exchanged on purpose, as in all that was written so far.
    static std::u16string_view Escape(const char16_t*& p, const char16_t* /*end*/, EscapeBuffer& /*buffer*/)
    {
        constexpr std::u16string_view kEscapes = u"\\b\\t\\r\\n\\\"\\\\";
        return kEscapes.substr(2 * kUnits.find(*p++), 2);
    }
};

struct StandardJsonRules {
    static bool IsEscaped(char16_t c) noexcept
    {
        return c < u' ' || c == u'"' || c == u'\\' || (c >= 0xD800 && c <= 0xDFFF);
    }

    static std::uint64_t Candidates(Units8 units) noexcept
    {
        return units.InRange(0, 0x1F)
            .Or(units.Equal(Units8::Fill(u'"')))
            .Or(units.Equal(Units8::Fill(u'\\')))
            .Or(units.InRange(0xD800, 0xDFFF))
            .Mask();
    }

    /// A whole pair stays as it is.
    static std::u16string_view Escape(const char16_t*& p, const char16_t* end, EscapeBuffer& buffer)
    {
        constexpr std::u16string_view kUnits = u"\b\t\n\f\r\"\\";
        constexpr std::u16string_view kEscapes = u"\\b\\t\\n\\f\\r\\\"\\\\";
        const char16_t* const unit = p++;
        if (const std::size_t known = kUnits.find(*unit); known != std::u16string_view::npos)
            return kEscapes.substr(2 * known, 2);
        if (IsHighSurrogate(*unit) && p < end && IsLowSurrogate(*p)) {
            ++p;
            return {unit, 2};
        }
        return NumberEscape(*unit, buffer);
    }

    static std::u16string_view NumberEscape(char16_t unit, EscapeBuffer& buffer)
    {
        constexpr std::u16string_view kDigits = u"0123456789abcdef";
        buffer[0] = u'\\';
        buffer[1] = u'u';
        for (std::size_t i = 0; i < 4; ++i)
            buffer[2 + i] = kDigits[static_cast<std::size_t>(unit) >> (12 - 4 * i) & 0xFU];
        return {buffer.data(), 6};
    }
};

}

String XMLEncode(const String& s, std::int32_t /*Overhead*/)
{
    return escapes::Encode<XmlRules>(s);
}

String JSONEncode(const String& s)
{
    return escapes::Encode<JsonRules>(s);
}

String JSONEscape(const String& s)
{
    return escapes::Encode<StandardJsonRules>(s);
}

void XMLEncodeTo(TFastString& FS, std::u16string_view s)
{
    escapes::EncodeTo<XmlRules>(FS, s);
}

void JSONEncodeTo(TFastString& FS, std::u16string_view s)
{
    escapes::EncodeTo<JsonRules>(FS, s);
}

void JSONEscapeTo(TFastString& FS, std::u16string_view s)
{
    escapes::EncodeTo<StandardJsonRules>(FS, s);
}

}
