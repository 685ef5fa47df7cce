// SPDX-License-Identifier: MIT
#pragma once

#include <iterator>

namespace Vorn {

/// Brings to the cache what will be needed, where it is memory; waits for nothing.
inline void Fetch(const void* memory) {
    __builtin_prefetch(memory);
    // An effect: gcc drops calls of a function that does nothing but prefetch.
    __asm__ volatile("");
}

/// Visits the entries of a list that lead all over the memory. Each is shown to `far` first and to
/// `near` then, some entries before its turn: `far` may fetch what it points to, and `near` what
/// that points to in turn.
template <typename List, typename Far, typename Near, typename Visit>
void VisitFetching(const List& list, const Far& far, const Near& near, const Visit& visit) {
    constexpr int Apart = 4;
    auto next = list.begin(), soon = next, later = next;
    for (int wait = 0; next != list.end(); ++wait) {
        if (later != list.end())
            far(*later++);
        if (wait >= Apart && soon != list.end())
            near(*soon++);
        if (wait >= 2 * Apart)
            visit(*next++);
    }
}

} // namespace Vorn
