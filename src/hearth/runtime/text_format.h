// Text made from a pattern and arguments.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <concepts>
#include <cstdint>
#include <initializer_list>

namespace ht {

/// One argument of Format: a whole number, a float or a text. Lifetime: looks at the text it was made from.
class TVarRec {
public:
    enum Kind : std::uint8_t { vrInteger, vrFloat, vrText };

    template <std::integral Int>
    requires(!std::same_as<Int, bool> && !std::same_as<Int, char16_t>) constexpr TVarRec(Int value) noexcept
        : FKind(vrInteger)
        , FUnsigned(std::unsigned_integral<Int>)
        , FWide(sizeof(Int) > sizeof(std::int32_t))
        , FInteger(static_cast<std::int64_t>(value))
    {
    }
    constexpr TVarRec(double value) noexcept
        : FKind(vrFloat)
        , FFloat(value)
    {
    }
    constexpr TVarRec(std::u16string_view value) noexcept
        : FText(value)
    {
    }
    constexpr TVarRec(const char16_t* value) noexcept
        : FText(value)
    {
    }
    TVarRec(const String& value) noexcept
        : FText(value)
    {
    }

    Kind GetKind() const noexcept { return FKind; }
    std::int64_t Integer() const noexcept { return FInteger; }
    /// The same bits without a sign, as wide as the argument was.
    std::uint64_t Bits() const noexcept
    {
        const auto bits = static_cast<std::uint64_t>(FInteger);
        return FWide ? bits : bits & 0xFFFFFFFF;
    }
    bool IsUnsigned() const noexcept { return FUnsigned; }
    double Float() const noexcept { return FFloat; }
    std::u16string_view Text() const noexcept { return FText; }

private:
    Kind FKind = vrText;
    bool FUnsigned = false;
    bool FWide = false;
    std::int64_t FInteger = 0;
    double FFloat = 0;
    std::u16string_view FText;
};

/// Replaces "%" [index ":"] ["-"] [width] ["." precision] type: s text (precision cuts it), d and u whole
/// numbers and x hexadecimal ones (precision pads with 0), f fixed (2 digits unless told), e scientific, g
/// general and n fixed with "," between thousands; "%%" is a percent sign. "*" as width or precision takes
/// the next argument. Throws EConvertError when the pattern or an argument does not fit, or one is missing.
HT_API String Format(std::u16string_view pattern, std::initializer_list<TVarRec> arguments);

}
