// From the text of a style sheet to rules.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/runtime/exceptions.h>
#include <hearth/styling/css/css_section.h>
#include <hearth/styling/css/css_tokenizer.h>
#include <hearth/styling/css/media_set.h>

namespace ht {

class THtPointerDictionary;

/// A token outside of the enumeration, which no text makes.
class HT_API ECSSParserError : public Exception {
public:
    using Exception::Exception;
};

/// An "@import": the token of the address and those of the media behind it.
struct TCSSImport {
    TCSSToken Token;
    TArray<TCSSToken> Media;
};

using TCSSImports = TArray<TCSSImport>;

/// Reads one rule a call and drops what is malformed. Throws ECSSParserError on impossible tokens only.
/// css_parser.cpp reads declarations, css_parser_rules.cpp rules and at-rules, css_parser_selectors.cpp
/// selectors.
class HT_API TCSSParser : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSParser", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    explicit TCSSParser(const String& Text, bool Numbers = true);
    TCSSParser(const TCSSParser&) = delete;
    TCSSParser& operator=(const TCSSParser&) = delete;
    ~TCSSParser() override;

    /// Reads the next rule into CurrentSection, for the caller to take; false behind the last one.
    bool NextSection();
    /// Reads declarations up to the closing brace into CurrentSection, which must be set.
    void ReadSectionValues();

    std::unique_ptr<TCSSSection> CurrentSection;
    TCSSImports Imports;
    String Charset; // of "@charset"; nobody reads it
    String KeyFramesName; // not empty inside "@keyframes"
    THtObjectList MediaSets{true}; // those made so far; a sheet takes them over
    THtLimits Limits = HtLimits(); // a selector or value beyond them is dropped

    const TCSSTokenizer& Tokenizer() const noexcept { return FTokenizer; }

private:
    class TMediaReader;

    // Tokens. The current one is that of the tokenizer; all of these leave the one behind what they read.

    const TCSSToken& Token() const noexcept { return FTokenizer.Token; }
    void NextToken() { FTokenizer.NextToken(); }
    bool IsAt(TCSSTokenType type) const noexcept { return !FTokenizer.Eof && Token().CType == type; }
    void SkipSpace();
    /// Goes to the next token of this type and calls `take` with each one in front of it.
    template <class Take> void ReadUpTo(TCSSTokenType end, Take take)
    {
        for (; !FTokenizer.Eof && Token().CType != end; NextToken())
            take(Token());
    }
    /// Goes behind the next "}".
    void SkipSection();
    /// Goes to the next ";" or "}", whatever is nested.
    void SkipValue();
    /// Takes the current token over to the working list.
    void AddToken() { FList.Emplace(std::move(FTokenizer.Token)); }
    void ClearList() noexcept { FList.Clear(); }
    /// Takes the working list over.
    TCSSTokens ParseValue();

    // Rules.

    /// What stands in front of the next "{": a selector, an at-rule, the end of a block, or nothing useful.
    void ReadPrelude();
    void AddSelector();
    bool GatherSelector();
    void AddAtKeyword();
    void AddCharset();
    void AddImport();
    void AddKeyFrames();
    void AddMedia();
    void EndBlock();

    // Declarations.

    void AddValue();
    bool ReadValueTokens(bool& important);
    /// Takes a prepared value in; a former one of its name is marked as dropped.
    void ReplaceFormer(TCSSValue& value);
    TCSSValue* FindFormer(const TCSSValue& value) const;
    /// Moves the values that are left to the section.
    void StoreValues();
    void ClearValues() noexcept;

    TCSSTokenizer FTokenizer;
    TArray<TCSSToken> FList; // the tokens of the selector or value at hand
    TStableArray<TCSSValue> FValues; // of the rule at hand, with those that later ones replaced
    std::unique_ptr<THtPointerDictionary> FNames; // of long rules: their values by name
    TCSSMediaSet* FMediaSet = nullptr; // the one around the rule; owned by MediaSets
};

}
