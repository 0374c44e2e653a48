// Finding out how a text was encoded, and reading on in that encoding.
// SPDX-License-Identifier: MIT
#include <hearth/markup/html_parser.h>

#include <hearth/markup/html_node.h>
#include <hearth/markup/narrow_p.h>
#include <hearth/runtime/encoding.h>
#include <hearth/runtime/streams.h>
#include <hearth/runtime/text_number.h>

#include <algorithm>
#include <array>
#include <string>

namespace ht {

namespace {

constexpr std::size_t kDetectionBytes = THtmlParser::kDetectionBytes;

struct CharsetRow {
    std::u16string_view Part;
    std::uint32_t CodePage;
};

/// Tried in this order; "iso-8859-1" stands for its extensions too.
constexpr CharsetRow kCharsets[] = {
    {u"iso-8859-1", 1252},
    {u"iso-8859-2", 28592},
    {u"iso-8859-5", 28595},
    {u"iso-8859-6", 28596},
    {u"iso-8859-7", 28597},
    {u"iso-8859-9", 1254},
    {u"iso-8859-8", 1255},
    {u"koi8", 20866},
    {u"windows-", 0}, // the number stands behind
    {u"gb2312", 936},
    {u"utf-8", kUtf8CodePage},
    {u"big5", 950},
};

/// Length of a multi-byte UTF-8 sequence at the start of `bytes`: 2 or 3, 0 where the test ends with what was
/// seen, -1 where the bytes are certainly no UTF-8.
int SequenceLength(std::string_view bytes)
{
    const auto at = [bytes](std::size_t i) {
        return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
    };
    const auto within = [](unsigned byte, unsigned low, unsigned high) {
        return byte >= low && byte <= high;
    };
    const unsigned lead = at(0);
    if (lead == 0xC0 || lead == 0xC1)
        return -1;
    if (within(lead, 0xC2, 0xDF))
        return within(at(1), 0x80, 0xBF) ? 2 : -1;
    const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
    const unsigned high = lead == 0xED ? 0x9F : 0xBF;
    return within(lead, 0xE0, 0xEF) && within(at(1), low, high) && within(at(2), 0x80, 0xBF) ? 3 : 0;
}

/// The bytes that are looked at. A sequence that the cut goes through would make sound UTF-8 look broken.
std::string_view DetectionPart(std::string_view bytes)
{
    if (bytes.size() < kDetectionBytes)
        return bytes;
    bytes = bytes.substr(0, kDetectionBytes);
    for (std::size_t behind = 1; behind <= 2; ++behind) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - behind]);
        const std::size_t length = byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        if (length > behind)
            return bytes.substr(0, bytes.size() - behind);
    }
    return bytes;
}

std::string ReadStart(const String& fileName)
{
    TFileStream file(fileName, fmOpenRead);
    std::string bytes(kDetectionBytes, '\0');
    bytes.resize(
        static_cast<std::size_t>(std::max<std::int64_t>(0, file.Read(bytes.data(), kDetectionBytes))));
    return bytes;
}

/// What stands behind "charset=", without blanks and quotes in front; empty when nothing is declared.
std::u16string_view DeclaredCharset(std::u16string_view text)
{
    const std::size_t word = text.find(u"charset");
    const std::size_t equals = word == std::u16string_view::npos ? word : text.find(u'=', word);
    if (equals == std::u16string_view::npos)
        return {};
    const std::size_t start = text.find_first_not_of(u" \"", equals + 1);
    constexpr std::u16string_view kEnds(u"\0\">", 3);
    const std::size_t end = start == std::u16string_view::npos ? start : text.find_first_of(kEnds, start);
    if (end == std::u16string_view::npos)
        throw ERangeError();
    return text.substr(start, end - start);
}

/// 0 for what cannot be decoded here.
std::uint32_t PageOfToldCharset(std::u16string_view charset)
{
    const std::uint32_t page = CodePageOfCharset(charset);
    return IsKnownCodePage(page) ? page : 0;
}

/// Of UTF-16 that was recognised without a mark by the zero bytes of its ASCII part: they stand first where
/// the order is big endian.
std::uint32_t PageOfZeros(std::string_view bytes)
{
    std::array<std::size_t, 2> zeros{};
    for (std::size_t i = 0; i < std::min(bytes.size(), kDetectionBytes); ++i)
        zeros[i % 2] += bytes[i] == '\0' ? 1U : 0U;
    return zeros[0] > zeros[1] ? kUtf16BigEndianCodePage : kUtf16LittleEndianCodePage;
}

/// What the bytes of a page tell about themselves; 0 when that is nothing.
std::uint32_t DetectPage(std::string_view bytes)
{
    std::uint32_t declared = 0;
    THtmlEncoding encoding = heDefault;
    try {
        encoding = THtmlParser::GetBytesEncoding(bytes, declared);
    } catch (const ERangeError&) {
        return 0; // the declaration is cut off at the last byte looked at: the parser will meet all of it
    }
    if (encoding == heUTF8)
        return kUtf8CodePage;
    if (encoding == heUTF16)
        return PageOfZeros(bytes);
    return IsKnownCodePage(declared) ? declared : 0;
}

}

bool IsUTF8Bytes(std::string_view bytes)
{
    bool seen = false;
    for (std::size_t i = 0; i < bytes.size();) {
        if (static_cast<unsigned char>(bytes[i]) < 0x80) {
            ++i;
            continue;
        }
        const int length = SequenceLength(bytes.substr(i));
        if (length <= 0)
            return length == 0 && seen;
        seen = true;
        i += static_cast<std::size_t>(length);
    }
    return seen;
}

bool IsUTF8(std::u16string_view text)
{
    const std::u16string_view part = text.substr(0, text.find(u'\0'));
    const auto isWide = [](char16_t c) { return c > 0xFF; };
    return std::none_of(part.begin(), part.end(), isWide)
        && IsUTF8Bytes(std::string(part.begin(), part.end()));
}

std::uint32_t THtmlParser::CharsettoCodepage(std::u16string_view ACharset)
{
    for (const CharsetRow& row : kCharsets) {
        const std::size_t found = ACharset.find(row.Part);
        if (found == std::u16string_view::npos)
            continue;
        if (row.CodePage != 0)
            return row.CodePage;
        return static_cast<std::uint32_t>(
            std::max(0, StrToIntDef(ACharset.substr(found + row.Part.size(), 4), 0)));
    }
    return 0;
}

THtmlEncoding THtmlParser::GetFileEncoding(const String& AFileName, std::uint32_t& ACodePage)
{
    return GetBytesEncoding(ReadStart(AFileName), ACodePage);
}

THtmlEncoding THtmlParser::GetBytesEncoding(std::string_view bytes, std::uint32_t& ACodePage)
{
    ACodePage = 0;
    bytes = DetectionPart(bytes);
    const THtByteOrderMark mark = DetectByteOrderMark(bytes).Mark;
    if (mark == bomUtf8)
        return heUTF8;
    // Without a mark, every second byte of the ASCII part of UTF-16 is zero.
    if (mark == bomUtf16LittleEndian || bytes.find(std::string_view("\0<", 2)) != std::string_view::npos)
        return heUTF16;
    if (IsUTF8Bytes(bytes))
        return heUTF8;
    const String text = String::FromLatin1(bytes).ToLowerAscii();
    const std::u16string_view charset = DeclaredCharset(text);
    if (!charset.empty())
        ACodePage = CharsettoCodepage(charset);
    return heDefault;
}

THtmlPageText THtmlParser::DecodePage(std::string_view bytes, std::u16string_view charset)
{
    const std::uint32_t told = PageOfToldCharset(charset);
    const std::uint32_t page = told != 0 ? told : DetectPage(bytes);
    if (page == 0 && DetectByteOrderMark(bytes).Mark == bomNone)
        return {String::FromLatin1(bytes), false};
    return {DecodeMarkedBytes(bytes, page), true};
}

void THtmlParser::ChangeEncoding(THtmlEncoding NewEncoding, std::uint32_t /*NewCodePage*/)
{
    if (NewEncoding == Encoding || NewEncoding != heUTF8)
        return;
    const std::u16string_view rest = FTokenizer.Parser().Rest();
    const std::size_t headEnd = rest.find(u"</head>");
    // The head is often pure ASCII: the body tells more.
    const bool isUtf8 = IsUTF8(rest.substr(headEnd == std::u16string_view::npos ? 0 : headEnd));
    Encoding = NewEncoding;
    if (!isUtf8)
        return;
    RestartOn(String::FromUtf8(NarrowText(rest)));
    if (Root)
        Root->ChangeEncoding(heUTF8, 0);
}

void THtmlParser::RestartOn(const String& text)
{
    FTokenizer.Restart(text);
}

String THtmlParser::MetaCharset() const
{
    String charset;
    if (SameText(FAttributes.GetAttribute(u"http-equiv"), u"content-type"))
        charset = FAttributes.GetAttribute(u"content").ToLowerAscii();
    return charset.IsEmpty() ? FAttributes.GetAttribute(u"charset").ToLowerAscii() : charset;
}

/// A meta tag may declare the encoding of the text around it, once.
void THtmlParser::CheckMeta()
{
    if (FEncodingProcessed)
        return;
    const String charset = MetaCharset();
    if (charset.IsEmpty())
        return;
    FEncodingProcessed = true;
    if (charset.View().find(u"utf-8") != std::u16string_view::npos)
        return ChangeEncoding(heUTF8, 0);
    const std::uint32_t page = CharsettoCodepage(charset);
    if (page == 0 || Encoding != heDefault || !IsKnownCodePage(page))
        return;
    const String converted = DecodeBytes(NarrowText(FTokenizer.Parser().Rest()), page);
    if (!converted.IsEmpty())
        RestartOn(converted);
    Encoding = heANSI;
    Codepage = page;
    if (Root)
        Root->ChangeEncoding(heANSI, page);
}

}
