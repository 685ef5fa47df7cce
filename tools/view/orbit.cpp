// SPDX-License-Identifier: MIT
#include "tools/view/orbit.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace View {

using Vorn::Vector3;

namespace {

constexpr float FieldOfView = 0.7f; // (unit: radians)
constexpr float Degree = std::numbers::pi_v<float> / 180;

} // namespace

void Orbit::Frame(const Bounds& bounds, float aspect, std::optional<float> distance) {
    mReach = bounds.Empty() ? 1.0f : std::clamp(bounds.Radius(), 1e-3f, 1e6f);
    mCamera.LookAt(bounds.Empty() ? Vector3() : bounds.Middle());
    mDistance = distance ? *distance : distanceFor(bounds, aspect);
    update();
}

// From so far each corner is within the planes at the sides. Nearer than the sphere about the box
// would let the eye into it by a turn.
float Orbit::distanceFor(const Bounds& bounds, float aspect) const {
    constexpr float Margin = 1.08f;
    const float high = std::tan(FieldOfView / 2), wide = high * aspect;
    const float yaw = mYaw * Degree, pitch = mPitch * Degree;
    const Vector3 toEye(std::cos(pitch) * std::cos(yaw), std::sin(pitch),
                        -std::cos(pitch) * std::sin(yaw));
    const Vector3 side(std::sin(yaw), 0, std::cos(yaw));
    const Vector3 up = side.CrossProduct(toEye);
    const Vector3 half = bounds.Size() * 0.5f;
    float distance = mReach * 1.2f;
    for (int corner = 0; corner < 8; ++corner) {
        const Vector3 at(corner & 1 ? half.x : -half.x, corner & 2 ? half.y : -half.y,
                         corner & 4 ? half.z : -half.z);
        const float sideways =
            std::max(std::abs(at.DotProduct(side)) / wide, std::abs(at.DotProduct(up)) / high);
        distance = std::max(distance, sideways * Margin + at.DotProduct(toEye));
    }
    return distance;
}

void Orbit::Turn(float yaw, float pitch) {
    Set(mYaw + yaw, mPitch + pitch);
}

void Orbit::Set(float yaw, float pitch) {
    mYaw = std::remainder(yaw, 360.0f);
    mPitch = std::clamp(pitch, -89.0f, 89.0f);
    update();
}

void Orbit::Zoom(float factor) {
    mDistance = std::clamp(mDistance / factor, mReach * 0.02f, mReach * 60.0f);
    update();
}

void Orbit::Pan(float right, float up) {
    Vector3 side = mCamera.Side(), ahead = mCamera.View();
    side.Normalize();
    ahead.Normalize();
    const float height = 2 * mDistance * std::tan(FieldOfView / 2);
    mCamera.LookAt(mCamera.LookAt() + side * (right * height) +
                   ahead.CrossProduct(side) * (up * height));
}

void Orbit::update() {
    mCamera.SetRotationDeg(mYaw, mPitch, mDistance);
}

void Orbit::Apply(float aspect, float left) {
    const float nearest = std::max(mDistance * 0.02f, mDistance - mReach * 8);
    Vorn::Matrix4 projection =
        Vorn::Matrix4::Projection(FieldOfView, aspect, nearest, mDistance + mReach * 12);
    projection.m[2] = -left;
    mCamera.Projection(projection);
    mCamera.Update(0.0f);
}

std::optional<Vorn::Point2> Orbit::ToPixels(const Vector3& point, float width, float height) const {
    const Vorn::Vector4 clip =
        mCamera.Projection() * mCamera.viewMatrix() * Vorn::Vector4(point.x, point.y, point.z, 1);
    if (!(clip.w > 1e-6f))
        return {};
    return Vorn::Point2((clip.x / clip.w * 0.5f + 0.5f) * width,
                        (0.5f - clip.y / clip.w * 0.5f) * height);
}

} // namespace View
