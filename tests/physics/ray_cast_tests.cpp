// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <memory>
#include <utility>
#include <vector>

namespace {

using Vorn::Entity;
using Vorn::Ray;
using Vorn::Vector3;
using Entities = std::list<Entity*>;

class RayCasts : public testing::Test {
protected:
    RayCasts() {
        for (const auto& [name, bits] : {std::pair("NONE", 1), {"A", 2}, {"B", 4}, {"ALL", 15}})
            Vorn::PhysicsSystem::Instance()->AddCategory(name, bits);
        Vorn::PhysicsSystem::Instance()->AddVolume("NONE", 0);
    }
    /// With a sphere of radius 1.
    Entity& Add(const Vector3& position, bool body = true) {
        Entity& entity = *mOwned.emplace_back(std::make_unique<Entity>());
        if (body)
            entity.Deserialize(R"({"PhysicsCmpt": {"Mask": ""}})", true);
        entity.Alive(true);
        entity.Position(position);
        entity.Scale(2, 0, 0);
        return entity;
    }
    std::vector<std::unique_ptr<Entity>> mOwned;
    Entity mNobody;
};

TEST_F(RayCasts, FromAnObjectFindWhatAPlainSearchFinds) {
    Exact::Random random(71);
    for (int run = 0; run < 300; ++run) {
        Entity& caster = Add(random.Place(5));
        caster.Physics()->Mask("A");
        const Vector3 direction = Exact::To(random.Axis());
        const float minimum = random.Float(-1, 5);
        Entities list, hits = {&mNobody}, expected = hits;
        float best = 1e9f, t = 0;
        for (int i = 0; i < run % 30; ++i) {
            Entity& entity = *list.emplace_back(&Add(random.Place(15), random.Int(0, 5) > 0));
            entity.Alive(random.Int(0, 5) > 0);
            entity.Scale(random.Float(0, 6), random.Float(0, 6), 1);
            if (!entity.Physics())
                continue;
            entity.Physics()->Category(random.Int(0, 4) ? "B" : "A");
            entity.Physics()->ScaleFactor(random.Place(2));
            Vorn::Sphere sphere = entity.Physics()->BoundingSphere();
            sphere.radius += caster.Physics()->BoundingSphere().radius;
            if (!entity.IsAlive() || entity.Physics()->Category() == 2 ||
                !Vorn::RayToSphere(Ray(caster.Position(), direction), sphere, &t) || t <= minimum)
                continue;
            expected.insert(t < best ? expected.begin() : expected.end(), &entity);
            best = std::min(best, t);
        }
        Entity* hit = &mNobody;
        const bool met = expected.size() > 1;
        EXPECT_EQ(Vorn::RayCastFromObject(&caster, direction, list, hits, minimum), met);
        EXPECT_EQ(Vorn::RayCastFromObject(&caster, direction, list, hit, minimum), met);
        EXPECT_EQ(hits, expected);
        EXPECT_EQ(hit, expected.front());
    }
}

TEST_F(RayCasts, FromAPointMeetBodiesOrWhateverHasAScale) {
    Entity &body = Add({10, 0, 0}), &twin = Add({10, 0, 0}), &plain = Add({5, 0, 0}, false);
    body.Physics()->Category("A"); // plays no part
    body.Physics()->ScaleFactor(Vector3(4, 1, 1));
    Entity &dead = Add({3, 0, 0}), &far = Add({2e9f, 0, 0});
    dead.Alive(false);
    const auto cast = [&](const Entities& list, const Vector3& from, float minimum, bool physics) {
        Entity* hit = &mNobody;
        const bool met = Vorn::RayCastFromPoint(Ray(from, {1, 0, 0}), list, hit, minimum, physics);
        EXPECT_EQ(met, hit != &mNobody || list.back() == &far);
        return hit;
    };
    EXPECT_EQ(cast({&dead, &plain, &body}, {}, 0, true), &body);
    EXPECT_EQ(cast({&dead, &plain, &body}, {}, 0, false), &plain);
    EXPECT_EQ(cast({&plain, &body}, {0, 3.9f, 0}, 0, true), &body);
    EXPECT_EQ(cast({&plain, &body}, {0, 1.1f, 0}, 0, false), &mNobody) << "the factor has no part";
    EXPECT_EQ(cast({&twin, &body}, {}, 0, false), &twin) << "of two as near the first in the list";
    EXPECT_EQ(cast({&twin}, {}, 9, true), &mNobody) << "exactly at the minimum";
    EXPECT_EQ(cast({&twin}, {10.5f, 0, 0}, 0, true), &mNobody) << "inside, past the centre: 0";
    EXPECT_EQ(cast({&twin}, {10.5f, 0, 0}, -1, true), &twin);
    EXPECT_EQ(cast({&far}, {}, 0, true), &mNobody) << "a hit, but too far to be handed out";
    Entity* hit = &mNobody;
    EXPECT_FALSE(Vorn::RayCastFromObject(&twin, {1, 0, 0}, {&Add({20, 0, 0})}, hit, 8));
    EXPECT_TRUE(Vorn::RayCastFromObject(&twin, {1, 0, 0}, {&far}, hit, 0) && hit == &mNobody);
    EXPECT_TRUE(Vorn::RayCastFromObject(&twin, {1, 0, 0}, {&twin}, hit, 0) && hit == &twin);
}

} // namespace
