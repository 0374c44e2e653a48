// Trees as text, one node a line: the form that `--as tree` prints and that tests compare.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/node.h>

#include <string>

namespace hearth_cli {

/// The text in double quotes with the escapes of JSON; everything but control characters, quotes and "\" as
/// it is.
std::string Quoted(std::u16string_view text);

/// The subtree, two blanks of indent a level, each line ended by LF.
std::string TreeText(const ht::THtNode& top);

}
