// The export macro of the library's public symbols.
// SPDX-License-Identifier: MIT
#pragma once

#if defined(HEARTH_STATIC)
#define HT_API
#elif defined(_WIN32)
#if defined(HEARTH_BUILDING)
#define HT_API __declspec(dllexport)
#else
#define HT_API __declspec(dllimport)
#endif
#else
#define HT_API __attribute__((visibility("default")))
#endif
