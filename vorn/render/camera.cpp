// SPDX-License-Identifier: MIT
#include "vorn/render/camera.hpp"

#include "vorn/render/graphic.hpp"
#include "vorn/scene/entity.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Vorn {

namespace {

constexpr float Pi = 3.1415927410125732f;
constexpr float Degree = 0.01745329238474369f;
constexpr float Smallest = 0.00001f;
constexpr float MostPitch = 1.5607964f; // beyond it the view would have no upwards

// Of half the field of view: of pi / 8, and by 4 to 3.
const float TanHalfFovY = static_cast<float>(std::tan(0.3926990032196045));
const float TanHalfFovX = TanHalfFovY * 1.3333333730697632f;

float Wrapped(float yaw) {
    if (yaw < -Pi)
        return yaw + 2.0f * Pi;
    return yaw > Pi ? yaw - Pi - Pi : yaw;
}

float Clamped(float pitch) {
    return std::clamp(pitch, -MostPitch, MostPitch);
}

bool Counts(float change) {
    return std::abs(change) >= Smallest;
}

} // namespace

Camera::~Camera() = default;

void Camera::LookAt(Vector3 point) {
    mLookAt = point;
    computeCartesian();
}

void Camera::SetRotationDeg(float yaw, float pitch, float radius) {
    SetRotationRad(yaw * Degree, pitch * Degree, radius);
}

void Camera::SetRotationRad(float yaw, float pitch, float radius) {
    mYaw = Wrapped(yaw);
    mPitch = Clamped(pitch);
    mRadius = radius;
    computeCartesian();
}

void Camera::RotateCamDeg(float yaw, float pitch, float radius) {
    rotate(yaw, pitch, radius, Degree);
}

void Camera::RotateCamRad(float yaw, float pitch, float radius) {
    rotate(yaw, pitch, radius, 1.0f);
}

void Camera::rotate(float yaw, float pitch, float radius, float unit) {
    // Whether a change counts is asked of the number that the caller gave, whatever its unit.
    if (Counts(yaw))
        mYaw = Wrapped(mYaw + yaw * unit);
    if (Counts(pitch))
        mPitch = Clamped(mPitch + pitch * unit);
    if (Counts(radius) && mRadius >= Smallest)
        mRadius = std::max(mRadius + radius, Smallest);
    computeCartesian();
}

void Camera::computeSpherical() {
    const Vector3 v = mPosition - mLookAt;
    mRadius = v.Length();
    if (!(mRadius > 0.0f))
        return;
    mPitch = std::asin(std::clamp(v.y / mRadius, -1.0f, 1.0f));
    mYaw = std::atan2(-v.z, v.x);
}

void Camera::computeCartesian() {
    const float level = mRadius * std::cos(mPitch);
    mPosition = mLookAt + Vector3(level * std::cos(mYaw), mRadius * std::sin(mPitch),
                                  -level * std::sin(mYaw));
}

void Camera::Update(float dt) {
    if (mEntity)
        mLookAt = mEntity->Position();
    mYaw = Wrapped(mYaw);
    mPitch = Clamped(mPitch);
    computeCartesian();
    if (mShakeLeft >= 0.0) {
        mShakeLeft -= static_cast<double>(dt);
        if (mShakeLeft < 0.0)
            mShakeLeft = -1.0;
        shakeCamera(dt);
    }
    Graphic::Instance()->SetView(viewMatrix());
    Graphic::Instance()->SetProjection(mProjection);
}

void Camera::RegisterEntity(Entity* entity) {
    if (!entity)
        return;
    mEntity = entity;
    mLookAt = entity->Position();
}

void Camera::cameraShakeBegin(float length, float amplitude) {
    mShakeLeft = mShakeLength = static_cast<double>(length);
    mShakeAmplitude = amplitude;
    mShakeDecay = length != 0.0f ? amplitude / length : 0.0f;
}

void Camera::shakeCamera(float dt) {
    constexpr float stillness = 0.05f; // (unit: seconds) once in a camera's life
    const auto offset = [this] { return static_cast<float>(std::rand() % 100) * mShakeAmplitude; };
    mShakeClock += dt;
    if (mShakeClock > stillness) {
        mPosition.x += offset();
        mPosition.y += offset();
    }
    mShakeAmplitude -= mShakeDecay * dt;
}

Camera::Basis Camera::basis() const {
    Basis basis{View(), Side(), {}};
    basis.up = basis.front.CrossProduct(basis.right);
    basis.front.Normalize();
    basis.right.Normalize();
    basis.up.Normalize();
    return basis;
}

Vector3 Camera::ScreenToRayDir(Point2 point) const {
    const auto [front, right, up] = basis();
    Vector3 direction = front + right * (point.x * TanHalfFovX) - up * (point.y * TanHalfFovY);
    direction.Normalize();
    return direction;
}

Point2 Camera::WorldToScreen(Vector3 point) const {
    const auto [front, right, up] = basis();
    const Vector3 way = point - mPosition;
    const float depth = std::abs(way.DotProduct(front));
    return {way.DotProduct(right) / depth / TanHalfFovX,
            -(way.DotProduct(up) / depth) / TanHalfFovY};
}

} // namespace Vorn
