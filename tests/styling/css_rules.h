// How tests write and read rules.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/styling/css/css_parser.h>

#include <memory>
#include <string>
#include <string_view>

namespace ht::test {

/// A compiled rule of these declarations, as a style attribute holds them.
inline std::unique_ptr<TCSSSection> Declarations(std::string_view css)
{
    TCSSParser parser(String::FromUtf8(css));
    parser.CurrentSection = std::make_unique<TCSSSection>();
    parser.ReadSectionValues();
    parser.CurrentSection->Compile();
    return std::move(parser.CurrentSection);
}

/// "width:1px; color:red": values on one line.
template <class Values> std::string ValuesAsText(const Values& values)
{
    std::string text;
    for (const TCSSValue& value : values) {
        std::string one = CSSValuetoString(value, cpExact).ToUtf8();
        one.pop_back();
        text += text.empty() ? one : "; " + one;
    }
    return text;
}

inline std::string CompiledAsText(std::string_view css)
{
    return ValuesAsText(Declarations(css)->CompiledValues);
}

}
