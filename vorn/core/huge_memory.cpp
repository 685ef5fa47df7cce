// SPDX-License-Identifier: MIT
#include "vorn/core/huge_memory.hpp"

#include <sys/mman.h>

#include <cstdint>

namespace Vorn {

void PreferHugePages(void* block, std::size_t size) {
    constexpr std::uintptr_t page = 4096;
    constexpr std::size_t worthwhile = std::size_t{4} << 20; // two huge pages
    if (!block || size < worthwhile)
        return;
    // Only pages that are whole within the block.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t skipped = (page - address % page) % page;
    const std::uintptr_t length = (size - skipped) / page * page;
    // It is advice: whatever the answer is, the memory is good.
    static_cast<void>(madvise(static_cast<char*>(block) + skipped, length, MADV_HUGEPAGE));
}

} // namespace Vorn
