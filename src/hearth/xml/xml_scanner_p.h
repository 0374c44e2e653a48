// A cursor over XML text that refuses what the grammar does not allow.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <cstdint>
#include <string_view>

namespace ht {

/// Every reader of a part throws EHtXML where the part does not stand. The text outlives the scanner.
class TXMLScanner {
public:
    /// `document` and `place` tell where in the document messages point to: for the text of an entity it is
    /// where the entity is referred to.
    explicit TXMLScanner(std::u16string_view document)
        : FDocument(document)
        , FText(document)
    {
    }
    TXMLScanner(std::u16string_view text, const TXMLScanner& referrer)
        : FDocument(referrer.FDocument)
        , FText(text)
        , FPlace(referrer.Place())
        , FIsEntity(true)
    {
    }

    bool AtEnd() const noexcept { return FAt == FText.size(); }
    /// U+0000, which no document may hold, at the end.
    char16_t Peek() const noexcept { return AtEnd() ? u'\0' : FText[FAt]; }
    bool StartsWith(std::u16string_view literal) const noexcept
    {
        return FText.substr(FAt).starts_with(literal);
    }
    bool Accept(std::u16string_view literal) noexcept
    {
        const bool stands = StartsWith(literal);
        FAt += stands ? literal.size() : 0;
        return stands;
    }
    void Expect(std::u16string_view literal);
    /// True if there was any.
    bool SkipSpace() noexcept;
    void RequireSpace();

    /// One character that XML allows.
    char32_t Char();
    std::u16string_view Name();
    std::u16string_view Nmtoken();
    /// Up to `end`, which is passed over; `what` is named where it is missing.
    std::u16string_view Until(std::u16string_view end, std::u16string_view what);
    /// What stands between two equal quotes, of either kind.
    std::u16string_view Quoted(std::u16string_view what);
    /// Character data up to the next "<" or "&".
    void CharData();
    /// "&#...;" with the cursor behind "&#".
    char32_t CharReference();

    [[noreturn]] void Fail(std::u16string_view reason) const;
    [[noreturn]] void Fail(std::u16string_view reason, std::u16string_view name) const;

private:
    std::size_t Place() const noexcept { return FIsEntity ? FPlace : FAt; }

    std::u16string_view FDocument;
    std::u16string_view FText;
    std::size_t FAt = 0;
    std::size_t FPlace = 0;
    bool FIsEntity = false;
};

}
