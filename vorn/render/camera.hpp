// SPDX-License-Identifier: MIT
//
// A camera that goes round the point it looks at. The game owns it.
//
//   Vorn::Camera camera;
//   camera.Projection(Vorn::Matrix4::Projection(graphic->DefaultFOV(), 4.0f / 3, 1, 1000));
//   camera.RegisterEntity(hero);
//   camera.SetRotationDeg(-90, 20, 8);              // from behind, from above, 8 away
//   camera.Update(dt);                              // once a frame, before anything is drawn
//
// What counts is the point and yaw, pitch and radius about it: the eye follows from them at each
// Update, so a place that was set by hand is lost then unless computeSpherical is called first.
// Angles are radians, and degrees where the name says Deg. Yaw 0 and pitch 0 put the eye on the
// side of +X, a growing yaw moves it towards -Z, a growing pitch up.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/matrix4.hpp"
#include "vorn/math/point2.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/scene/fwd.hpp"

namespace Vorn {

class VORN_API Camera {
public:
    Camera() = default;
    /// Angles and radius stay 0: computeSpherical takes them from the two.
    Camera(const Vector3& position, const Vector3& lookAt) : mLookAt(lookAt), mPosition(position) {}
    Camera(const Camera&) = default;
    Camera& operator=(const Camera&) = default;
    virtual ~Camera();

    // The eye

    void Position(const Vector3& position) { mPosition = position; }
    void Position(float x, float y, float z) { mPosition.Set(x, y, z); }
    Vector3 Position() const { return mPosition; }
    /// The eye moves along.
    void LookAt(Vector3 point);
    void LookAt(float x, float y, float z) { LookAt(Vector3(x, y, z)); }
    Vector3 LookAt() const { return mLookAt; }
    /// From the eye to the point, and to the right of it; neither has length 1.
    Vector3 View() const { return mLookAt - mPosition; }
    Vector3 Side() const { return mUp.CrossProduct(View()); }
    Vector3 Up() const { return mUp; }
    float Radius() const { return mRadius; }
    Matrix4 viewMatrix() const { return Matrix4::LookAt(mPosition, mLookAt, mUp); }
    /// The identity at the start. Update gives it to the device.
    void Projection(const Matrix4& projection) { mProjection = projection; }
    const Matrix4& Projection() const { return mProjection; }

    // Turning. The pitch stays just short of straight up and down. A yaw is brought back by one
    // turn at most, and by one more at each Update.

    void SetRotationDeg(float yaw, float pitch, float radius);
    void SetRotationRad(float yaw, float pitch, float radius);
    /// By so much. What is below 0.00001 in magnitude changes nothing; a radius ends at 0.00001,
    /// and one that is smaller stays.
    void RotateCamDeg(float yaw, float pitch, float radius);
    void RotateCamRad(float yaw, float pitch, float radius);
    /// Angles and radius from where the eye is; on the point itself the angles stay.
    void computeSpherical();

    // Each frame

    /// Follows the entity, shakes, and gives view and projection to the device.
    void Update(float dt);
    /// Follows the entity, which must live until another one is followed or none. Null is passed
    /// over.
    void RegisterEntity(Entity* entity);
    /// The point stays where it is.
    void UnRegisterEntity() { mEntity = nullptr; }
    /// Moves the eye by up to 99 times the amplitude along X and Y, anew in each frame and less and
    /// less, for `length` (unit: seconds). One of length 0 does not get less.
    void cameraShakeBegin(float length, float amplitude);

    // Between screen and world, for a picture of 4 to 3 with a vertical field of view of pi / 4,
    // whatever the projection is. Screen positions go from -1 to 1, Y down, as those of
    // InputManager::MGetScreenMousePos.

    /// The direction, of length 1, from the eye through a point of the screen.
    Vector3 ScreenToRayDir(Point2 point) const;
    /// A point behind the eye comes out as its mirror image in front; one beside it as infinite.
    Point2 WorldToScreen(Vector3 point) const;

    /// Do nothing.
    void camInit() {}
    void Deserialize() {}
    void TweakBarDelete() {}
    void TweakBarInti(const char*, Point2&) {}

private:
    struct Basis {
        Vector3 front, right, up;
    };
    Basis basis() const;
    void rotate(float yaw, float pitch, float radius, float unit);
    void computeCartesian();
    void shakeCamera(float dt);

    Vector3 mLookAt;
    Vector3 mPosition;
    Vector3 mUp{0.0f, 1.0f, 0.0f};
    float mPitch = 0.0f;
    float mYaw = 0.0f;
    float mRadius = 0.0f;
    Matrix4 mProjection;
    Entity* mEntity = nullptr;
    double mShakeLeft = 0.0; // -1 when it is over
    double mShakeLength = 0.0;
    float mShakeClock = 0.0f; // of all shakes together
    float mShakeAmplitude = 0.0f;
    float mShakeDecay = 0.0f; // (unit: amplitude / second)
};

} // namespace Vorn
