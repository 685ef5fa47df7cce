// SPDX-License-Identifier: MIT
//
// EmitterCmpt::Update against the plain loop, bit for bit, and what must hold of the pool and its
// free list whatever happens to an emitter.
#include "tests/math/exact.hpp"
#include "tests/support/plain_particles.hpp"

#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace {

using Exact::Random;
using Vorn::Particle;
using Vorn::Vector3;

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr std::int32_t Lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t Highest = std::numeric_limits<std::int32_t>::max();

/// Values of which one in `hell` is such as no game has; 0: none.
class Values {
public:
    Values(unsigned int seed, int hell) : random(seed), mHell(hell) {}

    float Float(float low, float high) {
        constexpr float odd[] = {0,      -0.0f,   NotANumber, -NotANumber, Infinity,      -Infinity,
                                 1e-45f, -1e-40f, 3e38f,      -3e38f,      2147483648.0f, -1};
        return fromHell() ? pick(odd) : random.Float(low, high);
    }
    Vector3 Vector(float reach) {
        const float x = Float(-reach, reach), y = Float(-reach, reach);
        return {x, y, Float(-reach, reach)};
    }
    Vorn3DColorSigned Color() {
        const int a = channel(), r = channel(), g = channel();
        return {a, r, g, channel()};
    }

    Random random;

private:
    bool fromHell() { return mHell > 0 && random.Int(1, mHell) == 1; }
    int channel() {
        constexpr std::int32_t odd[] = {Lowest,  Lowest + 1, -1,          2'000'000'000,
                                        Highest, 16777217,   -2147483520, 2'000'000'001};
        return fromHell() ? pick(odd) : random.Int(0, 255);
    }
    template <typename T, std::size_t n>
    T pick(const T (&from)[n]) {
        return from[random.Int(0, static_cast<int>(n) - 1)];
    }

    int mHell;
};

/// An emitter that lets the tests at what its class has for those that derive from it.
class OpenEmitter : public Vorn::EmitterCmpt {
public:
    using EmitterCmpt::killParticle;
    using EmitterCmpt::spawnParticle;

    OpenEmitter() {
        mTexturePath = "none.png";
        mParticlesPerEmit = 3;
    }
    OpenEmitter(const OpenEmitter&) = default;
    OpenEmitter& operator=(const OpenEmitter&) = default;
    ~OpenEmitter() override = default;

    /// Takes effect with the next Conform to it or Init of it.
    void Size(int size) { mSize = size; }
    void Roll(Values& values) {
        const char* const types[] = {"Sphere", "Smoke", "Bubble", "sphere"};
        mEmitterType = types[values.random.Int(0, 3)];
        mSphereRadius = values.Float(0, 5);
        mEmitOnce = values.random.Int(0, 9) == 0;
        mParticleLife0 = values.Float(0, 0.5f);
        mParticleLife1 = values.Float(0, 0.5f);
        mScale0 = values.Vector(5), mScale1 = values.Vector(5);
        mSpeed0 = values.Float(0, 9), mSpeed1 = values.Float(0, 9);
        mColor0 = values.Color(), mColor1 = values.Color();
        mGravity = values.Float(-9, 9);
    }
    void Color(int first, int second) { mColor0 = {first, second}, mColor1 = {second, second}; }
    Vorn::ParticleCourse Course() const {
        return {mScale0, mScale1, mSpeed0, mSpeed1, mColor0, mColor1, mGravity};
    }

    /// Of `tenths` tenths of the pool, at random.
    void Populate(Values& values, int tenths) {
        mFreeParticles.clear();
        for (Particle& particle : mParticles) {
            particle.position = values.Vector(100);
            particle.direction = values.Vector(1);
            particle.velocity = values.Vector(10);
            particle.speed = values.Float(0, 10);
            particle.scale = values.Vector(1);
            particle.color = values.Color();
            particle.lifeSpan = values.Float(0.1f, 2);
            particle.life = values.Float(0, particle.lifeSpan);
            particle.alive = values.random.Int(0, 9) < tenths;
            if (!particle.alive)
                mFreeParticles.push_back(&particle);
        }
    }

    std::vector<std::size_t> Free() const {
        std::vector<std::size_t> indices;
        for (const Particle* particle : mFreeParticles)
            indices.push_back(static_cast<std::size_t>(particle - mParticles.data()));
        return indices;
    }
    void ExpectSound() const {
        std::vector<std::size_t> free = Free(), dead;
        std::sort(free.begin(), free.end());
        for (std::size_t i = 0; i < mParticles.size(); ++i)
            if (!mParticles[i].alive)
                dead.push_back(i);
        ASSERT_EQ(free, dead);
    }
};

/// NaNs are equal to each other, whatever their bits: those are the compiler's to choose.
bool Same(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}
bool Same(const Vector3& a, const Vector3& b) {
    return Same(a.x, b.x) && Same(a.y, b.y) && Same(a.z, b.z);
}
bool Same(const Vorn3DColorSigned& a, const Vorn3DColorSigned& b) {
    return a.a == b.a && a.r == b.r && a.g == b.g && a.b == b.b;
}

/// Empty, or what differs first.
std::string Difference(const Particle& a, const Particle& b) {
    return !Same(a.position, b.position)     ? "position"
           : !Same(a.direction, b.direction) ? "direction"
           : !Same(a.velocity, b.velocity)   ? "velocity"
           : !Same(a.speed, b.speed)         ? "speed"
           : !Same(a.scale, b.scale)         ? "scale"
           : !Same(a.color, b.color)         ? "color"
           : !Same(a.lifeSpan, b.lifeSpan)   ? "lifeSpan"
           : !Same(a.life, b.life)           ? "life"
           : a.alive != b.alive              ? "alive"
                                             : "";
}

/// Frames of an emitter and its twin, from the same particles on.
void RunBoth(OpenEmitter& emitter, Values& values, int frames) {
    std::vector<Particle> twin = emitter.mParticles;
    std::vector<std::size_t> free = emitter.Free();
    for (int frame = 0; frame < frames; ++frame) {
        const float dt = values.Float(-0.002f, 0.04f);
        SCOPED_TRACE("frame " + std::to_string(frame) + ", dt " + std::to_string(dt));
        emitter.Update(dt);
        Tests::PlainMoveParticles(twin, emitter.Course(), dt, free);
        for (std::size_t i = 0; i < twin.size(); ++i)
            ASSERT_EQ(Difference(emitter.mParticles[i], twin[i]), "") << "particle " << i;
        ASSERT_EQ(emitter.Free(), free);
    }
}

class ParticleTwins : public testing::Test {
protected:
    ParticleTwins() {
        testing::internal::CaptureStdout(); // what the store tells
        Vorn::TextureManager::Instance()->Load("none.png");
    }
    ~ParticleTwins() override {
        Vorn::TextureManager::Instance()->Unload("none.png");
        testing::internal::GetCapturedStdout();
    }
};

TEST_F(ParticleTwins, AgreeBitForBitWhateverTheValues) {
    unsigned int seed = 1;
    for (const int hell : {0, 1000, 40, 4})
        for (const int size : {0, 1, 2, 3, 7, 16, 17, 31, 1000})
            for (const int tenths : {10, 9, 5, 1}) {
                SCOPED_TRACE("seed " + std::to_string(seed) + ", size " + std::to_string(size));
                Values values(seed++, hell);
                OpenEmitter emitter;
                emitter.Size(size);
                emitter.Init();
                emitter.Roll(values);
                emitter.Populate(values, tenths);
                RunBoth(emitter, values, size > 100 ? 15 : 60);
                ASSERT_FALSE(HasFatalFailure());
            }
}

// Where rounding decides: both ends of a life, one bit from them, and channels one bit from what
// an int holds.
TEST_F(ParticleTwins, AgreeAtTheEndsOfALife) {
    constexpr float spans[] = {1e-45f, 1e-38f, 0.1f, 1, 3, 16777216, 3e38f, Infinity, 0, -0.0f, -1};
    constexpr int channels[] = {0,       1,     -1, 255, 16777217, 1'999'999'999, 2'000'000'001,
                                Highest, Lowest};
    Values values(7, 0);
    for (const int first : channels)
        for (const int second : channels) {
            OpenEmitter emitter;
            emitter.Roll(values);
            emitter.Color(first, second);
            emitter.Size(static_cast<int>(std::size(spans)) * 5);
            emitter.Init();
            emitter.Populate(values, 10);
            for (std::size_t i = 0; i < emitter.mParticles.size(); ++i) {
                Particle& particle = emitter.mParticles[i];
                const float span = spans[i / 5];
                const float lives[] = {0, std::nextafter(0.0f, 1.0f), span,
                                       std::nextafter(span, -Infinity),
                                       std::nextafter(span, Infinity)};
                particle.lifeSpan = span;
                particle.life = lives[i % 5];
            }
            std::vector<Particle> twin = emitter.mParticles;
            std::vector<std::size_t> free;
            emitter.Update(0);
            Tests::PlainMoveParticles(twin, emitter.Course(), 0, free);
            for (std::size_t i = 0; i < twin.size(); ++i)
                ASSERT_EQ(Difference(emitter.mParticles[i], twin[i]), "")
                    << "span " << twin[i].lifeSpan << ", life " << twin[i].life << ", channels "
                    << first << ' ' << second;
            ASSERT_EQ(emitter.Free(), free);
        }
}

TEST_F(ParticleTwins, AParticleIsFreeExactlyWhenItIsDead) {
    Values values(11, 60);
    Random& random = values.random;
    const int sizes[] = {0, 1, 2, 3, 7, 50, 1000};
    OpenEmitter emitters[3], master;
    for (int turn = 0; turn < 10'000; ++turn) {
        OpenEmitter& emitter = emitters[random.Int(0, 2)];
        const int action = random.Int(0, 99);
        SCOPED_TRACE("turn " + std::to_string(turn) + ", action " + std::to_string(action));
        if (action < 40) {
            emitter.Emit(values.Float(0, 0.1f));
        } else if (action < 80) {
            emitter.Update(values.Float(0, 0.1f));
        } else if (action < 88) {
            if (!emitter.Free().empty())
                emitter.spawnParticle();
        } else if (action < 94) {
            const auto living = std::find_if(emitter.mParticles.begin(), emitter.mParticles.end(),
                                             [](const Particle& p) { return p.alive; });
            if (living != emitter.mParticles.end())
                emitter.killParticle(&*living);
        } else if (action < 96) {
            emitter.Init();
        } else if (action < 98) {
            master.Roll(values);
            master.Size(sizes[random.Int(0, static_cast<int>(std::size(sizes)) - 1)]);
            emitter.Conform(master);
        } else if (action < 99) {
            emitter = emitters[random.Int(0, 2)];
        } else {
            OpenEmitter copy(emitter);
            copy.Emit(1);
            copy.Update(0.1f);
            copy.ExpectSound();
        }
        emitter.ExpectSound();
        ASSERT_FALSE(HasFatalFailure());
    }
}

} // namespace
