// SPDX-License-Identifier: MIT
//
// Bones are evaluated four or eight at a time, from the two keys of each that count, read where the
// mesh has them. What is out of the ordinary is left to the plain way, one bone at a time: a bone
// with fewer than two keys, keys of one time, a clock far outside of the interval, values that are
// no numbers.
#include "vorn/resource/skeleton.hpp"

#include "vorn/core/lanes.hpp"
#include "vorn/resource/mesh.hpp"

#include <d3dx9.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <vector>

namespace Vorn {

namespace {

// More than these, which a vertex could not name by a byte, are done the plain way.
constexpr std::size_t MostBones = 256;

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

bool HasInterval(const Bone& bone) {
    return bone.mCurrentKey > 0 && bone.mCurrentKey < bone.mKeys.size();
}

Matrix4 LocalPose(const Bone& bone, const Bone* parent, float time) {
    if (bone.mKeys.empty())
        return parent ? parent->mOffset * bone.mOffset.Inversed() : bone.mOffset.Inversed();
    if (!HasInterval(bone))
        return PoseOf(bone.mKeys.back().mPosition, RotationOf(bone.mKeys.back()));
    return Between(bone.mKeys[bone.mCurrentKey - 1], bone.mKeys[bone.mCurrentKey], time);
}

/// The plain way.
void PlaceAlone(Bone& bone, const Bone* parent, float time) {
    const Matrix4 local = LocalPose(bone, parent, time);
    bone.mWorld = parent ? parent->mWorld * local : local;
    bone.mFinal = bone.mWorld * bone.mOffset;
}

inline void StepCursor(Bone& bone, bool restart, float time) {
    if (restart)
        bone.mCurrentKey = 1;
    const std::size_t current = bone.mCurrentKey;
    if (current + 1 < bone.mKeys.size() && bone.mKeys[current].mTime < time)
        ++bone.mCurrentKey;
}

/// Brings to the cache what will be needed. A load and no prefetch: those are dropped where the
/// page is not at hand.
inline void Touch(const void* memory) {
    const char byte = *static_cast<const char*>(memory);
    __asm__ volatile("" : : "r"(byte));
}

#define VORN_LANES_FILE "vorn/resource/pose_lanes.inl"
#include "vorn/core/lanes.inl"

void EvaluateMany(Mesh& mesh, bool restart) {
    for (Bone& bone : mesh.mBones)
        StepCursor(bone, restart, mesh.mTime);
    std::vector<int> queue(mesh.mBones.size());
    Four::Walk(mesh, queue.data(), [&](Bone& bone, const Bone* parent, std::size_t) {
        PlaceAlone(bone, parent, mesh.mTime);
    });
}

} // namespace

void UpdateSkeleton(float dt, Mesh& mesh) {
    mesh.mTime += dt;
    // Written so that a NaN goes back too.
    const bool restart = !(mesh.mTime < mesh.mDuration);
    if (restart)
        mesh.mTime = 0.0f;
    if (mesh.mBones.size() > MostBones)
        return EvaluateMany(mesh, restart);
#if VORN_HAS_EIGHT_LANES
    if (__builtin_cpu_supports("avx2"))
        return Eight::Evaluate(mesh, restart);
#endif
    Four::Evaluate(mesh, restart);
}

void StoreFinalTransforms(Mesh& mesh) {
    if (!mesh.mFinalTransforms)
        return;
    const std::size_t count = std::min<std::size_t>(mesh.mBoneCount, mesh.mBones.size());
    for (std::size_t i = 0; i < count; ++i) {
        Float4 rows[4];
        std::memcpy(rows, mesh.mBones[i].mFinal.m, sizeof rows);
        Transpose(rows);
        std::memcpy(&mesh.mFinalTransforms[i], rows, sizeof rows);
    }
}

} // namespace Vorn
