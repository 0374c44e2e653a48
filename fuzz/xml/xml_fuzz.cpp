// Any bytes as an XML document: read strictly, checked, printed, copied, changed, and read again.
// SPDX-License-Identifier: MIT
#include "../markup/tree_check.h"

#include <hearth/foundation/fast_raw_string.h>
#include <hearth/xml/htxml.h>

namespace {

using namespace ht::literals;

/// The bits of the first byte.
constexpr unsigned kBytesAsUnits = 1; // else as a stream is decoded
constexpr unsigned kAnyDepth = 2;
constexpr unsigned kWellFormed = 4; // first asked whether the text is well-formed

ht::String Decode(std::string_view bytes, bool asUnits)
{
    if (asUnits)
        return ht::String::FromLatin1(bytes);
    ht::TMemoryStream stream;
    stream.WriteBuffer(bytes);
    stream.SetPosition(0);
    return bytes.empty() ? ht::String() : ht::THtXMLNode::StreamtoText(stream);
}

/// Reads a document into `root`; false when it is refused.
bool Read(const ht::String& text, bool anyDepth, ht::THtXMLNode& root)
{
    try {
        if (!anyDepth) {
            root.SetXML(text);
            return true;
        }
        ht::THtmlParser parser(text, true);
        parser.SetCaseSensitive(true);
        parser.Limits.XmlDepth = 0;
        while (parser.NextItem()) {
            if (parser.TagType == ht::htIdent) {
                root.Parse(parser);
                break;
            }
        }
        return true;
    } catch (const ht::EHtXML&) {
        return false;
    } catch (const ht::EHtmlParserException&) {
        return false;
    }
}

/// What a reading says.
struct Outcome {
    ht::String Error;
    std::int32_t Elements = 0;
    bool operator==(const Outcome&) const = default;
};

template <class Work> ht::String ErrorOf(Work work)
{
    try {
        work();
    } catch (const ht::EHtXML& error) {
        return error.Message;
    } catch (const ht::EHtmlParserException& error) {
        return error.Message;
    }
    return ht::String();
}

/// Both readers see the same elements and refuse the same.
void CompareEvents(const ht::String& text, ht::THtXMLStrictness strictness)
{
    Outcome events;
    std::int32_t open = 0;
    std::int32_t line = 1;
    ht::THtSAXXMLParser parser;
    const auto place = [&] {
        fuzz::Require(parser.Line() >= line && parser.Column() > 0, "places go forward");
        line = parser.Line();
    };
    parser.OnStartElement = [&](const ht::String&, const ht::THtAttributes&) {
        place();
        ++events.Elements;
        fuzz::Require(parser.Depth() == open++, "the depth is that of the open elements");
    };
    parser.OnEndElement = [&](const ht::String&) { --open; };
    parser.OnText = parser.OnComment = parser.OnCData =
        parser.OnDirective = [&](const ht::String&) { place(); };
    events.Error = ErrorOf([&] { parser.Parse(text, strictness); });
    fuzz::Require(!events.Error.IsEmpty() || open == 0, "what opens is closed");
    Outcome tree;
    ht::THtXMLNode root;
    tree.Error = ErrorOf([&] { root.SetXML(text, strictness); });
    for (const ht::THtNode* node = &root; node; node = node->NextNodeIn(&root))
        tree.Elements += node->Tag().IsEmpty() ? 0 : 1;
    fuzz::Require(events.Error == tree.Error, "both readers refuse the same");
    fuzz::Require(!tree.Error.IsEmpty() || events.Elements == tree.Elements, "both readers see the same");
}

/// A text that passes is read, and what it prints as passes and prints the same; one that does not leaves the
/// node as it was.
void ReadWellFormed(const ht::String& text)
{
    ht::THtXMLNode root(u"<kept/>"_s);
    const ht::String fault = ErrorOf([&] { ht::CheckWellFormed(text); });
    const ht::String error = ErrorOf([&] { root.SetXML(text, ht::xsWellFormed); });
    if (fault.IsEmpty()) {
        const bool isTooDeep = error == u"XML contains too many nested nodes";
        fuzz::Require(error.IsEmpty() || isTooDeep, "what is well-formed is read");
        if (isTooDeep)
            return;
        fuzz::Require(!root.Tag().IsEmpty(), "what is well-formed has a root");
        const ht::String code = root.Code();
        root.SetXML(code, ht::xsWellFormed);
        return fuzz::Require(root.Code() == code, "what is well-formed comes back");
    }
    fuzz::Require(error == fault && root.Code() == u"<kept/>", "what is refused changes nothing");
}

void PrintAll(const ht::THtXMLNode& root)
{
    const ht::String code = root.Code();
    fuzz::Require(root.UTF8Code() == code.ToUtf8(), "both ways to the bytes agree");
    fuzz::Require(root.Clone()->Code() == code, "a copy prints alike");
    static_cast<void>(root.JSON());
    static_cast<void>(root.GetValue());
    static_cast<void>(root.GetPIAttribute(u"xml", u"encoding"));
    ht::TFastRawString formatted(16);
    root.FastUTF8FormatCode(formatted, 0, 1);
}

/// What printing gave is read again, and whatever that gives prints the same from then on.
void ReadAgain(const ht::THtXMLNode& root)
{
    ht::THtXMLNode again;
    if (Read(root.Code(), true, again))
        fuzz::CheckTree(again);
    if (Read(root.FormattedCode(), true, again))
        fuzz::CheckTree(again);
}

void Change(ht::THtXMLNode& root)
{
    root.RemoveNamespaces();
    root.SortbyAttr(u"a");
    root.SetValue(u"value"_s);
    if (root.GetCount() > 0)
        root.Assign(*root.GetNode(root.GetCount() / 2));
    fuzz::CheckTree(root);
    static_cast<void>(root.Code());
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const unsigned mode = data[0];
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const bool anyDepth = (mode & kAnyDepth) != 0;
    const ht::String text = Decode(bytes, (mode & kBytesAsUnits) != 0);
    if ((mode & kWellFormed) != 0)
        ReadWellFormed(text);
    if (!anyDepth)
        CompareEvents(text, (mode & kWellFormed) != 0 ? ht::xsWellFormed : ht::xsTags);
    ht::THtXMLNode root;
    const bool isRead = Read(text, anyDepth, root);
    // What was read up to the error is a tree too.
    const std::int32_t depth = fuzz::CheckTree(root);
    fuzz::Require(anyDepth || depth <= ht::HtLimits().XmlDepth, "the depth is bounded");
    PrintAll(root);
    if (isRead)
        ReadAgain(root);
    Change(root);
    return 0;
}
