// The item reader of the HTML parser: one tag with all its attributes, or one text, at a time.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/markup/attributes.h>
#include <hearth/markup/html_error.h>
#include <hearth/markup/html_tokenizer.h>
#include <hearth/runtime/array.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>

namespace ht {

class THtNode;
class THtmlNode;

enum THtmlEncoding : std::uint8_t { heDefault, heUTF8, heUTF16, heANSI };

/// The text of a page that came as bytes: `root.Parse(page.Text, page.IsDecoded)`.
struct THtmlPageText {
    String Text;
    /// False when nothing is known about the encoding: the text then holds one unit a byte, and the parser
    /// looks for the charset itself.
    bool IsDecoded = false;
};

/// Reads items for THtmlNode::InternalParse. Lives for one run over a text and belongs to one thread.
///
/// html_parser.cpp reads items, html_parser_attributes.cpp their attributes, encoding_detection.cpp finds
/// encodings and restarts on re-decoded text.
class HT_API THtmlParser : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtmlParser", &TObject::kClassInfo};

    /// Elements nested deeper than this are placed higher up.
    static constexpr std::int32_t kMaxLevels = 256;

    explicit THtmlParser(const String& s, bool AXMLMode = false);
    ~THtmlParser() override;
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Reads the next item into the fields below; false at the end of the text, where a tag that is cut off
    /// is dropped. In XML mode throws EHtmlParserException for a bad tag name and for an attribute value that
    /// is no string.
    bool NextItem();
    /// Short cuts of NextItem for a reader that knows what to expect and needs no fields: the end tag of
    /// `tag`, written plainly, a text of blanks with a tag behind it (else empty), and a text behind a tag.
    /// They read nothing where something else stands, or where an item is to be repeated. Lifetime of the
    /// blanks: that of the text.
    bool SkipCloseTag(std::u16string_view tag) noexcept;
    std::u16string_view NextBlanks() noexcept;
    bool NextText(String& text);
    /// NextItem in XML mode for an item that is a start tag with the name of `element`, which a reader of
    /// such tags has made. nlOther, with nothing read, for all others; nlEnd where NextItem would be false.
    enum TNextLike : std::uint8_t { nlOther, nlItem, nlEnd };
    TNextLike NextLike(const THtNode& element);
    /// NextItem for an item that is the plain end tag of the element. False, with nothing read, for all
    /// others.
    bool NextIsEndOf(const THtNode& element)
    {
        const char16_t* const p = FTokenizer.Parser().p;
        return p[0] == u'<' && p[1] == u'/' && ReadEndOf(element);
    }

    /// Re-decodes the rest of the text, and what `Root` holds, as UTF-8 when it is UTF-8 that was read with
    /// one unit a byte. Acts only for a new encoding that is heUTF8, which needs no code page.
    void ChangeEncoding(THtmlEncoding NewEncoding, std::uint32_t NewCodePage);

    /// How much of a file tells its encoding.
    static constexpr std::size_t kDetectionBytes = 4096;
    /// Looks at the first kDetectionBytes of a file. Sets the code page that the text declares, else 0.
    /// Throws EFOpenError when the file cannot be read and ERangeError when the text ends within its charset
    /// declaration.
    static THtmlEncoding GetFileEncoding(const String& AFileName, std::uint32_t& ACodePage);
    /// The same on bytes already read; only the first kDetectionBytes count.
    static THtmlEncoding GetBytesEncoding(std::string_view bytes, std::uint32_t& ACodePage);
    /// Decodes a whole page by its byte order mark, else by the charset that the server told, which may stand
    /// in quotes, else by what GetBytesEncoding finds.
    static THtmlPageText DecodePage(std::string_view bytes, std::u16string_view charset = {});
    /// The code page for what a page declares, in lower case: a search for known parts in a fixed order, so
    /// that "iso-8859-15" counts as "iso-8859-1", and the number behind "windows-" whatever it is. 0 when
    /// nothing is known. CodePageOfCharset is the exact look-up.
    static std::uint32_t CharsettoCodepage(std::u16string_view ACharset);

    bool XMLMode() const noexcept { return FXMLMode; }
    bool CaseSensitive() const noexcept { return FCaseSensitive; }
    void SetCaseSensitive(bool value) noexcept;
    THTMLTokenizer& Tokenizer() noexcept { return FTokenizer; }

    // The current item.

    THTMLTokenType TagType = htUnknown;
    THtTagName Tag; // empty for text and the like
    String Value; // text of the item
    bool TagClosed = false; // the element has no open end
    bool IsCloseTag = false;
    std::int32_t StartPos = 0; // offset of the item's last token
    /// Null when the item has none.
    THtAttributes* Attributes() noexcept { return FAttributes.Count() > 0 ? &FAttributes : nullptr; }
    /// The attributes in a store of their own, which the caller owns.
    std::unique_ptr<THtAttributes> TakeAttributes() { return THtAttributes::TakeFrom(FAttributes); }
    /// NextItem is to deliver the same item once more.
    bool RepeatCurrent = false;

    // The run.

    /// Limit of all that closes or moves elements, set by fragment parsing; may be null. Not owned.
    THtmlNode* Root = nullptr;
    /// `Root` is an element of the text itself, which its end tag closes, and not a wrapper.
    bool RootIsElement = false;
    /// Asked for element classes. Not owned.
    THtNode* GlobalRoot = nullptr;
    THtmlEncoding Encoding = heDefault;
    std::uint32_t Codepage = 0;
    bool IgnoreMetaEncoding = false;
    THtNameTable TagList;
    THtNameTable AttrList;
    /// Formatting elements closed too early, to be opened again. Not owned.
    TArray<THtmlNode*> IncorrectStack;
    /// What was seen of a row that content was put into: its last cell, and how many of its children were
    /// looked at. Not owned.
    struct TRowSeen {
        THtmlNode* Cell = nullptr;
        std::int32_t Count = 0;
    };
    std::unordered_map<const THtmlNode*, TRowSeen> RowsSeen;
    /// Depth of the element that is being read.
    std::int32_t FStackLevel = 0;
    /// The bounds of this run, a copy of those of the process.
    THtLimits Limits = HtLimits();

private:
    enum TDuplicateAttribute : std::uint8_t { daFirstStays, daReplaces };

    bool ReadEndOf(const THtNode& element);
    bool Repeat();
    void StartItem();
    bool ReadItem();
    bool ReadOtherItem();
    bool ReadTagName();
    bool SetTextItem();
    void SetTag();
    void SetFoldedTag(const String& name);
    bool ReadAttributes();
    bool ReadOtherAttributes(bool more);
    bool NextInTag();
    bool ReadAttribute();
    bool ReadAttributeValue(const String& name);
    bool ReadUnquotedValue(String& value);
    String AttributeName();
    void StoreAttribute(const String& name, const String& value, TDuplicateAttribute duplicate);
    bool NextAttributePart();
    bool NextAttributeValue();
    bool FinishRawElement();
    void AddRawBody(std::u16string_view body);
    void CheckMeta();
    void RestartOn(const String& text);
    String MetaCharset() const;
    [[noreturn]] void RaiseValueExpected(const String& name);

    /// No repair passes an item on more often than the tree is deep; an item that still comes back is
    /// dropped, so that every text ends.
    static constexpr std::int32_t kMaxRepeats = 8 * kMaxLevels;

    THTMLTokenizer FTokenizer;
    THtAttributes FAttributes; // of the current item; its memory serves all items
    std::int32_t FRepeats = 0;
    bool FXMLMode;
    bool FCaseSensitive;
    bool FEncodingProcessed = false;
};

/// True when the text, narrowed to bytes, holds UTF-8 sequences and no broken one in front of the first unit
/// 0. A unit above U+00FF makes it false.
HT_API bool IsUTF8(std::u16string_view text);
/// The same over bytes, up to the end. A 4-byte sequence, or a broken 3-byte one, ends the test with what was
/// seen.
HT_API bool IsUTF8Bytes(std::string_view bytes);

}
