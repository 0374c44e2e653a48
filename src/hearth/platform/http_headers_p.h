// The header lines that a call sends, and what is read out of those that come back.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/text.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ht::detail {

/// Lines without CR LF, in the order in which they are sent.
using HeaderLines = std::vector<std::string>;

inline constexpr const char kUserAgentLine[] = "User-Agent: Mozilla/5.0";

/// "Name: value" as UTF-8. Throws EHtInetException when the value holds CR, LF or another control character,
/// which would become lines of its own.
std::string HeaderLine(std::string_view name, std::u16string_view value);

/// The line of basic authentication.
std::string AuthorizationLine(std::u16string_view user, std::u16string_view password);

/// UTF-8 when the content type says so, else by the system's code page.
String DecodeBody(const TBytes& bytes, std::u16string_view contentType);

}
