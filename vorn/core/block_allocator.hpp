// SPDX-License-Identifier: MIT
//
// Memory for what a program has thousands of, each of some kilobytes: it lies side by side in
// blocks of 4 MiB, all but the first in huge pages. Spread over the heap each would lie on pages of
// its own, and a walk over all would wait for the machine to find them.
//
//   std::vector<Sample, Vorn::BlockAllocator<Sample>> samples;
//
// From any thread. A block goes back to the machine when nothing is left in it, so that one small
// array may keep 4 MiB: for what is made and freed together. An array that grows leaves holes.
#pragma once

#include "vorn/core/api.hpp"

#include <cstddef>
#include <limits>
#include <new>
#include <type_traits>

namespace Vorn {

/// Aligned to 64. Beyond 512 KiB it is memory by itself. Raises `std::bad_alloc`.
VORN_API void* TakeFromBlock(std::size_t size);
/// With the size that it was taken with.
VORN_API void GiveToBlock(void* piece, std::size_t size) noexcept;

/// For containers of the standard library.
template <typename T>
class BlockAllocator {
public:
    using value_type = T;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using propagate_on_container_move_assignment = std::true_type;
    using is_always_equal = std::true_type;

    BlockAllocator() = default;
    template <typename U>
    BlockAllocator(const BlockAllocator<U>& /*other*/) noexcept {}

    T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T))
            throw std::bad_array_new_length();
        return static_cast<T*>(TakeFromBlock(count * sizeof(T)));
    }
    void deallocate(T* first, std::size_t count) noexcept { GiveToBlock(first, count * sizeof(T)); }
    template <typename U>
    bool operator==(const BlockAllocator<U>& /*other*/) const noexcept {
        return true;
    }
};

} // namespace Vorn
