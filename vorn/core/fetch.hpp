// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

/// Brings to the cache what will be needed, where it is memory; waits for nothing.
inline void Fetch(const void* memory) {
    __builtin_prefetch(memory);
    // An effect: gcc drops calls of a function that does nothing but prefetch.
    __asm__ volatile("");
}

} // namespace Vorn
