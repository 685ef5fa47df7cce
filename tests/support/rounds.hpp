// SPDX-License-Identifier: MIT
#pragma once

namespace Tests {

/// How often a random test goes round that wants `all` of them. Under the sanitizers everything is
/// several times slower, and what they find shows in any round: a quarter is enough there.
constexpr unsigned int Rounds(unsigned int all) {
#ifdef VORN_SANITIZED
    return all / 4;
#else
    return all;
#endif
}

} // namespace Tests
