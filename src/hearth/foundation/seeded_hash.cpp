// The seeded hash and its seed.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/seeded_hash.h>

#include <bit>
#include <chrono>
#include <cstring>
#include <exception>
#include <random>
#include <thread>

namespace ht::detail {

namespace {

struct HashSeed {
    std::uint64_t Low;
    std::uint64_t High;
};

/// Without a random device, the clock and the thread have to do.
HashSeed DrawSeed() noexcept
{
    try {
        std::random_device device;
        const auto draw = [&device] { return (std::uint64_t{device()} << 32) | device(); };
        const std::uint64_t low = draw();
        return {low, draw()};
    } catch (const std::exception&) {
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        return {static_cast<std::uint64_t>(now), std::hash<std::thread::id>{}(std::this_thread::get_id())};
    }
}

/// SipHash with one round a block and three at the end.
class SipState {
public:
    explicit SipState(const HashSeed& seed) noexcept
        : FA(seed.Low ^ 0x736F6D6570736575U)
        , FB(seed.High ^ 0x646F72616E646F6DU)
        , FC(seed.Low ^ 0x6C7967656E657261U)
        , FD(seed.High ^ 0x7465646279746573U)
    {
    }

    void Block(std::uint64_t block) noexcept
    {
        FD ^= block;
        Round();
        FA ^= block;
    }

    std::uint64_t Finish() noexcept
    {
        FC ^= 0xFF;
        Round();
        Round();
        Round();
        return FA ^ FB ^ FC ^ FD;
    }

private:
    void Round() noexcept
    {
        FA += FB;
        FB = std::rotl(FB, 13) ^ FA;
        FA = std::rotl(FA, 32);
        FC += FD;
        FD = std::rotl(FD, 16) ^ FC;
        FA += FD;
        FD = std::rotl(FD, 21) ^ FA;
        FC += FB;
        FB = std::rotl(FB, 17) ^ FC;
        FC = std::rotl(FC, 32);
    }

    std::uint64_t FA;
    std::uint64_t FB;
    std::uint64_t FC;
    std::uint64_t FD;
};

}

std::uint32_t SeededHash(const void* bytes, std::size_t size) noexcept
{
    static const HashSeed seed = DrawSeed();
    SipState state(seed);
    const auto* p = static_cast<const unsigned char*>(bytes);
    std::size_t left = size;
    for (; left >= 8; left -= 8, p += 8) {
        std::uint64_t block = 0;
        std::memcpy(&block, p, 8);
        state.Block(block);
    }
    std::uint64_t last = 0;
    if (left > 0)
        std::memcpy(&last, p, left);
    state.Block(last | (std::uint64_t{size} << 56));
    return static_cast<std::uint32_t>(state.Finish());
}

}
