// The bounds that keep hostile input from using up a machine.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>

#include <cstdint>

namespace ht {

/// One bound for each way in which a format, a script or a transfer could grow without end; 0 means no bound
/// but those that readers fix themselves where each level costs stack. A bound that is hit raises the
/// exception of the subsystem, which names it. Readers take their copy when they are made. The depth of HTML
/// trees is fixed and not in this record.
struct THtLimits {
    std::int32_t XmlDepth = 1024; // nested elements
    std::int32_t JsonDepth = 1024; // nested objects and arrays
    std::int32_t XPathResults = 10'000'000; // nodes
    std::int32_t XPathPredicateDepth = 256; // nested predicates
    std::int32_t SelectorCompounds = 1024; // compounds of one selector
    std::int32_t CalcTokens = 4096; // tokens of one calc expression
    std::int32_t ArcPoints = 4096; // points of one flattened arc
    std::int32_t TemplateDepth = 1000; // nested sections
    std::int64_t TemplateOutput = 256LL << 20; // bytes
    std::int32_t ScriptDepth = 1000; // nested expressions, statements and functions while compiling
    std::int32_t ScriptCalls = 100'000; // script calls that wait for one another
    std::int64_t ScriptSteps = 0; // steps of one run
    std::int64_t ScriptMemory = 0; // bytes of strings and arrays
    std::int64_t GifPixels = 1LL << 28; // pixels of one frame
    std::int64_t HttpBody = 256LL << 20; // bytes
    std::int32_t HttpRedirects = 10; // hops
    std::int32_t InflateRatio = 200; // bytes out for one byte in; ORDER kDefaultMaxRatio
};

/// The defaults of the process, for the host to change before it makes documents, parsers and engines. Who
/// changes them while other threads read has to see to that.
HT_API THtLimits& HtLimits() noexcept;

}
