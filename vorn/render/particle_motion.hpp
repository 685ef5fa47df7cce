// SPDX-License-Identifier: MIT
//
// Below EmitterCmpt: the walk over its pool that moves and ages the living.
#pragma once

#include "vorn/math/color.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/render/particle.hpp"

#include <vector>

namespace Vorn {

/// What a particle has at birth (0) and at the end of its life (1), and how fast it falls.
struct ParticleCourse {
    Vector3 scale0, scale1;
    float speed0, speed1;
    Vorn3DColorSigned color0, color1;
    float gravity;
};

/// A step of `dt` (unit: seconds) for all that are alive. Those whose life ends are pushed onto
/// `freed` in the order of the pool.
void MoveParticles(std::vector<Particle>& particles, const ParticleCourse& course, float dt,
                   std::vector<Particle*>& freed);

} // namespace Vorn
