// The tag names that the parser and the writers know, and the groups that their rules speak of.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>
#include <hearth/runtime/text.h>

#include <array>
#include <cstdint>

namespace ht {

/// Place of a tag name in the table of known names; 0 for all other names.
using TTagId = std::uint16_t;

/// Groups of tags, as bits.
enum TTagGroup : std::uint32_t {
    tgVoid = 1U << 0U, // never has content
    tgFormatting = 1U << 1U, // reopened behind a block that closed over it
    tgClosesParagraph = 1U << 2U, // ends an open p
    tgHeadContent = 1U << 3U, // may stand in head
    tgStopsFloat = 1U << 4U, // closing an outer element never crosses these, unless it may cross tables
    tgTablePart = 1U << 5U, // may stand directly in a table
    tgRowContent = 1U << 6U, // does not close the table when met in a row
    tgTableScope = 1U << 7U, // a closing tag of another kind never crosses these
    tgTextBlock = 1U << 8U, // a line of its own in readable text
    tgIndentBlock = 1U << 9U, // a line of its own in indented output
    tgCellContent = 1U << 10U, // met in a row, goes into the row's last cell
};

struct TKnownName {
    detail::StaticName Text;
    std::uint32_t Groups;
};

/// Sorted by name.
inline constexpr TKnownName kKnownTags[] = {
#include <hearth/markup/tag_names_table.inc>
};

/// The id of a known lower-case tag name, 0 for any other text.
constexpr TTagId FindTagId(std::u16string_view name)
{
    TTagId id = 1;
    for (const TKnownName& row : kKnownTags) {
        if (row.Text.View() == name)
            return id;
        ++id;
    }
    return 0;
}

namespace detail {

/// Only the groups, by id: the rules ask for them on every step up a tree.
inline constexpr auto kTagGroups = [] {
    std::array<std::uint32_t, std::size(kKnownTags) + 1> groups{};
    for (std::size_t i = 0; i < std::size(kKnownTags); ++i)
        groups[i + 1] = kKnownTags[i].Groups;
    return groups;
}();

}

/// The groups of a tag by its id; none for id 0.
constexpr std::uint32_t TagGroups(TTagId id)
{
    return detail::kTagGroups[id];
}

constexpr bool IsTagIn(TTagId id, TTagGroup group)
{
    return (TagGroups(id) & group) != 0;
}

/// Ids of the tags that single rules name.
namespace tags {

consteval TTagId Known(std::u16string_view name)
{
    const TTagId id = FindTagId(name);
    return id != 0 ? id : throw "no such tag";
}

inline constexpr TTagId kA = Known(u"a");
inline constexpr TTagId kBody = Known(u"body");
inline constexpr TTagId kBr = Known(u"br");
inline constexpr TTagId kDd = Known(u"dd");
inline constexpr TTagId kDiv = Known(u"div");
inline constexpr TTagId kDl = Known(u"dl");
inline constexpr TTagId kDt = Known(u"dt");
inline constexpr TTagId kHead = Known(u"head");
inline constexpr TTagId kHtml = Known(u"html");
inline constexpr TTagId kImg = Known(u"img");
inline constexpr TTagId kLi = Known(u"li");
inline constexpr TTagId kMeta = Known(u"meta");
inline constexpr TTagId kNoscript = Known(u"noscript");
inline constexpr TTagId kOl = Known(u"ol");
inline constexpr TTagId kP = Known(u"p");
inline constexpr TTagId kScript = Known(u"script");
inline constexpr TTagId kSpan = Known(u"span");
inline constexpr TTagId kStyle = Known(u"style");
inline constexpr TTagId kTable = Known(u"table");
inline constexpr TTagId kTbody = Known(u"tbody");
inline constexpr TTagId kTd = Known(u"td");
inline constexpr TTagId kText = Known(u"text");
inline constexpr TTagId kTfoot = Known(u"tfoot");
inline constexpr TTagId kTh = Known(u"th");
inline constexpr TTagId kThead = Known(u"thead");
inline constexpr TTagId kTr = Known(u"tr");
inline constexpr TTagId kUl = Known(u"ul");
inline constexpr TTagId kXBody = Known(u"xbody");

}

/// More happens at the ">" of such a tag than that it ends.
constexpr bool ActsAtEnd(TTagId id)
{
    return id == tags::kScript || id == tags::kStyle || id == tags::kMeta;
}

/// A tag name together with what look-ups need of it, so that both are found once.
struct HT_API THtTagName {
    THtTagName() = default;
    /// Hashes and looks the name up.
    THtTagName(const String& name);
    THtTagName(const String& name, std::uint32_t hash, TTagId id) noexcept
        : Name(name)
        , Hash(hash)
        , Id(id)
    {
    }

    void Assign(const String& name, std::uint32_t hash, TTagId id) noexcept
    {
        Name = name;
        Hash = hash;
        Id = id;
    }
    void Clear() noexcept { Assign(String(), 0, 0); }
    bool IsEmpty() const noexcept { return Name.IsEmpty(); }
    operator const String&() const noexcept { return Name; }
    /// True when the whole names are equal, case included.
    friend bool operator==(const THtTagName& a, const THtTagName& b) noexcept
    {
        return a.Hash == b.Hash && a.Name == b.Name;
    }

    String Name;
    std::uint32_t Hash = 0; // RSHash of the name folded to lower case
    TTagId Id = 0;
};

}
