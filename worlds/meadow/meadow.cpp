// SPDX-License-Identifier: MIT
#include "worlds/meadow/meadow.hpp"

#include <json/writer.h>

#include <cmath>
#include <random>
#include <utility>

namespace Worlds {

using Vorn::Vector3;

std::size_t Walker::sMeetings = 0;
std::size_t Walker::sStartled = 0;

void Walker::DeserializeValue(const Json::Value& root, bool master) {
    Entity::DeserializeValue(root, master);
    dsParamVector3(mVelocity, Vorn::JsonObject(root, "Velocity"), master);
    dsParam(mLife, Vorn::JsonFloat(root, "Life", mLife), master);
    mStays = mLife <= 0.0f;
}

void Walker::SerializeValue(Json::Value& out, bool master) const {
    Entity::SerializeValue(out, master);
    seParamVector3(out, "Velocity", mVelocity, master);
    seParam(out, "Life", mLife, master);
}

void Walker::Init() {
    if (Physics())
        Physics()->RegisterCollisionResponse(this);
}

void Walker::Update(float dt) {
    Vector3 place = LocalPosition() + mVelocity * dt;
    const auto turnBack = [](float& coordinate, float& speed) {
        if (std::abs(coordinate) <= Edge)
            return;
        coordinate = std::copysign(Edge, coordinate);
        speed = -speed;
    };
    turnBack(place.x, mVelocity.x);
    turnBack(place.z, mVelocity.z);
    LocalPosition(place);
    Entity::Update(dt);

    if (mLife > 0.0f) {
        mLife -= dt;
        if (mLife <= 0.0f)
            leave();
    }
}

void Walker::operator()(Vorn::CollisionData* data) {
    const auto* other = dynamic_cast<const Walker*>(data->other->Parent());
    if (!other)
        return;
    ++sMeetings;
    if (mStays && other->mStays) {
        const Vector3 away = Position() - other->Position();
        mVelocity.x = std::copysign(mVelocity.x, away.x);
        mVelocity.z = std::copysign(mVelocity.z, away.z);
    } else if (!mStays && !mLeaving) {
        ++sStartled;
        leave();
    }
}

// The pair walk, and the walk along the scene, hold the entity: it goes at the end of the frame.
void Walker::leave() {
    if (!std::exchange(mLeaving, true))
        Scene()->DestroyEntity(this, false);
}

void Walker::Conform(const Entity* source) {
    Entity::Conform(source);
    const auto& walker = dynamic_cast<const Walker&>(*source);
    mVelocity = walker.mVelocity;
    mLife = walker.mLife;
    mStays = walker.mStays;
    mLeaving = false;
}

void Follower::DeserializeValue(const Json::Value& root, bool master) {
    Entity::DeserializeValue(root, master);
    dsParam(mLeader, Vorn::JsonString(root, "Leader", mLeader), master);
    dsParamVector3(mOffset, Vorn::JsonObject(root, "Offset"), master);
}

void Follower::SerializeValue(Json::Value& out, bool master) const {
    Entity::SerializeValue(out, master);
    seParam(out, "Leader", mLeader, master);
    seParamVector3(out, "Offset", mOffset, master);
}

void Follower::Init() {
    // Also called on the way out of a scene, which the entity has left by then.
    if (!Scene())
        return;
    Parent(Scene()->GetEntity(mLeader));
    if (Parent())
        LocalPosition(mOffset);
}

void Follower::Conform(const Entity* source) {
    Entity::Conform(source);
    const auto& follower = dynamic_cast<const Follower&>(*source);
    mLeader = follower.mLeader;
    mOffset = follower.mOffset;
}

void Nest::DeserializeValue(const Json::Value& root, bool master) {
    Entity::DeserializeValue(root, master);
    dsParam(mBrood, Vorn::JsonString(root, "Brood", mBrood), master);
    dsParam(mInterval, Vorn::JsonFloat(root, "Interval", mInterval), master);
    dsParam(mCountdown, Vorn::JsonFloat(root, "Countdown", mCountdown), master);
    dsParam(mHeading, Vorn::JsonInt(root, "Heading", mHeading), master);
}

void Nest::SerializeValue(Json::Value& out, bool master) const {
    Entity::SerializeValue(out, master);
    seParam(out, "Brood", mBrood, master);
    seParam(out, "Interval", mInterval, master);
    seParam(out, "Countdown", mCountdown, master);
    seParam(out, "Heading", mHeading, master);
}

void Nest::Update(float dt) {
    Entity::Update(dt);
    if (mInterval <= 0.0f)
        return;
    mCountdown -= dt;
    if (mCountdown > 0.0f)
        return;
    mCountdown += mInterval;

    Vorn::Entity* bird = Scene()->CreateEntity(mBrood, false);
    bird->Position(Position());
    if (auto* walker = dynamic_cast<Walker*>(bird)) {
        // Quarter turns in whole numbers: no sine of any library is in the state.
        const Vector3 v = walker->Velocity();
        const Vector3 headings[4] = {
            {v.x, v.y, v.z}, {-v.z, v.y, v.x}, {-v.x, v.y, -v.z}, {v.z, v.y, -v.x}};
        walker->Velocity(headings[mHeading & 3]);
    }
    mHeading = mHeading < 3 ? mHeading + 1 : 0;
}

void Nest::Conform(const Entity* source) {
    Entity::Conform(source);
    const auto& nest = dynamic_cast<const Nest&>(*source);
    mBrood = nest.mBrood;
    mInterval = nest.mInterval;
    mCountdown = nest.mCountdown;
    mHeading = nest.mHeading;
}

Meadow::Meadow(const std::string& data) {
    auto& factory = *Vorn::EntityFactory::Instance();
    factory.Register("sheep", &mWalkers);
    factory.Register("lamb", &mFollowers);
    factory.Register("nest", &mNests);
    Vorn::PhysicsSystem::Instance()->LoadPhysicsInfo(data + "/physics.json");
    factory.LoadEntities((data + "/entity").c_str());
}

Meadow::~Meadow() {
    for (const char* key : {"sheep", "ram", "bird", "lamb", "nest"})
        Vorn::EntityFactory::Instance()->Register(key, nullptr);
}

std::size_t Meadow::Out() const {
    const auto out = [](const auto& pool) { return pool.Size() - pool.Idle(); };
    return out(mWalkers) + out(mFollowers) + out(mNests);
}

std::string Meadow::SceneText(unsigned int entities) {
    // The engine's raw numbers only: what the library's distributions make of them differs from one
    // to another.
    std::mt19937 random(1);
    const auto coordinate = [&random] {
        return static_cast<double>(random() % 20001) / 100.0 - 100.0;
    };
    const auto vector = [](double x, double y, double z) {
        Json::Value value;
        value["X"] = x;
        value["Y"] = y;
        value["Z"] = z;
        return value;
    };

    // An entity a line, as a person would write it.
    Json::StreamWriterBuilder lines;
    lines["indentation"] = "";
    std::string text = "{\n\"ResourcePack\": \"\",\n\"Entities\": [";
    std::string sheep;
    for (unsigned int i = 0; i < entities; ++i) {
        Json::Value item;
        item["Position"] = vector(coordinate(), 0.0, coordinate());
        if (i % 100 == 99) {
            item["Type"] = "nest";
            item["Countdown"] = static_cast<double>(random() % 100) / 100.0;
        } else if (i % 5 == 4) {
            item["Type"] = "lamb";
            item["Leader"] = sheep;
            item["Offset"] = vector(1.0, 0.0, static_cast<double>(random() % 100) / 50.0);
        } else {
            sheep = "sheep " + std::to_string(i);
            item["Type"] = "sheep";
            if (random() % 8 == 0)
                item["Variant"] = "ram";
            item["Name"] = sheep;
            item["Orientation"] = vector(coordinate(), 0.0, 1.0);
            item["Velocity"] = vector(coordinate() / 50.0, 0.0, coordinate() / 50.0);
        }
        text += (i == 0 ? "\n" : ",\n") + Json::writeString(lines, item);
    }
    return text + "\n]\n}\n";
}

void RunFrame(Vorn::Scene& scene) {
    constexpr float Step = 1.0f / 60.0f;
    scene.Update(Step);
    Vorn::PhysicsSystem::Instance()->Update(Step);
}

std::uint64_t StateHash(Vorn::Scene& scene) {
    scene.SerializeEntities();
    // FNV-1a: http://www.isthe.com/chongo/tech/comp/fnv/
    std::uint64_t hash = 14695981039346656037u;
    for (const char c : scene.Serialize())
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
    return hash;
}

} // namespace Worlds
