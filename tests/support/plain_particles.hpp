// SPDX-License-Identifier: MIT
//
// The update of an emitter, as plain as it can be said: what the engine's own is compared with, in
// tests and benchmarks.
#pragma once

#include "vorn/render/particle_motion.hpp"

#include <cstddef>
#include <vector>

namespace Tests {

/// As Vorn::MoveParticles; who dies is told by index.
inline void PlainMoveParticles(std::vector<Vorn::Particle>& particles,
                               const Vorn::ParticleCourse& course, float dt,
                               std::vector<std::size_t>& freed) {
    for (std::size_t i = 0; i < particles.size(); ++i) {
        Vorn::Particle& particle = particles[i];
        if (!particle.alive)
            continue;
        particle.life -= dt;
        if (!(particle.life >= 0.0f)) {
            particle.alive = false;
            freed.push_back(i);
            continue;
        }
        const float t = particle.lifeSpan > 0.0f
                            ? (particle.lifeSpan - particle.life) / particle.lifeSpan
                            : 1.0f;
        const float u = 1.0f - t;
        particle.scale = course.scale0 * u + course.scale1 * t;
        particle.speed = course.speed0 * u + course.speed1 * t;
        particle.color = course.color1 * t + course.color0 * u;
        particle.velocity.y -= course.gravity * dt;
        particle.position += (particle.velocity + particle.direction * particle.speed) * dt;
    }
}

} // namespace Tests
