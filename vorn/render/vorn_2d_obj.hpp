// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/matrix4.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/resource/fwd.hpp"

#include <cstdint>

namespace Vorn {

/// A flat image that the host owns and Graphics2DSystem::Render2DObj draws: on the screen or in the
/// world, as the camera has it.
///
///   Vorn::Vorn2DObj heart;
///   heart.mPosition = {60, 40, 0};
///   heart.mWidth = heart.mHeight = 32;
///   heart.mTexture = Vorn::TextureManager::Instance()->Get("heart.png");
struct VORN_API Vorn2DObj {
    /// Of its centre.
    Vector3 mPosition;
    /// About Z (unit: radians).
    float mAngle = 0.0f;
    float mWidth = 0.0f;
    float mHeight = 0.0f;
    /// Not owned. White where there is none.
    Texture* mTexture = nullptr;
    bool mVisible = true;
    // The host's own: nothing reads them.
    std::uint32_t mUserData[4] = {};
    std::uint8_t mUserFlag = 0;
    Matrix4 mUserMatrix0;
    Matrix4 mUserMatrix1;

    Vorn2DObj() = default;
    /// Leaves out what is the host's own.
    Vorn2DObj(const Vorn2DObj& source)
        : mPosition(source.mPosition), mAngle(source.mAngle), mWidth(source.mWidth),
          mHeight(source.mHeight), mTexture(source.mTexture), mVisible(source.mVisible) {}
    /// Takes over everything.
    Vorn2DObj& operator=(const Vorn2DObj&) = default;
};

} // namespace Vorn
