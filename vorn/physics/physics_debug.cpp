// SPDX-License-Identifier: MIT
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/render/graphics_system.hpp"

#include <cmath>

namespace Vorn {

namespace {

constexpr COLORS DebugColor{0xFFC50BDFu};

void DrawBox(const OBB& box) {
    static constexpr int edges[12][2] = {{0, 1}, {0, 2}, {0, 4}, {1, 3}, {1, 5}, {2, 3},
                                         {2, 6}, {3, 7}, {4, 5}, {4, 6}, {5, 7}, {6, 7}};
    Vector3 corners[8];
    box.GetVertices(corners);
    for (const auto& [from, to] : edges)
        GraphicsSystem::Instance()->AddLine(corners[from], corners[to], DebugColor);
}

// A circle in each of the planes XY, XZ and YZ.
void DrawSphere(const Sphere& sphere) {
    constexpr int Steps = 16;
    constexpr float StepAngle = 0.39269909262657166f;
    const auto add = [&sphere](const Vector3& from, const Vector3& to) {
        GraphicsSystem::Instance()->AddLine(sphere.center + from, sphere.center + to, DebugColor);
    };
    for (int i = 0; i < Steps; ++i) {
        const float a = static_cast<float>(i) * StepAngle;
        const float b = static_cast<float>(i + 1) * StepAngle;
        const float cosA = sphere.radius * std::cos(a), sinA = sphere.radius * std::sin(a);
        const float cosB = sphere.radius * std::cos(b), sinB = sphere.radius * std::sin(b);
        add({cosA, sinA, 0}, {cosB, sinB, 0});
        add({sinA, 0, cosA}, {sinB, 0, cosB});
        add({0, cosA, sinA}, {0, cosB, sinB});
    }
}

} // namespace

void PhysicsCmpt::DrawDebug() const {
    if (!IsAlive())
        return;
    if (mVolumeType == SphereVolume)
        DrawSphere(BoundingSphere());
    else
        DrawBox(BoundingOBB());
}

} // namespace Vorn
