// The markup unit: HTML text in, a repaired tree, HTML and text out.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/attributes.h>
#include <hearth/markup/element_classes.h>
#include <hearth/markup/entities.h>
#include <hearth/markup/html_encode.h>
#include <hearth/markup/html_error.h>
#include <hearth/markup/html_node.h>
#include <hearth/markup/html_parser.h>
#include <hearth/markup/html_token.h>
#include <hearth/markup/html_tokenizer.h>
#include <hearth/markup/json_parser.h>
#include <hearth/markup/json_token.h>
#include <hearth/markup/json_tokenizer.h>
#include <hearth/markup/node.h>
#include <hearth/markup/node_list.h>
#include <hearth/markup/xpath.h>
