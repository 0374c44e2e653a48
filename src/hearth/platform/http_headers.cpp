// The header lines that a call sends, and what is read out of those that come back.
// SPDX-License-Identifier: MIT
#include <hearth/platform/http_headers_p.h>

#include <hearth/foundation/base64.h>
#include <hearth/foundation/bytes.h>
#include <hearth/foundation/resource_loader.h>
#include <hearth/platform/inet_error.h>
#include <hearth/runtime/encoding.h>

#include <algorithm>

namespace ht::detail {

std::string HeaderLine(std::string_view name, std::u16string_view value)
{
    const bool breaks = std::any_of(
        value.begin(), value.end(), [](char16_t c) { return (c < u' ' && c != u'\t') || c == 0x7F; });
    if (breaks)
        throw EHtInetException(Concat({String::FromLatin1(name), u" holds a control character"}));
    return std::string(name) + ": " + EncodeUtf8(value);
}

std::string AuthorizationLine(std::u16string_view user, std::u16string_view password)
{
    const TBytes bytes = HtUTF8EncodetoBytes(Concat({user, u":", password}));
    return "Authorization: Basic " + Base64EncodeNoLF({bytes.data(), bytes.size()}).ToUtf8();
}

String DecodeBody(const TBytes& bytes, std::u16string_view contentType)
{
    const std::string_view view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return CharsetOfContentType(contentType) == u"utf-8" ? String::FromUtf8(view)
                                                         : DecodeBytes(view, SystemCodePage());
}

}
