// From the text of a style sheet to tokens.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/string_parser.h>
#include <hearth/styling/css/css_token.h>

#include <array>
#include <memory>

namespace ht {

namespace detail {

consteval auto MakeCSSNameUnits()
{
    std::array<bool, 0x100> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto unit = static_cast<char16_t>(i);
        table[i] =
            IsAsciiLower(unit) || IsAsciiUpper(unit) || IsAsciiDigit(unit) || unit == u'-' || unit == u'_';
    }
    return table;
}
inline constexpr auto kCSSNameUnits = MakeCSSNameUnits();

}

/// Units from U+0080 to U+00FF end a name, those behind belong to it.
constexpr bool IsCSSNameUnit(char16_t unit) noexcept
{
    return unit >= detail::kCSSNameUnits.size() || detail::kCSSNameUnits[unit];
}

/// Reads any text as tokens: there is no error, what fits nothing is a delimiter. Escapes are resolved. It
/// keeps the text alive. css_tokenizer.cpp reads words and strings, css_tokenizer_numbers.cpp numbers.
class HT_API TCSSTokenizer : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSTokenizer", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Passes over blanks in front. Without `ReadNumbers` the values of numbers are not computed and AsFloat
    /// keeps what it was.
    explicit TCSSTokenizer(const String& Text, bool ReadNumbers = true);
    TCSSTokenizer(const TCSSTokenizer&) = delete;
    TCSSTokenizer& operator=(const TCSSTokenizer&) = delete;
    ~TCSSTokenizer() override;

    /// Reads the next token into Token. False at the end of the text, and with a valid token for blanks that
    /// end there; Eof tells the two apart.
    bool NextToken();
    /// Makes the current unit a token of this type and goes one unit on.
    void Next(TCSSTokenType type);
    // What NextToken calls, each at the first unit of its token.
    void ReadIdent();
    void ReadString();
    void ReadURI();
    void ReadNumber();
    void ReadComment();
    void ReadAt();
    void ReadHash();
    /// Behind a backslash: up to 6 hexadecimal digits and one blank, or else the unit itself.
    std::int32_t Escape();

    const TStringParser& Reader() const noexcept { return FReader; }

    TCSSToken Token;
    bool Eof = false;

private:
    class TNameCache;

    /// One token; false for blanks that end the text.
    bool ReadToken();
    bool ReadSpace();
    void ReadEscapedIdent();
    void ReadFunction();
    void ReadUnit();
    /// The text from `start` to the cursor.
    String NameFrom(const char16_t* start);

    TStringParser FReader;
    std::unique_ptr<TNameCache> FNames; // null for short texts
    String FLastSpace;
    bool FReadNumbers;
};

}
