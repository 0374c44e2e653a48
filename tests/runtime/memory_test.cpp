// Blocks of the door and of the page heap: whole, apart from each other, and used again.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/memory.h>
#include <hearth/runtime/memory_pool_p.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <barrier>
#include <chrono>
#include <cstring>
#include <limits>
#include <mutex>
#include <optional>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#if defined(__unix__)
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace ht::memory {
namespace {

/// A block that knows what is written all over it.
struct Block {
    unsigned char* Bytes;
    std::size_t Size;
    unsigned char Mark;

    Block(void* bytes, std::size_t size, unsigned mark)
        : Bytes(static_cast<unsigned char*>(bytes))
        , Size(size)
        , Mark(static_cast<unsigned char>(mark))
    {
        EXPECT_TRUE(size < 16 || reinterpret_cast<std::uintptr_t>(bytes) % 16 == 0);
        Fill();
    }

    void Fill() const { std::memset(Bytes, Mark, Size); }
    bool IsWhole(std::size_t size) const
    {
        return std::all_of(Bytes, Bytes + size, [this](unsigned char byte) { return byte == Mark; });
    }
};

/// The calls of the door, and the same of a heap, which leaves moving a block to others.
struct Door {
    static void* Allocate(std::size_t size) { return memory::Allocate(size); }
    static void* Reallocate(void* block, std::size_t, std::size_t size)
    {
        return memory::Reallocate(block, size);
    }
    static void Free(void* block) { memory::Free(block); }
};

struct OneHeap {
    static constexpr std::size_t kLargest = PageHeap::kLargest;

    void* Allocate(std::size_t size) { return Heap.Allocate(std::min(size, kLargest)); }
    void* Reallocate(void* block, std::size_t oldSize, std::size_t size)
    {
        void* moved = Allocate(size);
        std::memcpy(moved, block, std::min({oldSize, size, kLargest}));
        Free(block);
        return moved;
    }
    void Free(void* block) { Heap.Free(block); }

    PagePool Pool{0};
    PageHeap& Heap = *Pool.TakeHeap();
};

template <class Memory> void ChurnAtRandom(Memory&& memory, std::size_t largest, unsigned steps)
{
    std::mt19937 random(7);
    std::vector<Block> blocks;
    const auto pick = [&random](std::size_t end) { return random() % end; };
    for (unsigned step = 0; step < steps; ++step) {
        // Mostly small; grows for a while, then shrinks, so that pages fill and become empty.
        const std::size_t size = pick(4) ? pick(150) : pick(largest + 1);
        const bool grows = 6 * step / steps % 2 == 0;
        if (blocks.empty() || pick(3) < (grows ? 2U : 1U)) {
            blocks.emplace_back(memory.Allocate(size), size, step);
            continue;
        }
        std::swap(blocks[pick(blocks.size())], blocks.back());
        Block& block = blocks.back();
        ASSERT_TRUE(block.IsWhole(block.Size)) << "step " << step;
        if (pick(4)) {
            memory.Free(block.Bytes);
            blocks.pop_back();
        } else {
            block.Bytes = static_cast<unsigned char*>(memory.Reallocate(block.Bytes, block.Size, size));
            ASSERT_TRUE(block.IsWhole(std::min(size, block.Size))) << "step " << step;
            block.Size = size;
            block.Fill();
        }
    }
    for (const Block& block : blocks) {
        ASSERT_TRUE(block.IsWhole(block.Size));
        memory.Free(block.Bytes);
    }
}

TEST(memory, blocks_do_not_overlap)
{
    ChurnAtRandom(Door(), 3000, 60000);
    ChurnAtRandom(OneHeap(), OneHeap::kLargest, 60000);
    ChurnAtRandom(Door(), 3 * LargeBlock::kSmallest, 300);
}

TEST(memory, an_empty_page_begins_anew_and_neighbours_follow_each_other)
{
    PagePool pool(0);
    PageHeap& heap = *pool.TakeHeap();
    std::vector<char*> first;
    for (int round = 0; round < 3; ++round) {
        std::vector<char*> blocks(100);
        for (char*& block : blocks)
            block = static_cast<char*>(heap.Allocate(72));
        for (std::size_t i = 1; i < blocks.size(); ++i)
            ASSERT_EQ(blocks[i] - blocks[i - 1], 80);
        if (round == 0)
            first = blocks;
        EXPECT_EQ(blocks, first);
        std::shuffle(blocks.begin(), blocks.end(), std::mt19937(1));
        for (char* block : blocks)
            heap.Free(block);
    }
}

std::vector<void*> Fill(PageHeap& heap, std::size_t bytes, std::size_t size)
{
    std::vector<void*> blocks(bytes / size);
    for (void*& block : blocks)
        block = heap.Allocate(size);
    return blocks;
}

void FreeAll(PageHeap& heap, const std::vector<void*>& blocks)
{
    for (void* block : blocks)
        heap.Free(block);
}

TEST(memory, free_chunks_go_back_to_the_system)
{
    PagePool pool(2 * kChunkBytes);
    PageHeap& heap = *pool.TakeHeap();
    const std::vector<void*> small = Fill(heap, 5 * kChunkBytes, 48);
    const std::vector<void*> large = Fill(heap, 5 * kChunkBytes, 512);
    EXPECT_GE(pool.ChunkCount(), 10U);
    EXPECT_TRUE(Chunk::Holds(small.back()) && Chunk::Holds(large.back()));
    EXPECT_FALSE(Chunk::Holds(&pool) || Chunk::Holds(nullptr)
        || Chunk::Holds(reinterpret_cast<void*>(~std::uintptr_t{0})));
    FreeAll(heap, small);
    FreeAll(heap, large);
    EXPECT_EQ(pool.ChunkCount(), 4U); // what is kept, and those of the two pages in use
    heap.Collect();
    pool.Collect();
    EXPECT_EQ(pool.ChunkCount(), 0U);
    EXPECT_FALSE(Chunk::Holds(small.back()));
    FreeAll(heap, Fill(heap, kPageBytes, 48));
}

TEST(memory, large_blocks_are_kept_for_those_who_need_as_much)
{
    constexpr std::size_t kSize = 3 * LargeBlock::kSmallest;
    PagePool pool(0);
    PageHeap& heap = *pool.TakeHeap();
    PageHeap& other = *pool.TakeHeap();
    void* const first = pool.TakeLarge(kSize);
    void* const second = pool.TakeLarge(kSize);
    EXPECT_TRUE(Chunk::Holds(first) && LargeBlock::Of(first).Room() >= kSize);
    const Block block(first, kSize, 3);
    const Block neighbour(second, kSize, 4);
    EXPECT_TRUE(block.IsWhole(kSize) && neighbour.IsWhole(kSize));
    heap.Free(first);
    EXPECT_FALSE(Chunk::Holds(first));
    other.Free(second); // whoever frees it
    EXPECT_NE(pool.TakeLarge(kSize / 2), first); // too small for so much
    EXPECT_EQ(pool.TakeLarge(kSize - kPageBytes), first);
    EXPECT_EQ(pool.TakeLarge(kSize), second);
    heap.Free(first);
    EXPECT_TRUE(pool.DropSpare());
    EXPECT_FALSE(pool.DropSpare());
    heap.Free(second);
    pool.Collect();
    EXPECT_FALSE(pool.DropSpare());
    EXPECT_EQ(pool.TakeLarge(std::numeric_limits<std::size_t>::max() - 100), nullptr);
}

TEST(memory, spare_memory_is_bounded_in_size_number_and_time)
{
    using namespace std::chrono_literals;
    constexpr std::size_t kBytes = 10;
    std::array<char, 100> places{};
    const auto stretch = [&places](std::size_t i) { return Stretch{&places[i], kBytes + i, pkPlain}; };
    const SpareStretches::Time start{};
    SpareStretches spare(10000);
    std::size_t displaced = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Stretch old = spare.Put(stretch(i), start + i * 1s);
        EXPECT_TRUE(!old || old.Memory == &places[displaced]);
        displaced += old ? 1U : 0U;
    }
    EXPECT_EQ(displaced, 36U);
    // The smallest that fits, whatever its age, and not much larger.
    EXPECT_EQ(spare.Take(kBytes + 50).Memory, &places[50]);
    EXPECT_EQ(spare.Take(kBytes + 50).Memory, &places[51]);
    EXPECT_FALSE(spare.Take(30) || spare.Take(1000));
    EXPECT_EQ(spare.TakeOld(start + 36s + SpareStretches::kLongest + 1ms).Memory, &places[36]);
    EXPECT_FALSE(spare.TakeOld(start + 37s + SpareStretches::kLongest));

    SpareStretches small(25);
    small.Put(stretch(0), start);
    small.Put(stretch(1), start);
    EXPECT_FALSE(small.TakeOld(start));
    small.Put(stretch(2), start);
    EXPECT_EQ(small.TakeOld(start).Memory, &places[0]);
    EXPECT_FALSE(small.TakeOld(start));
}

TEST(memory, blocks_freed_elsewhere_come_back)
{
    PagePool pool(0);
    PageHeap& maker = *pool.TakeHeap();
    PageHeap& taker = *pool.TakeHeap();
    for (int round = 0; round < 50; ++round) {
        const std::vector<void*> blocks = Fill(maker, kChunkBytes, 64);
        std::thread([&] { FreeAll(taker, blocks); }).join();
    }
    EXPECT_LE(pool.ChunkCount(), 2U);
}

TEST(memory, what_an_ended_thread_left_is_taken_over)
{
    PagePool pool(0);
    PageHeap& left = *pool.TakeHeap();
    PageHeap& heap = *pool.TakeHeap();
    std::vector<void*> blocks = Fill(left, 4 * kChunkBytes, 64);
    const std::size_t chunks = pool.ChunkCount();
    pool.Park(left);
    // Half of every page; then more of pages that have a new owner by now.
    std::vector<void*> more;
    for (int round = 0; round < 4; ++round) {
        const auto kept =
            std::partition(blocks.begin(), blocks.end(), [i = 0U](void*) mutable { return i++ % 2 == 0; });
        FreeAll(heap, {kept, blocks.end()});
        const std::size_t freed = static_cast<std::size_t>(blocks.end() - kept);
        blocks.erase(kept, blocks.end());
        const std::vector<void*> again = Fill(heap, freed * 64, 64);
        more.insert(more.end(), again.begin(), again.end());
        EXPECT_LE(pool.ChunkCount(), chunks + 1);
    }
    EXPECT_EQ(pool.TakeHeap(), &left);
    FreeAll(left, more); // of pages that were its own
    FreeAll(left, blocks);
    left.Collect();
    heap.Collect();
    pool.Park(left);
    pool.Collect();
    EXPECT_EQ(pool.ChunkCount(), 0U);
}

/// Threads that pass their blocks on, lose their heaps, and take others.
class Exchange {
public:
    void Work(unsigned seed)
    {
        std::mt19937 random(seed);
        PageHeap* heap = FPool.TakeHeap();
        for (unsigned step = 0; step < kSteps; ++step) {
            const std::size_t size = 1 + random() % PageHeap::kLargest;
            std::optional<Block> block;
            if (step % kPhase < kPhase / 2) // all together, so that the pool grows and shrinks
                block.emplace(heap->Allocate(size), size, step);
            Pass(*heap, random() % kSlots, block);
            if (random() % 500 == 0) {
                // In this order some heap is always idle.
                PageHeap* next = FPool.TakeHeap();
                FPool.Park(*std::exchange(heap, next));
            }
            if (random() % 3000 == 0)
                FPool.Collect();
        }
        heap->Collect();
        FPool.Park(*heap);
    }

    void Finish()
    {
        PageHeap* heap = FPool.TakeHeap();
        for (std::optional<Block>& slot : FSlots)
            Release(*heap, std::exchange(slot, std::nullopt));
        heap->Collect();
        FPool.Park(*heap);
        FPool.Collect(); // may hand blocks on to heaps that it has already seen
        FPool.Collect();
        EXPECT_EQ(FPool.ChunkCount(), 0U);
    }

private:
    static constexpr unsigned kSteps = HEARTH_TEST_SANITIZED ? 80000 : 200000;
    static constexpr unsigned kPhase = 40000;
    static constexpr std::size_t kSlots = 40000;

    void Pass(PageHeap& heap, std::size_t index, std::optional<Block> block)
    {
        {
            const std::lock_guard lock(FMutexes[index % FMutexes.size()]);
            std::swap(FSlots[index], block);
        }
        Release(heap, block);
    }

    static void Release(PageHeap& heap, const std::optional<Block>& block)
    {
        if (!block)
            return;
        EXPECT_TRUE(block->IsWhole(block->Size));
        heap.Free(block->Bytes);
    }

    PagePool FPool{0};
    std::vector<std::optional<Block>> FSlots{kSlots};
    std::array<std::mutex, 64> FMutexes;
};

TEST(memory, threads_exchange_blocks_and_heaps)
{
    Exchange exchange;
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 4; ++i)
        threads.emplace_back([&exchange, i] { exchange.Work(i); });
    for (std::thread& thread : threads)
        thread.join();
    exchange.Finish();
}

/// Made before its thread has a heap, so destroyed after the thread has lost it.
struct LateUser {
    ~LateUser()
    {
        ChurnAtRandom(Door(), 2000, 500);
        Free(Kept);
    }
    void* Kept = nullptr;
};

void UseDoorUntilTheEnd(std::vector<void*>& left)
{
    static thread_local LateUser user;
    user.Kept = nullptr;
    for (void*& block : left)
        block = Allocate(40);
    user.Kept = Allocate(40);
}

TEST(memory, a_thread_may_use_the_door_until_its_very_end)
{
    const auto startThreads = [] {
        for (int i = 0; i < 100; ++i) {
            std::vector<void*> left(1000);
            std::thread([&left] { UseDoorUntilTheEnd(left); }).join();
            for (void* block : left)
                Free(block);
            Collect();
        }
    };
    std::thread others(startThreads);
    startThreads();
    others.join();
}

#if defined(__unix__)
/// What runs in the child returns whether all is well.
template <class Work> bool SucceedsInChild(Work work)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(work() ? 0 : 1);
    int status = 1;
    return waitpid(child, &status, 0) == child && status == 0;
}

bool FillsAndEmpties()
{
    std::vector<void*> blocks(20000);
    for (void*& block : blocks)
        block = Allocate(500);
    for (void* block : blocks)
        Free(block);
    return true;
}

TEST(memory, a_child_finds_the_pool_open)
{
    if (HEARTH_TEST_SANITIZED)
        GTEST_SKIP() << "the thread sanitizer allows no work in such a child";
    std::atomic<bool> done = false;
    std::thread busy([&done] {
        while (!done) {
            FillsAndEmpties();
            Collect(); // is inside for long
        }
    });
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(SucceedsInChild(FillsAndEmpties));
    done = true;
    busy.join();
}

bool SurvivesTheLastByte()
{
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = rlim_t{256} << 20U;
    setrlimit(RLIMIT_AS, &limit);
    FreeBlock* blocks = nullptr;
    bool refused = false;
    while (!refused) {
        try {
            auto* block = static_cast<FreeBlock*>(Allocate(48));
            block->Next = std::exchange(blocks, block);
        } catch (const EOutOfMemory&) {
            refused = true;
        }
    }
    while (blocks)
        Free(std::exchange(blocks, blocks->Next));
    return FillsAndEmpties();
}
#endif

TEST(memory, too_much_is_refused)
{
    if (HEARTH_TEST_SANITIZED)
        GTEST_SKIP() << "the allocators of the sanitizers end the program";
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
    for (const std::size_t size : {kMost, kMost - 14, kMost - 15, kMost - 16, kMost / 2}) {
        EXPECT_THROW(Allocate(size), EOutOfMemory);
        for (const std::size_t oldSize : {std::size_t{40}, std::size_t{4000}}) {
            const Block block(Allocate(oldSize), oldSize, 5);
            EXPECT_THROW(Reallocate(block.Bytes, size), EOutOfMemory);
            EXPECT_TRUE(block.IsWhole(oldSize));
            Free(block.Bytes);
        }
    }
#if defined(__unix__)
    EXPECT_TRUE(SucceedsInChild(SurvivesTheLastByte));
#endif
}

}
}
