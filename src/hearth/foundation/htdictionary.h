// The public face of the dictionaries.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/hash.h>
#include <hearth/foundation/id_dictionary.h>
#include <hearth/foundation/object_dictionary.h>
#include <hearth/foundation/pointer_dictionary.h>
#include <hearth/foundation/string_list.h>
#include <hearth/foundation/thread_dictionary.h>
