// From the text of a style sheet to rules.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/strings.h>
#include <hearth/styling/css/css_section.h>
#include <hearth/styling/css/css_tokenizer.h>
#include <hearth/styling/css/media_set.h>

namespace ht {

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

    const TCSSTokenizer& Tokenizer() const noexcept { return FTokenizer; }

private:
    TCSSTokenizer FTokenizer;
    TArray<TCSSToken> FList; // the tokens of the selector or value at hand
    TCSSMediaSet* FMediaSet = nullptr; // the one around the rule; owned by MediaSets
    TStringList FMediaTexts;
    std::int32_t FMediaIndex = 0;
};

}
