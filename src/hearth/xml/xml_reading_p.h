// What the reader of trees and the reader of events refuse alike.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>
#include <hearth/runtime/text_format.h>
#include <hearth/xml/xml_error.h>

#include <cstdint>
#include <string_view>

namespace ht {

[[noreturn]] inline void RaiseTooDeep()
{
    throw EHtXML(u"XML contains too many nested nodes"_s);
}

/// Positions are not told: the text always shows 0.
[[noreturn]] inline void RaiseTagOrder(std::u16string_view expected, std::u16string_view found)
{
    throw EHtXML(Format(
        u"Tag order error: /%s expected, /%s found at position %d", {expected, found, std::int32_t{0}}));
}

/// An XML declaration that says that the text is UTF-8.
inline bool DeclaresUtf8(const String& directive)
{
    return directive.View().starts_with(u"xml ")
        && directive.ToLowerAscii().View().find(u"utf-8") != std::u16string_view::npos;
}

}
