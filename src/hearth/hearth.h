// The whole library in one include.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/version.h>

#include <hearth/runtime/array.h>
#include <hearth/runtime/checked.h>
#include <hearth/runtime/class_info.h>
#include <hearth/runtime/date_time.h>
#include <hearth/runtime/encoding.h>
#include <hearth/runtime/enum_names.h>
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/geometry.h>
#include <hearth/runtime/lists.h>
#include <hearth/runtime/memory.h>
#include <hearth/runtime/object.h>
#include <hearth/runtime/persistent.h>
#include <hearth/runtime/reflection.h>
#include <hearth/runtime/sets.h>
#include <hearth/runtime/stable_sort.h>
#include <hearth/runtime/streams.h>
#include <hearth/runtime/strings.h>
#include <hearth/runtime/text.h>
#include <hearth/runtime/text_case.h>
#include <hearth/runtime/text_format.h>
#include <hearth/runtime/text_number.h>
#include <hearth/runtime/type_info.h>
#include <hearth/runtime/type_info_of.h>
#include <hearth/runtime/value.h>
#include <hearth/runtime/zlib_stream.h>

#include <hearth/foundation/htdictionary.h>
#include <hearth/foundation/htutils.h>

#include <hearth/markup/htmlpars.h>

#include <hearth/xml/htxml.h>

#include <hearth/styling/htmlcss.h>

#if __has_include(<hearth/platform/htinet.h>)
#include <hearth/platform/htinet.h> // a build without hearth::net does not install it
#endif
