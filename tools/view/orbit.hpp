// SPDX-License-Identifier: MIT
#pragma once

#include "tools/view/lines.hpp"

#include "vorn/math/point2.hpp"
#include "vorn/render/camera.hpp"

#include <optional>

namespace View {

/// A camera that goes round what is shown. Angles in degrees, as Camera has them.
class Orbit {
public:
    /// The box is in the picture, of a width that is so many times its height, as it is seen from
    /// these angles; another distance where the caller says so. The angles stay.
    void Frame(const Bounds& bounds, float aspect, std::optional<float> distance = {});
    void Turn(float yaw, float pitch);
    void Set(float yaw, float pitch);
    /// Nearer with more than 1.
    void Zoom(float factor);
    /// (unit: heights of the picture)
    void Pan(float right, float up);

    /// Gives view and projection to the device. `left` moves the middle that far (unit: halves of
    /// the picture's width).
    void Apply(float aspect, float left);
    const Vorn::Camera& Camera() const { return mCamera; }
    Vorn::Vector3 Eye() const { return mCamera.Position(); }
    /// To pixels of a picture; nothing for what stands behind the eye.
    std::optional<Vorn::Point2> ToPixels(const Vorn::Vector3& point, float width,
                                         float height) const;
    float Yaw() const { return mYaw; }
    float Pitch() const { return mPitch; }
    float Distance() const { return mDistance; }

private:
    void update();
    float distanceFor(const Bounds& bounds, float aspect) const;

    Vorn::Camera mCamera;
    float mYaw = -60, mPitch = 18, mDistance = 5;
    float mReach = 5; // how far it goes from the middle of what is shown
};

} // namespace View
