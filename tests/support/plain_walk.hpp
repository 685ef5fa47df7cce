// SPDX-License-Identifier: MIT
//
// The walk over all pairs of bodies, as plain as it can be said: what the engine's own is compared
// with, in tests and benchmarks.
#pragma once

#include "vorn/vorn.hpp"

#include <cstddef>
#include <vector>

namespace Tests {

/// Whether two bodies hit each other, category and life aside.
inline bool Meet(const Vorn::PhysicsCmpt& a, const Vorn::PhysicsCmpt& b) {
    const bool dynamic = a.UseDynamicCollisionCheck() || b.UseDynamicCollisionCheck();
    const unsigned int i = a.VolumeType(), j = b.VolumeType();
    if (i == 1 && j == 1)
        return !dynamic && Vorn::OBBToOBB(a.BoundingOBB(), b.BoundingOBB());
    if (i == 2 && j == 2 && !dynamic)
        return Vorn::SphereSphere(a.BoundingSphere(), b.BoundingSphere());
    if (i == 2 && j == 2)
        return Vorn::DynamicSphereToSphere(a.BoundingSphere(), a.LinearVelocity(),
                                           b.BoundingSphere(), b.LinearVelocity());
    if (i == 2 && j == 1)
        return dynamic && Vorn::DynamicSphereToOBB(a.BoundingSphere(), a.LinearVelocity(),
                                                   b.BoundingOBB(), b.LinearVelocity());
    return i == 1 && j == 2 && dynamic && Meet(b, a);
}

/// Tells the functors of every hit. A list that grows meanwhile is walked to its new end; an entry
/// that becomes null is passed over.
inline void PlainWalk(const std::vector<Vorn::PhysicsCmpt*>& bodies) {
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        if (!bodies[i] || !bodies[i]->IsAlive())
            continue; // asked once a row, the later body's life at each pair
        for (std::size_t j = i + 1; j < bodies.size() && bodies[i]; ++j) {
            Vorn::PhysicsCmpt* const a = bodies[i];
            Vorn::PhysicsCmpt* const b = bodies[j];
            if (!b || !b->IsAlive() || (a->Mask() & b->Category()).any() || !Meet(*a, *b))
                continue;
            Vorn::CollisionData forA{b}, forB{a};
            a->HandleCollision(&forA);
            if (bodies[i] && bodies[j])
                b->HandleCollision(&forB);
        }
    }
}

} // namespace Tests
