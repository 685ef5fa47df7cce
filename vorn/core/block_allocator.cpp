// SPDX-License-Identifier: MIT
#include "vorn/core/block_allocator.hpp"

#include "vorn/core/huge_memory.hpp"

#include <cstdint>
#include <mutex>

namespace Vorn {

namespace {

constexpr std::size_t BlockSize = std::size_t{4} << 20;
constexpr std::size_t LargestPiece = BlockSize / 8;
constexpr std::size_t Step = 64;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool Together = false;
#elif defined(__has_feature)
// Under the address sanitizer each piece is by itself, so that it sees what runs beyond one.
constexpr bool Together = !__has_feature(address_sanitizer);
#else
constexpr bool Together = true;
#endif

/// At the start of the memory that it tells of, which is aligned to its size: a piece finds it.
struct alignas(Step) Block {
    std::size_t used = sizeof(Block);
    std::size_t pieces = 0;
};

// Nothing here is ever destroyed: vectors of static objects come back at the very end.
constinit std::mutex guard;
constinit Block* current = nullptr;
constinit std::size_t blocks = 0;

bool IsAlone(std::size_t size) {
    return !Together || size > LargestPiece;
}

Block* MakeBlock() {
    void* const memory = ::operator new (BlockSize, std::align_val_t{BlockSize});
    // The first is within the reach of the processor's table of pages, and a program of few
    // skeletons does not pay for 2 MiB at once.
    if (++blocks > 1)
        PreferHugePages(memory, BlockSize);
    return new (memory) Block;
}

Block* BlockOf(void* piece) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
    const std::size_t within = reinterpret_cast<std::uintptr_t>(piece) % BlockSize;
    return static_cast<Block*>(static_cast<void*>(static_cast<char*>(piece) - within));
}

} // namespace

void* TakeFromBlock(std::size_t size) {
    if (IsAlone(size))
        return ::operator new (size, std::align_val_t{Step});
    size = (size + Step - 1) / Step * Step;
    const std::scoped_lock lock(guard);
    if (!current || current->used + size > BlockSize)
        current = MakeBlock();
    void* const piece = static_cast<char*>(static_cast<void*>(current)) + current->used;
    current->used += size;
    ++current->pieces;
    return piece;
}

void GiveToBlock(void* piece, std::size_t size) noexcept {
    if (IsAlone(size))
        return ::operator delete (piece, std::align_val_t{Step});
    const std::scoped_lock lock(guard);
    Block* const block = BlockOf(piece);
    if (--block->pieces > 0)
        return;
    if (block == current) {
        block->used = sizeof(Block);
    } else {
        --blocks;
        ::operator delete (block, std::align_val_t{BlockSize});
    }
}

} // namespace Vorn
