// The test whether a text is well-formed XML.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/xml/xml_error.h>

#include <cstdint>
#include <string_view>

namespace ht {

/// What readers of documents refuse: end tags in a wrong order and damaged tags, or also everything that XML
/// calls not well-formed, see CheckWellFormed. The stricter test comes in front of the reading, which then
/// ends comments, sections, directives and the document type where XML ends them, and reads references by
/// their whole names: it takes a second pass over the text.
enum THtXMLStrictness : std::uint8_t { xsTags, xsWellFormed };

/// Throws EHtXML "XML is not well-formed at line %d, column %d: ..." (both from 1) unless the text is a
/// well-formed document of XML 1.0, fifth edition: characters and names, one root, tags that nest, attributes
/// that differ, references to characters that exist and to entities that are declared, an internal document
/// type subset that keeps the grammar. What is declared outside of the text is not read, so with an external
/// subset references to unknown entities pass. Entities are looked into once each, however often they are
/// referred to, and may nest as deep as elements (XmlDepth), but no deeper than 1,024 levels.
HT_API void CheckWellFormed(std::u16string_view XML, const THtLimits& limits = HtLimits());

}
