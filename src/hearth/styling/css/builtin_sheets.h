// The sheets under all others.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>

namespace ht {

class TCSSStyleSheet;

/// How elements look without any style. Made on first use and kept for ever; shared by all threads.
HT_API TCSSStyleSheet& HTML4StyleSheet();
/// What a document in quirks mode adds.
HT_API TCSSStyleSheet& HTML4QuirkStyleSheet();

}
