// Code pages: UTF-8, UTF-16 and Latin 1 by own code, one-byte pages by tables, the others by ICU.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/encoding.h>

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/storage.h>
#include <hearth/runtime/unicode_p.h>

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>

namespace ht {

namespace {

constexpr std::uint32_t kLatin1Page = 28591;

struct PageName {
    std::uint32_t page;
    const char* name;
};

constexpr PageName kPages[] = {
#include "encoding_table.inc"
};

/// Labels of the web and of mail, looked up first: several mean a wider page there than they say, and some
/// name none that a converter knows.
constexpr PageName kLabels[] = {
    {1252, "ansi"},
    {1252, "ascii"},
    {1252, "us-ascii"},
    {1252, "ansi_x3.4-1968"},
    {1252, "iso-8859-1"},
    {1252, "iso8859-1"},
    {1252, "iso_8859-1"},
    {1252, "latin1"},
    {1252, "latin-1"},
    {1252, "l1"},
    {1252, "x-cp1252"},
    {1254, "iso-8859-9"},
    {1254, "iso8859-9"},
    {1254, "latin5"},
    {874, "iso-8859-11"},
    {874, "tis-620"},
    {932, "shift_jis"},
    {932, "shift-jis"},
    {932, "sjis"},
    {932, "x-sjis"},
    {936, "gb2312"},
    {936, "gb_2312-80"},
    {936, "x-gbk"},
    {949, "euc-kr"},
    {949, "ks_c_5601-1987"},
    {950, "big5"},
    {950, "big5-hkscs"},
    {950, "x-x-big5"},
    {kUtf8CodePage, "utf-8"},
    {kUtf8CodePage, "utf8"},
    {kUtf8CodePage, "unicode-1-1-utf-8"},
    {kUtf16LittleEndianCodePage, "utf-16"},
    {kUtf16LittleEndianCodePage, "utf-16le"},
    {kUtf16LittleEndianCodePage, "unicode"},
    {kUtf16BigEndianCodePage, "utf-16be"},
};

std::atomic<std::uint32_t> systemCodePage = kDefaultSystemCodePage;

const char* ConverterName(std::uint32_t codePage) noexcept
{
    for (const PageName& row : kPages) {
        if (row.page == codePage)
            return row.name;
    }
    return nullptr;
}

[[noreturn]] void RaiseUnknownPage()
{
    throw EConvertError(u"Invalid code page"_s);
}

struct CloseConverter {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

void ReplaceBytes(const void*, UConverterToUnicodeArgs* arguments, const char*, std::int32_t,
    UConverterCallbackReason reason, UErrorCode* error)
{
    if (reason > UCNV_IRREGULAR)
        return;
    *error = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(arguments, &kReplacement, 1, 0, error);
}

void ReplaceUnits(const void*, UConverterFromUnicodeArgs* arguments, const char16_t*, std::int32_t, UChar32,
    UConverterCallbackReason reason, UErrorCode* error)
{
    if (reason > UCNV_IRREGULAR)
        return;
    *error = U_ZERO_ERROR;
    const char16_t* mark = u"?";
    ucnv_cbFromUWriteUChars(arguments, &mark, mark + 1, 0, error);
}

/// A fresh converter: they carry state, and opening one costs little once its tables are loaded.
Converter OpenConverter(std::uint32_t codePage)
{
    const char* name = ConverterName(codePage);
    if (!name)
        RaiseUnknownPage();
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &error));
    if (U_FAILURE(error) || !converter)
        RaiseUnknownPage();
    ucnv_setToUCallBack(converter.get(), ReplaceBytes, nullptr, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(converter.get(), ReplaceUnits, nullptr, nullptr, nullptr, &error);
    if (U_FAILURE(error))
        RaiseUnknownPage();
    return converter;
}

std::u16string DecodeByConverter(std::string_view bytes, UConverter* converter)
{
    std::u16string text;
    const char* p = bytes.data();
    UErrorCode error = U_BUFFER_OVERFLOW_ERROR;
    while (error == U_BUFFER_OVERFLOW_ERROR) {
        char16_t piece[1024];
        char16_t* out = piece;
        error = U_ZERO_ERROR;
        ucnv_toUnicode(
            converter, &out, std::end(piece), &p, bytes.data() + bytes.size(), nullptr, true, &error);
        text.append(piece, out);
    }
    return text;
}

std::string EncodeByConverter(std::u16string_view text, UConverter* converter)
{
    std::string bytes;
    const char16_t* p = text.data();
    UErrorCode error = U_BUFFER_OVERFLOW_ERROR;
    while (error == U_BUFFER_OVERFLOW_ERROR) {
        char piece[1024];
        char* out = piece;
        error = U_ZERO_ERROR;
        ucnv_fromUnicode(
            converter, &out, std::end(piece), &p, text.data() + text.size(), nullptr, true, &error);
        bytes.append(piece, out);
    }
    return bytes;
}

/// Encodes in a page with one byte a character; a surrogate pair is one character too.
template <class ByteOf> std::string EncodeByteWise(std::u16string_view text, ByteOf byteOf)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        bytes += byteOf(text[i]);
        if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
            ++i;
    }
    return bytes;
}

/// A page with one byte a character, both ways.
class ByteTable {
public:
    constexpr explicit ByteTable(const std::array<char16_t, 256>& units)
        : FUnits(units)
    {
        for (std::size_t i = 0; i < units.size(); ++i)
            FBytes[i] = {units[i], static_cast<unsigned char>(i)};
        std::sort(FBytes.begin(), FBytes.end());
    }

    String Decode(std::string_view bytes) const
    {
        char16_t* units = nullptr;
        String text = String::Uninitialized(bytes.size(), units);
        for (char byte : bytes)
            *units++ = FUnits[static_cast<unsigned char>(byte)];
        return text;
    }

    std::string Encode(std::u16string_view text) const
    {
        return EncodeByteWise(text, [this](char16_t unit) {
            return unit < 0x80 && FUnits[unit] == unit ? static_cast<char>(unit) : Find(unit);
        });
    }

private:
    char Find(char16_t unit) const noexcept
    {
        const auto found =
            std::lower_bound(FBytes.begin(), FBytes.end(), std::pair<char16_t, unsigned char>(unit, 0));
        const bool known = found != FBytes.end() && found->first == unit && unit != kReplacement;
        return known ? static_cast<char>(found->second) : '?';
    }

    std::array<char16_t, 256> FUnits;
    std::array<std::pair<char16_t, unsigned char>, 256> FBytes{};
};

constexpr std::array<char16_t, 256> UnitsOf1252()
{
    constexpr char16_t kUpperControls[32] = {0x20AC, 0x81, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D, 0x017D, 0x8F, 0x90, 0x2018, 0x2019, 0x201C, 0x201D,
        0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D, 0x017E, 0x0178};
    std::array<char16_t, 256> units{};
    for (std::size_t i = 0; i < units.size(); ++i)
        units[i] = i >= 0x80 && i < 0xA0 ? kUpperControls[i - 0x80] : static_cast<char16_t>(i);
    return units;
}

constexpr ByteTable k1252(UnitsOf1252());

/// Holes of the "ANSI" pages become the control characters of the same number, so that narrowing can
/// be undone.
bool FillsHoles(std::uint32_t codePage) noexcept
{
    return codePage == 874 || (codePage >= 1250 && codePage <= 1258);
}

ByteTable MakeByteTable(std::uint32_t codePage, UConverter* converter)
{
    std::array<char16_t, 256> units{};
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char byte = static_cast<char>(i);
        ucnv_reset(converter);
        const std::u16string text = DecodeByConverter({&byte, 1}, converter);
        units[i] = text.size() == 1 ? text[0] : kReplacement;
        if (units[i] == kReplacement && i >= 0x80 && i < 0xA0 && FillsHoles(codePage))
            units[i] = static_cast<char16_t>(i);
    }
    return ByteTable(units);
}

/// The table of a one-byte page, made on first use and kept; null for pages with longer characters.
/// Throws EConvertError for an unknown page.
const ByteTable* FindByteTable(std::uint32_t codePage)
{
    if (codePage == kDefaultSystemCodePage)
        return &k1252;
    static std::mutex mutex;
    static std::map<std::uint32_t, std::unique_ptr<const ByteTable>> tables;
    const std::lock_guard lock(mutex);
    const auto known = tables.find(codePage);
    if (known != tables.end())
        return known->second.get();
    const Converter converter = OpenConverter(codePage);
    // 1258 combines letters across bytes: it needs the converter.
    const bool oneByte = ucnv_getMaxCharSize(converter.get()) == 1 && codePage != 1258;
    auto table =
        oneByte ? std::make_unique<const ByteTable>(MakeByteTable(codePage, converter.get())) : nullptr;
    return tables.emplace(codePage, std::move(table)).first->second.get();
}

String DecodeUtf16(std::string_view bytes, std::endian order)
{
    char16_t* units = nullptr;
    String text = String::Uninitialized(bytes.size() / 2, units);
    if (order == std::endian::native) {
        if (units)
            std::memcpy(units, bytes.data(), text.size() * sizeof(char16_t));
        return text;
    }
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units[i / 2] =
            static_cast<char16_t>(order == std::endian::big ? first << 8 | second : second << 8 | first);
    }
    return text;
}

std::string EncodeUtf16(std::u16string_view text, std::endian order)
{
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (char16_t unit : text) {
        const auto high = static_cast<char>(unit >> 8);
        const auto low = static_cast<char>(unit & 0xFF);
        bytes += order == std::endian::big ? high : low;
        bytes += order == std::endian::big ? low : high;
    }
    return bytes;
}

std::string EncodeLatin1(std::u16string_view text)
{
    return EncodeByteWise(text, [](char16_t unit) { return unit < 0x100 ? static_cast<char>(unit) : '?'; });
}

std::string EncodeIn(std::uint32_t codePage, std::u16string_view text)
{
    switch (codePage) {
    case kUtf8CodePage:
        return EncodeUtf8(text);
    case kLatin1Page:
        return EncodeLatin1(text);
    case kUtf16LittleEndianCodePage:
        return EncodeUtf16(text, std::endian::little);
    case kUtf16BigEndianCodePage:
        return EncodeUtf16(text, std::endian::big);
    default:
        break;
    }
    if (const ByteTable* table = FindByteTable(codePage))
        return table->Encode(text);
    return EncodeByConverter(text, OpenConverter(codePage).get());
}

/// The number behind "cp", "windows-" and the like; 0 when there is none.
std::uint32_t NumberInLabel(std::string_view label) noexcept
{
    for (std::string_view prefix : {"windows-", "x-cp", "cp-", "cp", "ibm-", "ibm", ""}) {
        if (!label.starts_with(prefix))
            continue;
        label.remove_prefix(prefix.size());
        std::uint32_t number = 0;
        const auto [stop, error] = std::from_chars(label.data(), label.data() + label.size(), number);
        return error == std::errc() && stop == label.data() + label.size() ? number : 0;
    }
    return 0;
}

std::uint32_t PageByAlias(const std::string& label)
{
    UErrorCode error = U_ZERO_ERROR;
    const char* canonical = ucnv_getAlias(label.c_str(), 0, &error);
    if (U_FAILURE(error) || !canonical)
        return 0;
    for (const PageName& row : kPages) {
        error = U_ZERO_ERROR;
        const char* name = ucnv_getAlias(row.name, 0, &error);
        if (U_SUCCESS(error) && name && std::strcmp(name, canonical) == 0)
            return row.page;
    }
    return 0;
}

}

THtByteOrderMarkMatch DetectByteOrderMark(std::string_view bytes) noexcept
{
    for (THtByteOrderMark mark : {bomUtf8, bomUtf16LittleEndian, bomUtf16BigEndian}) {
        const std::string_view markBytes = ByteOrderMarkOf(CodePageOf(mark));
        if (bytes.starts_with(markBytes))
            return {mark, markBytes.size()};
    }
    return {bomNone, 0};
}

std::uint32_t CodePageOf(THtByteOrderMark mark) noexcept
{
    switch (mark) {
    case bomUtf8:
        return kUtf8CodePage;
    case bomUtf16LittleEndian:
        return kUtf16LittleEndianCodePage;
    case bomUtf16BigEndian:
        return kUtf16BigEndianCodePage;
    default:
        return 0;
    }
}

std::string_view ByteOrderMarkOf(std::uint32_t codePage) noexcept
{
    switch (codePage) {
    case kUtf8CodePage:
        return "\xEF\xBB\xBF";
    case kUtf16LittleEndianCodePage:
        return "\xFF\xFE";
    case kUtf16BigEndianCodePage:
        return "\xFE\xFF";
    default:
        return {};
    }
}

std::uint32_t SystemCodePage() noexcept
{
    return systemCodePage.load(std::memory_order_relaxed);
}

void SetSystemCodePage(std::uint32_t codePage)
{
    if (!IsKnownCodePage(codePage))
        RaiseUnknownPage();
    systemCodePage.store(codePage, std::memory_order_relaxed);
}

bool IsKnownCodePage(std::uint32_t codePage)
{
    return codePage == kUtf8CodePage || codePage == kLatin1Page || codePage == kUtf16LittleEndianCodePage
        || codePage == kUtf16BigEndianCodePage || ConverterName(codePage) != nullptr;
}

String DecodeBytes(std::string_view bytes, std::uint32_t codePage)
{
    switch (codePage) {
    case kUtf8CodePage:
        return String::FromUtf8(bytes);
    case kLatin1Page:
        return String::FromLatin1(bytes);
    case kUtf16LittleEndianCodePage:
        return DecodeUtf16LittleEndian(bytes);
    case kUtf16BigEndianCodePage:
        return DecodeUtf16BigEndian(bytes);
    default:
        break;
    }
    if (const ByteTable* table = FindByteTable(codePage))
        return table->Decode(bytes);
    return String(DecodeByConverter(bytes, OpenConverter(codePage).get()));
}

String DecodeMarkedBytes(std::string_view bytes, std::uint32_t codePage)
{
    const THtByteOrderMarkMatch match = DetectByteOrderMark(bytes);
    return DecodeBytes(bytes.substr(match.Size), match.Mark == bomNone ? codePage : CodePageOf(match.Mark));
}

std::string EncodeBytes(std::u16string_view text, std::uint32_t codePage)
{
    return detail::WithStorage([=] { return EncodeIn(codePage, text); });
}

String DecodeUtf16LittleEndian(std::string_view bytes)
{
    return DecodeUtf16(bytes, std::endian::little);
}

String DecodeUtf16BigEndian(std::string_view bytes)
{
    return DecodeUtf16(bytes, std::endian::big);
}

std::uint32_t CodePageOfCharset(std::u16string_view name)
{
    name = TrimView(name);
    if (name.size() >= 2 && name.starts_with(u'"') && name.ends_with(u'"'))
        name = TrimView(name.substr(1, name.size() - 2));
    std::string label;
    for (char16_t unit : name) {
        if (unit >= 0x7F || unit <= u' ')
            return 0;
        label += static_cast<char>(FoldAscii(unit));
    }
    for (const PageName& row : kLabels) {
        if (label == row.name)
            return row.page;
    }
    const std::uint32_t number = NumberInLabel(label);
    if (number != 0 && IsKnownCodePage(number))
        return number;
    return label.empty() ? 0 : PageByAlias(label);
}

}
