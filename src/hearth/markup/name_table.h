// The interning tables of tag and attribute names.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/htdictionary.h>
#include <hearth/markup/tag_names.h>

#include <memory>

namespace ht {

/// One name of an interning table. Equal names of a document share its string.
class HT_API THtNameRec : public THtStringRec {
public:
    THtNameRec(const String& value, std::uint32_t hash, TTagId id);

    bool Is(std::uint32_t hash, std::u16string_view name) const noexcept
    {
        return Hash == hash && Value.View() == name;
    }

    std::uint32_t LowerHash; // RSHash of the name folded to lower case
    TTagId Id; // of a known tag, else 0
    bool IsLower; // no letter A to Z in it
    bool ActsAtEnd; // more happens at the ">" of such a tag: script, style, meta
};

/// Names seen by one parser, over the names known to the whole process. The known ones are built once and
/// only read; a parser's own table is made when the first unknown name comes.
class HT_API THtNameTable {
public:
    /// The known names below a table.
    enum TKind : std::uint8_t { ntTags, ntAttributes };

    THtNameTable(TKind kind, std::int32_t capacity);

    /// The record of a name by its RSHash; null when it was never seen.
    const THtNameRec* Find(std::uint32_t hash, std::u16string_view name) const
    {
        const THtNameRec* likely = FKnown.Likely[hash % kLikelySlots];
        if (likely && likely->Is(hash, name)) [[likely]]
            return likely;
        return FindRare(hash, name);
    }
    /// The record of a known name by the key of TShortName; null when the slot of the key holds another one,
    /// so a miss says nothing.
    const THtNameRec* FindShort(std::uint64_t key) const noexcept
    {
        const TShortSlot& slot = FKnown.Short[ShortSlot(key)];
        return slot.Key == key ? slot.Record : nullptr;
    }
    /// The same, adding the name when it is new.
    const THtNameRec& Intern(std::uint32_t hash, std::u16string_view name);

    /// The record of a known name, null for all others.
    static const THtNameRec* FindKnown(TKind kind, std::uint32_t hash, std::u16string_view name);

private:
    static constexpr std::uint32_t kLikelySlots = 1024;

    struct TShortSlot {
        std::uint64_t Key = 0;
        const THtNameRec* Record = nullptr;
    };
    static std::uint32_t ShortSlot(std::uint64_t key) noexcept
    {
        return static_cast<std::uint32_t>((key * 0x9E3779B97F4A7C15U) >> 54U);
    }

    /// The names known to the process. Most of them are found in one step, by the low bits of their hash or,
    /// short ones, by the name itself.
    struct KnownNames {
        explicit KnownNames(TKind kind);

        THtObjectDictionary All;
        const THtNameRec* Likely[kLikelySlots]{};
        TShortSlot Short[kLikelySlots]{};
    };

    static const KnownNames& Known(TKind kind);
    const THtNameRec* FindRare(std::uint32_t hash, std::u16string_view name) const;

    const KnownNames& FKnown;
    std::unique_ptr<THtObjectDictionary> FOwn;
    std::int32_t FCapacity;
};

}
