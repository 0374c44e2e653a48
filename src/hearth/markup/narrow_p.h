// Turning text back into the bytes it was widened from.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace ht {

/// One byte a unit up to U+00FF; what lies above goes through the system code page.
std::string NarrowText(std::u16string_view text);

}
