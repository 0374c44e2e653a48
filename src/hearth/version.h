// The version of the library; the build reads it from here.
// SPDX-License-Identifier: MIT
#pragma once

#define HEARTH_VERSION "0.1.0"
