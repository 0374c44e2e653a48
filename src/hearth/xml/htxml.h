// The XML unit: XML and JSON text in, one kind of tree, both out again.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/xml/json_serializer.h>
#include <hearth/xml/xml_encode.h>
#include <hearth/xml/xml_error.h>
#include <hearth/xml/xml_node.h>
#include <hearth/xml/xml_sax.h>
#include <hearth/xml/xml_well_formed.h>
