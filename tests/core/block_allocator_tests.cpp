// SPDX-License-Identifier: MIT
#include "vorn/core/block_allocator.hpp"
#include "vorn/resource/bone.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <limits>
#include <new>
#include <random>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using Numbers = std::vector<std::uint32_t, Vorn::BlockAllocator<std::uint32_t>>;

/// Makes, grows and frees arrays, and looks whether each still holds what was written to it.
void Churn(std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Numbers> arrays(64);
    for (std::uint32_t turn = 0; turn < 100'000; ++turn) {
        Numbers& array = arrays[random() % arrays.size()];
        const bool whole = std::all_of(array.begin(), array.end(),
                                       [&](std::uint32_t n) { return n == array.front(); });
        ASSERT_TRUE(whole);
        // Small ones, for which two threads meet often; some are too large for a block.
        const std::uint32_t most = turn % 2'000 == 0 ? 400'000 : turn % 20 == 0 ? 4'000 : 64;
        array = Numbers(random() % most, seed + turn);
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(array.data()) % 64, 0u);
    }
}

TEST(BlockAllocator, GivesMemoryThatNobodyElseHasToAnyThread) {
    std::thread other(Churn, 1'000'000);
    Churn(0);
    other.join();
}

std::size_t Resident() {
    std::size_t all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * 4096;
}

TEST(BlockAllocator, GivesBackWhatIsFreedAndRaisesForWhatNoMachineHas) {
    [[maybe_unused]] const std::size_t before = Resident();
    for (int round = 0; round < 10; ++round) {
        std::vector<std::vector<Vorn::BoneKey>> keys(1'000);
        for (std::vector<Vorn::BoneKey>& of : keys)
            of.resize(400); // 25 MiB together
    }
#ifndef VORN_SANITIZED // which holds freed memory back
    EXPECT_LT(Resident(), before + (std::size_t{60} << 20));
#endif
    Vorn::BlockAllocator<Vorn::BoneKey> allocator;
    EXPECT_THROW(std::ignore = allocator.allocate(std::numeric_limits<std::size_t>::max() / 64 + 2),
                 std::bad_array_new_length);
}

} // namespace
