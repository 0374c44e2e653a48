// The marks and line ends of printed JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/fast_string.h>
#include <hearth/runtime/array.h>
#include <hearth/runtime/checked.h>
#include <hearth/xml/xml_encode.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace ht {

/// Writes values in the order of calls: Open, for each part BeginPart and its value, Close. With `spaces`
/// above 0 each part has a line of its own.
class TJSONPrinter {
public:
    enum TContainer : std::uint8_t { pcObject, pcArray };

    TJSONPrinter(TFastString& buffer, std::int32_t spaces)
        : FBuffer(buffer)
        , FSpaces(std::max(spaces, 0))
    {
    }

    std::int32_t Depth() const noexcept { return FOpen.Length(); }

    void Open(TContainer container)
    {
        FOpen.Add({container == pcArray, false});
        FBuffer.AddChar(container == pcArray ? u'[' : u'{');
    }

    void Close()
    {
        const TOpen closed = FOpen.Last();
        FOpen.Delete(FOpen.Length() - 1);
        if (closed.HasParts)
            BeginLine();
        FBuffer.AddChar(closed.IsArray ? u']' : u'}');
    }

    /// The comma behind the part in front, and the name of a member; elements have none.
    void BeginPart(std::u16string_view name = {})
    {
        TOpen& container = FOpen.Last();
        if (container.HasParts)
            FBuffer.AddChar(u',');
        container.HasParts = true;
        BeginLine();
        if (container.IsArray)
            return;
        WriteString(name);
        FBuffer.AddChar(u':');
        if (FSpaces > 0)
            FBuffer.AddChar(u' ');
    }

    void WriteString(std::u16string_view text)
    {
        FBuffer.AddChar(u'"');
        JSONEscapeTo(FBuffer, text);
        FBuffer.AddChar(u'"');
    }

    /// A number or keyword.
    void WriteWord(std::u16string_view word) { FBuffer.Add(word); }

private:
    struct TOpen {
        bool IsArray;
        bool HasParts;
    };

    void BeginLine()
    {
        if (FSpaces > 0)
            FBuffer.Add(u"\r\n").AddSpaces(CheckedMul(FOpen.Length(), FSpaces));
    }

    TFastString& FBuffer;
    std::int32_t FSpaces;
    TArray<TOpen> FOpen; // the containers around what is written
};

}
