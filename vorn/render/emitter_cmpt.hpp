// SPDX-License-Identifier: MIT
//
// Makes an entity give off particles, from a pool that its data sizes.
//
//   "EmitterCmpt": {"TexturePath": "spark.png", "Size": 200, "EmitterType": "Sphere",
//                   "SpawnRate0": 0.1, "SpawnRate1": 0.2, "Particles_Per_Emit": 5, ...}
//
//   EmitterSystem::Instance()->Init();         // once the entities of a scene are registered
//   EmitterSystem::Instance()->Update(dt);     // each frame: emits, moves, ages
//   Graphics2DSystem::Instance()->RenderParticle();
//
// docs/emitter.md has the keys. A component that has read its data gets its pool from Conform,
// which an entity of a pool has run, and is ready with Init; each of the two lays the pool out
// anew, with all particles dead. Emitting and moving allocate nothing. Nothing looks at whether the
// entity is alive: an emitter goes on as long as it is registered.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/color.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/render/fwd.hpp"
#include "vorn/render/particle.hpp"
#include "vorn/resource/fwd.hpp"
#include "vorn/scene/base_cmpt.hpp"
#include "vorn/scene/cmpt_list.hpp"

#include <json/value.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Vorn {

class VORN_API EmitterCmpt : public BaseCmpt {
public:
    using BaseCmpt::BaseCmpt;
    /// The copy has particles of its own, as those of the source are.
    EmitterCmpt(const EmitterCmpt& source);
    EmitterCmpt& operator=(const EmitterCmpt& source);
    ~EmitterCmpt() override;

    void DeserializeValue(const Json::Value& value, bool master) override;
    /// Writes nothing.
    void SerializeValue(Json::Value& out, bool master) const override;
    /// Takes the texture from its store, makes all particles dead, rolls the interval of emissions
    /// and lets the emitter emit. Raises std::out_of_range, "invalid map<K, T> key", for a texture
    /// that is not in the store; then nothing has changed. Raises std::length_error as Conform does
    /// where a layer has changed "Size" since; the pool stays as it was then.
    void Init() override;
    void Deinit() override;
    /// Takes over the values, but not what SetEmitterLifeSpan has set, and makes the pool: "Size"
    /// dead particles. Raises std::length_error, "vector<T> too long", for a negative size and for
    /// more than 16,777,216 particles.
    void Conform(const BaseCmpt& source) override;

    /// Counts down to the next emission and emits then (unit: seconds): at most once in a call,
    /// however long it is. What finds no free particle is left out.
    void Emit(float dt);
    /// Moves and ages the living (unit: seconds). One whose life has come to exactly 0 still lives.
    void Update(float dt);

    /// Null before Init.
    Texture* GetTexture() const { return mTexture; }
    /// "ParticleLife1", whatever "ParticleLife0" is (unit: seconds).
    float GetParticleLifeSpan() const { return mParticleLife1; }
    /// How long it may emit (unit: seconds); 1 at the start. Time takes from it only where the
    /// texture is "Bubble.dds"; all other emitters go on as long as it is above 0.
    void SetEmitterLifeSpan(float seconds) { mEmitterLifeSpan = seconds; }

    /// The pool. A host reads it between updates and does not change its size.
    std::vector<Particle> mParticles;

protected:
    /// A particle that lives.
    void killParticle(Particle* particle);
    /// Needs a free particle; takes the one that was freed last.
    Particle* spawnParticle();
    void initSphereParticle(Particle* particle);
    void initSmokeParticle(Particle* particle);
    void InitBubblesParticle(Particle* particle);

    std::string mTexturePath;
    std::int32_t mSize = 0;
    float mSpawnTimer = 0.0f;
    float mSpawnRate0 = 0.0f;
    float mSpawnRate1 = 0.0f;
    float mParticleLife0 = 0.0f;
    float mParticleLife1 = 0.0f;
    float mEmitterLifeSpan = 1.0f;
    std::int32_t mParticlesPerEmit = 0;
    Vector3 mOffset;
    std::string mEmitterType;
    float mSphereRadius = 0.0f;
    float mGravity = 0.0f;
    bool mEmitOnce = false;
    std::string mScaleI;
    Vector3 mScale0;
    Vector3 mScale1;
    std::string mSpeedI;
    float mSpeed0 = 0.0f;
    float mSpeed1 = 0.0f;
    std::string mColorI;
    Vorn3DColorSigned mColor0;
    Vorn3DColorSigned mColor1;
    /// A stack of those that are not alive. With room for the whole pool from the start: a deque
    /// would allocate and free where its blocks end.
    std::vector<Particle*> mFreeParticles;
    Texture* mTexture = nullptr;
    float mSpawnInterval = 0.0f;
    bool mActive = false;

private:
    friend class CmptList<EmitterCmpt>;
    friend class Registration<EmitterCmpt>;

    void copyValues(const EmitterCmpt& source);
    void copyPool(const EmitterCmpt& source);
    void rollInterval();
    void layOutPool();
    Vector3 origin() const;

    Registration<EmitterCmpt> mRegistration;
};

} // namespace Vorn
