// SPDX-License-Identifier: MIT
//
// The evaluation of a skeleton, as plain as it can be said: what the engine's own is compared with,
// in tests and benchmarks.
#pragma once

#include "vorn/vorn.hpp"

#include <cstddef>
#include <queue>
#include <vector>

namespace Tests {

inline Vorn::Matrix4 PlainPose(const Vorn::Vector3& position, const D3DXQUATERNION& rotation) {
    D3DXMATRIX shift, turn, pose;
    D3DXMatrixTranslation(&shift, position.x, position.y, position.z);
    D3DXMatrixRotationQuaternion(&turn, &rotation);
    D3DXMatrixMultiply(&pose, &turn, &shift);
    return Vorn::Matrix4(&pose.m[0][0]).Transposed();
}

inline Vorn::Matrix4 PlainLocal(const Vorn::Bone& bone, const Vorn::Bone* parent, float time) {
    const auto turn = [](const Vorn::BoneKey& key) {
        const Vorn::Quaternion& q = key.mRotation;
        return D3DXQUATERNION(q.x, q.y, q.z, q.w);
    };
    if (bone.mKeys.empty())
        return parent ? parent->mOffset * bone.mOffset.Inversed() : bone.mOffset.Inversed();
    if (bone.mCurrentKey == 0 || bone.mCurrentKey >= bone.mKeys.size())
        return PlainPose(bone.mKeys.back().mPosition, turn(bone.mKeys.back()));
    const Vorn::BoneKey& a = bone.mKeys[bone.mCurrentKey - 1];
    const Vorn::BoneKey& b = bone.mKeys[bone.mCurrentKey];
    if (a.mTime == b.mTime)
        return PlainPose(b.mPosition, turn(b));
    const float along = (time - a.mTime) / (b.mTime - a.mTime);
    const D3DXQUATERNION from = turn(a), to = turn(b);
    D3DXQUATERNION rotation;
    D3DXQuaternionSlerp(&rotation, &from, &to, along);
    return PlainPose(a.mPosition + (b.mPosition - a.mPosition) * along, rotation);
}

/// As Vorn::UpdateSkeleton. The walk below a root ends when it has taken as many bones as there
/// are, since a hierarchy may run in a ring.
inline void PlainUpdateSkeleton(float dt, Vorn::Mesh& mesh) {
    std::vector<Vorn::Bone>& bones = mesh.mBones;
    mesh.mTime += dt;
    if (!(mesh.mTime < mesh.mDuration)) {
        mesh.mTime = 0.0f;
        for (Vorn::Bone& bone : bones)
            bone.mCurrentKey = 1;
    }
    for (Vorn::Bone& bone : bones)
        if (std::size_t{bone.mCurrentKey} + 1 < bone.mKeys.size() &&
            bone.mKeys[bone.mCurrentKey].mTime < mesh.mTime)
            ++bone.mCurrentKey;

    const auto isBone = [&](int index) {
        return index >= 0 && static_cast<std::size_t>(index) < bones.size();
    };
    for (const int root : mesh.mRoots) {
        std::queue<int> working({root});
        for (std::size_t turn = 0; !working.empty() && turn < bones.size(); ++turn) {
            const int index = working.front();
            working.pop();
            if (!isBone(index))
                continue;
            Vorn::Bone& bone = bones[static_cast<std::size_t>(index)];
            const Vorn::Bone* const parent =
                isBone(bone.mParent) ? &bones[static_cast<std::size_t>(bone.mParent)] : nullptr;
            const Vorn::Matrix4 local = PlainLocal(bone, parent, mesh.mTime);
            bone.mWorld = parent ? parent->mWorld * local : local;
            bone.mFinal = bone.mWorld * bone.mOffset;
            for (const int child : bone.mChildren)
                working.push(child);
        }
    }
}

/// What the shader gets, from mFinal.
inline void PlainStoreFinalTransforms(Vorn::Mesh& mesh) {
    for (std::size_t i = 0; i < mesh.mBoneCount; ++i)
        mesh.mFinalTransforms[i] = mesh.mBones[i].mFinal;
}

} // namespace Tests
