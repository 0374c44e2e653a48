// The cursor over the tokens of a value, which is also the reader of colours.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/styling/css/css_token.h>

namespace ht {

/// A cursor for the stack.
struct HT_API TCSSTokenSequence {
    TCSSTokenSequence() noexcept = default;
    TCSSTokenSequence(const TCSSTokenSequence&) = delete; // FPTokens may point into it
    TCSSTokenSequence& operator=(const TCSSTokenSequence&) = delete;

    /// Starts at the first token of an array that the caller keeps alive and in place.
    void Init(PCSSTokens P) noexcept;
    /// Starts over tokens that the sequence keeps alive itself.
    void InitStore(const TCSSTokens& Tokens) noexcept;
    /// Goes on by `Step` tokens; false past the end. There is no check at the start.
    bool Next(std::int32_t Step = 1) noexcept;
    /// Index of T, or of the last token past the end.
    std::int32_t Position() const noexcept;
    /// Reads the colour at T and caches it there; the threads that share a sheet may do so at the same time.
    /// A function moves the cursor to its ")". The answer tells whether a colour property has got its value,
    /// which "inherit" and what is no colour are not; Color stays where nothing is stored.
    bool ReadColor(std::uint32_t& Color);

    std::int32_t Index = 0;
    std::int32_t Count = 0;
    PCSSTokens FPTokens = nullptr;
    PCSSToken T = nullptr; // null past the end
    TCSSTokens FOwnTokens;
    bool Eof = true;

private:
    bool ReadChannels(std::uint32_t& Color);
};

}
