// The keywords of properties: all enumerations whose values are CSS words behind a prefix.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/styling/css/box_enums.h>
#include <hearth/styling/css/list_enums.h>
#include <hearth/styling/css/paint_enums.h>
#include <hearth/styling/css/text_enums.h>
