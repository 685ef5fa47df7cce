// SPDX-License-Identifier: MIT
//
// A pool that takes time is larger than the caches, so what counts is that memory never waits,
// neither for arithmetic nor for a branch that was guessed wrong:
//   - Four numbers of a record in a row are one vector operation each: speed with scale, and
//     colour. Position, direction and velocity are read as four, with a neighbour that is written
//     back as it was.
//   - Who lives is looked up for 16 records at once, without a branch. Where all do, they are gone
//     through in a row; else from one set bit to the next, and the dead cost nothing. More than 16
//     at once do not pay: then the way from looking up to moving is too long.
//   - The look-up asks for the memory some 100 records ahead, which goes on while the 16 are moved.
//   - Whoever dies, or is out of the ordinary, is done by the plain step, out of the way.
// Records stay records. An array for each field would save little, since the walk needs nearly all
// of them, and hosts read records.
#include "vorn/render/particle_motion.hpp"

#include "vorn/core/float4.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace Vorn {

namespace {

constexpr std::size_t BlockSize = 16;
constexpr unsigned int AllAlive = 0xffff;
constexpr std::size_t LineBytes = 64, BytesAhead = 8192;

// Sums of colours wrap.
using Channels = std::uint32_t __attribute__((vector_size(16)));
// As they lie in a record, which is aligned to floats only. No alias declarations, and no
// references to them: clang would drop the alignment.
typedef float LooseFour __attribute__((vector_size(16), aligned(4), may_alias));
typedef std::uint32_t LooseChannels __attribute__((vector_size(16), aligned(4), may_alias));

// By their place in the record, since they reach over more than one field.
// NOLINTBEGIN(cppcoreguidelines-pro-type-reinterpret-cast)
Float4 FourAt(const Particle& particle, std::size_t offset) {
    const auto* const bytes = reinterpret_cast<const std::byte*>(&particle);
    return *reinterpret_cast<const LooseFour*>(bytes + offset);
}
void StoreFour(Particle& particle, std::size_t offset, const Float4& four) {
    *reinterpret_cast<LooseFour*>(reinterpret_cast<std::byte*>(&particle) + offset) = four;
}
void StoreColor(Particle& particle, const Channels& color) {
    *reinterpret_cast<LooseChannels*>(&particle.color) = color;
}
// NOLINTEND(cppcoreguidelines-pro-type-reinterpret-cast)

class Motion {
public:
    Motion(const ParticleCourse& course, float dt, std::vector<Particle*>& freed)
        : mCourse(course), mDt(dt), mFreed(freed), mSize0(sizeOf(course.speed0, course.scale0)),
          mSize1(sizeOf(course.speed1, course.scale1)), mColor0(colorOf(course.color0)),
          mColor1(colorOf(course.color1)), mFall{0, course.gravity * dt, 0, 0} {}

    /// The step as it is meant; all others give the same bits.
    void Plain(Particle& particle) const {
        particle.life -= mDt;
        // Nor can a NaN be brought back.
        if (!(particle.life >= 0.0f)) {
            particle.alive = false;
            mFreed.push_back(&particle);
            return;
        }
        // Without a span, the end of life is now.
        const float t = particle.lifeSpan > 0.0f
                            ? (particle.lifeSpan - particle.life) / particle.lifeSpan
                            : 1.0f;
        const float u = 1.0f - t;
        particle.scale = mCourse.scale0 * u + mCourse.scale1 * t;
        particle.speed = mCourse.speed0 * u + mCourse.speed1 * t;
        particle.color = mCourse.color1 * t + mCourse.color0 * u;
        particle.velocity.y -= mCourse.gravity * mDt;
        particle.position += (particle.velocity + particle.direction * particle.speed) * mDt;
    }

    /// Needs channels that fit, see ColorsFit.
    void Fast(Particle& particle) const {
        const float life = particle.life - mDt;
        const float t = (particle.lifeSpan - life) / particle.lifeSpan;
        // As whole numbers, all that is not from 0 to 1 lies above 1: negative t, and no numbers. A
        // span that is not positive gives none from 0 to 1, but for a 1, which is right.
        const bool usual = (life >= 0.0f) & (std::bit_cast<std::uint32_t>(t) <= One);
        if (!usual) [[unlikely]]
            return rarely(particle);
        const float u = 1.0f - t;

        // All that lies across fields is read before anything is written.
        const Float4 position = FourAt(particle, offsetof(Particle, position));
        const Float4 direction = FourAt(particle, offsetof(Particle, direction));
        const Float4 velocity = FourAt(particle, offsetof(Particle, velocity)) - mFall;
        const Float4 size = mSize0 * u + mSize1 * t;
        const Float4 moved = position + (velocity + direction * size[0]) * mDt;

        StoreFour(particle, offsetof(Particle, position),
                  __builtin_shufflevector(moved, position, 0, 1, 2, 7));
        particle.velocity.y = velocity[1];
        StoreFour(particle, offsetof(Particle, speed), size);
        StoreColor(particle, truncated(mColor1 * t) + truncated(mColor0 * u));
        particle.life = life;
    }

    /// Whether no product of a channel with a number from 0 to 1 is more than an int holds: those
    /// of the highest channels are, since they round up to 2^31.
    static bool ColorsFit(const ParticleCourse& course) {
        constexpr std::int32_t highest = 2'000'000'000;
        const auto fits = [](const Vorn3DColorSigned& c) {
            return std::max({c.a, c.r, c.g, c.b}) <= highest;
        };
        return fits(course.color0) && fits(course.color1);
    }

private:
    static constexpr std::uint32_t One = std::bit_cast<std::uint32_t>(1.0f);

    static Float4 sizeOf(float speed, const Vector3& scale) {
        return Float4{speed, scale.x, scale.y, scale.z};
    }
    static Float4 colorOf(const Vorn3DColorSigned& c) {
        return __builtin_convertvector(Int4{c.a, c.r, c.g, c.b}, Float4);
    }
    static Channels truncated(const Float4& f) {
        return __builtin_bit_cast(Channels, __builtin_convertvector(f, Int4));
    }
    [[gnu::noinline, gnu::cold]] void rarely(Particle& particle) const { Plain(particle); }

    const ParticleCourse& mCourse;
    float mDt;
    std::vector<Particle*>& mFreed;
    Float4 mSize0, mSize1;
    Float4 mColor0, mColor1;
    Float4 mFall;
};

// A bit for each of a block that lives.
unsigned int LookUp(const Particle* block) {
    unsigned int alive = 0;
    for (std::size_t i = 0; i < BlockSize; ++i)
        alive |= unsigned{block[i].alive} << i;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
    const auto* const ahead = reinterpret_cast<const char*>(block) + BytesAhead;
    for (std::size_t line = 0; line < BlockSize * sizeof(Particle); line += LineBytes)
        __builtin_prefetch(ahead + line, 1);
    return alive;
}

void MoveBlock(const Motion& motion, Particle* block) {
    unsigned int alive = LookUp(block);
    if (alive == AllAlive) {
        for (std::size_t i = 0; i < BlockSize; ++i)
            motion.Fast(block[i]);
        return;
    }
    for (; alive != 0; alive &= alive - 1)
        motion.Fast(block[std::countr_zero(alive)]);
}

} // namespace

void MoveParticles(std::vector<Particle>& particles, const ParticleCourse& course, float dt,
                   std::vector<Particle*>& freed) {
    const Motion motion(course, dt, freed);
    if (!Motion::ColorsFit(course)) {
        for (Particle& particle : particles)
            if (particle.alive)
                motion.Plain(particle);
        return;
    }
    Particle* const end = particles.data() + particles.size();
    Particle* next = particles.data();
    for (; static_cast<std::size_t>(end - next) >= BlockSize; next += BlockSize)
        MoveBlock(motion, next);
    for (; next != end; ++next)
        if (next->alive)
            motion.Fast(*next);
}

} // namespace Vorn
