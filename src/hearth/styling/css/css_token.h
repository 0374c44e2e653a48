// The tokens of style sheets and the arrays that values keep them in.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/memory.h>
#include <hearth/runtime/text.h>
#include <hearth/styling/style/measure_unit.h>

#include <span>

namespace ht {

enum TCSSTokenType : std::uint8_t {
    ctUnknown, // an empty record
    ctIdent,
    ctAtKeyword, // Name keeps the "@"
    ctString, // Name is the content, unescaped
    ctBlockStart,
    ctBlockEnd,
    ctHash, // Name has no "#"
    ctNumber,
    ctPercentage,
    ctDimension,
    ctURI, // Name is the address
    ctCDO, // never read
    ctCDC, // never read
    ctComment, // Name is what stands inside
    ctFunction, // Name in lower case; the "(" is the next token
    ctColon,
    ctSemicolon,
    ctComma,
    ctOpenPar,
    ctClosePar,
    ctDelimiter, // any other single unit below U+0100
    ctOpenBr,
    ctCloseBr,
    ctSlash,
    ctSpace,
};

template <> struct TEnumTraits<TCSSTokenType> {
    static constexpr int kCount = 25;
    static constexpr const char16_t* kName = u"TCSSTokenType";
};

/// Marks in TCSSToken::Color of a first token.
inline constexpr std::uint32_t kInheritMark = 888; // "inherit"
inline constexpr std::uint32_t kUnknownKeywordMark = 999; // no keyword of the property

/// One token. Positions count from 1.
struct TCSSToken {
    String Name;
    std::int32_t StartPos = 0; // of the first unit
    std::int32_t EndPos = 0; // of the last unit
    std::int32_t Flags = 0; // 1: Color is a system colour, to be looked up on each use
    float AsFloat = 0; // of numbers
    std::uint32_t Color = 0; // cached: a colour, the ordinal of a keyword, or a mark
    TCSSTokenType CType = ctUnknown;
    TMeasureUnit MUnit = muNone;
};

using PCSSToken = TCSSToken*;

/// An array of tokens that its copies share: what one of them caches in a token all of them see. Costs one
/// pointer, and a count to copy. Different threads may copy and drop arrays that share
/// tokens.
class HT_API TCSSTokens {
public:
    constexpr TCSSTokens() noexcept = default;
    /// New tokens with the contents of `tokens`.
    explicit TCSSTokens(std::span<const TCSSToken> tokens);
    /// New tokens that take over what stands in `tokens`.
    static TCSSTokens Taking(std::span<TCSSToken> tokens);
    TCSSTokens(const TCSSTokens& other) noexcept;
    TCSSTokens(TCSSTokens&& other) noexcept
        : FBlock(std::exchange(other.FBlock, nullptr))
    {
    }
    TCSSTokens& operator=(const TCSSTokens& other) noexcept;
    TCSSTokens& operator=(TCSSTokens&& other) noexcept;
    ~TCSSTokens() { Release(); }

    std::int32_t Length() const noexcept { return FBlock ? FBlock->Length : 0; }
    bool IsEmpty() const noexcept { return Length() == 0; }
    /// Throws ERangeError outside the array.
    TCSSToken& operator[](std::int32_t index) const
    {
        if (static_cast<std::uint32_t>(index) >= static_cast<std::uint32_t>(Length())) [[unlikely]]
            RaiseRangeError();
        return begin()[index];
    }
    TCSSToken* begin() const noexcept { return FBlock ? FBlock->Items() : nullptr; }
    TCSSToken* end() const noexcept { return begin() + Length(); }
    std::span<TCSSToken> Span() const noexcept { return {begin(), static_cast<std::size_t>(Length())}; }
    void Clear() noexcept { Release(); }
    /// True for the same tokens in memory.
    bool Shares(const TCSSTokens& other) const noexcept { return FBlock == other.FBlock; }

private:
    /// Stands in front of the tokens.
    struct Block {
        std::int32_t Count; // owners
        std::int32_t Length;

        TCSSToken* Items() noexcept { return reinterpret_cast<TCSSToken*>(this + 1); }
    };

    static Block* NewBlock(std::size_t length);
    void Release() noexcept;

    Block* FBlock = nullptr;
};

using PCSSTokens = const TCSSTokens*;

}
