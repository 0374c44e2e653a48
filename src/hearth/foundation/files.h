// Whole files as text or bytes.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <string>
#include <string_view>

namespace ht {

/// The text of a file, by its byte order mark (UTF-8 or UTF-16), else in the system's code page. Throws
/// EFOpenError.
HT_API String FileToStr(const String& fileName);
/// The bytes of a file, mark included: those of ANSI text, and whatever they are. Throw EFOpenError.
HT_API std::string FileToStrA(const String& fileName);
HT_API std::string FileToStrR(const String& fileName);

/// Make a file, or replace what one holds. A text is written as UTF-8 with a byte order mark, so that
/// FileToStr gives it back; bytes as they are. Throw EFCreateError and EWriteError; the file may then hold
/// a part.
HT_API void StrtoFile(const String& fileName, std::u16string_view text);
HT_API void StrtoFileA(const String& fileName, std::string_view bytes);
HT_API void StrtoFileR(const String& fileName, std::string_view bytes);

}
