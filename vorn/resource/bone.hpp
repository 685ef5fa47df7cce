// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/block_allocator.hpp"
#include "vorn/math/matrix4.hpp"
#include "vorn/math/quaternion.hpp"
#include "vorn/math/vector3.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Vorn {

/// Where a bone stands at a time, relative to its parent.
struct VORN_API BoneKey {
    /// (unit: seconds)
    float mTime = 0.0f;
    Vector3 mPosition;
    Quaternion mRotation;
};

} // namespace Vorn

/// The keys of a crowd of skeletons lie side by side, in every vector of the standard library.
template <>
class std::allocator<Vorn::BoneKey> : public Vorn::BlockAllocator<Vorn::BoneKey> {
public:
    allocator() = default;
    template <typename U>
    allocator(const std::allocator<U>& /*other*/) noexcept {}
};

namespace Vorn {

struct VORN_API Bone {
    std::string mName;
    /// Index into Mesh::mBones, below the bone's own; -1 for a root.
    std::int32_t mParent = -1;
    Vector3 mBindTranslation;
    Quaternion mBindRotation;
    Vector3 mOffsetTranslation;
    Quaternion mOffsetRotation;
    /// The first transform of the file as a matrix; nothing reads it.
    Matrix4 mBind;
    /// The second one: takes a vertex of the model to the bone's own space.
    Matrix4 mOffset;
    /// mWorld * mOffset, which moves a vertex. UpdateSkeleton writes it and mWorld.
    Matrix4 mFinal;
    /// The bone's pose in the model's space.
    Matrix4 mWorld;
    /// In the order of their times. Fewer than two: see UpdateSkeleton.
    std::vector<BoneKey> mKeys;
    /// Indices of the bones whose parent this one is.
    std::vector<int> mChildren;
    /// The length of mKeys.
    std::uint32_t mKeyCount = 0;
    /// The key at the end of the interval that the clock is in.
    std::uint32_t mCurrentKey = 1;
};

} // namespace Vorn
