// The order of the members of an object: by name, found once for objects of one kind.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/markup/json_parser.h>
#include <hearth/runtime/array.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace ht {

/// A member that is to become an attribute.
struct TJsonMember {
    THtMemberName* Name;
    String Value;
};

/// Sorts members by name. Objects of one kind come in rows, with the same names in the same places, so the
/// orders that were found last are kept and tried first.
class TMemberOrder {
public:
    /// The places of the members in the order of their names; of equal names only the last one. Lifetime:
    /// until the next call.
    std::span<const std::uint32_t> Of(std::span<const TJsonMember> members)
    {
        static constexpr std::uint32_t kOnly = 0;
        if (members.size() == 1)
            return {&kOnly, 1};
        const std::uint64_t key =
            members.front().Name->Order * 31 + members.back().Name->Order + members.size();
        TKind& kind = FKinds.data()[(key * 0x9E3779B97F4A7C15U) >> 58U];
        const auto isSame = [](const TJsonMember& member, const THtMemberName* name) {
            return member.Name == name;
        };
        if (!std::equal(members.begin(), members.end(), kind.Names.begin(), kind.Names.end(), isSame))
            Sort(members, kind);
        return {kind.Places.data(), kind.Places.size()};
    }

private:
    static constexpr std::size_t kKinds = 64;

    struct TKind {
        TArray<const THtMemberName*> Names; // as the text has them
        TArray<std::uint32_t> Places;
    };

    static bool IsLess(const THtMemberName& a, const THtMemberName& b)
    {
        return a.Order != b.Order ? a.Order < b.Order : a.Name.View() < b.Name.View();
    }

    static void Sort(std::span<const TJsonMember> members, TKind& kind)
    {
        kind.Names.Clear();
        kind.Places.Clear();
        for (std::uint32_t i = 0; i < members.size(); ++i) {
            kind.Names.Add(members[i].Name);
            kind.Places.Add(i);
        }
        const auto nameAt = [&members](std::uint32_t place) { return members[place].Name; };
        const auto less = [nameAt](std::uint32_t a, std::uint32_t b) {
            return nameAt(a) != nameAt(b) ? IsLess(*nameAt(a), *nameAt(b)) : a > b;
        };
        std::sort(kind.Places.begin(), kind.Places.end(), less);
        // Equal names are one entry of the parser's list; the last of them stands first.
        const auto isSame = [nameAt](std::uint32_t a, std::uint32_t b) { return nameAt(a) == nameAt(b); };
        const auto end = std::unique(kind.Places.begin(), kind.Places.end(), isSame);
        kind.Places.SetLength(static_cast<std::int32_t>(end - kind.Places.begin()));
    }

    std::array<TKind, kKinds> FKinds;
};

}
