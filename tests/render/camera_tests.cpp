// SPDX-License-Identifier: MIT
//
// The orbit camera against its own law in double precision, and what it tells the device.
#include "tests/math/exact.hpp"
#include "tests/render/shader_files.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>
#include <type_traits>

namespace {

using Exact::ExpectNear;
using Exact::Random;
using Exact::Vec;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::Texts;
using Vorn::Camera;
using Vorn::Matrix4;
using Vorn::Point2;
using Vorn::Vector3;

static_assert(std::has_virtual_destructor_v<Camera>);

constexpr double Limit = 1.5607963800430298, Turn = 6.2831854820251465, Half = 3.1415927410125732;
constexpr double Degree = 0.01745329238474369, Bound = 9.999999747378752e-06;

using Vec3 = std::array<double, 3>;

/// The law of the orbit, its angles not brought into range but where that changes the picture.
struct Orbit {
    Vec target;
    double yaw = 0, pitch = 0, radius = 0;

    static double Wrapped(double y) { return y < -Half ? y + Turn : y > Half ? y - Turn : y; }
    void Set(double y, double p, double r) {
        yaw = Wrapped(y), pitch = std::clamp(p, -Limit, Limit), radius = r;
    }
    void Rotate(double y, double p, double r, double unit) {
        if (std::abs(y) >= Bound)
            yaw = Wrapped(yaw + y * unit);
        if (std::abs(p) >= Bound)
            pitch = std::clamp(pitch + p * unit, -Limit, Limit);
        if (std::abs(r) >= Bound && radius >= Bound)
            radius = std::max(radius + r, Bound);
    }
    Vec Eye() const {
        return target + Vec{radius * std::cos(pitch) * std::cos(yaw), radius * std::sin(pitch),
                            -radius * std::cos(pitch) * std::sin(yaw)};
    }
};

void ExpectEye(const Camera& camera, const Vec& eye, double tolerance = 2e-5) {
    ExpectNear(Vector3(camera.Position()), eye, tolerance);
}

TEST(Camera, StartsAtTheOriginWithoutRadius) {
    Camera camera;
    for (const Vector3& v : {camera.Position(), camera.LookAt(), camera.View(), camera.Side()})
        EXPECT_EQ(v, Vector3());
    EXPECT_EQ(camera.Up(), Vector3(0, 1, 0));
    EXPECT_EQ(camera.Radius(), 0);
    EXPECT_EQ(std::as_const(camera).Projection().m[5], Matrix4::Identity.m[5]);
    camera.Update(0.1f); // nowhere to look; no harm
    EXPECT_EQ(camera.Position(), Vector3());
}

TEST(Camera, PositionIsSetAloneAndLookAtTakesTheEyeAlong) {
    Camera camera(Vector3(1, 2, 3), Vector3(4, 6, 8));
    EXPECT_EQ(camera.Position(), Vector3(1, 2, 3));
    EXPECT_EQ(camera.View(), Vector3(3, 4, 5));
    EXPECT_EQ(camera.Side(), Vector3(5, 0, -3)); // right of the view, since Y is up
    EXPECT_EQ(Tests::Raw(camera.viewMatrix()),
              Tests::Raw(Matrix4::LookAt(Vector3(1, 2, 3), Vector3(4, 6, 8), Vector3(0, 1, 0))));
    Camera spherical = camera;
    camera.Update(0.1f); // no angle was computed, so the eye falls on the target
    EXPECT_EQ(camera.Position(), Vector3(4, 6, 8));
    spherical.computeSpherical();
    EXPECT_FLOAT_EQ(spherical.Radius(), std::sqrt(50.0f));
    spherical.Update(0.1f);
    ExpectEye(spherical, {1, 2, 3});
    spherical.Position(7, 7, 7);
    EXPECT_EQ(spherical.View(), Vector3(-3, -1, 1));
    spherical.LookAt(Vector3(0, 1, 0)); // by the angles that stand
    ExpectEye(spherical, {-3, -3, -5});
    spherical.Position(spherical.LookAt());
    spherical.computeSpherical(); // no direction
    spherical.Update(0.1f);
    EXPECT_EQ(spherical.Radius(), 0);
    EXPECT_EQ(spherical.Position(), Vector3(0, 1, 0));
}

TEST(Camera, TurnsByItsLaw) {
    const auto pi = static_cast<float>(Exact::Pi);
    Camera camera;
    camera.SetRotationRad(0, 0, 10);
    ExpectEye(camera, {10, 0, 0});
    camera.SetRotationRad(pi / 2, 0, 10);
    ExpectEye(camera, {0, 0, -10});
    camera.SetRotationDeg(-60, 30, 8);
    ExpectEye(camera, {std::sqrt(12), 4, 6});
    // Wrapped once or more, clamped, and with the eye on the other side.
    for (const auto& [yaw, pitch, radius] : {Vec3{190, 0, 5}, Vec3{720, 0, 3}, Vec3{-725, 100, 5},
                                             Vec3{0, -90, 5}, Vec3{10, 20, -4}}) {
        Orbit orbit;
        orbit.Set(yaw * Degree, pitch * Degree, radius);
        camera.SetRotationDeg(Exact::Single(yaw), Exact::Single(pitch), Exact::Single(radius));
        for (int i = 0; i < 3; ++i, camera.Update(0))
            ExpectEye(camera, orbit.Eye());
        EXPECT_EQ(camera.Radius(), Exact::Single(radius));
    }
    // Back from the limit at once, not from where an angle beyond would have been.
    camera.SetRotationRad(0, 2, 5);
    camera.RotateCamRad(0, -0.5f, 0);
    ExpectEye(camera, {5 * std::cos(Limit - 0.5), 5 * std::sin(Limit - 0.5), 0});
}

TEST(Camera, RotatesAsItsTwin) {
    Random random(91);
    for (int i = 0; i < 300; ++i) {
        Camera camera;
        Orbit orbit;
        orbit.target = random.Vector(5);
        camera.LookAt(Exact::To(orbit.target));
        for (int step = 0; step < 40; ++step) {
            // Also too small to count, and beyond every limit.
            const auto amount = [&](float reach) {
                const float reaches[] = {reach, reach, 9e-6f, 5 * reach};
                return random.Float(-1, 1) * reaches[random.Int(0, 3)];
            };
            const int kind = random.Int(0, 5);
            const bool degrees = kind % 2;
            const float yaw = amount(degrees ? 57 : 1), pitch = amount(degrees ? 57 : 1);
            const float radius = amount(3);
            const Vec v = Exact::Of(Vector3(yaw, pitch, radius));
            const double scale = degrees ? Degree : 1;
            kind < 2 ? orbit.Set(v.x * scale, v.y * scale, v.z)
                     : orbit.Rotate(v.x, v.y, v.z, scale);
            const auto operation = kind < 2
                                       ? degrees ? &Camera::SetRotationDeg : &Camera::SetRotationRad
                                   : degrees ? &Camera::RotateCamDeg
                                             : &Camera::RotateCamRad;
            (camera.*operation)(yaw, pitch, radius);
            ASSERT_NO_FATAL_FAILURE(ExpectEye(camera, orbit.Eye(), 1e-3)) << i << ' ' << step;
            ExpectNear(camera.Radius(), orbit.radius, 1e-4);
        }
    }
}

TEST(Camera, SmallTurnsCountNotAndARadiusEndsAboveZero) {
    Camera camera;
    camera.SetRotationRad(0.5f, 0.25f, 5);
    const Vector3 eye = camera.Position();
    for (const float small : {9.9e-6f, -9.9e-6f, 0.0f}) {
        camera.Position(1, 1, 1);
        camera.RotateCamRad(small, small, small); // but the eye is computed anew
        EXPECT_EQ(camera.Position(), eye);
        camera.RotateCamDeg(small, small, small);
        EXPECT_EQ(camera.Position(), eye);
        EXPECT_EQ(camera.Radius(), 5);
    }
    camera.RotateCamRad(0, 0, 2e-5f);
    EXPECT_GT(camera.Radius(), 5);
    camera.RotateCamRad(0, 0, -100);
    EXPECT_EQ(camera.Radius(), 1e-5f);
    camera.RotateCamDeg(0, 0, 3);
    ExpectNear(camera.Radius(), 3, 1e-4);
    for (const float below : {9e-6f, 0.0f, -2.0f}) { // stays put
        camera.SetRotationRad(0, 0, below);
        camera.RotateCamRad(0, 0, 7);
        EXPECT_EQ(camera.Radius(), below);
    }
}

TEST(Camera, FollowsAnEntityFromItsNextUpdateOn) {
    Vorn::Entity sheep, wolf;
    sheep.Position(1, 2, 3);
    Camera camera;
    camera.SetRotationRad(0, 0, 10);
    camera.RegisterEntity(&sheep);
    EXPECT_EQ(camera.LookAt(), Vector3(1, 2, 3));
    EXPECT_EQ(camera.Position(), Vector3(10, 0, 0));
    camera.Update(0.1f);
    EXPECT_EQ(camera.Position(), Vector3(11, 2, 3));
    camera.RegisterEntity(nullptr); // goes on
    sheep.Position(4, 4, 4);
    camera.Update(0.1f);
    EXPECT_EQ(camera.Position(), Vector3(14, 4, 4));
    Camera copy(camera), assigned;
    assigned = camera;
    camera.RegisterEntity(&wolf);
    EXPECT_EQ(camera.LookAt(), Vector3());
    camera.UnRegisterEntity();
    wolf.Position(9, 9, 9);
    sheep.Position(5, 5, 5);
    camera.Update(0.1f);
    EXPECT_EQ(camera.LookAt(), Vector3());
    for (Camera* other : {&copy, &assigned}) {
        other->Update(0.1f);
        EXPECT_EQ(other->Position(), Vector3(15, 5, 5));
    }
}

/// Updates and answers the strength of the shake by its steps: 0 for none.
class Shaken : public testing::Test {
protected:
    Shaken() {
        std::srand(7);
        camera.SetRotationRad(0, 0, 64); // whole, as are 99 amplitudes of a quarter
        still = Vector3(64, 0, 0);
    }
    /// Whether an update moved the eye by whole amplitudes, up to 99 of them, to the right and up.
    bool Moves(float dt, float amplitude) {
        camera.Update(dt);
        const float x = (camera.Position().x - still.x) / amplitude;
        const float y = (camera.Position().y - still.y) / amplitude;
        EXPECT_TRUE(x == std::round(x) && x >= 0 && x <= 99) << x << " of " << amplitude;
        EXPECT_TRUE(y == std::round(y) && y >= 0 && y <= 99) << y;
        EXPECT_EQ(camera.Position().z, still.z);
        EXPECT_EQ(camera.LookAt(), Vector3());
        steps.insert(x), steps.insert(y);
        differ = differ || x != y;
        return x != 0 || y != 0;
    }

    Camera camera;
    Vector3 still;
    std::set<float> steps;
    bool differ = false;
};

TEST_F(Shaken, AfterAMomentOfStillnessItMovesAndFades) {
    camera.cameraShakeBegin(1, 4);
    EXPECT_FALSE(Moves(0.03125f, 1)); // the first twentieth of a second of its life
    int moved = 0;
    for (int i = 1; i < 32; ++i) // fades by an eighth each
        moved += Moves(0.03125f, 4 - static_cast<float>(i) / 8);
    EXPECT_GT(moved, 28);
    EXPECT_GT(steps.size(), 30u);
    EXPECT_TRUE(differ);
    // Nothing is left, of the strength first and of the time then.
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(Moves(0.03125f, 1));
    // The stillness comes once in a life.
    camera.cameraShakeBegin(1, 0.25f);
    moved = 0;
    for (int i = 0; i < 4; ++i) {
        camera.cameraShakeBegin(1, 0.25f);
        moved += Moves(0, 0.25f);
    }
    EXPECT_GT(moved, 2);
}

TEST_F(Shaken, EndsWithItsTime) {
    camera.Update(0.0625f); // runs the clock of stillness, and no more
    EXPECT_FALSE(Moves(0.5f, 1));
    camera.cameraShakeBegin(0.75f, 3); // fades by 4 a second
    int moved = Moves(0.5f, 3);
    moved += Moves(0.5f, 1); // its time is over with this one
    EXPECT_GT(moved, 0);
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(Moves(0.5f, 1));

    moved = 0;
    for (int i = 0; i < 4; ++i) { // of no length: once, at full strength
        camera.cameraShakeBegin(0, 2);
        moved += Moves(0.125f, 2);
        EXPECT_FALSE(Moves(0.125f, 1));
    }
    EXPECT_GT(moved, 2);
}

TEST(Camera, ScreenAndWorldAnswerEachOther) {
    Random random(92);
    for (int i = 0; i < 500; ++i) {
        Camera camera;
        camera.LookAt(random.Place(20));
        camera.SetRotationRad(random.Float(-3, 3), random.Float(-1.4f, 1.4f), random.Float(1, 30));
        if (i % 2) // the field of view is fixed, whatever the projection
            camera.Projection(Matrix4::Projection(1, 2, 1, 10));
        const double tanY = std::tan(0.3926990032196045), tanX = tanY * 1.3333333730697632;
        const Vec eye = Exact::Of(camera.Position());
        const Vec f = Exact::Unit(Exact::Of(camera.LookAt()) - eye);
        const Vec s = Exact::Unit(Exact::Cross(Exact::Y, f)), u = Exact::Cross(f, s);
        const Vec v = Exact::Of(random.Place(1.5f));
        const Point2 p(Exact::Single(v.x), Exact::Single(v.y));
        const Vec direction = Exact::Unit(f + v.x * tanX * s - v.y * tanY * u);
        ExpectNear(Vector3(camera.ScreenToRayDir(p)), direction, 1e-5);
        const Vec way = random(1, 50) * direction;
        // Also behind, as its mirror image in front.
        for (const double depth : {0.0, Exact::Dot(way, f)}) {
            const Point2 seen = camera.WorldToScreen(Exact::To(eye + way - 2 * depth * f));
            ExpectNear(seen.x, v.x, 1e-3);
            ExpectNear(seen.y, v.y, 1e-3);
        }
    }
    Camera camera(Vector3(0, 0, -5), Vector3());
    EXPECT_EQ(camera.ScreenToRayDir(Point2()), Vector3(0, 0, 1));
    EXPECT_EQ(camera.WorldToScreen(Vector3(0, 0, 3)).x, 0);
    const Point2 beside = camera.WorldToScreen(Vector3(1, 0, -5)); // no depth
    EXPECT_EQ(beside.x, std::numeric_limits<float>::infinity());
}

TEST(Camera, NumbersFromNowhereDoNoHarm) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), huge = 3e38f,
                infinity = std::numeric_limits<float>::infinity();
    for (const float odd : {nan, infinity, -infinity, huge, -huge}) {
        Camera camera;
        camera.SetRotationDeg(odd, odd, odd);
        camera.RotateCamRad(odd, odd, odd);
        camera.cameraShakeBegin(odd, odd);
        camera.Update(odd), camera.Update(0.1f);
        camera.computeSpherical();
        camera.WorldToScreen(Vector3(odd, odd, odd));
        camera.SetRotationRad(0, 0, 10); // and all is well again
        EXPECT_EQ(camera.Position(), Vector3(10, 0, 0));
    }
}

using CameraCalls = Tests::RecorderTest;

TEST_F(CameraCalls, AnUpdatePutsViewThenProjectionOnTheDevice) {
    Camera camera(Vector3(1, 2, 3), Vector3(4, 5, 6));
    const Matrix4 projection = Random(93).Matrix(3);
    camera.Projection(projection);
    camera.Update(0.1f); // without a device
    RenderTests::WriteShaders(RenderTests::KnownShaders());
    Open();
    VornPlatform::CallLog log;
    camera.SetRotationRad(0.5f, 0.25f, 8);
    camera.RotateCamRad(0.5f, 0, 0);
    camera.LookAt(Vector3(1, 0, 0));
    EXPECT_THAT(Tests::Take(log), IsEmpty());
    camera.Update(0.1f);
    EXPECT_THAT(Tests::Take(log),
                ElementsAre("SetTransform 2 " + RenderTests::Elements(camera.viewMatrix()),
                            "SetTransform 3 " + RenderTests::Elements(projection)));
    // The view is that of the shaken eye.
    camera.cameraShakeBegin(1, 1);
    camera.Update(0.1f);
    EXPECT_EQ(Tests::Take(log)[0],
              "SetTransform 2 " + RenderTests::Elements(Matrix4::LookAt(
                                      camera.Position(), Vector3(1, 0, 0), Vector3(0, 1, 0))));
}

} // namespace
