// Removal of the HTML comment marks that hide a style sheet from very old browsers.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

namespace ht {

/// The body without every "<!--" and, for each, without the first "-->" that follows in what is then left of
/// the text. Removing a mark may put another together, which goes as well. Takes linear time.
String WithoutStyleComments(std::u16string_view body);

}
