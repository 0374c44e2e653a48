// Stretches of memory from the system, and those that are kept for a while instead of going back.
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace ht::memory {

enum TPageKind : std::uint8_t { pkPlain, pkHuge };

/// A stretch that begins at a multiple of kChunkBytes. Its size is a multiple of kPageBytes.
struct Stretch {
    void* Memory = nullptr;
    std::size_t Bytes = 0;
    TPageKind Kind = pkPlain;

    explicit operator bool() const noexcept { return Memory != nullptr; }

    /// Fresh zero memory, null when the system has none. Huge pages make the first touch many times cheaper,
    /// and take 2 MiB at a time.
    static Stretch Map(std::size_t bytes, TPageKind kind) noexcept;
    void Unmap() const noexcept;
    /// Has pages that nobody touched yet come small again.
    void BecomePlain() noexcept;
    /// Lets the system take the pages, but not the addresses, as soon as it is short of memory.
    void OfferPages() const noexcept;
};

/// Stretches that were given back and wait for somebody who needs one as large. The owner guards them.
class SpareStretches {
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr std::chrono::seconds kLongest{2};

    constexpr explicit SpareStretches(std::size_t mostBytes) noexcept
        : FMostBytes(mostBytes)
    {
    }

    bool IsEmpty() const noexcept { return FCount == 0; }
    /// The smallest one that is at least as large and not an eighth larger; none if there is none.
    Stretch Take(std::size_t bytes) noexcept;
    /// Keeps a stretch from now on. Gives the one that has to make place for it, mostly none; the caller
    /// unmaps it, and what TakeOld gives.
    Stretch Put(const Stretch& stretch, Time now) noexcept;
    /// The oldest one if it was kept for longer than kLongest, or if all together are too large; none
    /// otherwise.
    Stretch TakeOld(Time now) noexcept;
    /// The oldest one; none when there is none.
    Stretch TakeAny() noexcept { return FCount > 0 ? TakeAt(0) : Stretch{}; }

private:
    struct TKept {
        Stretch What;
        Time Since;
    };

    Stretch TakeAt(std::size_t index) noexcept;

    std::array<TKept, 64> FKept{}; // the oldest first
    std::size_t FCount = 0;
    std::size_t FBytes = 0;
    const std::size_t FMostBytes;
};

}
