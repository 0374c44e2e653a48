// The append-only text buffer of 16-bit units that all writers use.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/chunk_chain.h>
#include <hearth/runtime/text.h>

#include <concepts>

namespace ht {

class TStream;

namespace detail {

/// What C++ takes for a small integer, and nobody else does.
template <class T>
concept NoNumber = std::same_as<T, char> || std::same_as<T, wchar_t> || std::same_as<T,
    char8_t> || std::same_as<T, char16_t> || std::same_as<T, char32_t> || std::same_as<T, bool>;

}

/// Text that grows at its end and is assembled when somebody asks for it. Lengths are 32-bit: an addition
/// that would pass them throws EIntOverflow and leaves the buffer as it was. Belongs to one thread.
class HT_API TFastString : public detail::ChunkChain<char16_t> {
public:
    /// `delta` is the least capacity of a new chunk. Allocates nothing.
    explicit TFastString(std::int32_t delta);
    ~TFastString() override;

    TFastString& Add(std::u16string_view s)
    {
        Append(s);
        return *this;
    }
    /// `length` below 1 does nothing.
    TFastString& Add(const char16_t* src, std::int32_t length)
    {
        if (length > 0)
            Append(src, static_cast<std::size_t>(length));
        return *this;
    }
    /// Decimal; throws EIntOverflow for the lowest value of the type.
    TFastString& Add(std::int64_t value);
    TFastString& Add(std::int32_t value) { return Add(std::int64_t{value}); }
    /// Up to `digits` decimal places, at most 8 (also for a negative count), rounded half to even, without
    /// trailing zeros; `zero` writes the 0 in front of a bare fraction. Where a double has no so many places,
    /// those are written that it takes to read it back. NaN is 0; what passes 64 bits is cut to them.
    TFastString& Add(double value, std::int32_t digits, bool zero);
    /// AddChar appends characters, which would be written as decimal numbers here.
    template <detail::NoNumber T> TFastString& Add(T) = delete;
    TFastString& AddChar(char16_t c)
    {
        AppendOne(c);
        return *this;
    }
    TFastString& Add2Char(char16_t c1, char16_t c2)
    {
        AppendTwo(c1, c2);
        return *this;
    }
    /// A count below 1 appends nothing.
    TFastString& AddSpaces(std::int32_t spaceCount)
    {
        AppendSpaces(spaceCount);
        return *this;
    }

    String GetAsString() const;
    void ToString(String& s) const { s = GetAsString(); }
    /// As many units as the text is longer than `startPos`, from the position `startPos` on (from 1). So 0
    /// and less give the whole text, and 1 the text without its last unit.
    void ToStringFrom(String& s, std::int32_t startPos) const;

    /// Frees every chunk but the first, for reuse in a loop.
    void ClearandLeaveSpace() noexcept;
    /// Removes the last units, at most all.
    void DeletefromEnd(std::int32_t count);
    void Prepend(std::u16string_view s);
    /// Appends the text of `source` by taking its chunks over, which leaves it empty; the text of a single
    /// chunk less than half full is copied, and the source keeps it.
    void Grab(TFastString& source);
    /// Removes trailing U+0020; when that empties the last chunk, all units up to U+0020 in front of it.
    void TrimTrailingSpaces();
    /// Removes trailing units below U+0021.
    void TrimTrailingBlanks();

    /// False on an empty text; true for an empty `s` otherwise.
    bool EndsWith(std::u16string_view s) const noexcept;
    /// U+0000 when the text is empty.
    char16_t LastChar() const noexcept;

    /// Writes each chunk in turn, UTF-16 as it stands in memory, without a byte order mark. Throws
    /// EWriteError.
    void SavetoStream(TStream& stream) const;
    /// Copies the text to a place of twice GetTotalLen bytes.
    void SavetoBuffer(void* buffer) const noexcept;

    String Charset; // the buffer never reads it

private:
    template <class Blank> void TrimTrailing(Blank blank);
    void Refill(std::u16string_view text);
};

}
