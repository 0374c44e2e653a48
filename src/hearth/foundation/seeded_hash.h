// A hash of names that cannot be aimed at.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>

#include <cstddef>
#include <cstdint>

namespace ht::detail {

/// A hash that nobody can aim at: keyed with random numbers that are drawn once a process.
HT_API std::uint32_t SeededHash(const void* bytes, std::size_t size) noexcept;

}
