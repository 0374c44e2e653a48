// Cuts JSON text into tokens.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/string_parser.h>
#include <hearth/markup/json_token.h>

#include <string>
#include <string_view>
#include <utility>

namespace ht {

/// A pull reader over one text. It takes more than the standard allows: strings in single quotes, words
/// without quotes, the escape "\x". What it cannot read throws EHtJSONParserException, a number EConvertError
/// "Incorrect number"; after that the reader is not to be used.
class HT_API THtJSONTokenizer : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtJSONTokenizer", &TObject::kClassInfo};

    /// Leading blanks are skipped.
    explicit THtJSONTokenizer(const String& s);
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Reads one token; false at the end of the text, and behind blanks that end it.
    bool NextToken();
    /// Reads the next token that is no jtSpace; false at the end of the text.
    bool NextNSToken();
    /// The same; throws EHtJSONParserException "Token expected" at the end of the text.
    void NextRequiredToken();

    /// Passes over blanks; the unit then at the cursor, U+0000 at the end of the text. Leaves the token as it
    /// is.
    char16_t PassBlanks() noexcept { return *FParser.p > u' ' ? *FParser.p : PassRealBlanks(); }

    const THtJSONToken& Token() const noexcept { return FToken; }
    /// The text of the current token, which has none afterwards.
    String TakeName() noexcept { return std::move(FToken.Name); }
    THtJSONTokenType Type() const noexcept { return FToken.CType; }
    TStringParser& Parser() noexcept { return FParser; }
    /// True once a read met the end of the text.
    bool Eof() const noexcept { return FEof; }

private:
    friend class THtJSONParser;

    /// Reads a string as NextNSToken would, and leaves its text with the caller, who puts it into the token.
    /// False, with only blanks read, where something else stands. Lifetime: until the next string is read.
    bool ReadStringView(std::u16string_view& text);
    /// Passes over blanks and a ":" without making a token of it. False, with only blanks read, where
    /// something else stands.
    bool PassColon() noexcept;
    char16_t PassRealBlanks() noexcept;

    void SetBlanks(const char16_t* from);
    void ReadToken();
    void ReadMark(THtJSONTokenType type, const String& mark);
    void ReadNumber();
    void ReadIdent();
    std::u16string_view ReadWord();
    std::u16string_view ReadQuoted();
    std::u16string_view ReadEscaped(const char16_t* opening, const char16_t* stop);
    char16_t Escape();
    char16_t NumberEscape(char16_t mark);
    [[noreturn]] void RaiseEscape() const;

    TStringParser FParser;
    THtJSONToken FToken;
    std::u16string FBuffer; // a string that is put together around escapes
    bool FEof = false;
};

}
