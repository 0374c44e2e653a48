// Numbers as the commands print them.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace hearth_cli {

/// The shortest decimal that reads back as the same single, without an exponent.
std::string DecimalOf(float value);

}
