// The public face of the foundation's texts, lists, files, archives, conversions, colours and limits.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/base64.h>
#include <hearth/foundation/bytes.h>
#include <hearth/foundation/cached_file_stream.h>
#include <hearth/foundation/checksums.h>
#include <hearth/foundation/color_math.h>
#include <hearth/foundation/colors.h>
#include <hearth/foundation/date_text.h>
#include <hearth/foundation/fast_raw_string.h>
#include <hearth/foundation/fast_string.h>
#include <hearth/foundation/fast_string_list.h>
#include <hearth/foundation/files.h>
#include <hearth/foundation/geometry_helpers.h>
#include <hearth/foundation/id_list.h>
#include <hearth/foundation/kernels.h>
#include <hearth/foundation/limits.h>
#include <hearth/foundation/number_text.h>
#include <hearth/foundation/object_list.h>
#include <hearth/foundation/resource_loader.h>
#include <hearth/foundation/string_parser.h>
#include <hearth/foundation/string_trie.h>
#include <hearth/foundation/system_colors.h>
#include <hearth/foundation/text_words.h>
#include <hearth/foundation/url_text.h>
#include <hearth/foundation/zip_archive.h>
