// Text, quoted strings and the character references in both.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_tokenizer.h>

#include <hearth/markup/entities.h>
#include <hearth/markup/html_tokenizer_plain_p.h>
#include <hearth/runtime/simd_p.h>

#include <utility>

namespace ht {

namespace {

/// Names of references are never looked for beyond this many characters.
constexpr std::ptrdiff_t kMaxReference = 25;
/// The longest name of a reference that is known.
constexpr std::ptrdiff_t kLongestName = 31;

}

void THTMLTokenizer::ReadText()
{
    FToken.Name = ReadUpTo(u'<');
    FToken.CType = htString;
}

void THTMLTokenizer::ReadString()
{
    FToken.Name = ReadQuoted();
    FToken.CType = htString;
}

void THTMLTokenizer::ReadTextAgain()
{
    const TLeftText kind = std::exchange(FLeftText, ltNothing);
    const char16_t* const here = std::exchange(FParser.p, FLeftFrom);
    FToken.Name = kind == ltName ? ReadKnownTag() : kind == ltQuoted ? ReadQuoted() : ReadUpTo(u'<');
    FParser.p = here;
}

/// A short name at the cursor that is known to be a tag.
const String& THTMLTokenizer::ReadKnownTag() const
{
    const std::u16string_view name =
        FParser.Rest().substr(0, static_cast<std::size_t>(ReadShortName(FParser.p).Length));
    return FTagNames->Find(RSHash(name), name)->Value;
}

/// Reads up to `end`, where the cursor then stands; a reference that takes more moves it on to the next text
/// end.
String THTMLTokenizer::ReadResolved(const char16_t* end, std::u16string_view prefix)
{
    const char16_t* from = FParser.p;
    const char16_t* reference = simd::FindAny(from, end, u'&');
    const char16_t mark = end < FParser.pend ? *end : u'\0';
    FBuffer.assign(prefix);
    for (;;) {
        FBuffer.append(from, reference);
        FParser.p = reference;
        if (reference == end)
            return String(FBuffer);
        ++FParser.p;
        AppendCodePoint(Escape());
        from = FParser.p;
        // A loosely matched reference may swallow the mark that ended the text.
        if (from > end)
            end = simd::FindAny(from, FParser.pend, mark);
        reference = simd::FindAny(from, end, u'&');
    }
}

/// The five commonest references, by their first letters only.
std::int64_t THTMLTokenizer::EscapeLoose()
{
    const std::u16string_view rest = FParser.Rest();
    const auto matched = [this](std::int32_t length, char16_t result) {
        FParser.Skip(length);
        return std::int64_t{result};
    };
    if (rest.starts_with(u"lt;"))
        return matched(3, u'<');
    if (rest.starts_with(u"gt;"))
        return matched(3, u'>');
    if (rest.starts_with(u"quo"))
        return matched(5, u'"');
    if (rest.starts_with(u"amp"))
        return matched(4, u'&');
    if (rest.starts_with(u"nbs"))
        return matched(rest.size() > 4 && rest[4] == u';' ? 5 : 4, u'\u00A0');
    return -1;
}

/// Resolves the reference behind a "&"; "&" itself stands for everything that is none.
std::int64_t THTMLTokenizer::Escape()
{
    if (FExactXML)
        return EscapeExact();
    const std::int64_t loose = EscapeLoose();
    if (loose >= 0)
        return loose;
    const char16_t* const from = FParser.p;
    const char16_t* end = from;
    while (end - from < kMaxReference && *end != 0 && *end != u';' && *end != u' ')
        ++end;
    if (*from == u'#')
        return EscapeNumber(end);
    if (*end != u';')
        return u'&';
    const std::int32_t code = HtEntityDictionary().FindEntity(from, static_cast<std::int32_t>(end - from));
    if (code != 0) {
        FParser.p = end + 1;
        return code;
    }
    FParser.Next(); // one letter of an unknown name is lost on purpose
    return u'&';
}

/// A number of any length, or a known name with its ";". An unknown name stays as it stands.
std::int64_t THTMLTokenizer::EscapeExact()
{
    const char16_t* const from = FParser.p;
    if (*from == u'#') {
        const std::int64_t code = EscapeNumber(from); // where it ends shows behind it
        FParser.Skip(*FParser.p == u';' ? 1 : 0);
        return code;
    }
    const char16_t* end = from;
    while (end - from < kLongestName && *end != 0 && *end != u';')
        ++end;
    const std::int32_t code =
        *end != u';' ? 0 : HtEntityDictionary().FindEntity(from, static_cast<std::int32_t>(end - from));
    if (code == 0)
        return u'&';
    FParser.p = end + 1;
    return code;
}

std::int64_t THTMLTokenizer::EscapeNumber(const char16_t* nameEnd)
{
    const char16_t* const from = FParser.p;
    FParser.Next();
    std::int64_t code = 0;
    if (*FParser.p == u'x') {
        FParser.Next();
        code = FParser.ReadHex();
    } else {
        code = FParser.ReadInt();
    }
    if (code < 0) {
        FParser.p = from; // a negative number is literal text
        return u'&';
    }
    if (*nameEnd == u';')
        FParser.p = nameEnd + 1;
    return code;
}

void THTMLTokenizer::AppendCodePoint(std::int64_t code)
{
    if (code < 0x10000) {
        FBuffer.push_back(static_cast<char16_t>(code));
    } else if (code < 0x110000) {
        FBuffer.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
        FBuffer.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
    } else {
        FBuffer.append(2, u' ');
    }
}

}
