// Numbers as the commands print them.
// SPDX-License-Identifier: MIT
#include "numbers.h"

#include <array>
#include <charconv>

namespace hearth_cli {

std::string DecimalOf(float value)
{
    std::array<char, 64> text{}; // more than the sign, 46 digits and the point that a single can take
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
    return {text.data(), end};
}

}
