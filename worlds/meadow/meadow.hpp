// SPDX-License-Identifier: MIT
//
// A meadow: sheep that wander, lambs that follow a sheep, and nests that let birds out, which fly
// away and are gone. It runs by its data and a fixed step alone, so every run of it ends in the
// same state.
//
//   Worlds::Meadow meadow;                  // registers its pools and loads worlds/meadow/entity
//   Vorn::Scene scene;
//   scene.DeserializePath("worlds/meadow/meadow.scene");
#pragma once

#include "vorn/vorn.hpp"

#include <cstdint>
#include <string>

namespace Worlds {

/// Walks straight on and turns back at the edge of the meadow. One with a span of life leaves the
/// scene by itself.
///
/// It has a body, and hears of collisions: two that stay turn away from each other, and one with a
/// span of life is startled by one that stays and leaves at the end of the frame.
class Walker : public Vorn::Entity, public Vorn::FunctorBase1 {
public:
    /// Half the edge of the meadow (unit: metres).
    static constexpr float Edge = 100.0f;

    void DeserializeValue(const Json::Value& root, bool master) override;
    void SerializeValue(Json::Value& out, bool master) const override;
    void Init() override;
    void Update(float dt) override;
    void Conform(const Vorn::Entity* source) override;
    void operator()(Vorn::CollisionData* data) override;

    /// Collisions that walkers heard of so far, and those of them that were startled.
    static std::size_t Meetings() { return sMeetings; }
    static std::size_t Startled() { return sStartled; }

    const Vorn::Vector3& Velocity() const { return mVelocity; }
    void Velocity(const Vorn::Vector3& velocity) { mVelocity = velocity; }

private:
    void leave();

    static std::size_t sMeetings;
    static std::size_t sStartled;

    Vorn::Vector3 mVelocity; // (unit: metres / second)
    float mLife = 0.0f;      // (unit: seconds), 0 for ever
    bool mStays = true;      // it has no span of life
    bool mLeaving = false;
};

/// Keeps its place beside another entity, which it finds by name.
class Follower : public Vorn::Entity {
public:
    void DeserializeValue(const Json::Value& root, bool master) override;
    void SerializeValue(Json::Value& out, bool master) const override;
    void Init() override;
    void Conform(const Vorn::Entity* source) override;

private:
    std::string mLeader;
    Vorn::Vector3 mOffset; // from the leader (unit: metres)
};

/// Lets a walker out at a fixed interval, in a direction that turns from one to the next.
class Nest : public Vorn::Entity {
public:
    void DeserializeValue(const Json::Value& root, bool master) override;
    void SerializeValue(Json::Value& out, bool master) const override;
    void Update(float dt) override;
    void Conform(const Vorn::Entity* source) override;

private:
    std::string mBrood;      // alias of the variant that it lets out
    float mInterval = 0.0f;  // (unit: seconds), 0 for never
    float mCountdown = 0.0f; // (unit: seconds)
    int mHeading = 0;        // of the next one (unit: quarter turns)
};

/// The pools of the meadow's entities, registered with the factory for as long as the object lives.
class Meadow {
public:
    /// Raises what PhysicsSystem::LoadPhysicsInfo and EntityFactory::LoadEntities raise. `data` is
    /// the folder worlds/meadow.
    explicit Meadow(const std::string& data = "worlds/meadow");
    Meadow(const Meadow&) = delete;
    Meadow& operator=(const Meadow&) = delete;
    ~Meadow();

    /// How many entities are out of their pools.
    std::size_t Out() const;

    /// A scene file with so many entities: four sheep to a lamb, a nest to every hundred.
    static std::string SceneText(unsigned int entities);

private:
    Vorn::EntityPool<Walker> mWalkers;
    Vorn::EntityPool<Follower> mFollowers;
    Vorn::EntityPool<Nest> mNests;
};

/// A frame of 1/60 second of a scene that runs without the scene manager, the physics included.
void RunFrame(Vorn::Scene& scene);

/// The state of a running scene as far as a scene file holds it. The scene's description becomes
/// that state.
std::uint64_t StateHash(Vorn::Scene& scene);

} // namespace Worlds
