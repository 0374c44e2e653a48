// The exception of XML documents.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/exceptions.h>

namespace ht {

/// Raised where tags do not nest, where a document nests too deep, where a node is not there, and where there
/// is nothing to load. What XML refuses inside a tag is an EHtmlParserException.
class HT_API EHtXML : public Exception {
public:
    using Exception::Exception;
    const char16_t* ClassName() const noexcept override { return u"EHtXML"; }
};

}
