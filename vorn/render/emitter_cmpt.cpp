// SPDX-License-Identifier: MIT
#include "vorn/render/emitter_cmpt.hpp"

#include "vorn/core/huge_memory.hpp"
#include "vorn/core/json.hpp"
#include "vorn/core/utility.hpp"
#include "vorn/render/particle_motion.hpp"
#include "vorn/resource/texture_manager.hpp"
#include "vorn/scene/entity.hpp"

#include <stdexcept>

namespace Vorn {

namespace {

// More than 1.3 GB of particles is a slip of the pen in a data file.
constexpr std::int32_t MaxParticles = 1 << 24;

} // namespace

void Particle::Init() {
    position = direction = Vector3();
    speed = 0.0f;
    scale = Vector3(1.0f, 1.0f, 1.0f);
    color = Vorn3DColorSigned();
    lifeSpan = life = 1.0f;
    alive = false;
}

EmitterCmpt::EmitterCmpt(const EmitterCmpt& source) : BaseCmpt(source) {
    copyValues(source);
    copyPool(source);
}

EmitterCmpt& EmitterCmpt::operator=(const EmitterCmpt& source) {
    if (this == &source)
        return *this;
    BaseCmpt::operator=(source);
    copyValues(source);
    copyPool(source);
    return *this;
}

EmitterCmpt::~EmitterCmpt() = default;

void EmitterCmpt::copyValues(const EmitterCmpt& source) {
    mTexturePath = source.mTexturePath;
    mSize = source.mSize;
    mSpawnRate0 = source.mSpawnRate0;
    mSpawnRate1 = source.mSpawnRate1;
    mParticleLife0 = source.mParticleLife0;
    mParticleLife1 = source.mParticleLife1;
    mParticlesPerEmit = source.mParticlesPerEmit;
    mOffset = source.mOffset;
    mEmitterType = source.mEmitterType;
    mSphereRadius = source.mSphereRadius;
    mGravity = source.mGravity;
    mEmitOnce = source.mEmitOnce;
    mScaleI = source.mScaleI;
    mScale0 = source.mScale0;
    mScale1 = source.mScale1;
    mSpeedI = source.mSpeedI;
    mSpeed0 = source.mSpeed0;
    mSpeed1 = source.mSpeed1;
    mColorI = source.mColorI;
    mColor0 = source.mColor0;
    mColor1 = source.mColor1;
}

void EmitterCmpt::copyPool(const EmitterCmpt& source) {
    mParticles = source.mParticles;
    mFreeParticles.clear();
    mFreeParticles.reserve(mParticles.size());
    for (const Particle* free : source.mFreeParticles)
        mFreeParticles.push_back(mParticles.data() + (free - source.mParticles.data()));
    mSpawnTimer = source.mSpawnTimer;
    mSpawnInterval = source.mSpawnInterval;
    mEmitterLifeSpan = source.mEmitterLifeSpan;
    mTexture = source.mTexture;
    mActive = source.mActive;
}

void EmitterCmpt::DeserializeValue(const Json::Value& value, bool master) {
    const auto text = [&](std::string& field, const char* key) {
        dsParam(field, JsonString(value, key, field), master);
    };
    const auto number = [&](float& field, const char* key) {
        dsParam(field, JsonFloat(value, key, field), master);
    };
    text(mTexturePath, "TexturePath");
    dsParam(mSize, JsonInt(value, "Size", mSize), master);
    number(mSpawnRate0, "SpawnRate0");
    number(mSpawnRate1, "SpawnRate1");
    dsParamVector3(mOffset, JsonObject(value, "Offset"), master);
    text(mEmitterType, "EmitterType");
    number(mSphereRadius, "SphereRadius");
    dsParam(mParticlesPerEmit, JsonInt(value, "Particles_Per_Emit", mParticlesPerEmit), master);
    number(mGravity, "Gravity");
    dsParam(mEmitOnce, JsonBool(value, "EmitOnce", mEmitOnce), master);
    text(mScaleI, "ScaleI");
    dsParamVector3(mScale0, JsonObject(value, "Scale0"), master);
    dsParamVector3(mScale1, JsonObject(value, "Scale1"), master);
    text(mSpeedI, "SpeedI");
    number(mSpeed0, "Speed0");
    number(mSpeed1, "Speed1");
    text(mColorI, "ColorI");
    dsParamColor(mColor0, JsonObject(value, "Color0"), master);
    dsParamColor(mColor1, JsonObject(value, "Color1"), master);
    number(mParticleLife0, "ParticleLife0");
    number(mParticleLife1, "ParticleLife1");
}

void EmitterCmpt::SerializeValue(Json::Value&, bool) const {}

void EmitterCmpt::Init() {
    mTexture = TextureManager::Instance()->Get(mTexturePath);
    layOutPool();
    for (Particle& particle : mParticles)
        particle.Init();
    mActive = true;
    rollInterval();
}

void EmitterCmpt::Deinit() {}

void EmitterCmpt::Conform(const BaseCmpt& source) {
    copyValues(dynamic_cast<const EmitterCmpt&>(source));
    rollInterval();
    layOutPool();
}

void EmitterCmpt::rollInterval() {
    mSpawnInterval = mSpawnTimer = Random(mSpawnRate0, mSpawnRate1);
}

// The pool may still have another size: a layer that came after Conform has its own.
void EmitterCmpt::layOutPool() {
    if (mSize < 0 || mSize > MaxParticles)
        throw std::length_error("vector<T> too long");
    const auto size = static_cast<std::size_t>(mSize);
    mFreeParticles.clear(); // they point into the pool, which may be gone where memory ends
    if (size > mParticles.capacity()) {
        // Old particles need not move.
        mParticles = std::vector<Particle>();
        mParticles.reserve(size);
        PreferHugePages(mParticles.data(), size * sizeof(Particle));
    }
    mParticles.assign(size, Particle());

    mFreeParticles.reserve(size);
    for (Particle& particle : mParticles)
        mFreeParticles.push_back(&particle);
}

void EmitterCmpt::Emit(float dt) {
    if (!mActive)
        return;
    if (mTexturePath == "Bubble.dds")
        mEmitterLifeSpan -= dt;
    if (!(mEmitterLifeSpan > 0.0f))
        return;
    mSpawnTimer -= dt;
    if (!(mSpawnTimer < 0.0f))
        return;
    // What the frame is too long by is dropped: one emission, however long it was.
    mSpawnTimer = mSpawnInterval;
    for (std::int32_t i = 0; i < mParticlesPerEmit && !mFreeParticles.empty(); ++i)
        spawnParticle();
    if (mEmitOnce)
        mActive = false;
}

Particle* EmitterCmpt::spawnParticle() {
    Particle* particle = mFreeParticles.back();
    mFreeParticles.pop_back();
    particle->alive = true;
    particle->lifeSpan = particle->life = Random(mParticleLife0, mParticleLife1);
    if (mEmitterType == "Sphere")
        initSphereParticle(particle);
    else if (mEmitterType == "Smoke")
        initSmokeParticle(particle);
    else if (mEmitterType == "Bubble")
        InitBubblesParticle(particle);
    particle->velocity = Vector3();
    particle->scale = mScale0;
    particle->speed = mSpeed0;
    particle->color = mColor0;
    return particle;
}

void EmitterCmpt::initSphereParticle(Particle* particle) {
    RandomVector({-1.0f, -1.0f, -1.0f}, {1.0f, 1.0f, 1.0f}, particle->direction);
    particle->direction.Normalize();
    particle->position = origin() + particle->direction * Random(0.0f, mSphereRadius);
}

void EmitterCmpt::initSmokeParticle(Particle* particle) {
    RandomVector({-0.1f, 0.0f, -0.1f}, {0.1f, 1.0f, 0.1f}, particle->direction);
    particle->direction.Normalize();
    particle->position = origin();
}

void EmitterCmpt::InitBubblesParticle(Particle* particle) {
    RandomVector({0.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}, particle->direction);
    particle->direction.Normalize();
    particle->position = origin();
}

Vector3 EmitterCmpt::origin() const {
    return Parent() ? Parent()->Position() : Vector3();
}

void EmitterCmpt::Update(float dt) {
    const ParticleCourse course = {mScale0, mScale1, mSpeed0, mSpeed1, mColor0, mColor1, mGravity};
    MoveParticles(mParticles, course, dt, mFreeParticles);
}

void EmitterCmpt::killParticle(Particle* particle) {
    particle->alive = false;
    mFreeParticles.push_back(particle);
}

} // namespace Vorn
