// The exception of the HTML parser.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/exceptions.h>

namespace ht {

/// Raised by the strict XML mode. Lines in the message count from 0, positions from 1.
class HT_API EHtmlParserException : public Exception {
public:
    using Exception::Exception;
    const char16_t* ClassName() const noexcept override { return u"EHtmlParserException"; }
};

}
