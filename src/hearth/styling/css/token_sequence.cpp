// Walking over tokens, and reading colours from them.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/token_sequence.h>

#include <hearth/foundation/colors.h>
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/text_number.h>

#include <atomic>

namespace ht {

namespace {

// A shared sheet is read by many threads, which may all be the first to need a colour.
template <class Field> Field Cached(Field& field)
{
    return std::atomic_ref<Field>(field).load(std::memory_order_relaxed);
}

template <class Field> void Cache(Field& field, Field value)
{
    std::atomic_ref<Field>(field).store(value, std::memory_order_relaxed);
}

/// kNoColor also for a text that spells an rgba with numbers out of range, which escapes can do.
std::uint32_t LookUp(std::u16string_view name, std::int32_t& isSystem)
{
    try {
        return htmlHextoColorSys(name, isSystem);
    } catch (const ERangeError&) {
        return kNoColor;
    }
}

/// The colour of a word. System colours are looked up each time, since the host may change them.
std::uint32_t ColorOfWord(TCSSToken& token)
{
    const std::uint32_t cached = Cached(token.Color);
    if (cached != 0 && Cached(token.Flags) != 1)
        return cached;
    std::int32_t isSystem = 0;
    const std::uint32_t color = LookUp(token.Name, isSystem);
    if (cached == 0 && color != kNoColor) {
        Cache(token.Flags, isSystem);
        Cache(token.Color, color);
    }
    return color;
}

/// Puts the arguments of rgb() and rgba() together.
class ChannelReader {
public:
    /// False for a number out of range. Tokens that are neither colours nor numbers count for nothing.
    bool Take(TCSSToken& token)
    {
        switch (token.CType) {
        case ctIdent:
            FColor = ColorOfWord(token);
            FHasColor = true;
            return FColor != kNoColor;
        case ctHash:
            FColor = Cached(token.Color);
            FHasColor = true;
            return true;
        case ctNumber:
            return IsAlpha() ? AddAlpha(double{token.AsFloat} * kMost) : AddChannel(token.AsFloat);
        case ctPercentage: {
            const double value = double{token.AsFloat} * kMost / 100;
            return IsAlpha() ? AddAlpha(value) : AddChannel(value);
        }
        default:
            return true;
        }
    }
    std::uint32_t Color() const
    {
        constexpr std::uint32_t kOpaque = 0xFF000000;
        return FCount == 3 ? FColor | kOpaque : FColor;
    }

private:
    static constexpr int kMost = 255;

    bool IsAlpha() const { return FHasColor || FCount == 3; }
    bool AddChannel(double value)
    {
        return Add(value, [this](std::uint32_t byte) { FColor = FColor << 8 | byte; });
    }
    bool AddAlpha(double value)
    {
        return Add(value, [this](std::uint32_t byte) { FColor |= byte << 24; });
    }
    template <class Put> bool Add(double value, Put put)
    {
        if (!(value > -1 && value < kMost + 1))
            return false;
        const std::int64_t rounded = BankersRound(value);
        if (rounded < 0 || rounded > kMost)
            return false;
        put(static_cast<std::uint32_t>(rounded));
        ++FCount;
        return true;
    }

    std::uint32_t FColor = 0;
    int FCount = 0; // values so far
    bool FHasColor = false; // a colour stood among the arguments: what follows is alpha
};

bool Store(std::uint32_t color, std::uint32_t& target)
{
    if (color != kNoColor)
        target = color;
    return color != kNoColor;
}

}

void TCSSTokenSequence::Init(PCSSTokens P) noexcept
{
    FPTokens = P;
    Index = 0;
    Count = P->Length();
    Eof = Count < 1;
    T = Eof ? nullptr : P->begin();
}

void TCSSTokenSequence::InitStore(const TCSSTokens& Tokens) noexcept
{
    FOwnTokens = Tokens;
    Init(&FOwnTokens);
}

bool TCSSTokenSequence::Next(std::int32_t Step) noexcept
{
    Index += Step;
    Eof = Index >= Count;
    T = Eof ? nullptr : FPTokens->begin() + Index;
    return !Eof;
}

std::int32_t TCSSTokenSequence::Position() const noexcept
{
    return T ? Index : Count - 1;
}

bool TCSSTokenSequence::ReadColor(std::uint32_t& Color)
{
    if (!T)
        return false;
    switch (T->CType) {
    case ctIdent:
        if (Cached(T->Color) == 0 && T->Name == u"inherit")
            return false;
        return Store(ColorOfWord(*T), Color);
    case ctHash: {
        const std::uint32_t cached = Cached(T->Color);
        return cached != 0 && Store(cached, Color);
    }
    case ctNumber:
        Store(htmlHextoColor(u"#" + T->Name), Color);
        return false;
    case ctFunction:
        if (T->Name.View().starts_with(u"rgb"))
            return ReadChannels(Color);
        return T->Name.View().starts_with(u"var");
    default:
        return false;
    }
}

bool TCSSTokenSequence::ReadChannels(std::uint32_t& Color)
{
    if (Count == 1) {
        Store(Cached(T->Color), Color);
        return true;
    }
    ChannelReader channels;
    while (Next() && T->CType != ctClosePar) {
        if (!channels.Take(*T))
            return false;
    }
    Store(channels.Color(), Color);
    return true;
}

}
