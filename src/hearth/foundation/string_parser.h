// The character cursor under every tokenizer.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>
#include <hearth/runtime/object.h>
#include <hearth/runtime/text.h>

#include <bitset>
#include <cstdint>

namespace ht {

/// A cursor over one text, which it keeps alive. `p` always points at readable memory: the text ends with
/// U+0000, and an empty text points at `fNull`. The cursor never passes `pend`. Not to be copied: `p` points
/// into the parser.
///
/// string_parser.cpp moves and splits, string_parser_numbers.cpp reads numbers.
class HT_API TStringParser : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TStringParser", &TObject::kClassInfo};

    using TByteChars = std::bitset<256>;

    TStringParser() { Init(String()); }
    explicit TStringParser(const String& A) { Init(A); }
    TStringParser(const TStringParser&) = delete;
    TStringParser& operator=(const TStringParser&) = delete;

    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Starts over on another text.
    void Init(const String& A);

    bool Empty() const noexcept { return p >= pend; }
    bool First() const noexcept { return p == Start(); }
    char16_t GetCurrent() const noexcept { return *p; }
    /// Moves one unit unless at the end; returns the unit then under the cursor.
    char16_t Next() noexcept
    {
        if (p < pend)
            ++p;
        return *p;
    }
    /// Moves `n` units, never past the ends of the text.
    void Skip(std::int32_t n) noexcept;
    /// Moves to the next `c`, or to the end.
    void Skipto(char16_t c) noexcept;
    /// Moves over all units below U+0021.
    void SkipBlanks() noexcept
    {
        while (p < pend && *p <= u' ')
            ++p;
    }
    /// Shortens the text by its trailing LF, CR and blanks; the cursor keeps its offset.
    void SkipEndBlanks();

    /// Position of the cursor, from 1.
    std::int32_t Pos() const noexcept { return Offset() + 1; }
    /// Position of the cursor, from 0.
    std::int32_t Offset() const noexcept { return static_cast<std::int32_t>(p - Start()); }
    /// Line of the cursor, from 0.
    std::int32_t Line() const noexcept;
    String Tail() const { return String(Rest()); }
    const char16_t* PTail() const noexcept { return p; }
    std::u16string_view Rest() const noexcept { return {p, static_cast<std::size_t>(pend - p)}; }

    /// Distance to the next `c`, from 1; 0 if there is none.
    std::int32_t CharPos(char16_t c) const noexcept;
    /// True when the text at the cursor, A to Z folded, begins with `text`, which must be lower case. False
    /// at the end and for an empty `text`.
    bool StartsWith(std::u16string_view text) const noexcept;

    /// A word: its first unit whatever it is, then up to a blank, CR, LF, tab, ",", "(" or ")".
    void ReadWord(String& result, bool DoSkipBlanks);
    /// One parameter of a list; false with an empty `result` at the end or behind a ")".
    bool ReadParam(String& result);
    /// Up to the next `c`; a run of `c` at the cursor belongs to the result. With `DoSkipBlanks` the blanks
    /// around the result are left out and the closing `c` is passed over.
    void ReadtoChar(char16_t c, String& result, bool DoSkipBlanks);
    /// Skips blanks, then reads up to a unit in `sc`.
    void ReadtoChars(const TByteChars& sc, String& result);
    /// The next piece that may stand on a line of its own, for text with ideographs.
    void ReadtoWordBreak(String& result);
    /// Up to the end of the line; the line end (CR, LF or both) is passed over.
    void ReadLn(String& result);

    // Readers of numbers. All pass over blanks in front, and all but ReadBin and ReadIntOrFloat over one
    // "," as well. At the end of the text, and where no digit stands, they give 0 unless they say that
    // they throw.

    /// A sign and decimal digits. Stops near 2^31 and leaves the digits behind for the next reader. With
    /// RaiseException set, throws EConvertError "Incorrect number" where no digit stands.
    std::int32_t ReadInt();
    /// A sign and one unit, which counts as a digit whatever it is ("A" is 17). With RaiseException set,
    /// throws EConvertError "Incorrect number" for what is no digit.
    std::int32_t ReadInt1();
    /// A "+", a "-" and hexadecimal digits, without a prefix. Stays at the ends of the type. Never throws.
    std::int64_t ReadHex();
    /// The same with the digits 0 and 1.
    std::int64_t ReadBin();
    /// A sign, digits and a fraction of which 7 digits count; an exponent is left unread. The whole part
    /// stops near 2^31 as that of ReadInt does. Never throws.
    double ReadNum();
    /// A sign, any number of digits, a fraction of which 7 digits count, an exponent. Exponents of 38 and
    /// more either way are read and not applied; what passes the type is its greatest number.
    ///
    /// With RaiseException set every exponent is applied, and EConvertError "Incorrect number" is thrown at
    /// the end of the text, where no digit stands (in front of "." it may be missing), for a 0 in front of
    /// other digits, for a "." without a digit behind it, and for what passes the type.
    double ReadNumEx();
    /// True: an integer stands in `IntValue`; false: a float stands in `ExtValue`, which is what has a
    /// fraction (18 digits count; ".." begins none), an exponent, or more than 64 bits. Exponents of 300 and
    /// more either way are read and not applied; what passes the type is its greatest number. With
    /// RaiseException set, throws EConvertError "Incorrect number" where no digit stands, for a 0 in front of
    /// other digits, for a "." without a digit behind it, and for what passes the type.
    bool ReadIntOrFloat(std::int64_t& IntValue, double& ExtValue);

    String s;
    char16_t fNull = 0;
    const char16_t* p = nullptr;
    const char16_t* pend = nullptr;
    bool RaiseException = false;

protected:
    const char16_t* Start() const noexcept { return FStart; }

private:
    const char16_t* FStart = nullptr;

    bool StartNumber();
    bool ReadSign();
    void CheckDigit() const;
    void CheckLeadingZero() const;
    void CheckFraction() const;
    double RequireFinite(double value) const;
    double ReadFraction(int maxDigits);
    bool StartsExponent() const;
    double ReadExponent(double value, std::int32_t limit);
};

}
