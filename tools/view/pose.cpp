// SPDX-License-Identifier: MIT
#include "tools/view/pose.hpp"

#include "vorn/resource/skeleton.hpp"

#include <algorithm>

namespace View {

using Vorn::Vector3;

namespace {

Vector3 Turn(const Vorn::Matrix4& m, const Vector3& v) {
    return {m.m[0] * v.x + m.m[1] * v.y + m.m[2] * v.z, m.m[4] * v.x + m.m[5] * v.y + m.m[6] * v.z,
            m.m[8] * v.x + m.m[9] * v.y + m.m[10] * v.z};
}

} // namespace

bool IsPosable(const Vorn::Mesh& mesh) {
    return mesh.mSkinned && !mesh.mBones.empty();
}

void Seek(Vorn::Mesh& mesh, float time) {
    mesh.mTime = mesh.mDuration > 0 ? std::clamp(time, 0.0f, mesh.mDuration * 0.99999f) : 0.0f;
    for (Vorn::Bone& bone : mesh.mBones) {
        const auto later = std::find_if(bone.mKeys.begin(), bone.mKeys.end(),
                                        [&](const auto& key) { return key.mTime >= mesh.mTime; });
        const auto last = static_cast<std::ptrdiff_t>(bone.mKeys.size()) - 1;
        bone.mCurrentKey = static_cast<std::uint32_t>(
            std::max<std::ptrdiff_t>(1, std::min(later - bone.mKeys.begin(), last)));
    }
    Vorn::UpdateSkeleton(0.0f, mesh);
}

Placed PlaceVertex(const Vorn::Mesh& mesh, std::uint32_t vertex, bool posed) {
    const Vorn::Vertex_UTx& v = mesh.mVertices[vertex];
    const Vector3 at(v.x, v.y, v.z), normal(v.nx, v.ny, v.nz);
    if (!posed)
        return {at, normal};
    // What the weights leave out of 1 stays where the model has it, as in the shader.
    Placed placed;
    float left = 1.0f;
    for (std::size_t i = 0; i < 4; ++i) {
        if (v.weights[i] == 0.0f || v.bones[i] >= mesh.mBones.size())
            continue;
        const Vorn::Matrix4& m = mesh.mBones[v.bones[i]].mFinal;
        placed.at += (m * at) * v.weights[i];
        placed.normal += Turn(m, normal) * v.weights[i];
        left -= v.weights[i];
    }
    placed.at += at * left;
    placed.normal += normal * left;
    return placed;
}

Bounds BoundsOf(const Vorn::Mesh& mesh, bool posed) {
    Bounds bounds;
    for (std::uint32_t i = 0; i < mesh.mVertexCount; ++i)
        bounds.Add(PlaceVertex(mesh, i, posed).at);
    return bounds;
}

} // namespace View
