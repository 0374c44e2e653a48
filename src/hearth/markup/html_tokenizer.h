// Cuts HTML or XML text into tokens.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/string_parser.h>
#include <hearth/markup/html_token.h>
#include <hearth/markup/name_table.h>

#include <array>
#include <string>

namespace ht {

/// A hand-written scanner over one text. Names of tags and attributes come from the tables of the parser that
/// owns this tokenizer, so that a name seen before costs no string. Bodies of scripts, styles, comments and
/// the like are one token each; entities are resolved on the way.
///
/// html_tokenizer.cpp dispatches, html_tokenizer_tags.cpp reads names and bodies, html_tokenizer_text.cpp
/// reads text, strings and character references; html_tokenizer_plain_p.h has short cuts for the parser.
class HT_API THTMLTokenizer : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THTMLTokenizer", &TObject::kClassInfo};

    /// Leading blanks are skipped.
    THTMLTokenizer(const String& s, bool XMLMode);
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Reads one token; false at the end of the text. `AllowString` false makes stray quotes inside a tag
    /// disappear. In XML mode a "<" that opens no name throws EHtmlParserException.
    bool NextToken(bool AllowString);

    const THTMLToken& Token()
    {
        ReadLeftText();
        return FToken;
    }
    THTMLTokenType Type() const noexcept { return FToken.CType; }
    std::int32_t StartPos() const noexcept { return FToken.StartPos; }
    /// The record of the name that was read last, null when it is in neither table.
    const THtNameRec* NameRecord() const noexcept { return FNameRecord; }
    TStringParser& Parser() noexcept { return FParser; }
    /// True once a read met the end of the text.
    bool Eof() const noexcept { return FEof; }

    bool CaseSensitive() const noexcept { return FCaseSensitive; }
    void SetCaseSensitive(bool value) noexcept { FCaseSensitive = value; }
    bool XMLMode() const noexcept { return FXMLMode; }
    void SetXMLMode(bool value) noexcept { FXMLMode = value; }
    /// Comments, sections, directives and document types end where XML ends them, and references are read by
    /// their whole names: for a text that is known to be well-formed. Off unless set.
    bool ExactXML() const noexcept { return FExactXML; }
    void SetExactXML(bool value) noexcept { FExactXML = value; }
    /// The interning tables, not owned; both must outlive the tokenizer's use.
    void SetNameTables(THtNameTable* tagNames, THtNameTable* attributeNames) noexcept;
    /// Goes on at the start of another text.
    void Restart(const String& text);
    /// Moves the cursor back one unit and forgets nothing else.
    void StepBack() noexcept { FParser.Skip(-1); }

private:
    friend class THtmlParser;

    enum TRawBody : std::uint8_t { rbNone, rbScript, rbStyle };

    // The quick readers, in html_tokenizer_plain_p.h. They hand out what they read and leave the token's own
    // text to the few who ask for it.

    /// What stands for the token's text until then.
    enum TLeftText : std::uint8_t { ltNothing, ltName, ltQuoted, ltPlain };
    void LeaveText(TLeftText kind, const char16_t* from) noexcept
    {
        FLeftText = kind;
        FLeftFrom = from;
    }
    void ReadLeftText()
    {
        if (FLeftText != ltNothing)
            ReadTextAgain();
    }
    void ReadTextAgain();
    const String& ReadKnownTag() const;
    /// What ReadTagHead met.
    enum TTagHead : std::uint8_t { thNone, thOpen, thComplete };
    /// Reads "<" or "</" with a plain name behind it in one step, as three calls of NextToken would (thOpen),
    /// and the ">" with it where it follows at once and nothing hangs on it (thComplete). Reads nothing where
    /// something else stands.
    TTagHead ReadTagHead(bool& isCloseTag);
    /// Reads the end tag of a known tag at a "</", as ReadTagHead would. False, with nothing read, where
    /// another one stands.
    bool ReadEndTag(TTagId tag) noexcept;
    /// Reads the text behind a tag, as NextToken would. False, with nothing read, where something else
    /// stands.
    bool ReadPlainText(String& text);
    /// Reads the ">" of a tag without a body, as NextToken would.
    bool ReadPlainTagEnd() noexcept;
    /// Reads "/>" in XML mode, with a blank in front or not, as NextToken would. False, with nothing read,
    /// where something else stands.
    bool ReadPlainEmptyEnd() noexcept;
    /// Reads "</", the tag and ">", as NextToken would but for the token's name. False, with nothing read,
    /// where something else stands.
    bool ReadPlainCloseTag(std::u16string_view tag) noexcept;
    /// Reads "<" and the tag with a blank, ">" or "/>" behind it, in XML mode, as two calls of NextToken
    /// would. False, with nothing read, where something else stands.
    bool ReadPlainOpenTag(const String& tag) noexcept;
    /// Reads a text of blanks behind a tag and in front of a "<", as NextToken would but for the token's
    /// name. Empty, with nothing read, where something else stands. Lifetime: that of the text.
    std::u16string_view ReadPlainBlanks() noexcept;
    void EndTagAt(const char16_t* end) noexcept;
    const char16_t* BehindBlanks(const char16_t* p) const noexcept;
    /// Reads blanks, a known attribute name and the "=" in front of a quoted value in one step. Null, with
    /// nothing read, where something else stands. ReadPlainValue has to follow; both together do what
    /// NextToken(false) and three calls more would.
    const THtNameRec* ReadPlainAttributeName();
    /// The name that is tried first in XML mode: the one that stood behind the same name last time.
    const THtNameRec* GuessAttribute(const char16_t*& p);
    /// Begins the attributes of a tag.
    void StartAttributes(std::uint32_t tagHash) noexcept { FLastName = tagHash; }
    String ReadPlainValue();
    TTagHead ReadShortTagHead(const char16_t* name, bool closes);
    TTagHead ReadLongTagHead(const char16_t* name, bool closes);
    const THtNameRec* FindAttribute(const char16_t*& p) const;

    enum TNameAction : std::uint8_t { naFind, naIntern };

    bool ReadClass(unsigned charClass);
    bool ReadSpace();
    void ReadTagStart();
    void ReadTagEnd();
    void ReadTagClose();
    void ReadLess();
    void ReadMarked();

    void ReadTag();
    void ReadIdent();
    void SetName(std::uint32_t hash, std::u16string_view name, THtNameTable* table, TNameAction action);
    static TRawBody RawBodyOf(std::u16string_view tag);
    static TRawBody RawBodyOf(TTagId tag);

    void ReadComment();
    void ReadCData();
    void ReadCustom();
    void ReadDirective();
    void ReadUpToMark(THTMLTokenType type, std::u16string_view mark);
    void ReadScript();
    void ReadStyle();
    std::u16string_view ReadBody(std::u16string_view closingTag);

    void ReadText();
    void ReadString();
    String ReadQuoted();
    String ReadUpTo(char16_t mark);
    String ReadResolved(const char16_t* end, std::u16string_view prefix);
    std::int64_t Escape();
    std::int64_t EscapeLoose();
    std::int64_t EscapeExact();
    std::int64_t EscapeNumber(const char16_t* nameEnd);
    void AppendCodePoint(std::int64_t code);
    [[noreturn]] void RaiseInvalidTagName() const;

    void SetToken(THTMLTokenType type, const char16_t* from, const char16_t* to);

    TStringParser FParser;
    THTMLToken FToken;
    const THtNameRec* FNameRecord = nullptr;
    static constexpr std::size_t kGuesses = 32;
    std::array<const THtNameRec*, kGuesses> FGuesses{}; // by the hash of the name in front
    std::uint32_t FLastName = 0; // the hash of the tag or attribute that was read last
    THtNameTable* FTagNames = nullptr;
    THtNameTable* FAttributeNames = nullptr;
    std::u16string FBuffer; // text that is put together around references
    const char16_t* FLeftFrom = nullptr; // where a text that was left begins
    TLeftText FLeftText = ltNothing;
    TRawBody FRawBody = rbNone; // what follows the tag that is being opened
    bool FInTag = false;
    bool FCaseSensitive;
    bool FEof = false;
    bool FXMLMode;
    bool FExactXML = false;
};

}
