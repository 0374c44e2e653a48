// Shared arrays of tokens.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/css_token.h>

#include <hearth/runtime/checked.h>

#include <memory>
#include <new>

namespace ht {

static_assert(
    alignof(TCSSToken) <= 2 * sizeof(std::int32_t), "the tokens stand right behind the block's head");

/// Null for no tokens.
TCSSTokens::Block* TCSSTokens::NewBlock(std::size_t length)
{
    if (length == 0)
        return nullptr;
    void* memory = memory::Allocate(sizeof(Block) + length * sizeof(TCSSToken));
    return new (memory) Block{1, CheckedLength(length)};
}

TCSSTokens::TCSSTokens(std::span<const TCSSToken> tokens)
    : FBlock(NewBlock(tokens.size()))
{
    std::uninitialized_copy(tokens.begin(), tokens.end(), begin());
}

TCSSTokens TCSSTokens::Taking(std::span<TCSSToken> tokens)
{
    TCSSTokens result;
    result.FBlock = NewBlock(tokens.size());
    std::uninitialized_move(tokens.begin(), tokens.end(), result.begin());
    return result;
}

TCSSTokens::TCSSTokens(const TCSSTokens& other) noexcept
    : FBlock(other.FBlock)
{
    if (!FBlock)
        return;
    std::atomic_ref<std::int32_t> count(FBlock->Count);
    if (detail::OneThread())
        count.store(count.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    else
        count.fetch_add(1, std::memory_order_relaxed);
}

TCSSTokens& TCSSTokens::operator=(const TCSSTokens& other) noexcept
{
    TCSSTokens copy(other);
    std::swap(FBlock, copy.FBlock);
    return *this;
}

TCSSTokens& TCSSTokens::operator=(TCSSTokens&& other) noexcept
{
    TCSSTokens taken(std::move(other));
    std::swap(FBlock, taken.FBlock);
    return *this;
}

void TCSSTokens::Release() noexcept
{
    Block* block = std::exchange(FBlock, nullptr);
    if (!block || std::atomic_ref<std::int32_t>(block->Count).fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    std::destroy_n(block->Items(), static_cast<std::size_t>(block->Length));
    memory::Free(block);
}

}
