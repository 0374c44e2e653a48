// The entity dictionaries over the one table of names.
// SPDX-License-Identifier: MIT
#include <hearth/markup/entities.h>

#include <cstddef>
#include <string_view>

namespace ht {

namespace {

struct SourceRow {
    std::string_view Name;
    std::uint32_t Code;
};

/// By lower-cased name; where only the case differs, upper case first.
constexpr SourceRow kSourceRows[] = {
#include <hearth/markup/entities_table.inc>
};

constexpr std::size_t kRowCount = std::size(kSourceRows);
static_assert(kRowCount == 2125);

using EntityRows = std::array<THtEntityRow, kRowCount>;

EntityRows MakeRows()
{
    EntityRows rows;
    for (std::size_t i = 0; i < kRowCount; ++i)
        rows[i] = {String::FromLatin1(kSourceRows[i].Name), kSourceRows[i].Code};
    return rows;
}

/// The dictionaries store pointers without const, as all pointer dictionaries do; nobody writes through them.
EntityRows& Rows()
{
    static EntityRows rows = MakeRows();
    return rows;
}

/// Latin, Greek, Cyrillic, Armenian, Hebrew, Arabic and general punctuation are written as they are.
constexpr bool IsNeverNamed(std::uint32_t code) noexcept
{
    return code <= 0x24F || (code >= 0x370 && code <= 0x4FF) || (code >= 0x530 && code <= 0x74F)
        || (code >= 0x2000 && code <= 0x209F);
}

}

THtEntityDictionary::THtEntityDictionary()
    : THtPointerDictionary(
        static_cast<std::int32_t>(kRowCount), HtClassFieldOffset(&THtEntityRow::Name), &RSHash)
{
    for (THtEntityRow& row : Rows())
        AddPointer(&row);
}

THtEntityDictionary::~THtEntityDictionary() = default;

std::int32_t THtEntityDictionary::FindEntity(const char16_t* Name, std::int32_t Len) const
{
    const std::u16string_view name = detail::ViewOf(Name, Len);
    const auto* row = static_cast<const THtEntityRow*>(GetHashed(RSHash(name), name));
    return row ? static_cast<std::int32_t>(row->Code) : 0;
}

THtEntityReverseDictionary::THtEntityReverseDictionary()
{
    for (THtEntityRow& row : Rows()) {
        // A key is one UTF-16 unit: what lies above U+FFFF is written by number.
        if (row.Code > 0xFFFF || IsNeverNamed(row.Code) || Contains(static_cast<char16_t>(row.Code)))
            continue;
        Add(row.Code, &row);
        FNamed[row.Code >> 6U] |= std::uint64_t{1} << (row.Code & 63U);
    }
}

THtEntityReverseDictionary::~THtEntityReverseDictionary() = default;

const THtEntityDictionary& HtEntityDictionary()
{
    static const THtEntityDictionary dictionary;
    return dictionary;
}

const THtEntityReverseDictionary& HtEntityReverseDictionary()
{
    static const THtEntityReverseDictionary dictionary;
    return dictionary;
}

}
