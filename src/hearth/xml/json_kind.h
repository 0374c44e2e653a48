// The kinds of JSON values.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/sets.h>

#include <cstdint>

namespace ht {

/// What a node of a tree was in JSON. Nodes of other trees are `jkNone`.
enum THtJSONKind : std::uint8_t { jkNone, jkObject, jkArray, jkString, jkNumber, jkBoolean, jkNull };

template <> struct TEnumTraits<THtJSONKind> {
    static constexpr int kCount = 7;
    static constexpr const char16_t* kName = u"THtJSONKind";
};

}
