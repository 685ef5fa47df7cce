// SPDX-License-Identifier: MIT
#include "samples/game/sight.hpp"

#include <algorithm>
#include <cmath>

namespace Lantern {

using namespace Vorn;

namespace {

// Of the sphere around the middle that holds a mesh, before it is scaled.
float RadiusOf(const Mesh& mesh) {
    float most = 0.0f;
    for (std::uint32_t i = 0; i < mesh.mVertexCount; ++i) {
        const Vertex_UTx& v = mesh.mVertices[i];
        most = std::max(most, Vector3(v.x, v.y, v.z).Length());
    }
    return most;
}

float Greatest(const Vector3& scale) {
    return std::max({std::abs(scale.x), std::abs(scale.y), std::abs(scale.z)});
}

} // namespace

InSight::InSight(const Scene& scene, const Camera& camera, Radii& radii) {
    const Matrix4 view = camera.viewMatrix();
    // How far a side of the picture leans out, and how much farther a sphere reaches over it.
    const float y = 1.0f / camera.Projection().m[5], x = 1.0f / camera.Projection().m[0];
    const float overY = std::sqrt(1.0f + y * y), overX = std::sqrt(1.0f + x * x);
    for (const Entity* entity : scene.EntityList()) {
        GraphicsCmpt* const graphics = entity->Graphics();
        Mesh* const mesh = graphics ? graphics->GetMesh() : nullptr;
        if (!mesh || !mesh->mVertices)
            continue;
        const auto [known, isNew] = radii.try_emplace(mesh, 0.0f);
        if (isNew)
            known->second = 1.01f * RadiusOf(*mesh);
        const float radius = known->second * Greatest(entity->Scale());
        const Vector3 at = view * entity->Position();
        if (at.z < -radius || std::abs(at.x) > at.z * x + radius * overX ||
            std::abs(at.y) > at.z * y + radius * overY) {
            mHidden.emplace_back(graphics, mesh);
            graphics->SetMesh(nullptr);
        }
    }
}

InSight::~InSight() {
    for (const auto& [graphics, mesh] : mHidden)
        graphics->SetMesh(mesh);
}

} // namespace Lantern
