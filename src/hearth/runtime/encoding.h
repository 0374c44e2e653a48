// Code pages and byte order marks: where bytes become text and text becomes bytes.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace ht {

inline constexpr std::uint32_t kUtf8CodePage = 65001;
inline constexpr std::uint32_t kUtf16LittleEndianCodePage = 1200;
inline constexpr std::uint32_t kUtf16BigEndianCodePage = 1201;
inline constexpr std::uint32_t kDefaultSystemCodePage = 1252;

/// What a text starts with.
enum THtByteOrderMark : std::uint8_t { bomNone, bomUtf8, bomUtf16LittleEndian, bomUtf16BigEndian };

struct THtByteOrderMarkMatch {
    THtByteOrderMark Mark;
    std::size_t Size; // bytes of the mark itself
};

/// The mark at the start of `bytes`; none and size 0 without one.
HT_API THtByteOrderMarkMatch DetectByteOrderMark(std::string_view bytes) noexcept;

/// The code page that a mark tells; 0 for none.
HT_API std::uint32_t CodePageOf(THtByteOrderMark mark) noexcept;
/// The bytes of the mark that a code page has; empty when it has none.
HT_API std::string_view ByteOrderMarkOf(std::uint32_t codePage) noexcept;

/// The code page of "ANSI" bytes, 1252 unless the host sets another before any text is read.
HT_API std::uint32_t SystemCodePage() noexcept;
/// Throws EConvertError for an unknown page and keeps the one that is set.
HT_API void SetSystemCodePage(std::uint32_t codePage);

/// True when bytes of this code page can be decoded here.
HT_API bool IsKnownCodePage(std::uint32_t codePage);

/// Decodes bytes of a code page. What the page does not define becomes U+FFFD; in the "ANSI" pages 874 and
/// 1250 to 1257, holes from 0x80 to 0x9F become the control characters of the same number. Throws
/// EConvertError for an unknown page.
HT_API String DecodeBytes(std::string_view bytes, std::uint32_t codePage);
/// The same for bytes that may begin with a byte order mark: it names the page then, and is no part of the
/// text.
HT_API String DecodeMarkedBytes(std::string_view bytes, std::uint32_t codePage);
/// Encodes text in a code page; what the page lacks becomes "?". In pages with one byte a character it undoes
/// DecodeBytes, but for the bytes that became U+FFFD. Throws EConvertError for an unknown page.
HT_API std::string EncodeBytes(std::u16string_view text, std::uint32_t codePage);

/// UTF-16 little endian, a trailing odd byte is dropped.
HT_API String DecodeUtf16LittleEndian(std::string_view bytes);
HT_API String DecodeUtf16BigEndian(std::string_view bytes);

/// The code page of a charset name as used on the web and by mail ("utf-8", "iso-8859-2", "cp1251"),
/// which may stand in quotes; 0 when unknown.
HT_API std::uint32_t CodePageOfCharset(std::u16string_view name);

}
