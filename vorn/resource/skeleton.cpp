// SPDX-License-Identifier: MIT
#include "vorn/resource/skeleton.hpp"

#include "vorn/resource/mesh.hpp"

#include <d3dx9.h>

#include <algorithm>

namespace Vorn {

namespace {

void AdvanceClock(float dt, Mesh& mesh) {
    mesh.mTime += dt;
    // Written so that a NaN goes back too.
    const bool ended = !(mesh.mTime < mesh.mDuration);
    if (ended)
        mesh.mTime = 0.0f;
    for (Bone& bone : mesh.mBones) {
        if (ended)
            bone.mCurrentKey = 1;
        if (std::size_t{bone.mCurrentKey} + 1 < bone.mKeys.size() &&
            bone.mKeys[bone.mCurrentKey].mTime < mesh.mTime)
            ++bone.mCurrentKey;
    }
}

Matrix4 PoseOf(const Vector3& position, const D3DXQUATERNION& rotation) {
    D3DXMATRIX turn, shift;
    D3DXMatrixRotationQuaternion(&turn, &rotation);
    D3DXMatrixTranslation(&shift, position.x, position.y, position.z);
    D3DXMATRIX pose;
    D3DXMatrixMultiply(&pose, &turn, &shift);
    return Matrix4(&pose.m[0][0]).Transposed();
}

D3DXQUATERNION RotationOf(const BoneKey& key) {
    const Quaternion& q = key.mRotation;
    return {q.x, q.y, q.z, q.w};
}

Matrix4 Between(const BoneKey& a, const BoneKey& b, float time) {
    if (a.mTime == b.mTime)
        return PoseOf(b.mPosition, RotationOf(b));
    const float along = (time - a.mTime) / (b.mTime - a.mTime);
    const D3DXQUATERNION from = RotationOf(a), to = RotationOf(b);
    D3DXQUATERNION rotation;
    D3DXQuaternionSlerp(&rotation, &from, &to, along);
    return PoseOf(a.mPosition + (b.mPosition - a.mPosition) * along, rotation);
}

Matrix4 LocalPose(const Bone& bone, const Bone* parent, float time) {
    if (bone.mKeys.empty())
        return parent ? parent->mOffset * bone.mOffset.Inversed() : bone.mOffset.Inversed();
    const std::size_t last = bone.mKeys.size() - 1;
    if (bone.mCurrentKey == 0 || bone.mCurrentKey > last)
        return PoseOf(bone.mKeys[last].mPosition, RotationOf(bone.mKeys[last]));
    return Between(bone.mKeys[bone.mCurrentKey - 1], bone.mKeys[bone.mCurrentKey], time);
}

} // namespace

void UpdateSkeleton(float dt, Mesh& mesh) {
    AdvanceClock(dt, mesh);

    // Parents before children, whatever their order in the array. A hierarchy that runs in a ring
    // is no hierarchy, and ends when every bone could have had its turn.
    std::vector<Bone>& bones = mesh.mBones;
    std::vector<int> queue;
    queue.reserve(std::max(bones.size(), mesh.mRoots.size()));
    queue = mesh.mRoots;
    for (std::size_t turn = 0; turn < queue.size() && turn < bones.size(); ++turn) {
        const auto index = static_cast<std::size_t>(queue[turn]); // a negative one is huge
        if (index >= bones.size())
            continue;
        Bone& bone = bones[index];
        const auto above = static_cast<std::size_t>(bone.mParent);
        const Bone* const parent = above < bones.size() ? &bones[above] : nullptr;
        const Matrix4 local = LocalPose(bone, parent, mesh.mTime);
        bone.mWorld = parent ? parent->mWorld * local : local;
        bone.mFinal = bone.mWorld * bone.mOffset;
        queue.insert(queue.end(), bone.mChildren.begin(), bone.mChildren.end());
    }
}

} // namespace Vorn
