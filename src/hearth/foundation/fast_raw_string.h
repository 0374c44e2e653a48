// The append-only buffer of bytes.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/chunk_chain.h>
#include <hearth/runtime/array.h>

#include <string>

namespace ht {

/// Bytes that grow at their end and are assembled when somebody asks for them; see TFastString.
class HT_API TFastRawString : public detail::ChunkChain<char> {
public:
    /// `delta` is the least capacity of a new chunk. Allocates nothing.
    explicit TFastRawString(std::int32_t delta);
    ~TFastRawString() override;

    TFastRawString& Add(std::string_view s)
    {
        Append(s);
        return *this;
    }
    /// `length` below 1 does nothing.
    TFastRawString& Add(const void* src, std::int32_t length)
    {
        if (length > 0)
            Append(static_cast<const char*>(src), static_cast<std::size_t>(length));
        return *this;
    }
    TFastRawString& AddChar(char c)
    {
        AppendOne(c);
        return *this;
    }
    TFastRawString& Add2Char(char c1, char c2)
    {
        AppendTwo(c1, c2);
        return *this;
    }
    /// A count below 1 appends nothing.
    TFastRawString& AddSpaces(std::int32_t spaceCount)
    {
        AppendSpaces(spaceCount);
        return *this;
    }
    /// Encodes UTF-8, in space of three bytes a unit that is taken at once. A surrogate joins with whatever
    /// follows it, also in the wrong order; one that is the last unit ends the encoding and leaves nothing.
    TFastRawString& AddUTF8(std::u16string_view s);
    /// Decimal; throws EIntOverflow for the lowest value of the type.
    TFastRawString& AddInt(std::int32_t value);

    std::string GetAsString() const;
    void ToString(std::string& s) const { s = GetAsString(); }
    /// The bytes as they are, which the caller knows to be UTF-8.
    void ToUTF8String(std::string& s) const { s = GetAsString(); }
    TBytes AsBytes() const;
};

}
