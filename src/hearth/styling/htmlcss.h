// The style sheet unit: CSS text in, rules, and what of them applies to an element.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/styling/css/builtin_sheets.h>
#include <hearth/styling/css/css_extension.h>
#include <hearth/styling/css/css_parser.h>
#include <hearth/styling/css/css_property.h>
#include <hearth/styling/css/css_section.h>
#include <hearth/styling/css/css_token.h>
#include <hearth/styling/css/css_tokenizer.h>
#include <hearth/styling/css/css_value.h>
#include <hearth/styling/css/custom_font.h>
#include <hearth/styling/css/key_frames.h>
#include <hearth/styling/css/media_set.h>
#include <hearth/styling/css/properties.h>
#include <hearth/styling/css/selector.h>
#include <hearth/styling/css/style_enums.h>
#include <hearth/styling/css/style_map.h>
#include <hearth/styling/css/style_sheet.h>
#include <hearth/styling/css/token_sequence.h>
#include <hearth/styling/css/weight_list.h>
#include <hearth/styling/nodes/styled_node.h>
#include <hearth/styling/style/element_style.h>
#include <hearth/styling/style/font_style.h>
#include <hearth/styling/style/measure.h>
#include <hearth/styling/style/measure_unit.h>
