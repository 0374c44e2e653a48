// Characters that decoders and encoders know by name.
// SPDX-License-Identifier: MIT
#pragma once

namespace ht {

/// Stands for what cannot be read or written.
inline constexpr char16_t kReplacement = 0xFFFD;

}
