// SPDX-License-Identifier: MIT
#include "worlds/bodies/bodies.hpp"

#include <cmath>
#include <random>

namespace Worlds {

using Vorn::Vector3;

Bodies::Bodies(std::size_t count, Shape shape, double touching) {
    auto& physics = *Vorn::PhysicsSystem::Instance();
    physics.AddCategory("NONE", 1);
    for (unsigned int i = 0; i < 3; ++i)
        physics.AddVolume(std::vector<const char*>{"NONE", "Box", "Sphere"}[i], i);

    std::mt19937 random(static_cast<unsigned int>(count));
    const auto number = [&random](double low, double high) {
        return static_cast<float>(low +
                                  (high - low) * static_cast<double>(random() % 10000) * 1e-4);
    };
    for (std::size_t i = 0; i < count; ++i) {
        Vorn::Entity& entity = *mEntities.emplace_back(std::make_unique<Vorn::Entity>());
        entity.Deserialize(R"({"PhysicsCmpt": {}})", true);
        entity.Alive(true);
        entity.Scale(number(0.6, 1.4), number(0.6, 1.4), number(0.6, 1.4));
        entity.Orientation(number(-1, 1), number(-1, 1), number(0.1, 1));
        entity.Angle(number(0, 6));
        Vorn::PhysicsCmpt& body = *entity.Physics();
        const bool box = shape == Shape::Box || (shape == Shape::Mixed && random() % 2 == 0);
        body.VolumeType(box ? "Box" : "Sphere");
        body.ClearMask();
        body.Drag(false);
        body.LinearVelocity(Vector3(number(-1, 1), number(-1, 1), number(-1, 1)) * 0.05f);
        body.RegisterCollisionResponse(&mCount);
        physics.Register(&body);
        mList.push_back(&body);
        mPlaces.emplace_back(number(0, 1), number(0, 1), number(0, 1));
    }

    // Hits grow with the density, so a few measured ones lead to the edge that is asked for.
    double edge = std::cbrt(static_cast<double>(count)) * 2.0;
    spread(touching < 0.0 ? 0.1 : edge);
    for (int i = 0; touching >= 0.0 && i < 6; ++i) {
        const std::size_t before = Hits();
        Step();
        const double hits = static_cast<double>(Hits() - before) + 0.5;
        edge *= std::cbrt(hits / (touching * static_cast<double>(count)));
        spread(edge);
    }
    mCount.hits = 0;
}

Bodies::~Bodies() {
    for (Vorn::PhysicsCmpt* body : mList)
        Vorn::PhysicsSystem::Instance()->Unregister(body);
}

void Bodies::Step() {
    Vorn::PhysicsSystem::Instance()->Update(1.0f);
    keepInside();
}

void Bodies::Move() {
    for (Vorn::PhysicsCmpt* body : mList)
        body->Position(body->Position() + body->LinearVelocity());
    keepInside();
}

void Bodies::spread(double edge) {
    mEdge = static_cast<float>(edge);
    for (std::size_t i = 0; i < mList.size(); ++i)
        mList[i]->Position(mPlaces[i] * mEdge);
}

void Bodies::keepInside() {
    const auto turned = [this](float at, float speed) {
        return (at < 0.0f && speed < 0.0f) || (at > mEdge && speed > 0.0f) ? -speed : speed;
    };
    for (const auto& entity : mEntities) {
        const Vector3& at = entity->Position();
        const Vector3& v = entity->Physics()->LinearVelocity();
        const Vector3 next(turned(at.x, v.x), turned(at.y, v.y), turned(at.z, v.z));
        if (next != v)
            entity->Physics()->LinearVelocity(next);
    }
}

} // namespace Worlds
