// The named character references of HTML, by name and by character.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/pointer_dictionary.h>

#include <array>
#include <cstdint>

namespace ht {

/// One named character reference. Names that differ in case only are different rows.
struct THtEntityRow {
    String Name; // without "&" and ";"
    std::uint32_t Code = 0; // the first code point where a name stands for two
};

/// The references by name.
class HT_API THtEntityDictionary : public THtPointerDictionary {
public:
    THtEntityDictionary();
    ~THtEntityDictionary() override;

    /// The code point of a name, which is compared with its case; 0 for an unknown name.
    std::int32_t FindEntity(const char16_t* Name, std::int32_t Len) const;
};

/// The references by character, for writing. Characters of the scripts that texts are written in have none,
/// nor has anything below U+0100 or above U+FFFF; of several names the first one is kept.
class HT_API THtEntityReverseDictionary : public THtIdPointerDictionary {
public:
    THtEntityReverseDictionary();
    ~THtEntityReverseDictionary() override;

    /// True when the character has a name.
    bool Contains(char16_t c) const noexcept { return (FNamed[c >> 6U] >> (c & 63U) & 1U) != 0; }
    /// The row of a character, null for one without a name. Lifetime: as long as the process.
    const THtEntityRow* FindEntity(char16_t c) const
    {
        return Contains(c) ? static_cast<const THtEntityRow*>(Get(c)) : nullptr;
    }

private:
    std::array<std::uint64_t, 0x10000 / 64> FNamed{}; // a bit a character: most searches end here
};

/// The dictionaries of this process, built on first use and only read afterwards, by any number of threads.
HT_API const THtEntityDictionary& HtEntityDictionary();
HT_API const THtEntityReverseDictionary& HtEntityReverseDictionary();

}
