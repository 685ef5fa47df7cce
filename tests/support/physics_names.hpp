// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/vorn.hpp"

#include <utility>

namespace Tests {

/// Enters the names without which no body can be read: in a physics info file "ALL" would stand
/// last.
inline void EnterPhysicsNames() {
    auto& physics = *Vorn::PhysicsSystem::Instance();
    for (const auto& [name, bits] : {std::pair("NONE", 1), {"A", 2}, {"B", 4}, {"ALL", 15}})
        physics.AddCategory(name, bits);
    for (const auto& [name, type] : {std::pair("NONE", 0u), {"Box", 1u}, {"Sphere", 2u}})
        physics.AddVolume(name, type);
}

} // namespace Tests
