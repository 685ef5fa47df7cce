// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/color.hpp"
#include "vorn/math/vector3.hpp"

#include <cstddef>

namespace Vorn {

/// What an emitter gives off: a record of its pool. Positions are the world's, so that a particle
/// that is out does not follow its emitter.
struct VORN_API Particle {
    Vector3 position;
    /// Of length 1, from birth to death.
    Vector3 direction;
    /// What gravity has built up (unit: 1 / second).
    Vector3 velocity;
    /// Along `direction` (unit: 1 / second).
    float speed = 0.0f;
    /// The size of its square.
    Vector3 scale;
    Vorn3DColorSigned color;
    /// Given at birth (unit: seconds).
    float lifeSpan = 0.0f;
    /// Left (unit: seconds).
    float life = 0.0f;
    bool alive = false;

    /// Dead, at the origin, of size 1 and with a second of life. Leaves `velocity`.
    void Init();
};

// One vector operation each: speed with scale, and colour.
static_assert(sizeof(Particle) == 80);
static_assert(offsetof(Particle, speed) == 36 && offsetof(Particle, color) == 52);

} // namespace Vorn
