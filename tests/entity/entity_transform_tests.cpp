// SPDX-License-Identifier: MIT
#include "layer_twin.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using namespace EntityTests;
using Vorn::Entity;
using Vorn::Vector3;
using Wide = std::array<double, 3>;

Wide Cross(const Wide& a, const Wide& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Wide Unit(const Wide& v) {
    const double length = std::hypot(v[0], v[1], v[2]);
    return length < 0.00001 ? v : Wide{v[0] / length, v[1] / length, v[2] / length};
}

Wide Widen(const Vector3& v) {
    return {static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
}

/// Where the entity's three axes point, without matrices: the side and the upward direction that go
/// with the orientation, turned in their own plane by the angle.
std::array<Wide, 3> AxesInTheWorld(const Vector3& orientation, double angle) {
    const Wide n = Unit(Widen(orientation));
    Wide side = Unit(Cross({0, 1, 0}, n));
    Wide up = Unit(Cross(n, side));
    if (std::abs(1.0 - Widen(orientation)[1]) < 0.00001) {
        up = Unit(Cross({1, 0, 0}, n));
        side = Unit(Cross(up, n));
    }
    std::array<Wide, 3> axes = {side, up, n};
    for (std::size_t i = 0; i < 3; ++i) {
        axes[0][i] = std::cos(angle) * side[i] + std::sin(angle) * up[i];
        axes[1][i] = std::cos(angle) * up[i] - std::sin(angle) * side[i];
    }
    return axes;
}

void ExpectWorld(const Entity& entity, double angle) {
    const Vorn::Matrix4 world = entity.GetWorld();
    const std::array<Wide, 3> axes = AxesInTheWorld(entity.Orientation(), angle);
    const Wide scale = Widen(entity.Scale());
    const Axes position = AxesOf(entity.Position());
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const double size = scale[column];
            EXPECT_NEAR(static_cast<double>(world.m[4 * row + column]), axes[column][row] * size,
                        4e-6 * (1 + std::abs(size)))
                << row << ' ' << column;
        }
        EXPECT_EQ(world.m[4 * row + 3], position[row]);
        EXPECT_EQ(world.m[12 + row], 0.0f);
    }
    EXPECT_EQ(world.m[15], 1.0f);
}

void ExpectNear(const Vector3& actual, const Wide& expected) {
    const Wide wide = Widen(actual);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(wide[i], expected[i], 1e-5);
}

TEST(EntityWorld, AgreesWithTurnedAxesInDouble) {
    std::mt19937 random(12);
    std::uniform_real_distribution<float> any(-5, 5);
    for (int i = 0; i < 2000; ++i) {
        SCOPED_TRACE(i);
        Entity entity;
        entity.Orientation(any(random), any(random), any(random));
        if (i % 10 == 0)
            entity.Orientation(any(random), 1, any(random)); // Y of exactly 1, whatever the length
        const Vector3 o = entity.Orientation();
        if (std::hypot(o.x, o.z) < 0.05f)
            continue; // close to the pole the side direction has no digits left
        entity.Angle(any(random));
        entity.Scale(any(random), any(random), any(random));
        entity.Position(any(random), any(random), any(random));
        entity.RotationOffset(any(random), any(random), any(random)); // of no effect
        ExpectWorld(entity, static_cast<double>(entity.Angle()));
        if (HasFailure())
            return;
    }
}

TEST(EntityWorld, OrientationsAlongAnAxis) {
    const std::vector<Vector3> orientations = {{1, 0, 0},  {-1, 0, 0},   {0, 0, 1},
                                               {0, 0, -3}, {0, 1, 0},    {0, -1, 0},
                                               {0, 2, 0},  {0, 0.5f, 0}, {0, 0, 0}};
    for (const Vector3& orientation : orientations) {
        SCOPED_TRACE(testing::Message()
                     << orientation.x << ' ' << orientation.y << ' ' << orientation.z);
        Entity entity;
        entity.Orientation(orientation);
        entity.Scale(2, -3, 4);
        entity.Position(5, 6, 7);
        for (const float angle : {0.0f, 0.75f, -2.0f}) {
            entity.Angle(angle);
            ExpectWorld(entity, static_cast<double>(angle));
        }
    }
}

TEST(EntityWorld, PlacesPointsOfTheEntity) {
    Entity entity;
    entity.Orientation(1, 0, 0);
    entity.Position(10, 20, 30);
    entity.Scale(1, 1, 2);
    const Vector3 nose = entity.GetWorld() * Vector3(0, 0, 1);
    ExpectNear(nose, {12, 20, 30});
    // A quarter turn about +X carries the entity's +Y, which stands upright, to +Z.
    entity.Angle(std::acos(0.0f));
    const Vector3 top = entity.GetWorld() * Vector3(0, 1, 0);
    ExpectNear(top, {10, 20, 31});
}

TEST(EntityWorld, StandsAtThePositionNotAtTheParents) {
    Entity parent;
    parent.Position(100, 0, 0);
    parent.Scale(9, 9, 9);
    Entity child;
    child.Parent(&parent);
    child.Position(1, 2, 3);
    EXPECT_EQ(AxesOf(child.GetWorld().Col4ToVec3()), (Axes{1, 2, 3}));
    child.Update(0);
    EXPECT_EQ(AxesOf(child.GetWorld().Col4ToVec3()), (Axes{1, 2, 3}));
}

TEST(EntityTransform, StartState) {
    const Entity entity;
    EXPECT_FALSE(entity.IsAlive());
    EXPECT_EQ(entity.Scene(), nullptr);
    EXPECT_EQ(entity.Parent(), nullptr);
    Twin twin;
    ExpectSame(entity, twin);
    EXPECT_EQ(AxesOf(entity.RotationOffset()), Axes{});
    ExpectNoFlag(entity);
}

TEST(EntityTransform, WithoutAParentPositionAndLocalPositionAreOne) {
    Entity entity;
    entity.Position(1, 2, 3);
    EXPECT_EQ(AxesOf(entity.LocalPosition()), (Axes{1, 2, 3}));
    entity.LocalPosition(Vector3(4, 5, 6));
    EXPECT_EQ(AxesOf(entity.Position()), (Axes{4, 5, 6}));
    entity.Position(entity.Position()); // an alias of the field itself
    entity.LocalPosition(entity.Position());
    entity.Update(1);
    EXPECT_EQ(AxesOf(entity.Position()), (Axes{4, 5, 6}));
    EXPECT_EQ(AxesOf(entity.LocalPosition()), (Axes{4, 5, 6}));
}

TEST(EntityTransform, AChildKeepsItsOffsetFromTheParent) {
    Entity parent;
    parent.Position(10, 20, 30);
    parent.Orientation(1, 0, 0);
    parent.Scale(5, 5, 5);
    Entity child;
    child.Position(1, 1, 1);
    child.Parent(&parent);
    EXPECT_EQ(AxesOf(child.LocalPosition()), (Axes{1, 1, 1})); // nothing is recomputed yet
    EXPECT_EQ(AxesOf(child.Position()), (Axes{1, 1, 1}));
    child.Update(0);
    EXPECT_EQ(AxesOf(child.Position()), (Axes{11, 21, 31})); // the jump by the parent's position

    child.Position(12, 22, 32);
    EXPECT_EQ(AxesOf(child.LocalPosition()), (Axes{2, 2, 2}));
    child.Update(0);
    EXPECT_EQ(AxesOf(child.Position()), (Axes{12, 22, 32}));
    child.LocalPosition(Vector3(-1, 0, 1));
    EXPECT_EQ(AxesOf(child.Position()), (Axes{9, 20, 31}));

    parent.Position(0, 0, 0);
    EXPECT_EQ(AxesOf(child.Position()), (Axes{9, 20, 31})); // follows at its own update
    child.Update(0);
    EXPECT_EQ(AxesOf(child.Position()), (Axes{-1, 0, 1}));

    parent.Position(7, 7, 7);
    child.Deinit();
    EXPECT_EQ(child.Parent(), nullptr);
    EXPECT_EQ(AxesOf(child.LocalPosition()), (Axes{-1, 0, 1}));
    child.Update(0);
    EXPECT_EQ(AxesOf(child.Position()), (Axes{-1, 0, 1}));
}

TEST(EntityTransform, AChainLagsOneFrameForEachLinkThatUpdatesTooEarly) {
    std::array<Entity, 4> chain;
    for (std::size_t i = 1; i < chain.size(); ++i) {
        chain[i].Parent(&chain[i - 1]);
        chain[i].LocalPosition(Vector3(1, 0, 0));
    }
    chain[0].Position(100, 0, 0);
    const auto childrenFirst = [&] {
        for (std::size_t i = chain.size(); i-- > 0;)
            chain[i].Update(0);
    };
    childrenFirst();
    EXPECT_EQ(chain[1].Position().x, 101);
    EXPECT_EQ(chain[3].Position().x, 3); // from where its parent stood before
    childrenFirst();
    childrenFirst();
    EXPECT_EQ(chain[3].Position().x, 103);
    chain[0].Position(200, 0, 0);
    for (Entity& entity : chain)
        entity.Update(0);
    EXPECT_EQ(chain[3].Position().x, 203); // parents first: all of it at once
}

TEST(EntityTransform, AnEntityMayBeItsOwnParent) {
    Entity entity;
    entity.LocalPosition(Vector3(1, 2, 3));
    entity.Parent(&entity);
    entity.Update(0);
    EXPECT_EQ(AxesOf(entity.Position()), (Axes{2, 4, 6}));
    entity.Position(9, 9, 9);
    EXPECT_EQ(AxesOf(entity.LocalPosition()), Axes{});
}

TEST(EntityTransform, PositionsFollowTheParentsInAnyOrderOfCalls) {
    std::mt19937 random(3);
    std::array<Entity, 6> entities;
    struct Plain {
        Axes position{};
        Axes local{};
        int parent = -1;
    };
    std::array<Plain, 6> plain;
    const auto below = [&](std::size_t count) { return random() % count; };
    for (int step = 0; step < 5000; ++step) {
        SCOPED_TRACE(step);
        const std::size_t i = below(6);
        Plain& twin = plain[i];
        const auto to = Axes{static_cast<float>(below(100)), static_cast<float>(below(100)), 1};
        const Axes from =
            twin.parent < 0 ? Axes{} : plain[static_cast<std::size_t>(twin.parent)].position;
        switch (below(4)) {
        case 0:
            entities[i].Position(Vector3(to[0], to[1], to[2]));
            twin.position = to;
            for (std::size_t k = 0; k < 3; ++k)
                twin.local[k] = to[k] - from[k];
            break;
        case 1:
            entities[i].LocalPosition(Vector3(to[0], to[1], to[2]));
            twin.local = to;
            for (std::size_t k = 0; k < 3; ++k)
                twin.position[k] = from[k] + to[k];
            break;
        case 2: {
            const std::size_t parent = below(i + 1); // of a lower index, or none
            twin.parent = static_cast<int>(parent) - 1;
            entities[i].Parent(parent ? &entities[parent - 1] : nullptr);
            break;
        }
        default:
            entities[i].Update(0.1f);
            for (std::size_t k = 0; k < 3; ++k)
                twin.position[k] = from[k] + twin.local[k];
        }
        ASSERT_EQ(AxesOf(entities[i].Position()), twin.position);
        ASSERT_EQ(AxesOf(entities[i].LocalPosition()), twin.local);
    }
}

} // namespace
