// The event reader of XML documents.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/markup/attributes.h>
#include <hearth/runtime/object.h>
#include <hearth/xml/xml_error.h>
#include <hearth/xml/xml_well_formed.h>

#include <cstdint>
#include <functional>

namespace ht {

class TStream;

/// Tells what stands in a document, part by part, and keeps none of it: memory grows with the depth and with
/// the number of different names, not with the document. Reads what THtXMLNode reads, with the same errors.
/// Set the events that are wanted, then call one of the readers:
///   THtSAXXMLParser parser;
///   parser.OnStartElement = [&](const String& Tag, const THtAttributes& Attributes) { ... };
///   parser.ParseFile(name);
///
/// Events come in document order. The directives in front of the root element are told, comments there are
/// not, "<!...>" is told nowhere, and what stands behind the root is not looked at. An element without an end
/// tag, also one that the end of the text closes, ends all the same. References in texts and values are
/// resolved.
class HT_API THtSAXXMLParser : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtSAXXMLParser", &TObject::kClassInfo};

    /// Lifetime of the arguments: until the event returns. There may be no attributes.
    using TStartEvent = std::function<void(const String& Tag, const THtAttributes& Attributes)>;
    using TTextEvent = std::function<void(const String& Text)>;

    THtSAXXMLParser() = default;
    THtSAXXMLParser(const THtSAXXMLParser&) = delete;
    THtSAXXMLParser& operator=(const THtSAXXMLParser&) = delete;
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    // Events. None may destroy the parser or make it read another document; what they throw ends the reading.

    TStartEvent OnStartElement;
    TTextEvent OnEndElement; // gets the tag
    TTextEvent OnText; // between two pieces of markup, blanks too
    TTextEvent OnComment;
    TTextEvent OnDirective; // of "<?b c?>" the text "b c"
    TTextEvent OnCData;

    /// Read a document to its end, which gives true, or to the event that called Stop, which gives false and
    /// ends no open element. Throw EHtXML for an end tag of another name and beyond the depth that Limits
    /// allows, EHtmlParserException for what is wrong inside a tag, with xsWellFormed what CheckWellFormed
    /// throws, before the first event. A reading inside an event throws EHtXML. Of files and streams see
    /// THtXMLNode::StreamtoText.
    bool Parse(const String& XML, THtXMLStrictness Strictness = xsTags);
    bool ParseStream(TStream& Stream, THtXMLStrictness Strictness = xsTags);
    bool ParseFile(const String& FileName, THtXMLStrictness Strictness = xsTags);

    /// From an event: the current one is the last.
    void Stop() noexcept { FIsStopped = true; }

    // Where the reader is, for events and behind an error; 0 before the first reading.

    /// Line and column, from 1, where the part that is told begins.
    std::int32_t Line() const;
    std::int32_t Column() const;
    /// How many elements are open around what is told; for the ends of an element those around it.
    std::int32_t Depth() const noexcept { return FDepth; }

    /// The bounds, a copy of those of the process.
    THtLimits Limits = HtLimits();

private:
    class TRun;

    struct TPlace {
        std::int32_t Line = 0;
        std::int32_t Column = 0;
    };

    TRun* FRun = nullptr; // the reading, while it lasts
    TPlace FLastPlace; // where the last reading ended
    std::int32_t FDepth = 0;
    bool FIsStopped = false;
};

}
