// The side index that keeps dictionaries fast when many names are made to share one place.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace ht::detail {

/// A hash that nobody can aim at: keyed with random numbers that are drawn once a process.
HT_API std::uint32_t SeededHash(const void* bytes, std::size_t size) noexcept;

/// Where the entries of one home slot stand: a map from the seeded hash of a name to the entry's distance
/// from the first entry of the group. The distance survives the shifts that other groups cause; only a
/// removal inside the group changes it.
class HT_API CollisionGroup {
public:
    std::uint32_t Count() const noexcept { return static_cast<std::uint32_t>(FHashes.size()); }
    /// Probe count at which the first entry stood when the group was last changed: a guess to be tested.
    std::uint32_t FirstProbe() const noexcept { return FFirstProbe; }
    void SetFirstProbe(std::uint32_t probe) noexcept { FFirstProbe = probe; }

    /// Notes the entry behind the last one.
    void Append(std::uint32_t seededHash);
    /// Forgets the entry at `offset`, if it was noted; those behind it move down by one.
    void Remove(std::uint32_t offset);

    /// The lowest offset with this hash for which `same(offset)` holds, or -1.
    template <class Same> std::int32_t Find(std::uint32_t seededHash, Same same) const
    {
        for (std::size_t i = seededHash & FMask; FPlaces[i] != kFree; i = (i + 1) & FMask) {
            const std::uint32_t offset = FPlaces[i];
            if (offset != kGone && FHashes[offset] == seededHash && same(offset))
                return static_cast<std::int32_t>(offset);
        }
        return -1;
    }

private:
    static constexpr std::uint32_t kFree = 0xFFFFFFFF;
    static constexpr std::uint32_t kGone = 0xFFFFFFFE;
    static constexpr std::size_t kFirstSize = 256;

    void Place(std::uint32_t offset) noexcept;
    void Rebuild();

    // Two narrow tables: a search in a large group waits for memory, so what it jumps about in is kept small.
    std::vector<std::uint32_t> FHashes; // of the entries, in their order
    std::vector<std::uint32_t> FPlaces{std::vector<std::uint32_t>(kFirstSize, kFree)}; // offsets, by hash
    std::size_t FMask = kFirstSize - 1;
    std::size_t FUsed = 0; // places that are not free, removed ones included
    std::uint32_t FFirstProbe = 1;
};

/// The groups of one table by home slot. A table makes one only when it has seen a group that is too long to
/// walk.
using CollisionIndex = std::unordered_map<std::uint32_t, CollisionGroup>;

}
